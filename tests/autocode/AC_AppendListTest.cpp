#include "autocode/AC_AppendList.h"

#include <gtest/gtest.h>

#include <memory>

#include "autocode/AC_ElementCollection.h"
#include "autocode/AC_FixedString.h"
#include "errors/KT_Error.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

namespace {

Padding padding(Padding::Alignment alignment, char fill, uint32_t width)
{
    Padding result;
    result.alignment = alignment;
    result.padCharacter = fill;
    result.width = width;
    return result;
}

// Adds a list with the given operands to the collection and hands it back.
AC_AppendList& addList(AC_ElementCollection& collection, const std::string& id, std::vector<std::string> operands,
                       const Padding& listPadding = Padding())
{
    auto list = std::make_unique<AC_AppendList>(listPadding);
    AC_AppendList& result = *list;
    for (std::string& operand : operands)
        result.getOperands().push_back(std::move(operand));
    collection.addElement(id, std::move(list));
    return result;
}

ProbeElement& addProbe(AC_ElementCollection& collection, const std::string& id, const std::string& text,
                       std::vector<std::string>* journal = nullptr)
{
    auto probe = std::make_unique<ProbeElement>(text, journal, id);
    ProbeElement& result = *probe;
    collection.addElement(id, std::move(probe));
    return result;
}

}  // namespace

TEST(AC_AppendList, DefaultPaddingIsBlankZeroNone)
{
    const AC_AppendList list;
    EXPECT_EQ(list.getPadding().padCharacter, ' ');
    EXPECT_EQ(list.getPadding().width, 0u);
    EXPECT_EQ(list.getPadding().alignment, Padding::ALIGN_NONE);
    EXPECT_TRUE(list.getOperands().empty());
}

TEST(AC_AppendList, EmptyListYieldsTheFillAlone)
{
    AC_ElementCollection collection;
    const AC_AppendList& list = addList(collection, "Fempty", {}, padding(Padding::ALIGN_LEFT, '*', 3));
    EXPECT_EQ(list.getResult(), "***");
}

TEST(AC_AppendList, JoinsTheOperandsInOrderAndPadsTheWhole)
{
    AC_ElementCollection collection;
    collection.addElement("&0", std::make_unique<AC_FixedString>("01"));
    addProbe(collection, "XGTIN", "0123");
    collection.addElement("&1", std::make_unique<AC_FixedString>("\\<FNC1>"));
    const AC_AppendList& list =
        addList(collection, "Fcode", {"&0", "XGTIN", "&1"}, padding(Padding::ALIGN_RIGHT, '.', 10));
    // The escape shows as one character: 2 + 4 + 1 shown, so three dots.
    EXPECT_EQ(list.getResult(), "010123\\<FNC1>...");
}

TEST(AC_AppendList, OperandsAddedAtTheFrontComeFirst)
{
    AC_ElementCollection collection;
    addProbe(collection, "Xa", "a");
    addProbe(collection, "Xb", "b");
    AC_AppendList& list = addList(collection, "Flist", {"Xb"});
    list.getOperands().push_front("Xa");
    EXPECT_EQ(list.getResult(), "ab");
}

TEST(AC_AppendList, ResultFollowsTheLeavesWithoutCaching)
{
    AC_ElementCollection collection;
    ProbeElement& leaf = addProbe(collection, "Xa", "one");
    const AC_AppendList& list = addList(collection, "Flist", {"Xa"});
    EXPECT_EQ(list.getResult(), "one");
    leaf.text = "two";
    EXPECT_EQ(list.getResult(), "two");
}

TEST(AC_AppendList, UnknownOperandFailsOnlyWhenTheResultIsAskedFor)
{
    AC_ElementCollection collection;
    const AC_AppendList& list = addList(collection, "Flist", {"XGTIN"});
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { list.getResult(); }, "Element id not found: XGTIN");
    addProbe(collection, "XGTIN", "4006");
    EXPECT_EQ(list.getResult(), "4006");
}

TEST(AC_AppendList, ToNumberParsesTheJoinedText)
{
    AC_ElementCollection collection;
    addProbe(collection, "Xa", "1");
    addProbe(collection, "Xb", "2");
    const AC_AppendList& list = addList(collection, "Flist", {"Xa", "Xb"});
    // Each digit alone would count as zero; joined they are twelve.
    EXPECT_DOUBLE_EQ(list.toNumber(), 12);
}

