#include "autocode/AC_BinaryFormula.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "autocode/AC_ElementCollection.h"
#include "autocode/AC_FixedString.h"
#include "errors/KT_Error.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

// Notes each evaluation as a number.
class CountingElement : public AC_Element {
public:
    CountingElement(std::string text, std::vector<std::string>& journal, std::string name)
        : text(std::move(text)), journal(journal), name(std::move(name))
    {
    }
    std::string getResult() const override { return text; }
    double toNumber() const override
    {
        journal.push_back(name);
        return AC_Element::toNumber();
    }

private:
    std::string text;
    std::vector<std::string>& journal;
    std::string name;
};

class BinaryFormulaTest : public testing::Test {
protected:
    void addFixed(const std::string& id, const std::string& text)
    {
        collection.addElement(id, std::make_unique<AC_FixedString>(text));
    }

    AC_BinaryFormula& addNode(uint32_t opcode, const std::string& left, const std::string& right,
                              char decimalPoint = '.', uint32_t precision = 0, const std::string& id = "&n")
    {
        auto node = std::make_unique<AC_BinaryFormula>(opcode, left, right, decimalPoint, precision);
        AC_BinaryFormula& result = *node;
        result.setIntermediate(false);
        collection.addElement(id, std::move(node));
        return result;
    }

    // Before the collection, whose probes write into it when they are destroyed.
    std::vector<std::string> journal;
    AC_ElementCollection collection;
};

}  // namespace

TEST(AC_BinaryFormula, DefaultsAddTwoIdsThatNoElementHas)
{
    const AC_BinaryFormula node;
    EXPECT_FALSE(node.isIntermediate());
    EXPECT_EQ(node.getDecimalPoint(), '.');
    EXPECT_EQ(node.getPrecision(), 0u);
    EXPECT_EQ(node.getOpcode(), OPCODE_ADD);
    EXPECT_EQ(node.getLeft(), "_$%&L");
    EXPECT_EQ(node.getRight(), "_$%&R");
}

TEST(AC_BinaryFormula, ANodeMadeForAnOperatorStartsAsIntermediate)
{
    const AC_BinaryFormula node(OPCODE_MULTIPLY, "&0", "&1", ',', 3);
    EXPECT_TRUE(node.isIntermediate());
    EXPECT_EQ(node.getOpcode(), OPCODE_MULTIPLY);
    EXPECT_EQ(node.getLeft(), "&0");
    EXPECT_EQ(node.getRight(), "&1");
    EXPECT_EQ(node.getDecimalPoint(), ',');
    EXPECT_EQ(node.getPrecision(), 3u);
}

TEST_F(BinaryFormulaTest, FourOperations)
{
    addFixed("a", "12");
    addFixed("b", "30");
    const struct {
        uint32_t opcode;
        double expected;
    } cases[] = {{OPCODE_ADD, 42}, {OPCODE_SUBTRACT, -18}, {OPCODE_MULTIPLY, 360}, {OPCODE_DIVIDE, 0.4}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.opcode);
        EXPECT_DOUBLE_EQ(addNode(c.opcode, "a", "b", '.', 0, "&" + std::to_string(c.opcode)).toNumber(), c.expected);
    }
}

TEST_F(BinaryFormulaTest, PrintsWithPrecisionAndDecimalPoint)
{
    addFixed("a", "12");
    addFixed("b", "30");
    addFixed("c", "-1,25");
    EXPECT_EQ(addNode(OPCODE_ADD, "a", "b", ',', 2, "&0").getResult(), "42,00");
    EXPECT_EQ(addNode(OPCODE_ADD, "a", "b", ',', 0, "&1").getResult(), "42");
    EXPECT_EQ(addNode(OPCODE_ADD, "c", "c", '.', 3, "&2").getResult(), "-2.500");
    EXPECT_EQ(addNode(OPCODE_DIVIDE, "a", "b", '.', 1, "&3").getResult(), "0.4");
}

TEST_F(BinaryFormulaTest, OneDigitOperandsCountAsZero)
{
    addFixed("two", "2");
    addFixed("three", "3");
    EXPECT_EQ(addNode(OPCODE_ADD, "two", "three").getResult(), "0");
}

TEST_F(BinaryFormulaTest, DivisionByZeroFailsWhenEvaluated)
{
    for (const char* zero : {"0", "00", "0.0", ""}) {
        SCOPED_TRACE(zero);
        AC_ElementCollection local;
        local.addElement("ten", std::make_unique<AC_FixedString>("10"));
        local.addElement("zero", std::make_unique<AC_FixedString>(zero));
        local.addElement("&q", std::make_unique<AC_BinaryFormula>(OPCODE_DIVIDE, "ten", "zero", '.', 0));
        expectFailure<KT_ERROR::render_time_error>([&] { local.getElement("&q").toNumber(); },
                                                   "division by zero in formula");
    }
}

