#include "symbologies/EanUpc.h"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "symbologies/Ean13.h"
#include "symbologies/Ean8.h"
#include "symbologies/UpcA.h"
#include "symbologies/UpcE.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"
#include "tests/symbologies/EanUpcTestSupport.h"

using namespace eantest;

namespace {

using Maker = std::unique_ptr<EanUpc> (*)(const std::string& content, int32_t height, int32_t quarterTurns,
                                          bool showText, int32_t reversed);

// Module 3 at (64, 64), as the scanner tests paint them.
template <class Symbol>
std::unique_ptr<EanUpc> make(const std::string& content, int32_t height, int32_t quarterTurns, bool showText,
                             int32_t reversed)
{
    return std::make_unique<Symbol>(content, 64, 64, 3, height, quarterTurns, false, showText, reversed);
}

struct Family {
    const char* name;
    Maker maker;
    const char* content;
    // What the measured block of the digit line holds for `content`, at font size 7.
    const char* block;
};

const Family families[] = {
    {"Ean13", make<Ean13>, "400638133393", "006381"},
    {"Ean8", make<Ean8>, "9638507", "9638"},
    {"UpcA", make<UpcA>, "03600029145", "36000"},
    {"UpcE", make<UpcE>, "123456", "123456"},
};

// Half the digits' measured height, rounded, as the bars and boxes are placed by it.
int32_t halfDigitHeight(Image& image, const std::string& block)
{
    Area measured{};
    image.printText(0, 200, 7, 0, block, 0, &measured, true, 0, false);
    return (measured.bottom - measured.top + 1) / 2;
}

// The pixel `depth` dots from the far end of the bar of column `c` (counted at 0 degrees) of a symbol
// painted at (64, 64) with height 200 and bit string length `length`, turned `turns` quarters.
int pixelAlongBar(Image& image, int32_t turns, int32_t c, int32_t length, int32_t depth)
{
    switch (turns) {
    case 0:
        return image.getPixel(64 + c, 64 + depth);
    case 1:
        return image.getPixel(263 - depth, 64 + c);
    case 2:
        return image.getPixel(64 + length - 1 - c, 263 - depth);
    default:
        return image.getPixel(64 + depth, 64 + length - 1 - c);
    }
}

int32_t barLength(Image& image, int32_t turns, int32_t c, int32_t length)
{
    int32_t depth = 0;
    while (pixelAlongBar(image, turns, c, length, depth))
        ++depth;
    return depth;
}

class EanUpcDrawing : public fonttest::FontFixture {};

}  // namespace

