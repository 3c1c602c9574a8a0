#include "autocode/AC_Formula.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "autocode/AC_ElementCollection.h"
#include "autocode/AC_FixedString.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

std::string record(std::string text)
{
    for (char& c : text)
        if (c == '|')
            c = '\x0b';
    return text;
}

class FormulaTest : public testing::Test {
protected:
    // Reads a text formula record and returns the evaluator.
    const AC_Formula& read(const std::string& body)
    {
        std::istringstream in(record(body));
        in.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
        readTextFormulaRecord(in, format);
        in.exceptions(std::ios::goodbit);
        rest = std::string(std::istreambuf_iterator<char>(in), {});
        return dynamic_cast<const AC_Formula&>(format.getElements().getElement("F" + body.substr(0, body.find('|'))));
    }

    std::string print(const std::string& formula, const std::string& head = "000000000")
    {
        format.getElements().clear();
        return read("text|" + head + formula).getResult();
    }

    ProbeElement& addProbe(const std::string& id, const std::string& text)
    {
        auto probe = std::make_unique<ProbeElement>(text);
        ProbeElement& result = *probe;
        format.getElements().addElement(id, std::move(probe));
        return result;
    }

    Image image{32, 1};
    KT_FMT::KT_Format format{nullptr, &image, nullptr};
    std::string rest;
};

}  // namespace

TEST_F(FormulaTest, TheRecordKeepsItsLinesUpToAnEmptyOne)
{
    const AC_Formula& formula = read("text|02,L*0007F12|+F30||\x1b");
    EXPECT_EQ(formula.getFormula(), record("F12|+F30||"));
    EXPECT_EQ(formula.getFormatString(), "%.2f");
    EXPECT_EQ(formula.getPadding().alignment, Padding::ALIGN_LEFT);
    EXPECT_EQ(formula.getPadding().width, 7u);
    EXPECT_EQ(rest, "\x1b");
}

TEST_F(FormulaTest, ASumPrintsInTheRecordsPrecisionWithItsDecimalPoint)
{
    EXPECT_EQ(print("F12|+F30||", "02,0 0000"), "42,00");
    EXPECT_EQ(print("F12|-F30||", "01.0 0000"), "-18.0");
}

TEST_F(FormulaTest, ThePaddingIsReadButNotApplied) { EXPECT_EQ(print("F12|+F30||", "00.L*0009"), "42"); }

TEST_F(FormulaTest, OneDigitOperandsKeepTheirValueHere)
{
    // Unlike the compiled formula, this evaluator converts with atof.
    EXPECT_EQ(print("F2|+F3||"), "5");
}

TEST_F(FormulaTest, ATermPrintsWithSixDecimalsAndStaysTextWithoutASum)
{
    EXPECT_EQ(print("F2|*F3||", "02,0 0000"), "6.000000");
    EXPECT_EQ(print("F1|+F2|*F3||", "02,0 0000"), "7,00");
}

TEST_F(FormulaTest, ComputingIsInThirtyTwoBitFloats)
{
    EXPECT_EQ(print("F16777216|+F1||"), "16777216");
    EXPECT_EQ(print("F0.1|*F3||"), "0.300000");
}

TEST_F(FormulaTest, APieceWithoutOperatorStaysText) { EXPECT_EQ(print("Fabc||"), "abc"); }

TEST_F(FormulaTest, ConcatenationJoinsTheExpressions) { EXPECT_EQ(print("F11|+F22|&Fx|&F33||"), "33x33"); }

TEST_F(FormulaTest, DivisionByZeroIsNotCaught) { EXPECT_EQ(print("F10|/F0||"), "inf"); }

TEST_F(FormulaTest, AZeroMustBeWrittenAsZeros)
{
    EXPECT_EQ(print("F0.0|+F00||", "01.0 0000"), "0.0");
    expectFailure<KT_ERROR::internal_autocode_error>([&] { print("Fabc|+F12||"); },
                                                     "converting abc into float failed");
    expectFailure<KT_ERROR::internal_autocode_error>([&] { print("F12|*F0.0.0||"); },
                                                     "converting 0.0.0 into float failed");
}

TEST_F(FormulaTest, AFactorOfNeitherKindFails)
{
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { print("F12|+X30||"); }, "Missing F or V character");
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { print("|"); }, "Missing F or V character");
}

TEST_F(FormulaTest, AVariableFactorYieldsItsElementsText)
{
    addProbe("XGTIN", "0123");
    EXPECT_EQ(read("text|000000000F01|&VXGTIN||").getResult(), "010123");
}

TEST_F(FormulaTest, AMissingOperandFailsAtConstructionAndNothingIsAdded)
{
    std::istringstream in(record("text|000000000VXnone||"));
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { readTextFormulaRecord(in, format); },
                                                 "Element id not found: Xnone");
    EXPECT_EQ(format.getElements().size(), 0u);
}

TEST_F(FormulaTest, EveryEvaluationAppendsTheDependenciesAgain)
{
    addProbe("Xa", "10");
    const AC_Formula& formula = read("text|000000000VXa|+VXa||");
    EXPECT_EQ(formula.countDependencies(), 2u);
    formula.getResult();
    EXPECT_EQ(formula.countDependencies(), 4u);
}

TEST_F(FormulaTest, UnchangedWhileAllDependenciesAre)
{
    ProbeElement& a = addProbe("Xa", "10");
    addProbe("Xb", "20");
    const AC_Formula& formula = read("text|000000000VXa|+VXb||");
    EXPECT_TRUE(formula.isUnchanged());
    a.unchanged = false;
    EXPECT_FALSE(formula.isUnchanged());
    EXPECT_TRUE(formula.isVariable());
}

TEST_F(FormulaTest, DepthIsTheDeepestOperandPlusOne)
{
    const AC_Formula& plain = read("plain|000000000F1||");
    EXPECT_EQ(plain.checkDepth(5), 6u);
    format.getElements().addElement("Xa", std::make_unique<AC_FixedString>("10"));
    const AC_Formula& formula = read("text|000000000VXa||");
    EXPECT_EQ(formula.checkDepth(5), 7u);
    EXPECT_EQ(formula.checkDepth(50), 52u);
    expectFailure<KT_ERROR::internal_autocode_error>([&] { formula.checkDepth(51); },
                                                     "exceeded maximum depth of autocode tree");
}