TEST_F(BinaryFormulaTest, AnOpcodeOutsideTheArithmeticFailsAfterBothOperands)
{
    collection.addElement("l", std::make_unique<CountingElement>("10", journal, "l"));
    collection.addElement("r", std::make_unique<CountingElement>("0", journal, "r"));
    for (const uint32_t opcode : {0u, 1u, 6u}) {
        SCOPED_TRACE(opcode);
        journal.clear();
        const std::string id = "&" + std::to_string(opcode);
        collection.addElement(id, std::make_unique<AC_BinaryFormula>(opcode, "l", "r", '.', 0));
        expectFailure<KT_ERROR::internal_autocode_error>([&] { collection.getElement(id).toNumber(); },
                                                         "formula: invalid opcode");
        EXPECT_EQ(journal, (std::vector<std::string>{"l", "r"}));
    }
    journal.clear();
    collection.addElement("&d", std::make_unique<AC_BinaryFormula>(OPCODE_DIVIDE, "l", "r", '.', 0));
    EXPECT_THROW(collection.getElement("&d").toNumber(), KT_ERROR::render_time_error);
    EXPECT_EQ(journal, (std::vector<std::string>{"l", "r"}));
}

TEST_F(BinaryFormulaTest, AnIntermediateNodeComputesButDoesNotPrint)
{
    addFixed("a", "12");
    collection.addElement("&i", std::make_unique<AC_BinaryFormula>(OPCODE_ADD, "a", "a", '.', 0));
    const AC_Element& node = collection.getElement("&i");
    EXPECT_DOUBLE_EQ(node.toNumber(), 24);
    expectFailure<KT_ERROR::internal_autocode_error>([&] { node.getResult(); },
                                                     "formula: trying to get string from intermediate result");
}

TEST_F(BinaryFormulaTest, ATextThatIsNoNumberFailsAtPrintTime)
{
    addFixed("a", "abc");
    addFixed("b", "12");
    expectFailure<KT_ERROR::not_a_number>([&] { addNode(OPCODE_ADD, "b", "a").getResult(); },
                                          "could not convert to number: abc");
}

TEST_F(BinaryFormulaTest, AMissingOperandFailsWhenEvaluated)
{
    addFixed("a", "12");
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { addNode(OPCODE_ADD, "a", "Xnone").toNumber(); },
                                                 "Element id not found: Xnone");
}

TEST_F(BinaryFormulaTest, NodesNestThroughTheirOperands)
{
    addFixed("a", "10");
    addFixed("b", "20");
    collection.addElement("&0", std::make_unique<AC_BinaryFormula>(OPCODE_MULTIPLY, "a", "b", '.', 0));
    EXPECT_EQ(addNode(OPCODE_SUBTRACT, "&0", "a").getResult(), "190");
}

TEST_F(BinaryFormulaTest, VariableIfEitherOperandIs)
{
    addFixed("f", "10");
    ProbeElement* probe = nullptr;
    {
        auto element = std::make_unique<ProbeElement>("10");
        probe = element.get();
        collection.addElement("Xv", std::move(element));
    }
    EXPECT_FALSE(addNode(OPCODE_ADD, "f", "f", '.', 0, "&0").isVariable());
    EXPECT_TRUE(addNode(OPCODE_ADD, "f", "Xv", '.', 0, "&1").isVariable());
    EXPECT_TRUE(addNode(OPCODE_ADD, "Xv", "f", '.', 0, "&2").isVariable());
    probe->variable = false;
    EXPECT_FALSE(collection.getElement("&1").isVariable());
}

TEST_F(BinaryFormulaTest, UnchangedOnlyIfBothAreAndTheRightIsNotAskedAfterANo)
{
    auto left = std::make_unique<ProbeElement>("10", &journal, "L");
    auto right = std::make_unique<ProbeElement>("10", &journal, "R");
    ProbeElement& l = *left;
    ProbeElement& r = *right;
    collection.addElement("L", std::move(left));
    collection.addElement("R", std::move(right));
    const AC_BinaryFormula& node = addNode(OPCODE_ADD, "L", "R");
    EXPECT_TRUE(node.isUnchanged());
    EXPECT_EQ(journal, (std::vector<std::string>{"L isUnchanged", "R isUnchanged"}));
    journal.clear();
    l.unchanged = false;
    EXPECT_FALSE(node.isUnchanged());
    EXPECT_EQ(journal, (std::vector<std::string>{"L isUnchanged"}));
    l.unchanged = true;
    r.unchanged = false;
    EXPECT_FALSE(node.isUnchanged());
}

TEST_F(BinaryFormulaTest, DepthIsTheDeeperOperandsAnswer)
{
    addFixed("a", "10");
    collection.addElement("&0", std::make_unique<AC_BinaryFormula>(OPCODE_ADD, "a", "a", '.', 0));
    const AC_BinaryFormula& top = addNode(OPCODE_ADD, "a", "&0");
    EXPECT_EQ(top.checkDepth(0), 3u);
    EXPECT_EQ(top.checkDepth(48), 51u);
    expectFailure<KT_ERROR::internal_autocode_error>([&] { top.checkDepth(49); },
                                                     "exceeded maximum depth of autocode tree");
    expectFailure<KT_ERROR::internal_autocode_error>([&] { top.checkDepth(51); },
                                                     "exceeded maximum depth of autocode tree");
}
