#include "format/ContentEscapeReader.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "errors/KT_Error.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_FMT;

namespace KT_FMT {

void PrintTo(const ContentItem& item, std::ostream* out) { *out << "{" << item.type << ", " << item.value << "}"; }

}  // namespace KT_FMT

namespace {

const std::string x29(29, 'x');
const std::string x30(30, 'x');

// A hook that knows nothing: every unknown sequence vanishes.
void dropEverything(std::string, std::string, ContentItem&) {}

std::string decode(const std::string& content)
{
    ContentEscapeReader reader(dropEverything);
    reader.setContent(content);
    return toBytes(reader);
}

std::vector<ContentItem> items(const std::string& content, ContentEscapeReader::SequenceHook hook,
                               ContentEscapeReader::ItemFilter filter = nullptr)
{
    ContentEscapeReader reader(std::move(hook), std::move(filter));
    reader.setContent(content);
    return toTokens(reader);
}

// Stands in for a consumer's vocabulary: FNC1 becomes a symbol control, UNIC a code point.
void symbolHook(std::string id, std::string parm, ContentItem& item)
{
    if (id == "FNC1")
        item = {ITEM_CODE128, 302};
    if (id == "UNIC")
        item = {ITEM_UNICODE, static_cast<uint32_t>(std::stoul(parm, nullptr, 16))};
}

}  // namespace

TEST(ContentEscapeReader, ItemTypesHaveTheirNumbers)
{
    EXPECT_EQ(ITEM_BYTE, 0u);
    EXPECT_EQ(ITEM_NONE, 1u);
    EXPECT_EQ(ITEM_UNICODE, 2u);
    EXPECT_EQ(ITEM_CODE128, 3u);
    EXPECT_EQ(ITEM_DATAMATRIX, 4u);
}

TEST(ContentEscapeReader, DecodesPlainBytesAndItsOwnSequences)
{
    const struct {
        std::string content;
        std::string bytes;
    } cases[] = {
        {"", ""},
        {"abc", "abc"},
        {"a\\\\b", "a\\b"},
        {"\\\\\\\\", "\\\\"},
        {"\\<VT>", "\x0b"},
        {"\\<ESC>", "\x1b"},
        {"a\\<VT>b\\<ESC>c", "a\x0b" "b\x1b" "c"},
        {"\\<ASC(65)>", "A"},
        {"\\<ASC(255)>", "\xff"},
        {"\\<ASC(0)>", std::string(1, '\0')},
        {"\\<ASC(x)>", std::string(1, '\0')},  // the C rule: no digits, no value
        {"\\<ASC()>", std::string(1, '\0')},
        {"\\<ASC>", std::string(1, '\0')},
        {"\\<ASC(65x)>", "A"},
        {"\\<ASC( 66)>", "B"},
        {"\\<VT(1)>", "\x0b"},  // parameters of a sequence without parameters are read and ignored
        {"\\<ESC(whatever)>", "\x1b"},
        {"\\<vt>", ""},  // case counts: this one goes to the hook
        {"a\\<" + x29 + ">b", "ab"},
        {"\\<ASC(" + std::string(47, '0') + "67)>", "C"},
        {"\\<X(a(b>c)>", ""},
        {"\xe4\x80\x0b\x1b", "\xe4\x80\x0b\x1b"},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.content);
        EXPECT_EQ(decode(c.content), c.bytes);
    }
}

