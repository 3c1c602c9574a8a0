#include "symbologies/Barcode.h"

#include <gtest/gtest.h>

#include <string>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"

namespace {

// A symbol whose elements a test sets by hand: bars and widths straight through to the base.
class ProbeBarcode : public Barcode {
public:
    ProbeBarcode(const std::string& elements, int32_t x, int32_t y, int32_t height, int32_t quarterTurns,
                 int32_t reversed, int32_t typeNumber = 3, int32_t quiet = 0)
    {
        setParameters(elements, x, y, height, quarterTurns, false, false, reversed);
        setModuleWidths(1);
        quietLeft = quiet;
        quietRight = quiet;
        bars = elements;
        buildBitString(typeNumber);
    }

    int validate() override { return 0; }
    void encode() override {}
    void draw(Image& context, Area& rectangle) override { drawBarsOnly(context, rectangle, "probe: too small"); }

    void drawBarsAt(Image& context, int32_t barHeight, Area& rectangle, bool atOrigin)
    {
        drawBars(context, barHeight, rectangle, atOrigin);
    }
    void fill(int32_t sx, int32_t sy, int32_t w, int32_t h, Image& context) { fillInSymbol(sx, sy, w, h, 1, context); }
    void label(int32_t sx, int32_t sy, Image& context) { drawLabel(sx, sy, 10, 0, "8", 0, context); }
    int checkOf(const std::string& digits)
    {
        data = digits;
        return checkDigit();
    }
    int32_t centredLine(Image& context, Area& rectangle)
    {
        showText = true;
        text = "12";
        widths[0] = 2;
        drawCentredLine(context, rectangle, "probe: too small");
        return 0;
    }
};

std::string row(Image& image, int32_t y, int32_t from, int32_t to)
{
    std::string pixels;
    for (int32_t x = from; x <= to; ++x)
        pixels += image.getPixel(x, y) ? '1' : '0';
    return pixels;
}

std::string column(Image& image, int32_t x, int32_t from, int32_t to)
{
    std::string pixels;
    for (int32_t y = from; y <= to; ++y)
        pixels += image.getPixel(x, y) ? '1' : '0';
    return pixels;
}

}  // namespace

TEST(Barcode, CheckDigitWeighsTheLastCharacterThreeAndAlternates)
{
    struct Row {
        const char* digits;
        int expected;
    };
    const Row rows[] = {{"400638133393", 1}, {"9638507", 4}, {"0", 0}, {"1", 7}, {"12", 3}, {"0123456", 5},
                        {"1234567890128", 6}};
    ProbeBarcode probe("1", 0, 0, 20, 0, 0);
    for (const Row& r : rows) {
        SCOPED_TRACE(r.digits);
        EXPECT_EQ(probe.checkOf(r.digits), r.expected);
    }
}

TEST(Barcode, BitStringTurnsWidthDigitsIntoBarsAndSpaces)
{
    ProbeBarcode probe("1213", 0, 0, 20, 0, 0);
    EXPECT_EQ(probe.getBitString(), "1001000");
}

TEST(Barcode, AnElementDigitOutsideOneToFourRepeatsTheWidthBeforeIt)
{
    ProbeBarcode probe("2x1", 0, 0, 20, 0, 0);
    EXPECT_EQ(probe.getBitString(), "11001");
}

TEST(Barcode, MarginsGoByTypeUnlessTheSymbolIsReversed)
{
    struct Row {
        int32_t type;
        int32_t reversed;
        const char* expected;
    };
    const Row rows[] = {{0, 0, "1"},     {1, 0, "001"},   {2, 0, "1"},     {3, 0, "1"},     {4, 0, "1"},
                        {5, 0, "00100"}, {6, 0, "00100"}, {8, 0, "00100"}, {0, 1, "00100"}, {1, 1, "00100"},
                        {4, 1, "00100"}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.type * 10 + r.reversed);
        ProbeBarcode probe("1", 0, 0, 20, 0, r.reversed, r.type, 2);
        EXPECT_EQ(probe.getBitString(), r.expected);
    }
}

TEST(Barcode, At180DegreesTheBitStringIsMirrored)
{
    ProbeBarcode upright("1213", 0, 0, 20, 0, 0);
    ProbeBarcode turned("1213", 0, 0, 20, 2, 0);
    EXPECT_EQ(upright.getBitString(), "1001000");
    EXPECT_EQ(turned.getBitString(), "0001001");
}

