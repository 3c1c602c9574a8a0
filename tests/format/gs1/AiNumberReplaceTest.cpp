#include "format/gs1/AiNumberReplace.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "format/KT_Format.h"
#include "graphics/Image.h"

using KT_FMT::ai_number_replace;
using KT_FMT::gs1Identifiers;
using KT_FMT::gs1Table;

namespace {

int rewrite(std::string& text)
{
    return ai_number_replace(text, "<FNC1>", "[");
}

const std::string fnc1 = "\\<FNC1>";

class AiNumberReplace : public ::testing::Test {
protected:
    void SetUp() override { KT_FMT::fillGS1Table(); }
};

}  // namespace

TEST(GS1Identifiers, TheTableHas122RowsInSearchOrder)
{
    ASSERT_EQ(gs1Identifiers.size(), 122u);
    EXPECT_EQ(gs1Identifiers.front().ai, "00");
    EXPECT_EQ(gs1Identifiers.back().ai, "99");
    for (size_t i = 0; i < gs1Identifiers.size(); ++i) {
        SCOPED_TRACE(gs1Identifiers[i].ai);
        EXPECT_EQ(gs1Identifiers[i].prefixOnly, gs1Identifiers[i].codeLength > gs1Identifiers[i].ai.size() &&
                                                    gs1Identifiers[i].ai.size() == 3);
    }
}

TEST(GS1Identifiers, TheMeasureRangesRunWithoutGaps)
{
    // 310 to 316, 320 to 337, 340 to 357 and 360 to 369 follow one another directly after 30.
    size_t at = 0;
    while (gs1Identifiers[at].ai != "310")
        ++at;
    EXPECT_EQ(gs1Identifiers[at - 1].ai, "30");
    for (auto [first, last] : {std::pair{310, 316}, {320, 337}, {340, 357}, {360, 369}})
        for (int n = first; n <= last; ++n, ++at) {
            SCOPED_TRACE(n);
            EXPECT_EQ(gs1Identifiers[at].ai, std::to_string(n));
            EXPECT_EQ(gs1Identifiers[at].codeLength, 4u);
            EXPECT_EQ(gs1Identifiers[at].dataLength, 6u);
            EXPECT_TRUE(gs1Identifiers[at].prefixOnly);
            EXPECT_FALSE(gs1Identifiers[at].HasVariableLength);
        }
    EXPECT_EQ(gs1Identifiers[at].ai, "37");
}

TEST(GS1Identifiers, TheOddRowsStayAsTheyAre)
{
    struct Row {
        const char* ai;
        uint32_t codeLength;
        uint32_t dataLength;
        bool prefixOnly;
        bool variable;
    };
    const Row rows[] = {
        {"242", 2, 6, false, true},    {"253", 3, 30, false, false},  {"7030", 4, 30, false, false},
        {"390", 4, 15, true, true},    {"391", 4, 18, true, false},   {"392", 4, 15, true, true},
        {"393", 4, 18, true, false},   {"402", 3, 17, false, false},  {"8020", 4, 25, false, true},
        {"8102", 4, 2, false, false},  {"22", 2, 29, false, true},    {"20", 2, 2, false, false},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.ai);
        const KT_FMT::GS1Identifier* found = nullptr;
        for (const auto& row : gs1Identifiers)
            if (row.ai == r.ai)
                found = &row;
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->codeLength, r.codeLength);
        EXPECT_EQ(found->dataLength, r.dataLength);
        EXPECT_EQ(found->prefixOnly, r.prefixOnly);
        EXPECT_EQ(found->HasVariableLength, r.variable);
    }
}

TEST(GS1Identifiers, EachFormatConstructionFillsTheProcessTable)
{
    gs1Table[1] = KT_FMT::GS1Identifier{"77", 2, 1, false, false};
    Image image(64, 8);
    KT_FMT::KT_Format format(nullptr, &image, nullptr);
    EXPECT_EQ(gs1Table[1].ai, "01");
    for (size_t i = 0; i < gs1Table.size(); ++i)
        EXPECT_EQ(gs1Table[i].ai, gs1Identifiers[i].ai);
}

TEST_F(AiNumberReplace, ElementStringsComeOutInBracketNotation)
{
    struct Row {
        std::string in;
        std::string out;
        int result;
    };
    const Row rows[] = {
        {"0101234567890128" "10ABC" + fnc1 + "21X", "[01]01234567890128[10]ABC[21]X", 0},
        {"001234567890123456" "78", "[00]123456789012345678", 0},
        {"3103000150", "[3103]000150", 0},
        {"0101234567890128", "[01]01234567890128", 0},
        {"0101234567890128" "17250101" "10AB12", "[01]01234567890128[17]250101[10]AB12", 0},
        {"39221234", "[3922]1234", 0},
        {"10A" + fnc1 + "21B" + fnc1 + "30C", "[10]A[21]B[30]C", 0},
        {"", "[", 1},
        {"0112345", "[01]12345", 5},
        {"0112345678901234" "00123456789012345678", "[01]12345678901234[00123456789012345678", 1},
        {"0101234567890128" "10ABC" + fnc1, "[01]01234567890128[10]ABC[", 5},
        {"310", "[310", 2},
        {"0112345678901234" + fnc1, "[01]12345678901234[[", 1},
        {"X", "[X", 1},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.in);
        std::string text = r.in;
        EXPECT_EQ(rewrite(text), r.result);
        EXPECT_EQ(text, r.out);
    }
}

TEST_F(AiNumberReplace, AVariableFieldHoldsOneByteLessThanItsLength)
{
    struct Row {
        const char* ai;
        size_t dataLength;
    };
    for (const Row& r : {Row{"10", 20}, Row{"21", 20}, Row{"22", 29}, Row{"240", 30}, Row{"8020", 25},
                         Row{"3900", 15}, Row{"99", 30}}) {
        SCOPED_TRACE(r.ai);
        std::string fits = r.ai + std::string(r.dataLength - 1, '7');
        EXPECT_EQ(rewrite(fits), 0);
        std::string full = r.ai + std::string(r.dataLength, '7');
        EXPECT_EQ(rewrite(full), 3);
    }
}

TEST_F(AiNumberReplace, IdentifierZeroZeroIsFoundOnlyAtTheStart)
{
    std::string first = "00" + std::string(18, '1');
    EXPECT_EQ(rewrite(first), 0);
    std::string later = "0212345678901234" "00" + std::string(18, '1');
    EXPECT_EQ(rewrite(later), 1);
}

TEST_F(AiNumberReplace, ASeparatorAtTheVeryStartIsOutOfRange)
{
    std::string text = "<FNC1>0101234567890128";
    EXPECT_THROW(rewrite(text), std::out_of_range);
}

TEST_F(AiNumberReplace, SeparatorAndBracketAreTheCallersChoice)
{
    std::string text = "10A|GS21B";
    // The bracket takes the byte before the separator with it, but only "[" closes a variable field.
    EXPECT_EQ(ai_number_replace(text, "GS", "("), 0);
    EXPECT_EQ(text, "[10]A(21B");
}
