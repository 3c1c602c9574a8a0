#include "drawables/Drawable_Barcode_1D.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>

#include "drawables/DrawableList.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "symbologies/Code128.h"
#include "symbologies/Code25Int.h"
#include "symbologies/Code39.h"
#include "symbologies/Ean13.h"
#include "symbologies/Ean8.h"
#include "symbologies/ITF14.h"
#include "symbologies/UpcA.h"
#include "symbologies/UpcE.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

using KT_FMT::KT_Format;

namespace {

// An ESC # B record: type characters, the common fields with a content field (F text or V reference),
// height and module, then `group`.
std::string barcodeRecord(const std::string& type, int32_t x, int32_t y, char turns, char reversed,
                          const std::string& field, int32_t height, int32_t module, const std::string& group)
{
    return "\x1b#B" + type + numberField(x) + numberField(y) + turns + reversed + field + "\x0b" +
           numberField(height) + numberField(module, 2) + group;
}

class Barcode1DTest : public fonttest::FontFixture {
protected:
    // Parses the records as a format on a fresh raster of 640 x 640.
    void parse(const std::string& records)
    {
        image = std::make_unique<Image>(640, 640);
        format = std::make_unique<KT_Format>(nullptr, image.get(), nullptr);
        std::istringstream in("BARCODES  " + records + "\xff");
        format->parse(in, nullptr, 0);
    }

    const KT_AC::Drawable& drawable(size_t at) { return format->getDrawables()[at]; }

    // The raster as `symbol` paints itself on a fresh one.
    PixelCanvas paintedBy(Barcode&& symbol)
    {
        Image expected(640, 640);
        Area area{};
        symbol.paint(expected, area);
        return PixelCanvas::of(expected);
    }

    std::unique_ptr<Image> image;
    std::unique_ptr<KT_Format> format;
};

struct TypeCase {
    const char* type;
    const char* content;
    const char* group;
    std::function<void(Image&, Area&)> paint;
};

}  // namespace

TEST_F(Barcode1DTest, EveryTypeReadsItsFieldGroupAndPaintsItsSymbologyWithThem)
{
    // Text on, check on where a group has it; wide width 7 against a module of 2.
    const TypeCase cases[] = {
        {"00", "1234567", "11",
         [](Image& i, Area& a) { Ean8("1234567", 30, 40, 2, 150, 1, true, true, 0).paint(i, a); }},
        {"01", "400638133393", "11",
         [](Image& i, Area& a) { Ean13("400638133393", 30, 40, 2, 150, 1, true, true, 0).paint(i, a); }},
        {"02", "123456", "0711",
         [](Image& i, Area& a) { Code25Int("123456", 30, 40, 2, 150, 1, true, true, 0, 7).paint(i, a); }},
        {"03", "KTR-39", "0711",
         [](Image& i, Area& a) { Code39("KTR-39", 30, 40, 2, 150, 1, true, true, 0, 7).paint(i, a); }},
        {"04", "AB12cd", "1102",
         [](Image& i, Area& a) { Code128("AB12cd", 30, 40, 2, 150, 1, true, true, 0, 2).paint(i, a); }},
        {"05", "03600029145", "11",
         [](Image& i, Area& a) { UpcA("03600029145", 30, 40, 2, 150, 1, true, true, 0).paint(i, a); }},
        {"06", "123456", "11",
         [](Image& i, Area& a) { UpcE("123456", 30, 40, 2, 150, 1, true, true, 0).paint(i, a); }},
        {"08", "1234567890123", "0711",
         [](Image& i, Area& a) { ITF14("1234567890123", 30, 40, 2, 150, 1, true, true, 0, 7).paint(i, a); }},
    };
    for (const TypeCase& c : cases) {
        SCOPED_TRACE(c.type);
        parse(barcodeRecord(c.type, 30, 40, '1', '0', std::string("F") + c.content, 150, 2, c.group));
        Image expected(640, 640);
        Area area{};
        c.paint(expected, area);
        EXPECT_TRUE(PixelCanvas::of(*image) == PixelCanvas::of(expected));
        const Area& painted = drawable(0).getPaintedArea();
        EXPECT_EQ(painted.left, area.left);
        EXPECT_EQ(painted.top, area.top);
        EXPECT_EQ(painted.right, area.right);
        EXPECT_EQ(painted.bottom, area.bottom);
        EXPECT_GT(area.right, area.left);
    }
}

TEST_F(Barcode1DTest, AReversedSymbolIsPaintedReversed)
{
    parse(barcodeRecord("03", 30, 40, '0', '1', "FAB", 100, 2, "0600"));
    EXPECT_TRUE(PixelCanvas::of(*image) == paintedBy(Code39("AB", 30, 40, 2, 100, 0, false, false, 1, 6)));
}