TEST(EanUpc, BadDataFailsWithTheClassTextsCharactersBeforeLength)
{
    struct Case {
        Maker maker;
        const char* content;
        const char* message;
    };
    const Case cases[] = {
        {make<Ean13>, "", "EAN-13: no data "},
        {make<Ean13>, "40063813339A", "EAN-13: wrong data A"},
        {make<Ean13>, "4006381333931X", "EAN-13: wrong data X"},
        {make<Ean13>, " 00638133393", "EAN-13: wrong data  "},
        {make<Ean13>, "4006381333931", "EAN-13: wrong data length13"},
        {make<Ean13>, "40063813339", "EAN-13: wrong data length11"},
        {make<Ean8>, "", "EAN-8: no data "},
        {make<Ean8>, "963850-", "EAN-8: wrong data -"},
        {make<Ean8>, "96385074", "EAN-8: wrong data length8"},
        {make<Ean8>, "963850", "EAN-8: wrong data length6"},
        {make<UpcA>, "", "Upc-A: no data "},
        {make<UpcA>, "0360002914a", "Upc-A: wrong data a"},
        {make<UpcA>, "036000291452", "Upc-A: wrong data length12"},
        {make<UpcA>, "0360002914", "Upc-A: wrong data length10"},
        {make<UpcE>, "12345:", "Upc-E: wrong data :"},
        {make<UpcE>, "1234565", "Upc-E: wrong data length 8"},
        {make<UpcE>, "12345", "Upc-E: wrong data length 6"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        expectFailure<KT_ERROR::bad_escape_sequence>([&] { c.maker(c.content, 200, 0, true, 0); }, c.message);
    }
}

TEST(EanUpc, GoodDataValidatesToZero)
{
    for (const Family& f : families) {
        SCOPED_TRACE(f.name);
        EXPECT_EQ(f.maker(f.content, 200, 0, true, 0)->validate(), 0);
    }
}

TEST(EanUpc, UpcEHasNoEmptyDataSinceTheNumberSystemIsInFront)
{
    expectFailure<KT_ERROR::bad_escape_sequence>([] { make<UpcE>("", 200, 0, true, 0); },
                                                 "Upc-E: wrong data length 1");
}

TEST(EanUpc, BadContentLeavesTheRasterAsItWas)
{
    const Family bad[] = {{"Ean13", make<Ean13>, "4006381A3393", ""},
                          {"Ean8", make<Ean8>, "96385074", ""},
                          {"UpcA", make<UpcA>, "0360002914", ""},
                          {"UpcE", make<UpcE>, "12E456", ""}};
    for (const Family& f : bad) {
        SCOPED_TRACE(f.name);
        Image image(640, 320);
        Image before(640, 320);
        image.rectangle(10, 10, 500, 250, 1);
        before.rectangle(10, 10, 500, 250, 1);
        image.rectangle(100, 70, 60, 60, 0);
        before.rectangle(100, 70, 60, 60, 0);
        EXPECT_NE(throwsText([&] {
                      Area area{};
                      f.maker(f.content, 200, 0, false, 0)->paint(image, area);
                  }),
                  "nothing thrown");
        EXPECT_TRUE(sameRaster(image, before));
    }
}

TEST(EanUpc, WithoutTextBarsOfElevenDotsFailAndTwelvePass)
{
    const std::pair<Maker, const char*> cases[] = {{make<Ean13>, "EAN13:: bar height is too small"},
                                                   {make<Ean8>, "EAN8: bar height is too small"},
                                                   {make<UpcA>, "UPC-A: bar height is too small"},
                                                   {make<UpcE>, "UPC-E: bar height is too small"}};
    for (size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(families[i].name);
        Image image(640, 320);
        Area area{};
        expectFailure<KT_ERROR::render_time_error>(
            [&] { cases[i].first(families[i].content, 11, 0, false, 0)->paint(image, area); }, cases[i].second);
        EXPECT_EQ(throwsText([&] { cases[i].first(families[i].content, 12, 0, false, 0)->paint(image, area); }),
                  "nothing thrown");
    }
}

TEST_F(EanUpcDrawing, WithTextTheTopOfTheWhiteBoxesMustBeTwelveDots)
{
    const char* messages[] = {"EAN13: bar height is too small", "EAN8: bar height is too small",
                              "UPC-A: bar height is too small", "UPC-E: bar height is too small"};
    for (size_t i = 0; i < std::size(families); ++i) {
        const Family& f = families[i];
        SCOPED_TRACE(f.name);
        Image image(640, 320);
        // The boxes start half a digit height and one module above the bars' end, half a digit height up.
        const int32_t least = 12 + 2 * halfDigitHeight(image, f.block) + 3;
        Area area{};
        expectFailure<KT_ERROR::render_time_error>(
            [&] { f.maker(f.content, least - 1, 0, true, 0)->paint(image, area); }, messages[i]);
        EXPECT_EQ(throwsText([&] { f.maker(f.content, least, 0, true, 0)->paint(image, area); }), "nothing thrown");
    }
}

TEST_F(EanUpcDrawing, WithoutTextNoBoxesArePaintedAndAllBarsHaveTheFullHeight)
{
    for (const Family& f : families) {
        SCOPED_TRACE(f.name);
        Image image(640, 320);
        const auto symbol = f.maker(f.content, 200, 0, false, 0);
        Area area{};
        symbol->paint(image, area);
        const std::string& bits = symbol->getBitString();
        for (int32_t c = 0; c < static_cast<int32_t>(bits.size()); ++c) {
            SCOPED_TRACE(c);
            EXPECT_EQ(inkRows(image, 64 + c, 64, 264), bits[static_cast<size_t>(c)] == '1' ? 200 : 0);
            EXPECT_EQ(inkRows(image, 64 + c, 264, 320), 0);
        }
    }
}

TEST_F(EanUpcDrawing, GuardBarsReachFurtherThanTheDataBarsOverWhiteBoxesAtEveryTurn)
{
    struct Case {
        const Family& family;
        // Columns in dots from the symbol's left edge at 0 degrees: one guard bar and the blanked data bars.
        int32_t guard;
        int32_t boxLeft;
        int32_t boxWidth;
    };
    const Case cases[] = {
        {families[0], 33, 42, 126}, {families[0], 171, 183, 126},
        {families[1], 0, 9, 84},    {families[1], 96, 108, 84},
        {families[2], 27, 57, 105}, {families[2], 303, 177, 105},
        {families[3], 27, 36, 126}, {families[3], 165, 36, 126},
    };
    for (const Case& c : cases)
        for (int32_t turns = 0; turns < 4; ++turns) {
            SCOPED_TRACE(testing::Message() << c.family.name << " box at " << c.boxLeft << " turns " << turns);
            Image image(640, 640);
            const int32_t half = halfDigitHeight(image, c.family.block);
            const std::string bits = c.family.maker(c.family.content, 200, 0, true, 0)->getBitString();
            const auto length = static_cast<int32_t>(bits.size());
            Area area{};
            c.family.maker(c.family.content, 200, turns, true, 0)->paint(image, area);
            ASSERT_EQ(bits[static_cast<size_t>(c.guard)], '1');
            EXPECT_EQ(barLength(image, turns, c.guard, length), 200 - half);
            const int32_t boxTop = 200 - 2 * half - 3;
            for (int32_t col = c.boxLeft; col < c.boxLeft + c.boxWidth; ++col) {
                if (bits[static_cast<size_t>(col)] == '1') {
                    EXPECT_EQ(barLength(image, turns, col, length), boxTop) << col;
                }
                for (int32_t depth = boxTop; depth < boxTop + 3; ++depth)
                    EXPECT_EQ(pixelAlongBar(image, turns, col, length, depth), 0) << "a module of paper above the digits";
            }
            EXPECT_EQ(pixelAlongBar(image, turns, c.boxLeft - 1, length, boxTop), bits[c.boxLeft - 1] == '1' ? 1 : 0);
        }
}

TEST_F(EanUpcDrawing, BothScannersReadEverySymbolAtEveryTurnReversedOrNotWithAndWithoutText)
{
    struct Case {
        Maker maker;
        const char* content;
        const char* zxingFormat;
        const char* zbar;
        const char* zxing;
    };
    // zbar gives UPC-A and UPC-E as the EAN-13 of their full UPC-A number.
    const Case cases[] = {
        {make<Ean13>, "400638133393", "EAN-13", "4006381333931", "4006381333931"},
        {make<Ean8>, "9638507", "EAN-8", "96385074", "96385074"},
        {make<UpcA>, "03600029145", "UPC-A", "0036000291452", "036000291452"},
        {make<UpcE>, "123456", "UPC-E", "0012345000065", "01234565"},
    };
    for (const Case& c : cases)
        for (int32_t turns = 0; turns < 4; ++turns)
            for (int32_t reversed = 0; reversed < 2; ++reversed)
                for (const bool showText : {false, true}) {
                    SCOPED_TRACE(testing::Message() << c.zxingFormat << " turns " << turns << " reversed " << reversed
                                                    << " text " << showText);
                    const auto symbol = c.maker(c.content, 200, turns, showText, reversed);
                    const Reading read = paintAndScan(*symbol, reversed, c.zxingFormat);
                    EXPECT_EQ(read.zbar, c.zbar);
                    EXPECT_EQ(read.zxing, c.zxing);
                }
}
