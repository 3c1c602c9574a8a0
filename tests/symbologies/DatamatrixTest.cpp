#include "symbologies/Datamatrix.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "graphics/TransformedContext.h"
#include "symbologies/DatamatrixReedSolomon.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"
#include "tests/support/ScanSupport.h"
#include "tests/support/WithinTime.h"

namespace {

using Words = std::vector<uint8_t>;

// Counts the module rectangles a symbol paints, by module position, with the colour of the last one.
class ModuleRecorder : public GraphicsContext {
public:
    uint32_t getXOrigin() override { return 0; }
    uint32_t getYOrigin() override { return 0; }
    uint32_t getWidth() override { return 0; }
    uint32_t getHeight() override { return 0; }
    int getPixel(int32_t, int32_t) override { return 0; }
    void setPixel(int32_t, int32_t, int) override { ++others; }
    using GraphicsContext::rectangle;
    void rectangle(int32_t x, int32_t y, int32_t w, int32_t h, int colour) override
    {
        if (w != 1 || h != 1)
            ++others;
        auto& module = modules[{x, y}];
        ++module.first;
        module.second = colour;
    }
    void drawText(int32_t, int32_t, int32_t, int32_t, std::string, int32_t, Area*, int32_t, int32_t, bool) override
    {
        ++others;
    }

    std::map<std::pair<int32_t, int32_t>, std::pair<int, int>> modules;
    int others = 0;
};

std::string digits(size_t count)
{
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text.push_back(static_cast<char>('0' + (i * 7 + i / 10) % 10));
    return text;
}

int32_t outer(int32_t inner, int32_t region) { return inner + 2 * (inner / region); }

// Paints the symbol upright at (40, 40) on a fresh raster.
void paintOn(Image& image, Datamatrix& symbol, const std::string& content)
{
    TransformedContext context(&image, Point{40, 40}, makeRotation(0, 1));
    symbol.paint(content, context);
}

std::string zxingRead(Image& image)
{
    return scantest::scanInk(image, [](const std::string& path) { return scantest::zxing(path, "DataMatrix"); });
}

Words codewordsOf(const std::string& content)
{
    Datamatrix symbol;
    symbol.computeSize(content);
    return symbol.getCodewords();
}

const std::string upper24 = "ABCDEFGHIJKLMNOPQRSTUVWX";

}  // namespace

TEST(Datamatrix, TheSizeTableFillsEveryMappingMatrixWithWholeCodewords)
{
    for (size_t i = 0; i < datamatrixSizes.size(); ++i) {
        const SizeRecord& row = datamatrixSizes[i];
        SCOPED_TRACE(row.id);
        EXPECT_EQ(row.id, static_cast<int32_t>(i + 1));
        EXPECT_EQ(row.dataWords + row.eccWords, row.width * row.height / 8);
        EXPECT_EQ(row.width % row.regionWidth, 0);
        EXPECT_EQ(row.height % row.regionHeight, 0);
        // The largest symbol shares its check words among ten blocks, whatever its row says.
        EXPECT_EQ(row.eccWords % (row.id == 24 ? 10 : row.blocks), 0);
        EXPECT_EQ(row.width == row.height, row.id <= 24);
    }
}

TEST(Datamatrix, AFixedSizeFindsTheRowOfItsOuterModuleCount)
{
    struct Row {
        int32_t height;
        int32_t width;
        int32_t id;
    };
    const Row rows[] = {{10, 10, 1}, {26, 26, 9}, {32, 32, 10}, {144, 144, 24}, {8, 18, 25}, {8, 32, 26},
                        {12, 26, 27}, {12, 36, 28}, {16, 36, 29}, {16, 48, 30}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.width << " x " << row.height);
        Datamatrix symbol(row.height, row.width, 1, 200);
        EXPECT_EQ(symbol.getSize().id, row.id);
    }
}

TEST(Datamatrix, BadParametersFailWhenTheSymbolIsMade)
{
    struct Row {
        int32_t height;
        int32_t width;
        int32_t module;
        int32_t ecc;
        const char* message;
    };
    const Row rows[] = {
        {0, 0, 1, 0, "datamatrix: only supporting ecc level 200, not 0"},
        {10, 10, 0, 140, "datamatrix: only supporting ecc level 200, not 140"},
        {0, 0, 0, 200, "datamatrix: module size must be greater than zero "},
        {11, 11, 1, 200, "datamatrix: illegal symbol size (11/11)"},
        {0, 10, 1, 200, "datamatrix: illegal symbol size (10/0)"},
        {18, 8, 1, 200, "datamatrix: illegal symbol size (8/18)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        expectFailure<KT_ERROR::drawable_illegal_parameter>(
            [&] { Datamatrix(row.height, row.width, row.module, row.ecc); }, row.message);
    }
}