TEST_F(Barcode1DTest, TheReaderAddsTheDrawableOffsetToX)
{
    KT_AC::drawableXOffset = 32;
    parse(barcodeRecord("03", 30, 40, '0', '0', "FAB", 100, 2, "0600"));
    KT_AC::drawableXOffset = 0;
    EXPECT_EQ(drawable(0).getX(), 62);
    EXPECT_TRUE(PixelCanvas::of(*image) == paintedBy(Code39("AB", 62, 40, 2, 100, 0, false, false, 0, 6)));
}

TEST_F(Barcode1DTest, AnyNonZeroTextDigitCountsAsOn)
{
    parse(barcodeRecord("03", 30, 40, '0', '0', "FAB", 150, 2, "0690"));
    EXPECT_TRUE(PixelCanvas::of(*image) == paintedBy(Code39("AB", 30, 40, 2, 150, 0, false, true, 0, 6)));
}

TEST_F(Barcode1DTest, Itf14UsesItsWideWidthAndAddsItsCheckDigitWithTheCheckFieldOff)
{
    parse(barcodeRecord("08", 30, 40, '0', '0', "F1234567890123", 100, 2, "0500"));
    EXPECT_TRUE(PixelCanvas::of(*image) == paintedBy(ITF14("1234567890123", 30, 40, 2, 100, 0, true, false, 0, 5)));
    EXPECT_FALSE(PixelCanvas::of(*image) == paintedBy(ITF14("1234567890123", 30, 40, 2, 100, 0, true, false, 0, 6)));
}

TEST_F(Barcode1DTest, AnUnknownTypeFailsWithItsNumberAfterTheModuleWidth)
{
    for (const char* type : {"15", "99", "-1"}) {
        SCOPED_TRACE(type);
        expectFailure<KT_ERROR::bad_escape_sequence>(
            [&] { parse(barcodeRecord(type, 30, 40, '0', '0', "F12", 100, 2, "11")); },
            std::string("undefined barcode type ") + type);
    }
}

TEST_F(Barcode1DTest, LettersAsTheTypeReadAsEan8)
{
    parse(barcodeRecord("AB", 30, 40, '0', '0', "F1234567", 100, 2, "00"));
    EXPECT_TRUE(PixelCanvas::of(*image) == paintedBy(Ean8("1234567", 30, 40, 2, 100, 0, false, false, 0)));
}

TEST_F(Barcode1DTest, ASymbolOffTheRasterIsDroppedAndTheFormatGoesOn)
{
    parse(barcodeRecord("03", 600, 40, '0', '0', "FABCDEF", 100, 2, "0600") + boxRecord(5, 5, 10, 10, 0, 0));
    EXPECT_EQ(format->getDrawables().size(), 2u);
    EXPECT_EQ(image->getPixel(5, 5), 1) << "the box behind the barcode";
    EXPECT_EQ(image->getPixel(600, 40), 1) << "the first row up to the word that left the raster";
    EXPECT_EQ(image->getPixel(600, 41), 0);
}

TEST_F(Barcode1DTest, ASymbolErrorOtherThanOffTheRasterPassesOn)
{
    expectFailure<KT_ERROR::bad_escape_sequence>(
        [&] { parse(barcodeRecord("01", 30, 40, '0', '0', "F40063813339A", 100, 2, "00")); }, "EAN-13: wrong data A");
    expectFailure<KT_ERROR::render_time_error>(
        [&] { parse(barcodeRecord("03", 30, 40, '0', '0', "FAB", 11, 2, "0600")); },
        "Code 39: bar height is too small");
}

TEST_F(Barcode1DTest, TheReversedFieldAcceptsOnlyZeroOrOne)
{
    expectFailure<KT_ERROR::bad_escape_sequence>(
        [&] { parse(barcodeRecord("03", 30, 40, '0', '2', "FAB", 100, 2, "0600")); },
        "datamatrix,qrcode,databar: reversed option needs to be '0' or '1', got: 2 30 40");
}

TEST_F(Barcode1DTest, EachPaintBuildsTheSymbolAnewFromTheElement)
{
    parse("\x1bVIBatch\x0b" "AB\x0b" "Batch ?\x0b" "0 00000010\x0b\x0b" +
          barcodeRecord("03", 30, 40, '0', '0', "VIBatch", 100, 2, "0600"));
    format->setContentOfElement("VIBatch", "CD");
    EXPECT_TRUE(PixelCanvas::of(*image) == paintedBy(Code39("CD", 30, 40, 2, 100, 0, false, false, 0, 6)));
}
