#include "autocode/FormulaReader.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "autocode/AC_AppendList.h"
#include "autocode/AC_BinaryFormula.h"
#include "autocode/AC_FixedString.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

const std::string VT(1, '\x0b');

// Replaces every '|' by VT, so that records can be written as they read.
std::string record(std::string text)
{
    for (char& c : text)
        if (c == '|')
            c = '\x0b';
    return text;
}

class FormulaReaderTest : public testing::Test {
protected:
    // Reads a formula through the parser's kind of stream and returns what it prints.
    const AC_AppendList& read(const std::string& body, bool raising = true)
    {
        std::istringstream in(record(body));
        if (raising)
            in.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
        readFormulaRecord(in, format);
        in.exceptions(std::ios::goodbit);
        rest = std::string(std::istreambuf_iterator<char>(in), {});
        return list("F" + body.substr(0, body.find('|')));
    }

    std::string print(const std::string& operands, const std::string& head = "000000000")
    {
        format.getElements().clear();
        return read("form|" + head + operands).getResult();
    }

    const AC_AppendList& list(const std::string& id)
    {
        return dynamic_cast<const AC_AppendList&>(format.getElements().getElement(id));
    }

    const AC_BinaryFormula& node(const std::string& id)
    {
        return dynamic_cast<const AC_BinaryFormula&>(format.getElements().getElement(id));
    }

    Image image{32, 1};
    KT_FMT::KT_Format format{nullptr, &image, nullptr};
    std::string rest;
};

}  // namespace

TEST_F(FormulaReaderTest, SumWithPrecisionTwoAndADecimalComma)
{
    EXPECT_EQ(print("F12|+F30||", "02,0 0000"), "42,00");
}

TEST_F(FormulaReaderTest, DivisionByZeroFailsAtPrintTime)
{
    for (const char* zero : {"F0", "F00"}) {
        SCOPED_TRACE(zero);
        expectFailure<KT_ERROR::render_time_error>([&] { print(std::string("F10|/") + zero + "||"); },
                                                   "division by zero in formula");
    }
    EXPECT_EQ(print("F10|/F2.0||", "03.0 0000"), "5.000");
}

TEST_F(FormulaReaderTest, OneDigitOperandsCountAsZero) { EXPECT_EQ(print("F2|*F3||"), "0"); }

TEST_F(FormulaReaderTest, AFixedTextThatIsNoNumberFailsAtPrintTime)
{
    expectFailure<KT_ERROR::not_a_number>([&] { print("F12|+Fabc||"); }, "could not convert to number: abc");
}

TEST_F(FormulaReaderTest, ConcatenationJoinsTheSumAndTheText) { EXPECT_EQ(print("F11|+F22|&F33||"), "3333"); }

TEST_F(FormulaReaderTest, ASingleOperandMakesAListOfOneAndNoNode)
{
    const AC_AppendList& formula = read("one|000000000Fhello||");
    EXPECT_EQ(format.getElements().size(), 2u);
    ASSERT_EQ(formula.getOperands().size(), 1u);
    EXPECT_EQ(formula.getOperands()[0], "&0");
    EXPECT_EQ(formula.getResult(), "hello");
    EXPECT_EQ(dynamic_cast<const AC_AppendList&>(format.getElements().getElement("Fone")).getResult(), "hello");
    EXPECT_FALSE(formula.isVariable());
}

TEST_F(FormulaReaderTest, ProductsBindBeforeSumsAndSumsBeforeConcatenation)
{
    const AC_AppendList& formula = read("form|000000000F10|+F20|*F30|&Fxy||");
    // Fixed strings &0, &1, &2; the product &3, the sum &4; then the text &5.
    EXPECT_EQ(formula.getOperands(), (std::deque<std::string>{"&4", "&5"}));
    EXPECT_EQ(node("&3").getOpcode(), OPCODE_MULTIPLY);
    EXPECT_EQ(node("&3").getLeft(), "&1");
    EXPECT_EQ(node("&3").getRight(), "&2");
    EXPECT_TRUE(node("&3").isIntermediate());
    EXPECT_EQ(node("&4").getOpcode(), OPCODE_ADD);
    EXPECT_EQ(node("&4").getLeft(), "&0");
    EXPECT_EQ(node("&4").getRight(), "&3");
    EXPECT_FALSE(node("&4").isIntermediate());
    EXPECT_EQ(formula.getResult(), "610xy");
}

TEST_F(FormulaReaderTest, EqualRanksAssociateToTheLeft)
{
    const struct {
        const char* operands;
        const char* head;
        const char* expected;
    } cases[] = {
        {"F100|-F20|-F30||", "000000000", "50"},
        {"F80|/F20|/F20||", "01.0 0000", "0.2"},
        {"F10|-F20|+F30||", "000000000", "20"},
        {"F60|/F20|*F30||", "000000000", "90"},
        {"F10|*F20|+F30|*F40||", "000000000", "1400"},
        {"F10|+F20|*F30|-F40||", "000000000", "570"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.operands);
        EXPECT_EQ(print(c.operands, c.head), c.expected);
    }
}