TEST(Datamatrix, SizeIdZeroIsTheFirstRowAndAnIdBeyondTheTableFails)
{
    EXPECT_EQ(Datamatrix::getSizeRecord(0).id, 1);
    EXPECT_EQ(Datamatrix::getSizeRecord(30).id, 30);
    expectFailure<KT_ERROR::drawable_illegal_parameter>([] { Datamatrix::getSizeRecord(31); },
                                                        "datamatrix: unkown size for getSizeRecord");
}

TEST(Datamatrix, TheSizeInDotsIsTheOuterModuleCountTimesTheModuleSize)
{
    Datamatrix automatic(0, 0, 3, 200);
    const DotSize small = automatic.computeSize("123456");
    EXPECT_EQ(small.width, 30);
    EXPECT_EQ(small.height, 30);
    Datamatrix rectangle(8, 18, 2, 200);
    const DotSize wide = rectangle.computeSize("1");
    EXPECT_EQ(wide.width, 36);
    EXPECT_EQ(wide.height, 16);
}

TEST(Datamatrix, AutomaticSizeTakesTheFirstSquareThatHoldsTheCodewords)
{
    struct Row {
        std::string content;
        int32_t id;
    };
    const Row rows[] = {{"", 1},           {"123456", 1},        {"1234567", 2},        {digits(10), 2},
                        {digits(12), 3},   {digits(3116), 24},   {"abcdefghijklmnopqrstuvwxyz", 6}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.content.substr(0, 20));
        Datamatrix symbol;
        symbol.computeSize(row.content);
        EXPECT_EQ(symbol.getSize().id, row.id);
    }
}

TEST(Datamatrix, ContentBeyondAFixedSizeFailsAtRenderTime)
{
    Datamatrix symbol(10, 10, 1, 200);
    expectFailure<KT_ERROR::render_time_error>([&] { symbol.computeSize("1234567"); },
                                                "datamatrix: content doesn't fit into selected symbol size");
}

TEST(Datamatrix, ContentBeyondTheLargestSymbolCannotBePadded)
{
    Datamatrix symbol;
    const std::string content(1600, '\xe4');
    EXPECT_EQ(symbol.computeSize(content).width, 144);
    Image image(256, 256);
    expectFailure<KT_ERROR::internal_autocode_error>([&] { paintOn(image, symbol, content); },
                                                     "datamatrix: can't pad, symbol already full");
}

TEST(Datamatrix, PaddingIs129ThenThe253StateValuesOfThePositions)
{
    Datamatrix symbol(14, 14, 1, 200);
    Image image(64, 64);
    paintOn(image, symbol, "123456");
    // Positions 5 to 8: 129 + (149 p) % 253 + 1, less 254 above 254.
    EXPECT_EQ(symbol.getCodewords(), (Words{142, 164, 186, 129, 115, 11, 161, 56}));
}

TEST(Datamatrix, TheSymbolOf123456IsThePublishedExample)
{
    Datamatrix symbol(0, 0, 4, 200);
    Image image(96, 96);
    paintOn(image, symbol, "123456");
    EXPECT_EQ(symbol.getAllWords(), (Words{142, 164, 186, 114, 25, 5, 88, 102}));
    EXPECT_EQ(scantest::scanInk(image, scantest::dmtx), "123456");
    EXPECT_EQ(zxingRead(image), "123456");
}

TEST(Datamatrix, ControlEscapesBecomeTokensAndUnknownOnesDisappear)
{
    Datamatrix symbol;
    symbol.computeSize("A\\<FNC1>\\<DMX_FNC1>\\<RP>\\<DMX_RP>\\<DMX_MCR05>\\<DMX_MCR06>\\<NOPE>\\<fnc1>B");
    EXPECT_EQ(symbol.getTokens(), (std::vector<int32_t>{'A', -24, -24, -22, -22, -20, -19, 'B'}));
}