TEST(Barcode, BarsAt0DegreesFillTheTopRowsAndOnlyAddInk)
{
    Image image(128, 64);
    image.rectangle(40, 10, 5, 1, 1);
    ProbeBarcode probe("1213", 40, 10, 20, 0, 0);
    Area area{};
    probe.drawBarsAt(image, 12, area, false);
    EXPECT_EQ(row(image, 10, 38, 48), "00111110000") << "a space leaves ink that was there";
    EXPECT_EQ(row(image, 11, 38, 48), "00100100000");
    EXPECT_EQ(row(image, 21, 38, 48), "00100100000");
    EXPECT_EQ(row(image, 22, 38, 48), "00000000000");
    EXPECT_EQ(area.left, 40);
    EXPECT_EQ(area.top, 10);
    EXPECT_EQ(area.right, 46);
    EXPECT_EQ(area.bottom, 29) << "the area takes the whole symbol height";
    EXPECT_EQ(image.getLastUsedRow(), 29);
}

TEST(Barcode, BarsAt180DegreesFillTheBottomRows)
{
    Image image(128, 64);
    ProbeBarcode probe("1213", 40, 10, 20, 2, 0);
    Area area{};
    probe.drawBarsAt(image, 12, area, false);
    EXPECT_EQ(row(image, 17, 40, 46), "0000000");
    EXPECT_EQ(row(image, 18, 40, 46), "0001001");
    EXPECT_EQ(row(image, 29, 40, 46), "0001001");
    EXPECT_EQ(area.bottom, 29);
}

TEST(Barcode, BarsAt90And270DegreesAreColumnsThatAlsoClear)
{
    for (int32_t turns : {1, 3}) {
        SCOPED_TRACE(turns);
        Image image(128, 64);
        image.rectangle(0, 0, 128, 64, 1);
        ProbeBarcode probe("1213", 40, 10, 20, turns, 0);
        Area area{};
        probe.drawBarsAt(image, 12, area, false);
        // At 90 degrees the bars stand at the right end of the area, at 270 at the left end.
        const int32_t inside = turns == 1 ? 55 : 44;
        const int32_t outside = turns == 1 ? 47 : 52;
        EXPECT_EQ(column(image, inside, 10, 16), turns == 1 ? "1001000" : "0001001");
        EXPECT_EQ(column(image, outside, 10, 16), "1111111") << "outside the bar height nothing changes";
        EXPECT_EQ(area.left, 40);
        EXPECT_EQ(area.top, 10);
        EXPECT_EQ(area.right, 59);
        EXPECT_EQ(area.bottom, 16);
    }
}

TEST(Barcode, TheSpillWordOfAnUnalignedSymbolFailsAtTheRightEdgeWhereAnAlignedOneFits)
{
    const std::string elements(31, '1');  // 16 bars and 15 spaces: 31 pixels
    Image aligned(64, 32);
    ProbeBarcode fits(elements, 32, 0, 20, 0, 0);
    Area area{};
    EXPECT_NO_THROW(fits.drawBarsAt(aligned, 12, area, false));

    Image unaligned(64, 32);
    ProbeBarcode spills(elements.substr(0, 29), 33, 0, 20, 0, 0);
    expectFailure<KT_ERROR::drawable_off_format>([&] { spills.drawBarsAt(unaligned, 12, area, false); },
                                                 "trying to draw off format at (64/0)");
    EXPECT_EQ(row(unaligned, 0, 33, 40), "10101010") << "the word before the spill is written";
}

TEST(Barcode, ASymbolLeftOfTheRasterFailsOffFormat)
{
    Image image(64, 32);
    ProbeBarcode probe("1213", -5, 0, 20, 0, 0);
    Area area{};
    expectFailure<KT_ERROR::drawable_off_format>([&] { probe.drawBarsAt(image, 12, area, false); },
                                                 "trying to draw off format at (-32/0)");
}

TEST(Barcode, BarsOfAHeightNearThe32BitLimitRunDownToTheRasterEdgeAndFailThere)
{
    Image image(64, 32);
    ProbeBarcode probe("1213", 0, 100 - 2, 20, 0, 0);
    Area area{};
    // The rows from 98 on: the last one would lie past 2^31.
    Image tall(64, 120);
    expectFailure<KT_ERROR::drawable_off_format>(
        [&] { probe.drawBarsAt(tall, INT32_MAX - 3, area, false); }, "trying to draw off format at (0/120)");
    EXPECT_EQ(row(tall, 119, 0, 6), "1001000") << "every row down to the edge is written";
    // Without a bar there is nothing to write, and no row is visited.
    ProbeBarcode empty("", 0, 98, 20, 0, 0);
    EXPECT_NO_THROW(empty.drawBarsAt(image, INT32_MAX - 3, area, false));
    EXPECT_EQ(row(image, 31, 0, 63), std::string(64, '0'));
}