TEST(AC_AppendList, IsVariableWhenAnyOperandIs)
{
    AC_ElementCollection collection;
    collection.addElement("&0", std::make_unique<AC_FixedString>("a"));
    collection.addElement("&1", std::make_unique<AC_FixedString>("b"));
    addProbe(collection, "Xv", "v");
    EXPECT_FALSE(addList(collection, "Fempty", {}).isVariable());
    EXPECT_FALSE(addList(collection, "Ffixed", {"&0", "&1"}).isVariable());
    EXPECT_TRUE(addList(collection, "Fmixed", {"&0", "Xv", "&1"}).isVariable());
    EXPECT_FALSE(addList(collection, "Fnested", {"Ffixed", "&0"}).isVariable());
}

TEST(AC_AppendList, IsVariableStopsAtTheFirstVariableOperand)
{
    std::vector<std::string> journal;  // outlives the elements that write into it
    AC_ElementCollection collection;
    addProbe(collection, "Xv", "v", &journal);
    const AC_AppendList& list = addList(collection, "Flist", {"Xv", "Xmissing"});
    EXPECT_TRUE(list.isVariable());
    EXPECT_EQ(journal, std::vector<std::string>{"Xv isVariable"});
}

TEST(AC_AppendList, IsUnchangedOnlyWhenAllOperandsAre)
{
    AC_ElementCollection collection;
    addProbe(collection, "Xa", "a");
    ProbeElement& b = addProbe(collection, "Xb", "b");
    const AC_AppendList& list = addList(collection, "Flist", {"Xa", "Xb"});
    EXPECT_TRUE(addList(collection, "Fempty", {}).isUnchanged());
    EXPECT_TRUE(list.isUnchanged());
    b.unchanged = false;
    EXPECT_FALSE(list.isUnchanged());
}

TEST(AC_AppendList, IsUnchangedStopsAtTheFirstChangedOperand)
{
    std::vector<std::string> journal;  // outlives the elements that write into it
    AC_ElementCollection collection;
    addProbe(collection, "Xa", "a", &journal).unchanged = false;
    const AC_AppendList& list = addList(collection, "Flist", {"Xa", "Xmissing"});
    EXPECT_FALSE(list.isUnchanged());
    EXPECT_EQ(journal, std::vector<std::string>{"Xa isUnchanged"});
}

TEST(AC_AppendList, CheckDepthReturnsTheDeepestOperandAnswer)
{
    AC_ElementCollection collection;
    collection.addElement("&0", std::make_unique<AC_FixedString>("a"));
    addList(collection, "Finner", {"&0"});
    const AC_AppendList& outer = addList(collection, "Fouter", {"&0", "Finner"});
    EXPECT_EQ(addList(collection, "Fempty", {}).checkDepth(7), 0u);
    EXPECT_EQ(outer.checkDepth(0), 3u);  // outer 0, inner 1, its leaf 2 answers 3
    EXPECT_EQ(outer.checkDepth(48), 51u);
}

TEST(AC_AppendList, CheckDepthFailsBeforeDescendingBeyondTheLimit)
{
    AC_ElementCollection collection;
    collection.addElement("&0", std::make_unique<AC_FixedString>("a"));
    const AC_AppendList& list = addList(collection, "Flist", {"&0", "Xmissing"});
    const AC_AppendList& empty = addList(collection, "Fempty", {});
    EXPECT_EQ(empty.checkDepth(50), 0u);
    for (const AC_AppendList* tested : {&list, &empty}) {
        expectFailure<KT_ERROR::internal_autocode_error>([&] { tested->checkDepth(51); },
                                                          "exceeded maximum depth of autocode tree");
    }
    // At 50 the list itself passes, and its leaf at 51 fails.
    expectFailure<KT_ERROR::internal_autocode_error>([&] { list.checkDepth(50); },
                                                      "exceeded maximum depth of autocode tree");
}

TEST(AC_AppendList, CheckDepthCatchesAListThatContainsItself)
{
    AC_ElementCollection collection;
    const AC_AppendList& list = addList(collection, "Floop", {"Floop"});
    expectFailure<KT_ERROR::internal_autocode_error>([&] { list.checkDepth(0); },
                                                      "exceeded maximum depth of autocode tree");
}