TEST(Datamatrix, EciNumbersTakeOneTwoOrThreeCodewords)
{
    struct Row {
        const char* content;
        Words words;
    };
    // 16383 takes the three-byte form from 16383 - 16838 = -455, as the arithmetic stands.
    const Row rows[] = {
        {"\\<ECI(000000)>", {241, 1}},          {"\\<DMX_ECI(000003)>", {241, 4}},
        {"\\<ECI(000126)>", {241, 127}},        {"\\<ECI(000127)>", {241, 128, 1}},
        {"\\<ECI(016382)>", {241, 191, 254}},   {"\\<ECI(016383)>", {241, 192, 0, 56}},
        {"\\<ECI(016838)>", {241, 192, 1, 1}},  {"\\<ECI(999999)>", {241, 207, 61, 182}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.content);
        EXPECT_EQ(codewordsOf(row.content), row.words);
    }
}

TEST(Datamatrix, StructuredAppendPacksPositionTotalAndFileIds)
{
    struct Row {
        const char* content;
        Words words;
    };
    const Row rows[] = {{"\\<DMX_SA(0102001002)>", {233, 0xF0, 1, 2}}, {"\\<DMX_SA(1616254254)>", {233, 0x1F, 254, 254}},
                        {"\\<DMX_SA(0316100200)>", {233, 0x12, 100, 200}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.content);
        EXPECT_EQ(codewordsOf(row.content), row.words);
    }
}

TEST(Datamatrix, BadEciAndStructuredAppendParametersFailAsContent)
{
    struct Row {
        const char* content;
        const char* message;
    };
    const Row rows[] = {
        {"\\<ECI(12345)>", "datamatrix: eci parameter must be 6 characters long: 12345"},
        {"\\<ECI>", "datamatrix: eci parameter must be 6 characters long: "},
        {"\\<DMX_ECI(12a456)>", "datamatrix: eci parameter must be only digits: 12a456"},
        {"\\<DMX_SA(010200100)>", "datamatrix: structured append parameter must be 10 characters long: 010200100"},
        {"\\<DMX_SA(01020010-2)>", "datamatrix: structured append parameter must be only digits: 01020010-2"},
        {"\\<DMX_SA(0002001002)>", "datamatrix: illegal sequence position/length in structured append: 0/2"},
        {"\\<DMX_SA(1702001002)>", "datamatrix: illegal sequence position/length in structured append: 17/2"},
        {"\\<DMX_SA(0101001002)>", "datamatrix: illegal sequence position/length in structured append: 1/1"},
        {"\\<DMX_SA(0117001002)>", "datamatrix: illegal sequence position/length in structured append: 1/17"},
        {"\\<DMX_SA(0302001002)>", "datamatrix: illegal sequence position/length in structured append: 3/2"},
        {"\\<DMX_SA(0102000002)>", "datamatrix: illegal file code words in structured append: 0/2"},
        {"\\<DMX_SA(0102001255)>", "datamatrix: illegal file code words in structured append: 1/255"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.content);
        Datamatrix symbol;
        expectFailure<KT_ERROR::bad_content_sequence>([&] { symbol.computeSize(row.content); }, row.message);
    }
}

TEST(Datamatrix, APaintWithoutASizeQuestionLeavesTheRunOpenBeforeThePadsSoScannersReadExtraCharacters)
{
    // Automatic size gives the encoder a capacity of 3: the C40 run isn't closed, and 129 223 read as C40.
    Datamatrix symbol;
    Image image(160, 160);
    paintOn(image, symbol, upper24);
    EXPECT_EQ(symbol.getCodewords(), (Words{230, 89, 233, 254, 230, 109, 36, 128, 95, 147, 154, 166, 213, 186, 16,
                                            205, 75, 224, 134, 129, 223, 118}));
}

TEST(Datamatrix, APaintAfterTheSizeQuestionEncodesAgainstTheRowItChose)
{
    Datamatrix symbol(0, 0, 4, 200);
    symbol.computeSize(upper24);
    Image image(160, 160);
    paintOn(image, symbol, upper24);
    EXPECT_EQ(symbol.getCodewords(), (Words{230, 89, 233, 109, 36, 128, 95, 147, 154, 166, 213, 186, 16, 205, 75,
                                            224, 134, 254, 129, 73, 223, 118}));
    EXPECT_EQ(scantest::scanInk(image, scantest::dmtx), upper24);
    EXPECT_EQ(zxingRead(image), upper24);
}

TEST(Datamatrix, AutomaticSizeGivesTheSameSymbolAtEachPaint)
{
    for (const std::string& content : {upper24, std::string("Hello, World! 12345"), std::string("abc\xe4\xf6\xfc")}) {
        SCOPED_TRACE(content);
        Datamatrix symbol;
        Image first(160, 160), second(160, 160);
        symbol.computeSize(content);
        paintOn(first, symbol, content);
        const Words words = symbol.getAllWords();
        symbol.computeSize(content);
        paintOn(second, symbol, content);
        EXPECT_EQ(symbol.getAllWords(), words);
        EXPECT_TRUE(PixelCanvas::of(first) == PixelCanvas::of(second));
    }
}

