#include "drawables/Drawable_Graphics.h"

#include <gtest/gtest.h>

#include <sstream>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

using KT_FMT::KT_Format;

namespace {

unsigned char mixed(int32_t r, int32_t b)
{
    return static_cast<unsigned char>(0x9B ^ (r * 37 + b * 11));
}

class GraphicsTest : public testing::Test {
protected:
    void parse(const std::string& records)
    {
        std::istringstream in("GRAPHICS  " + records + "\xff");
        format.parse(in, nullptr, 0);
    }

    Image image{128, 20};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(GraphicsTest, RowsLandAtAnyShiftAndWidth)
{
    struct Case {
        int32_t x, widthBytes;
    };
    const Case cases[] = {{0, 3}, {16, 4}, {37, 5}, {0, 8}, {5, 1}, {31, 2}, {64, 7}, {88, 5}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "x " << c.x << " width " << c.widthBytes);
        parse(graphicRecord(c.x, 2, c.widthBytes, 6, mixed));
        PixelCanvas expected(128, 20);
        expected.graphic(c.x, 2, c.widthBytes, 6, mixed);
        EXPECT_TRUE(PixelCanvas::of(image) == expected);
        EXPECT_EQ(format.getDrawables().size(), 1u);
    }
}

TEST_F(GraphicsTest, ThreeBytesAtZeroAreLeftJustifiedInOneWord)
{
    parse(graphicRecord(0, 0, 3, 1, [](int32_t, int32_t b) { return 0xA0 + b; }));
    EXPECT_EQ(image.getLong(0, 0), 0xA0A1A200u);
    EXPECT_EQ(image.getLong(0, 1), 0u);
}

TEST_F(GraphicsTest, FourBytesAtSixteenTouchTwoWords)
{
    parse(graphicRecord(16, 0, 4, 1, [](int32_t, int32_t) { return 0xFF; }));
    EXPECT_EQ(image.getLong(0, 0), 0x0000FFFFu);
    EXPECT_EQ(image.getLong(0, 1), 0xFFFF0000u);
}

TEST_F(GraphicsTest, RasterBytesMayHoldEscapeAndTheEndMark)
{
    auto pattern = [](int32_t r, int32_t b) { return (r + b) % 2 == 0 ? 0x1B : 0xFF; };
    parse(graphicRecord(8, 1, 4, 3, pattern) + "\x1bL000000001900002000010000000000");
    PixelCanvas expected(128, 20);
    expected.graphic(8, 1, 4, 3, pattern);
    expected.fill(0, 19, 2, 1);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(GraphicsTest, AWidthOfZeroReadsNoBytes)
{
    parse("\x1bG00000000000000099999#" "\x1bL000000000000001000010000000000");
    PixelCanvas expected(128, 20);
    expected.fill(0, 0, 1, 1);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(GraphicsTest, OverlappingGraphicsCombineWithOr)
{
    auto left = [](int32_t, int32_t) { return 0xF0; };
    auto right = [](int32_t, int32_t) { return 0x0F; };
    parse(graphicRecord(0, 0, 2, 2, left) + graphicRecord(4, 1, 2, 2, right));
    PixelCanvas expected(128, 20);
    expected.graphic(0, 0, 2, 2, left);
    expected.graphic(4, 1, 2, 2, right);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST_F(GraphicsTest, AGraphicOverTheEdgeLeavesItsBytesToTheParser)
{
    // One dot over the right edge: the pixel bytes "A..." are then met where a record should start.
    expectFailure<KT_ERROR::parse_time_error>(
        [&] { parse("\x1bG00097000000000400001#ABCD"); },
        "no termination character found for format end, but ASCII 0x41 (A)");
    // Bytes that happen to form records are read as such.
    parse("\x1bG00097000000000400001#\x1bL000000000000002000020000000000");
    PixelCanvas expected(128, 20);
    expected.fill(0, 0, 2, 2);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
    EXPECT_EQ(format.getDrawables().size(), 2u);
}

TEST_F(GraphicsTest, AGraphicBelowTheBottomOrLeftOfTheRasterIsNotPainted)
{
    parse("\x1bG00000000170000100004#");
    EXPECT_TRUE(PixelCanvas::of(image) == PixelCanvas(128, 20));
}

TEST_F(GraphicsTest, TheEndOfInputInThePixelBytesIsAStreamFailure)
{
    std::istringstream in("GRAPHICS  \x1bG00000000000000200002#ab");
    EXPECT_THROW(format.parse(in, nullptr, 0), std::ios_base::failure);
}

TEST_F(GraphicsTest, AGraphicIsPaintedAtParseAndCannotBeRedrawn)
{
    parse(graphicRecord(0, 0, 1, 1, mixed));
    KT_AC::Drawable& graphic = format.getDrawables()[0];
    EXPECT_TRUE(graphic.getIsStatic());
    EXPECT_TRUE(graphic.getPaintedAtParse());
    image.clear();
    graphic.paint(image, KT_AC::STAGE_STATIC);
    EXPECT_TRUE(PixelCanvas::of(image) == PixelCanvas(128, 20));
    expectFailure<KT_ERROR::internal_autocode_error>(
        [&] { graphic.paint(image, KT_AC::STAGE_ALL_STATIC); },
        "call to unimplemented method Drawable_Graphics::redraw( Image &)");
}

TEST_F(GraphicsTest, TheProcessWideOffsetMovesTheGraphic)
{
    KT_AC::drawableXOffset = 32;
    parse(graphicRecord(0, 0, 1, 1, [](int32_t, int32_t) { return 0x80; }));
    KT_AC::drawableXOffset = 0;
    EXPECT_EQ(image.getPixel(32, 0), 1);
    EXPECT_EQ(image.getPixel(0, 0), 0);
}

TEST_F(GraphicsTest, ANegativeWidthReadsNoBytesAndPaintsNothingEvenAtTheRightEdge)
{
    // x 128 lies just past a raster of 128 dots, but a width of -8 dots still passes the bounds test.
    parse(graphicRecord(128, 0, -1, 3, [](int32_t, int32_t) { return 0xFF; }) +
          "\x1bL000000000000001000010000000000");
    PixelCanvas expected(128, 20);
    expected.fill(0, 0, 1, 1);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
    EXPECT_EQ(format.getDrawables().size(), 2u);
}

TEST_F(GraphicsTest, TheBandGrowsWithTheRowsThatCarryInk)
{
    parse(graphicRecord(0, 4, 2, 5, [](int32_t r, int32_t) { return r == 1 || r == 3 ? 0x18 : 0x00; }));
    EXPECT_EQ(image.getFirstUsedRow(), 5);
    EXPECT_EQ(image.getLastUsedRow(), 7);
}

TEST_F(GraphicsTest, ABadDigitIsTheFieldReadersFault)
{
    expectFailure<KT_ERROR::parse_time_error>(
        [&] { parse("\x1bG000000000000001000x1#\xff"); },
        "non-digit or too many sign characters read while parsing number: x");
    EXPECT_EQ(format.getDrawables().size(), 0u);
}
