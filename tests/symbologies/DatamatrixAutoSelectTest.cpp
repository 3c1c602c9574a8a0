#include "symbologies/DatamatrixAutoSelect.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errors/KT_Error.h"
#include "symbologies/DatamatrixC40Tables.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/WithinTime.h"

namespace {

using Words = std::vector<uint8_t>;
using Tokens = std::vector<int32_t>;

constexpr int32_t FNC1 = -24;
constexpr int32_t RP = -22;
constexpr uint32_t automatic = 3;

Tokens tokensOf(const std::string& text)
{
    Tokens tokens;
    for (const char c : text)
        tokens.push_back(static_cast<unsigned char>(c));
    return tokens;
}

Tokens operator+(Tokens left, const Tokens& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Words encode(const Tokens& tokens, uint32_t capacity = automatic, int32_t* result = nullptr)
{
    DatamatrixAutoSelect encoder;
    Words words{99, 99};
    const int32_t returned = encoder.encode(tokens, words, capacity);
    if (result != nullptr)
        *result = returned;
    return words;
}

// Reaches the steps that the look-ahead never chooses.
class Probe : public DatamatrixAutoSelect {
public:
    using DatamatrixAutoSelect::begin;
    using DatamatrixAutoSelect::encodeC40;
    using DatamatrixAutoSelect::encodeEDFTriple;
    using DatamatrixAutoSelect::flushB256;
    using DatamatrixAutoSelect::lookAhead;
    using DatamatrixAutoSelect::State;
    using DatamatrixAutoSelect::stepEdifact;
};

const std::string upper24 = "ABCDEFGHIJKLMNOPQRSTUVWX";

}  // namespace

TEST(DatamatrixAutoSelect, KnownContentsGiveTheCodewordsWorkedOutByHand)
{
    struct Row {
        const char* name;
        Tokens tokens;
        Words words;
    };
    // C40 ABC: 1600*14 + 40*15 + 16 + 1 = 23017 = 89*256 + 233. Base 256: the length 8 at position 2 is
    // 8 + 298 % 255 + 1 = 52, 'A' at position 3 is 65 + 447 % 255 + 1 - 256 = 2. X12 "**>": 1600 + 40 + 2 + 1.
    const Row rows[] = {
        {"digits", tokensOf("123456"), {142, 164, 186}},
        {"one letter", tokensOf("A"), {66}},
        {"one lower case letter", tokensOf("a"), {98}},
        {"upper half byte", {128}, {235, 1}},
        {"byte 255 in ASCII", {255}, {235, 128}},
        {"control tokens", {FNC1, RP, -20, -19}, {232, 234, 236, 237}},
        {"packed token", {(4 << 8) | 241}, {241, 4}},
        {"packed token with the top bit set", {static_cast<int32_t>(0xFEFE1FE9u)}, {233, 31, 254, 254}},
        {"Base 256", tokensOf("ABCDEFGH"), {231, 52, 2, 153, 47, 198, 93, 243, 138, 32}},
        {"C40 latching twice", tokensOf(upper24),
         {230, 89, 233, 254, 230, 109, 36, 128, 95, 147, 154, 166, 213, 186, 16, 205, 75, 224, 134}},
        {"Text", tokensOf("abcdefghijklmnopqrstuvwxyz"),
         {239, 89, 233, 254, 239, 109, 36, 128, 95, 147, 154, 166, 213, 186, 16, 205, 75, 224, 134, 254, 122, 123}},
        {"X12", tokensOf("**>>**>>**>>**>>**>>**"),
         {238, 6, 107, 254, 238, 12, 170, 12, 210, 6, 147, 6, 107, 12, 170, 12, 210, 254, 43}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(encode(row.tokens), row.words);
    }
}

TEST(DatamatrixAutoSelect, DigitsGoInPairsAndAnOddLastDigitStandsAlone)
{
    struct Row {
        const char* digits;
        Words words;
    };
    const Row rows[] = {{"00", {130}}, {"99", {229}}, {"12345", {142, 164, 54}}, {"1", {50}}, {"1A2", {50, 66, 51}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.digits);
        EXPECT_EQ(encode(tokensOf(row.digits)), row.words);
    }
}

TEST(DatamatrixAutoSelect, TextThatWouldFavourEdifactLatchesBase256)
{
    // 32 to 94 cost EDIFACT 0.75 each: its comparison wins, and answers Base 256.
    EXPECT_EQ(encode(tokensOf("A.B.C.D.E.F.G.H.")),
              (Words{231, 60, 2, 133, 46, 176, 91, 219, 135, 6, 179, 50, 223, 93, 11, 136, 55, 179}));
}

TEST(DatamatrixAutoSelect, AByte255InsideABase256BlockStopsTheEncodingAndWhatWasWrittenStands)
{
    int32_t result = 0;
    const Words words = encode(tokensOf("\xe4\xf6\xfc\xff\xe4\xf6\xfc"), automatic, &result);
    EXPECT_EQ(result, -1);
    // 231, the length 7, then the three bytes before the 255.
    EXPECT_EQ(words, (Words{231, 51, 165, 77, 232}));
    EXPECT_EQ(encode(tokensOf("\xe4\xf6\xfc\xfe\xe4\xf6\xfc"), automatic, &result).size(), 9u);
    EXPECT_EQ(result, 0);
}

TEST(DatamatrixAutoSelect, ABase256LengthOf250OrMoreTakesTwoBytes)
{
    const Words words = encode(tokensOf(std::string(300, '\xe4')));
    ASSERT_EQ(words.size(), 303u);
    // 300 / 250 + 249 = 250 at position 2, 300 % 250 = 50 at position 3, each randomised.
    EXPECT_EQ((Words{words[0], words[1], words[2]}), (Words{231, 38, 243}));
}

TEST(DatamatrixAutoSelect, ABase256BlockEndsAfter1555TokensAndTheNextOneBegins)
{
    const Words words = encode(tokensOf(std::string(1600, '\xe4')), 1558);
    ASSERT_EQ(words.size(), 3u + 1555 + 2 + 45);
    // 1555 / 250 + 249 = 255 and 1555 % 250 = 55, randomised at positions 2 and 3.
    EXPECT_EQ((Words{words[0], words[1], words[2]}), (Words{231, 43, 248}));
    EXPECT_EQ(words[1558], 231);
}

TEST(DatamatrixAutoSelect, UpperCaseDataLatchesC40With230AtTheStart)
{
    const Words words = encode(tokensOf(upper24), 22);
    EXPECT_EQ(words, (Words{230, 89, 233, 109, 36, 128, 95, 147, 154, 166, 213, 186, 16, 205, 75, 224, 134, 254}));
}

TEST(DatamatrixAutoSelect, ARunIsClosedAtTheEndOnlyWhileTheCapacityHasRoom)
{
    // With the capacity 3 of automatic size the count is past it, and the run stays open.
    EXPECT_EQ(encode(tokensOf(upper24), 22).back(), 254);
    EXPECT_EQ(encode(tokensOf(upper24), 18).back(), 254);
    EXPECT_EQ(encode(tokensOf(upper24), 17).back(), 134);
    EXPECT_EQ(encode(tokensOf(upper24), automatic).back(), 134);
}

TEST(DatamatrixAutoSelect, AControlTokenInC40IsWrittenAsOneAnd27)
{
    const Tokens tokens = tokensOf("ABCDEFGHIJKL") + Tokens{FNC1} + tokensOf("MNOPQRSTUVWX");
    // FNC1, M, N is the triple 1, 27, 26: 1600 + 1080 + 26 + 1 = 2707 = 10*256 + 147.
    EXPECT_EQ(encode(tokens, 1558), (Words{230, 89, 233, 109, 36, 128, 95, 147, 154, 10, 147, 173, 62, 192, 121,
                                           211, 180, 254, 88, 89}));
}

TEST(DatamatrixAutoSelect, AControlTokenEndsAnX12Run)
{
    const std::string run = "**>>**>>**>>**>>**>>**>>";
    const Tokens tokens = tokensOf(run) + Tokens{FNC1} + tokensOf(run);
    const Words triples{6, 107, 12, 170, 12, 210, 6, 147, 6, 107, 12, 170, 12, 210, 6, 147};
    Words expected{238};
    expected.insert(expected.end(), triples.begin(), triples.end());
    expected.insert(expected.end(), {254, 232, 238});
    expected.insert(expected.end(), triples.begin(), triples.end());
    expected.push_back(254);
    EXPECT_EQ(encode(tokens, 1558), expected);
}

TEST(DatamatrixAutoSelect, AnUpperHalfByteInC40IsShiftedAndItsLowHalfFollows)
{
    const Tokens tokens = tokensOf("ABCDEFGHIJ\xc4KLMNOPQRST");
    // J, then 1 and 30 for the shift: 1600*23 + 40 + 30 + 1 = 144*256 + 7; then 0xC4 - 128 = 'D'.
    EXPECT_EQ(encode(tokens, 1558),
              (Words{230, 89, 233, 109, 36, 128, 95, 144, 7, 110, 26, 166, 213, 186, 16, 254, 84, 85}));
}

TEST(DatamatrixAutoSelect, X12AndC40AtEqualCostAreSettledByTheNextCharacterTheyDontShare)
{
    struct Row {
        std::string text;
        uint8_t latch;
    };
    const Row rows[] = {{"ABCDEFGHIJKLMNOPQRSTUVWXYZ*", 238}, {"ABCDEFGHIJKLMNOPQRSTUVWXYZ>", 238},
                        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ\r", 238}, {"ABCDEFGHIJKLMNOPQRSTUVWXYZa", 230},
                        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", 230}, {"ABCDEFGHIJKLMNOPQRSTUVWXYZ 1*", 238}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(encode(tokensOf(row.text), 1558).front(), row.latch);
    }
}

TEST(DatamatrixAutoSelect, ShortDataAtEqualCostsFallsToTheFirstModeOfTheClosingOrder)
{
    // Six capitals: C40 and X12 both round to 5, below ASCII's 6, and X12 comes first.
    EXPECT_EQ(encode(tokensOf("ABCDEF"), 1558), (Words{238, 89, 233, 109, 36, 254}));
    // Three capitals: ASCII rounds to 3 as C40 and X12 do, and comes first of all.
    EXPECT_EQ(encode(tokensOf("ABC"), 1558), (Words{66, 67, 68}));
}

TEST(DatamatrixAutoSelect, ACapacityGrowsToTheFirstSquareSizeThatHoldsIt)
{
    // Grown to 5 when the count reaches 4, the capacity leaves nothing free for the triple after the second
    // latch; without the growth the free count would have wrapped there and the triple been written.
    EXPECT_EQ(encode(tokensOf("**>**>**>**>**>"), 4),
              (Words{238, 6, 107, 254, 238, 254, 238, 6, 107, 6, 107, 6, 107, 6, 107}));
}

TEST(DatamatrixAutoSelect, ContentOnWhichTheLookAheadLatchesForEverFailsWithinBoundedTime)
{
    struct Row {
        const char* name;
        Tokens tokens;
        uint32_t capacity;
        const char* message;
    };
    const Row rows[] = {
        {"A<RP>AAAAAA", tokensOf("A") + Tokens{RP} + tokensOf("AAAAAA"), automatic,
         "[Expected] datamatrix: auto-select makes no progress at position 0"},
        {"A<RP>AAAAAA in 144 x 144", tokensOf("A") + Tokens{RP} + tokensOf("AAAAAA"), 1558,
         "[Expected] datamatrix: auto-select makes no progress at position 0"},
        {"A<ECI(000026)>AAAAAA", tokensOf("A") + Tokens{(27 << 8) | 241} + tokensOf("AAAAAA"), automatic,
         "[Expected] datamatrix: auto-select makes no progress at position 0"},
        {"carriage returns after (", tokensOf("(AAAA\r\r\rAAAAAA"), automatic,
         "[Expected] datamatrix: auto-select makes no progress at position 0"},
        {"further on", tokensOf("12(AAAA\r\r\rAAAAAA"), 22,
         "[Expected] datamatrix: auto-select makes no progress at position 2"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(failureWithin<KT_ERROR::internal_autocode_error>(10, [&] { encode(row.tokens, row.capacity); }),
                  row.message);
    }
}

TEST(DatamatrixAutoSelect, APassThatFailsBeforeTheFreeCountWrapsIsTriedAgainAndThenProgresses)
{
    // After ABC the count is 3 and nothing is free: unlatch, latch again, and the run goes on.
    EXPECT_EQ(encode(tokensOf("ABCDEFGHI"), automatic), (Words{238, 89, 233, 254, 238, 109, 36, 128, 95}));
}

TEST(DatamatrixAutoSelect, EveryTokenInABase256BlockOfItsOwn)
{
    DatamatrixAutoSelect encoder;
    Words words;
    // 'A' at position 3 and 'B' at position 6, each behind 231 and its length 1.
    EXPECT_EQ(encoder.encodeAllB256(tokensOf("AB"), words, automatic), 0);
    EXPECT_EQ(words, (Words{231, 45, 2, 231, 237, 196}));
    EXPECT_EQ(encoder.encodeAllB256(tokensOf("A\xff"), words, automatic), -1);
    EXPECT_EQ(words, (Words{231, 45, 2, 231, 237}));
}

TEST(DatamatrixAutoSelect, EdifactIsLeftAtOnceBecauseTheLookAheadNeverAnswersIt)
{
    Probe probe;
    const Tokens tokens = tokensOf("ABCDEFGH");
    Words words;
    probe.begin(tokens, words);
    EXPECT_EQ(probe.lookAhead(0, DatamatrixAutoSelect::EDIFACT), DatamatrixAutoSelect::BASE256);
    Probe::State state;
    state.mode = DatamatrixAutoSelect::EDIFACT;
    state.capacity = 1558;
    probe.stepEdifact(state);
    EXPECT_EQ(words, (Words{124}));
    EXPECT_EQ(state.mode, DatamatrixAutoSelect::ASCII);
    EXPECT_EQ(state.pos, 0u);
}

TEST(DatamatrixAutoSelect, AnEdifactTriplePacksTheLowSixBitsOfFourTokens)
{
    Probe probe;
    const Tokens tokens = tokensOf("ABCDE");
    Words words;
    probe.begin(tokens, words);
    // 1, 2, 3, 4 in six bits each: 0x0420C4.
    EXPECT_EQ(probe.encodeEDFTriple(0), 4u);
    EXPECT_EQ(words, (Words{0x04, 0x20, 0xC4}));
    EXPECT_EQ(probe.encodeEDFTriple(2), 0u);
    EXPECT_EQ(words.size(), 3u);
}

TEST(DatamatrixAutoSelect, InternalMisusesFailWithTheirTexts)
{
    Probe probe;
    const Tokens tokens = tokensOf("ABC");
    Words words;
    probe.begin(tokens, words);
    expectFailure<KT_ERROR::internal_autocode_error>(
        [&] { probe.encodeC40(0, 10, DatamatrixAutoSelect::EDIFACT); },
        "datamatrix: encodeC40 was called with illegal encoding target:4");
    expectFailure<KT_ERROR::internal_autocode_error>([&] { probe.flushB256(0, 0); },
                                                     "datamatrix: empty B256 block found");
    expectFailure<KT_ERROR::internal_autocode_error>([&] { probe.flushB256(0, 1556); },
                                                     "datamatrix: B256 block too large");
}

TEST(DatamatrixAutoSelect, TheC40TextAndX12TablesHoldTheValuesOfEachCharacterClass)
{
    struct Row {
        const C40Table* table;
        const char* name;
        int c;
        C40Values values;
    };
    const Row rows[] = {
        {&c40Values, "C40", 'A', {1, 14, 0}},   {&c40Values, "C40", 'Z', {1, 39, 0}},
        {&c40Values, "C40", '0', {1, 4, 0}},    {&c40Values, "C40", ' ', {1, 3, 0}},
        {&c40Values, "C40", 5, {2, 0, 5}},      {&c40Values, "C40", '!', {2, 1, 0}},
        {&c40Values, "C40", '/', {2, 1, 14}},   {&c40Values, "C40", ':', {2, 1, 15}},
        {&c40Values, "C40", '@', {2, 1, 21}},   {&c40Values, "C40", '[', {2, 1, 22}},
        {&c40Values, "C40", '_', {2, 1, 26}},   {&c40Values, "C40", '`', {2, 2, 0}},
        {&c40Values, "C40", 'a', {2, 2, 1}},    {&c40Values, "C40", 127, {2, 2, 31}},
        {&textValues, "Text", 'a', {1, 14, 0}}, {&textValues, "Text", 'z', {1, 39, 0}},
        {&textValues, "Text", '9', {1, 13, 0}}, {&textValues, "Text", ' ', {1, 3, 0}},
        {&textValues, "Text", 31, {2, 0, 31}},  {&textValues, "Text", '!', {2, 1, 0}},
        {&textValues, "Text", '[', {2, 1, 22}}, {&textValues, "Text", 'A', {2, 2, 1}},
        {&textValues, "Text", '`', {2, 2, 0}},  {&textValues, "Text", '{', {2, 2, 27}},
        {&x12Values, "X12", '\r', {1, 0, 0}},   {&x12Values, "X12", '*', {1, 1, 0}},
        {&x12Values, "X12", '>', {1, 2, 0}},    {&x12Values, "X12", ' ', {1, 3, 0}},
        {&x12Values, "X12", '0', {1, 4, 0}},    {&x12Values, "X12", 'A', {1, 14, 0}},
        {&x12Values, "X12", 'a', {0, 0, 0}},    {&x12Values, "X12", '!', {0, 0, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.name << " " << row.c);
        const C40Values& values = (*row.table)[static_cast<size_t>(row.c)];
        EXPECT_EQ(values.count, row.values.count);
        EXPECT_EQ(values.first, row.values.first);
        EXPECT_EQ(values.second, row.values.second);
    }
}