TEST_F(FormulaReaderTest, ConcatenationIsNeverReduced)
{
    const AC_AppendList& formula = read("form|000000000F10|&F20|&F30||");
    EXPECT_EQ(formula.getOperands(), (std::deque<std::string>{"&0", "&1", "&2"}));
    EXPECT_EQ(format.getElements().size(), 4u);
    EXPECT_EQ(formula.getResult(), "102030");
}

TEST_F(FormulaReaderTest, NodesBesideConcatenationsPrintWithTheRecordsPrecision)
{
    EXPECT_EQ(print("F10|*F20|&F-|&F30|/F40||", "02,0 0000"), "200,00-0,75");
}

TEST_F(FormulaReaderTest, ThePaddingAppliesToTheJoinedText)
{
    EXPECT_EQ(print("F12|+F30||", "00.L*0006"), "****42");
    EXPECT_EQ(print("Fab|&Fcd||", "00.R-0006"), "abcd--");
}

TEST_F(FormulaReaderTest, ANegativePrecisionPrintsNoDecimals) { EXPECT_EQ(print("F12|+F30||", "-1.0 0000"), "42"); }

TEST_F(FormulaReaderTest, TheGs1ExampleJoinsFixedAndVariableParts)
{
    const AC_AppendList& formula =
        read("Formel1_Code|02.000000F\\<FNC1>|&F01|&VXGTIN|&F10|&VXBatch|&F\\<FNC1>||");
    EXPECT_EQ(formula.getOperands(), (std::deque<std::string>{"&0", "&1", "XGTIN", "&2", "XBatch", "&3"}));
    EXPECT_EQ(format.getElements().getElement("&0").getResult(), "\\<FNC1>") << "the escape is kept for rendering";
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { list("FFormel1_Code").getResult(); },
                                                 "Element id not found: XGTIN");
    format.getElements().addElement("XGTIN", std::make_unique<ProbeElement>("01234567890128"));
    format.getElements().addElement("XBatch", std::make_unique<ProbeElement>("B7"));
    EXPECT_EQ(list("FFormel1_Code").getResult(), "\\<FNC1>0101234567890128" "10B7\\<FNC1>");
    EXPECT_TRUE(list("FFormel1_Code").isVariable());
}

TEST_F(FormulaReaderTest, AnUnknownOperatorFails)
{
    for (const char op : {'%', 'F', '\x0c'}) {
        SCOPED_TRACE(op);
        format.getElements().clear();
        std::istringstream in(record(std::string("form|000000000F10|") + op + "F20||"));
        expectFailure<KT_ERROR::bad_escape_sequence>([&] { readFormulaRecord(in, format); },
                                                     std::string("Formula: expected operator, got: ") + op);
    }
}

TEST_F(FormulaReaderTest, TheRecordIsReadToItsClosingVtAndNoFurther)
{
    read("form|000000000F10|+F20||\x1b");
    EXPECT_EQ(rest, "\x1b");
}

TEST_F(FormulaReaderTest, ARecordThatEndsWithTheStreamIsCompiledWithWhatItHas)
{
    EXPECT_EQ(read("form|000000000F10|+F20|", false).getResult(), "30");
    format.getElements().clear();
    EXPECT_EQ(read("form|000000000F10|", false).getResult(), "10");
}

TEST_F(FormulaReaderTest, TheParsersStreamFailsAtTheEndOfARecordWithoutClosingVt)
{
    std::istringstream in(record("form|000000000F10|+F20|"));
    in.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
    EXPECT_THROW(readFormulaRecord(in, format), std::ios_base::failure);
}

TEST_F(FormulaReaderTest, MalformedFieldsFailAsTheirReaders)
{
    std::istringstream badOperand(record("form|000000000X10||"));
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { readFormulaRecord(badOperand, format); },
                                                 "expected content field starting with 'F' or 'V' got: 'X'");
    std::istringstream badPadding(record("form|00.X00000F10||"));
    expectFailure<KT_ERROR::bad_escape_sequence>(
        [&] { readFormulaRecord(badPadding, format); },
        "malformed alignment while parsing padding; expected '0', 'L' or 'R' but got 'X'");
}

TEST_F(FormulaReaderTest, ASecondFormulaOfTheSameNameFails)
{
    read("form|000000000F10||");
    std::istringstream in(record("form|000000000F20||"));
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { readFormulaRecord(in, format); },
                                                 "Element id already exists in collection: Fform");
}