TEST(ContentEscapeReader, EveryFailureIsABadContentSequence)
{
    const struct {
        std::string content;
        std::string message;
    } cases[] = {
        {"abc\\", "reached end of content while parsing escape sequence: abc\\"},
        {"\\", "reached end of content while parsing escape sequence: \\"},
        {"a\\q", "illegal content escape sequence, expected '\\' or '<' but got 'q'"},
        {"\\>", "illegal content escape sequence, expected '\\' or '<' but got '>'"},
        {"\\<" + x30 + ">", "missed closing '>' after reading 30  characters of id"},
        {"\\<" + x30, "missed closing '>' after reading 30  characters of id"},
        {"\\<" + x29, "reached end of content while parsing escape sequence: \\<" + x29},
        {"\\<ASC(" + std::string(50, '1') + ")>", "missed closing ')' after reading 50  characters of parameters"},
        {"\\<ASC(" + std::string(49, '1'), "reached end of content while parsing escape sequence: \\<ASC(" +
                                               std::string(49, '1')},
        {"\\<ASC(65)x", "missed closing '>' after content escape sequence \\<ASC(65)"},
        {"\\<FNC1()) >", "missed closing '>' after content escape sequence \\<FNC1()"},
        {"\\<ASC(256)>", "illegal parameter to \\<ASC()> sequence: 256"},
        {"\\<ASC(-1)>", "illegal parameter to \\<ASC()> sequence: -1"},
        {"\\<ASC(99999999999999999999)>", "illegal parameter to \\<ASC()> sequence: 99999999999999999999"},
        {"\\<VT", "reached end of content while parsing escape sequence: \\<VT"},
        {"x\\<", "reached end of content while parsing escape sequence: x\\<"},
        {"\\<ASC(1", "reached end of content while parsing escape sequence: \\<ASC(1"},
        {"\\<ASC(1)", "reached end of content while parsing escape sequence: \\<ASC(1)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.content);
        expectFailure<KT_ERROR::bad_content_sequence>([&] { decode(c.content); }, c.message);
    }
}

TEST(ContentEscapeReader, FreshReaderHasNothing)
{
    ContentEscapeReader reader(dropEverything);
    EXPECT_FALSE(reader.hasNext());
    EXPECT_EQ(reader.getContent(), "");
    EXPECT_EQ(reader.next(), (ContentItem{ITEM_NONE, 0}));
}

TEST(ContentEscapeReader, NextStaysAtTheEnd)
{
    ContentEscapeReader reader(dropEverything);
    reader.setContent("a");
    EXPECT_TRUE(reader.hasNext());
    EXPECT_EQ(reader.next(), (ContentItem{ITEM_BYTE, 'a'}));
    EXPECT_FALSE(reader.hasNext());
    EXPECT_EQ(reader.next(), (ContentItem{ITEM_NONE, 0}));
    EXPECT_EQ(reader.next(), (ContentItem{ITEM_NONE, 0}));
    EXPECT_FALSE(reader.hasNext());
}

TEST(ContentEscapeReader, ReadsOneItemAhead)
{
    ContentEscapeReader reader(dropEverything);
    reader.setContent("a\\q");
    EXPECT_TRUE(reader.hasNext());
    // Handing out the 'a' reads the broken escape behind it.
    expectFailure<KT_ERROR::bad_content_sequence>(
        [&] { reader.next(); }, "illegal content escape sequence, expected '\\' or '<' but got 'q'");
    expectFailure<KT_ERROR::bad_content_sequence>(
        [&] { reader.setContent("\\q"); }, "illegal content escape sequence, expected '\\' or '<' but got 'q'");
}

TEST(ContentEscapeReader, HookGetsIdAndParameterWithTheItemPreset)
{
    std::vector<std::string> calls;
    const auto hook = [&](std::string id, std::string parm, ContentItem& item) {
        calls.push_back(id + "|" + parm + "|" + std::to_string(item.type) + "|" + std::to_string(item.value));
    };
    items("\\<FNC1>\\<UNIC(20ac)>\\<>\\<X()>\\<Y(a(b>c)>\\<VT>\\<ESC>\\<ASC(1)>", hook);
    EXPECT_EQ(calls, (std::vector<std::string>{"FNC1||1|0", "UNIC|20ac|1|0", "||1|0", "X||1|0", "Y|a(b>c|1|0"}));
}

TEST(ContentEscapeReader, HookGivesMeaningToItsSequences)
{
    EXPECT_EQ(items("a\\<FNC1>\\<UNIC(20ac)>b", symbolHook),
              (std::vector<ContentItem>{{ITEM_BYTE, 'a'}, {ITEM_CODE128, 302}, {ITEM_UNICODE, 0x20AC}, {ITEM_BYTE, 'b'}}));
}

TEST(ContentEscapeReader, SequenceDroppedByTheHookLeavesNoTrace)
{
    EXPECT_EQ(items("a\\<FNC2>b\\<FNC3>\\<FNC4>c", symbolHook),
              (std::vector<ContentItem>{{ITEM_BYTE, 'a'}, {ITEM_BYTE, 'b'}, {ITEM_BYTE, 'c'}}));
}

TEST(ContentEscapeReader, DroppedSequenceAtTheEndEndsTheContent)
{
    ContentEscapeReader reader(dropEverything);
    reader.setContent("ab\\<FNC1>");
    EXPECT_EQ(reader.next(), (ContentItem{ITEM_BYTE, 'a'}));
    EXPECT_TRUE(reader.hasNext());
    EXPECT_EQ(reader.next(), (ContentItem{ITEM_BYTE, 'b'}));
    EXPECT_FALSE(reader.hasNext());

    reader = ContentEscapeReader(dropEverything);
    reader.setContent("\\<FNC1>\\<FNC1>");
    EXPECT_FALSE(reader.hasNext());
}

TEST(ContentEscapeReader, WithoutAHookUnknownSequencesVanish)
{
    EXPECT_EQ(items("a\\<FNC1>b", nullptr), (std::vector<ContentItem>{{ITEM_BYTE, 'a'}, {ITEM_BYTE, 'b'}}));
}

TEST(ContentEscapeReader, FilterRewritesEveryFinishedItem)
{
    // Stands in for a text consumer: the byte 128 is the euro sign of the Windows code page.
    const auto euro = [](ContentItem& item) {
        if (item.type == ITEM_BYTE && item.value == 128)
            item = {ITEM_UNICODE, 0x20AC};
    };
    EXPECT_EQ(items("\\<ASC(128)>\x80" "a", dropEverything, euro),
              (std::vector<ContentItem>{{ITEM_UNICODE, 0x20AC}, {ITEM_UNICODE, 0x20AC}, {ITEM_BYTE, 'a'}}));
}

TEST(ContentEscapeReader, FilterSeesWhatTheHookMadeAndMayDropItems)
{
    std::vector<ContentItem> seen;
    const auto filter = [&](ContentItem& item) {
        seen.push_back(item);
        if (item.type == ITEM_BYTE && item.value == 'x')
            item.type = ITEM_NONE;
    };
    EXPECT_EQ(items("x\\<FNC1>x\\\\\\<FNC2>", symbolHook, filter),
              (std::vector<ContentItem>{{ITEM_CODE128, 302}, {ITEM_BYTE, '\\'}}));
    // A sequence the hook dropped still passes the filter, as the item it is.
    EXPECT_EQ(seen, (std::vector<ContentItem>{
                        {ITEM_BYTE, 'x'}, {ITEM_CODE128, 302}, {ITEM_BYTE, 'x'}, {ITEM_BYTE, '\\'}, {ITEM_NONE, 0}}));
}

// Each run as the item it repeats and its length.
std::vector<std::pair<ContentItem, uint32_t>> runs(const std::string& content)
{
    ContentEscapeReader reader(symbolHook, [](ContentItem& item) {
        if (item.type == ITEM_BYTE && item.value == 'x')
            item.type = ITEM_NONE;
    });
    reader.setContent(content);
    std::vector<std::pair<ContentItem, uint32_t>> result;
    while (reader.hasNext()) {
        const ContentItem item = reader.peek();
        result.emplace_back(item, reader.takeRun());
    }
    return result;
}

TEST(ContentEscapeReader, ARunIsARepeatedPlainByteAndASequenceStandsAlone)
{
    using Runs = std::vector<std::pair<ContentItem, uint32_t>>;
    EXPECT_EQ(runs(""), Runs{});
    EXPECT_EQ(runs("aaab"), (Runs{{{ITEM_BYTE, 'a'}, 3}, {{ITEM_BYTE, 'b'}, 1}}));
    // A doubled backslash is a sequence, so the bytes behind it aren't its repeats.
    EXPECT_EQ(runs("\\\\\\\\\\\\"), (Runs{{{ITEM_BYTE, '\\'}, 1}, {{ITEM_BYTE, '\\'}, 1}, {{ITEM_BYTE, '\\'}, 1}}));
    EXPECT_EQ(runs("H\\<UNIC(48)>HH"),
              (Runs{{{ITEM_BYTE, 'H'}, 1}, {{ITEM_UNICODE, 0x48}, 1}, {{ITEM_BYTE, 'H'}, 2}}));
    // What the filter drops is no item, and a dropped byte ends a run like any other.
    EXPECT_EQ(runs("xxaaxaa"), (Runs{{{ITEM_BYTE, 'a'}, 2}, {{ITEM_BYTE, 'a'}, 2}}));
    EXPECT_EQ(runs("a\\<FNC2>a"), (Runs{{{ITEM_BYTE, 'a'}, 1}, {{ITEM_BYTE, 'a'}, 1}}));
    EXPECT_EQ(runs(std::string(100000, '|') + "a"), (Runs{{{ITEM_BYTE, '|'}, 100000}, {{ITEM_BYTE, 'a'}, 1}}));
}

TEST(ContentEscapeReader, TakingARunReadsTheSequenceBehindIt)
{
    ContentEscapeReader reader(dropEverything);
    reader.setContent("aa\\q");
    expectFailure<KT_ERROR::bad_content_sequence>(
        [&] { reader.takeRun(); }, "illegal content escape sequence, expected '\\' or '<' but got 'q'");
}

TEST(ContentEscapeReader, ToBytesUnpacksValuesHighByteFirst)
{
    const struct {
        uint32_t value;
        std::string bytes;
    } cases[] = {
        {0x41, "A"},
        {0xFF, "\xff"},
        {0x100, std::string("\x01\x00", 2)},
        {0x20AC, "\x20\xac"},
        {0xC380, "\xc3\x80"},
        {0xE282AC, "\xe2\x82\xac"},
        {0x010041, std::string("\x01\x00\x41", 3)},
        {0x01000041, std::string("\x00\x41", 2)},  // bits above 23 are dropped
        {0xFF123456, "\x12\x34\x56"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        // The type plays no part: a Data Matrix item is unpacked like any other.
        const auto hook = [&](std::string, std::string, ContentItem& item) { item = {ITEM_DATAMATRIX, c.value}; };
        ContentEscapeReader reader(hook);
        reader.setContent("\\<V>");
        EXPECT_EQ(toBytes(reader), c.bytes);
        EXPECT_FALSE(reader.hasNext());
    }
}

TEST(ContentEscapeReader, ToTokensKeepsTheItemsInOrder)
{
    ContentEscapeReader reader(symbolHook);
    reader.setContent("ab\\<FNC1>\\\\");
    const std::vector<ContentItem> tokens = toTokens(reader);
    EXPECT_EQ(tokens, (std::vector<ContentItem>{{ITEM_BYTE, 'a'}, {ITEM_BYTE, 'b'}, {ITEM_CODE128, 302}, {ITEM_BYTE, '\\'}}));
    EXPECT_GE(tokens.capacity(), reader.getContent().size());
    EXPECT_FALSE(reader.hasNext());
}

TEST(ContentEscapeReader, DisplayLengthCountsWhatIsShown)
{
    const struct {
        std::string text;
        uint32_t length;
    } cases[] = {
        {"", 0},
        {"abc", 3},
        {"\\<UNIC(20ac)>", 1},
        {"\\<FNC1>", 1},
        {"\\\\", 1},
        {"a\\<FNC1>b\\\\c", 5},
        {"abc\\", 3},               // a lone backslash at the end ends the count
        {"ab\\<FNC", 2},            // an unclosed sequence adds nothing
        {"\\<ASC(256)>", 1},        // nothing is decoded
        {"\\<" + x30 + ">", 1},
        {"\\<a(b)c>d>", 3},         // the first '>' closes, the second is a plain byte
        {"\\<\\q>", 1},
        {std::string("\0\0", 2), 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(displayLength(c.text), c.length);
    }
}

TEST(ContentEscapeReader, DisplayLengthRefusesAnIllegalEscape)
{
    expectFailure<KT_ERROR::bad_content_sequence>(
        [] { displayLength("ab\\cd"); }, "illegal content escape sequence, expected '\\' or '<' but got 'c'");
}

TEST(ContentEscapeReader, UnknownSequenceCountsOneThoughNothingIsDrawn)
{
    EXPECT_EQ(displayLength("\\<FNC1>"), 1u);
    EXPECT_TRUE(items("\\<FNC1>", dropEverything).empty());
}