TEST(Datamatrix, EveryModuleOfAllThirtySizesIsPaintedOnceAndTheFindersFrameEveryRegion)
{
    for (const SizeRecord& row : datamatrixSizes) {
        SCOPED_TRACE(row.id);
        const int32_t width = outer(row.width, row.regionWidth), height = outer(row.height, row.regionHeight);
        Datamatrix symbol(height, width, 1, 200);
        ModuleRecorder recorder;
        symbol.paint(digits(static_cast<size_t>(row.dataWords - 1) * 2), recorder);
        EXPECT_EQ(recorder.others, 0);
        EXPECT_EQ(recorder.modules.size(), static_cast<size_t>(width * height));
        for (int32_t r = 0; r < row.height; ++r)
            for (int32_t c = 0; c < row.width; ++c) {
                const std::pair<int32_t, int32_t> at{c + 1 + 2 * (c / row.regionWidth),
                                                     r + 1 + 2 * (r / row.regionHeight)};
                ASSERT_EQ(recorder.modules[at].first, 1) << c << ", " << r;
            }
        const int32_t outerWidth = row.regionWidth + 2, outerHeight = row.regionHeight + 2;
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x) {
                const int32_t rx = x % outerWidth, ry = y % outerHeight;
                int expected = -1;
                if (rx == 0 || ry == outerHeight - 1) {
                    expected = 1;
                } else if (ry == 0) {
                    expected = rx % 2 == 0 ? 1 : 0;
                } else if (rx == outerWidth - 1) {
                    expected = ry % 2;
                }
                if (expected >= 0) {
                    ASSERT_EQ(recorder.modules[std::make_pair(x, y)].second, expected) << x << ", " << y;
                }
            }
    }
}

TEST(Datamatrix, BothScannersReadEverySizeFilledWithDigits)
{
    for (const SizeRecord& row : datamatrixSizes) {
        SCOPED_TRACE(row.id);
        Datamatrix symbol(outer(row.height, row.regionHeight), outer(row.width, row.regionWidth), 4, 200);
        const std::string content = digits(static_cast<size_t>(row.dataWords - 1) * 2);
        Image image(704, 704);
        paintOn(image, symbol, content);
        // dmtxread misses the check word order of the 144 x 144 symbol, also in symbols that other encoders make.
        if (row.id != 24) {
            EXPECT_EQ(scantest::scanInk(image, scantest::dmtx), content);
        }
        EXPECT_EQ(zxingRead(image), content);
    }
}

TEST(Datamatrix, TheLargestSymbolPutsTheCheckWordsOfBlocks8And9First)
{
    Datamatrix symbol(144, 144, 1, 200);
    ModuleRecorder recorder;
    symbol.paint(digits(3000), recorder);
    const Words& all = symbol.getAllWords();
    ASSERT_EQ(all.size(), 1558u + 620u);
    for (size_t i = 0; i < 10; ++i) {
        SCOPED_TRACE(i);
        Words block;
        for (size_t at = i; at < 1558; at += 10)
            block.push_back(all[at]);
        EXPECT_EQ(block.size(), i < 8 ? 156u : 155u);
        const Words check = DatamatrixReedSolomon::field().checkWords(block, 62);
        const size_t first = 1558 + (i < 8 ? i + 2 : i - 8);
        for (size_t j = 0; j < 62; ++j)
            ASSERT_EQ(all[first + 10 * j], check[j]) << j;
    }
}

TEST(Datamatrix, ContentOnWhichTheAutoSelectWouldLatchForEverFailsWithinBoundedTime)
{
    struct Row {
        const char* content;
        int32_t size;
    };
    const Row rows[] = {{"A\\<RP>AAAAAA", 0},           {"A\\<ECI(000026)>AAAAAA", 0},
                        {"(AAAA\r\r\rAAAAAA", 0},       {"A\\<DMX_RP>AAAAAA", 144},
                        {"A\\<DMX_ECI(000026)>AAAAAA", 24}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.content);
        const auto encode = [&] { Datamatrix(row.size, row.size, 1, 200).computeSize(row.content); };
        EXPECT_EQ(failureWithin<KT_ERROR::internal_autocode_error>(10, encode),
                  "[Expected] datamatrix: auto-select makes no progress at position 0");
    }
}