TEST(Barcode, AHeightOf11WithoutTextFailsAndTwelvePasses)
{
    Image image(128, 64);
    Area area{};
    ProbeBarcode low("1213", 0, 0, 11, 0, 0);
    expectFailure<KT_ERROR::render_time_error>([&] { low.paint(image, area); }, "probe: too small");
    EXPECT_EQ(image.getLastUsedRow(), 0);
    ProbeBarcode enough("1213", 0, 0, 12, 0, 0);
    EXPECT_NO_THROW(enough.paint(image, area));
    EXPECT_EQ(row(image, 11, 0, 6), "1001000");
}

TEST(Barcode, AReversedSymbolIsInvertedOverItsAreaAndPastedAtItsPlace)
{
    Image image(128, 64);
    ProbeBarcode probe("1213", 35, 5, 12, 0, 1, 3, 2);
    Area area{};
    probe.paint(image, area);
    EXPECT_EQ(area.left, 35);
    EXPECT_EQ(area.top, 5);
    EXPECT_EQ(area.right, 35 + 10);
    EXPECT_EQ(area.bottom, 16);
    EXPECT_EQ(row(image, 5, 33, 48), "0011011011111000");
    EXPECT_EQ(row(image, 16, 33, 48), "0011011011111000");
    EXPECT_EQ(row(image, 17, 33, 48), "0000000000000000");
}

TEST(Barcode, FillInSymbolMapsASymbolRectangleByOrientation)
{
    struct Row {
        int32_t turns;
        int32_t left, top, right, bottom;
    };
    // Symbol 7 long (bit string), 20 high at (40, 10); fill (1, 2) sized 3 x 4.
    const Row rows[] = {{0, 41, 12, 43, 15}, {1, 40 + 20 - 2 - 4, 11, 40 + 20 - 2 - 1, 13},
                        {2, 40 + 7 - 1 - 3, 10 + 20 - 2 - 4, 40 + 7 - 1 - 1, 10 + 20 - 2 - 1},
                        {3, 42, 10 + 7 - 1 - 3, 45, 10 + 7 - 1 - 1}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.turns);
        Image image(128, 64);
        ProbeBarcode probe("1213", 40, 10, 20, r.turns, 0);
        probe.fill(1, 2, 3, 4, image);
        EXPECT_EQ(image.getPixel(r.left, r.top), 1);
        EXPECT_EQ(image.getPixel(r.right, r.bottom), 1);
        EXPECT_EQ(image.getPixel(r.left - 1, r.top), 0);
        EXPECT_EQ(image.getPixel(r.right + 1, r.bottom), 0);
        EXPECT_EQ(image.getPixel(r.left, r.top - 1), 0);
        EXPECT_EQ(image.getPixel(r.right, r.bottom + 1), 0);
    }
}

class BarcodeText : public fonttest::FontFixture {};

TEST_F(BarcodeText, LabelsTurnWithTheSymbolAroundTheMappedAnchor)
{
    struct Row {
        int32_t turns;
        int32_t anchorX, anchorY;
    };
    // Symbol 7 long, 60 high at (200, 100); label anchor (3, 40).
    const Row rows[] = {{0, 203, 140}, {1, 200 + 60 - 40, 103}, {2, 200 + 7 - 3, 100 + 60 - 40}, {3, 240, 104}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.turns);
        Image viaSymbol(640, 608);
        ProbeBarcode probe("1213", 200, 100, 60, r.turns, 0);
        probe.label(3, 40, viaSymbol);
        Image direct(640, 608);
        direct.printText(r.anchorX, r.anchorY, 10, 0, "8", r.turns, nullptr, true, 0, true);
        bool same = true;
        for (int32_t y = 0; y < 608; ++y)
            for (int32_t c = 0; c < 20; ++c)
                same = same && viaSymbol.getLong(y, c) == direct.getLong(y, c);
        EXPECT_TRUE(same);
        EXPECT_GT(direct.getLastUsedRow(), 0);
    }
}

TEST_F(BarcodeText, WithTextAt0DegreesBarsStandAboveTheTextAndAt180BelowIt)
{
    for (int32_t turns : {0, 2}) {
        SCOPED_TRACE(turns);
        Image image(640, 608);
        ProbeBarcode probe(std::string(41, '1'), 100, 100, 80, turns, 0);
        Area area{};
        probe.centredLine(image, area);
        const int32_t top = turns == 0 ? 100 : 179, bottom = turns == 0 ? 179 : 100;
        EXPECT_EQ(image.getPixel(100, top), 1) << "the bars start at the edge that faces away from the text";
        EXPECT_EQ(image.getPixel(104, bottom), 0) << "the far edge holds the text, not a bar";
        EXPECT_EQ(area.top, 100);
        EXPECT_EQ(area.bottom, 179);
    }
}
