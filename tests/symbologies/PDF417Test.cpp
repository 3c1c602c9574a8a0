#include "symbologies/PDF417.h"

#include <gtest/gtest.h>

#include <string>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"
#include "tests/symbologies/ZintTestSupport.h"

using zinttest::placed;

namespace {

// Paints `content` with `symbol` at (20, 20).
Image& painted(Image& image, PDF417& symbol, const std::string& content, int32_t orientation)
{
    symbol.setOrientation(orientation);
    auto context = placed(image, 20, 20);
    symbol.paint(content, context);
    return image;
}

}  // namespace

TEST(PDF417, EveryOrientationReadsBack)
{
    // Orientations 1 and 3 lay the rows across as a mirror image, which the reader takes as well.
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(640, 640);
        PDF417 symbol(BARCODE_PDF417, 4, 2, 120, 2);
        painted(image, symbol, "ktr-render PDF417 0123456789", turns);
        EXPECT_EQ(zinttest::zxingRead(image, "PDF417"), "ktr-render PDF417 0123456789");
    }
}

TEST(PDF417, TheTruncatedAndTheHIBCFormsReadBackAtEveryOrientation)
{
    struct Row {
        int32_t symbology;
        const char* content;
        const char* read;
    };
    // HIBC adds its "+" and a check character.
    const Row rows[] = {
        {BARCODE_PDF417TRUNC, "TRUNCATED 42", "TRUNCATED 42"},
        {BARCODE_HIBC_PDF, "A123BJC5D6E71", "+A123BJC5D6E71"},
    };
    for (const Row& r : rows)
        for (int32_t turns = 0; turns < 4; ++turns) {
            SCOPED_TRACE(testing::Message() << r.symbology << " turns " << turns);
            Image image(640, 640);
            PDF417 symbol(r.symbology, 3, 2, 120, 2);
            painted(image, symbol, r.content, turns);
            EXPECT_EQ(zinttest::zxingRead(image, "PDF417").substr(0, std::string(r.read).size()), r.read);
        }
}

// No installed scanner reads Micro PDF417: it is held against zint's own matrix.
TEST(PDF417, MicroPDF417IsZintsMatrixWithRowsSharingTheHeight)
{
    Image image(640, 640);
    PDF417 symbol(BARCODE_MICROPDF417, 2, 3, 100, 2);
    painted(image, symbol, "MICRO", 0);
    const zint_symbol& s = symbol.getSymbol();
    const zinttest::Modules dump =
        zinttest::zintDump("-b 84 --cols=2 --secure=2 -d MICRO", static_cast<size_t>(s.width));
    ASSERT_EQ(dump.size(), static_cast<size_t>(s.rows));
    const int32_t v = 100 / s.rows;
    PixelCanvas expected(640, 640);
    for (int32_t r = 0; r < s.rows; ++r)
        for (int32_t c = 0; c < s.width; ++c)
            if (dump[r][c] == '1')
                expected.fill(20 + 3 * c, 20 + v * r, 3, v);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST(PDF417, EachOrientationReadsTheMatrixItsOwnWay)
{
    // Across (1 and 3) a row runs down the raster: the symbol is mirrored, not turned. Backwards (2 and 3) the
    // read is one row and one column beyond a clean mirror, so row 0 and column 0 are lost.
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(640, 640);
        PDF417 symbol(BARCODE_PDF417, 2, 1, 60, 1);
        painted(image, symbol, "LOST", turns);
        const zint_symbol& s = symbol.getSymbol();
        const int32_t v = 60 / s.rows;
        const bool across = turns == 1 || turns == 3, backwards = turns >= 2;
        for (int32_t r = 0; r < s.rows; ++r)
            for (int32_t c = 0; c < s.width; ++c) {
                const bool expected = backwards ? r > 0 && c > 0 && zintModule(s, s.rows - r, s.width - c)
                                                : zintModule(s, r, c);
                const int32_t x = across ? v * r : c, y = across ? c : v * r;
                ASSERT_EQ(image.getPixel(20 + x, 20 + y) != 0, expected) << r << ", " << c;
            }
    }
}

TEST(PDF417, ModuleWidthZeroOrLessIsOne)
{
    Image zero(640, 640), one(640, 640);
    PDF417 a(BARCODE_PDF417, 2, 0, 60, 1), b(BARCODE_PDF417, 2, 1, 60, 1);
    painted(zero, a, "WIDTH", 0);
    painted(one, b, "WIDTH", 0);
    EXPECT_TRUE(PixelCanvas::of(zero) == PixelCanvas::of(one));
}

// Any other height below the row count draws the library's warning first: code 4.
TEST(PDF417, AHeightOfZeroPaintsNothing)
{
    Image image(640, 640);
    PDF417 symbol(BARCODE_PDF417, 2, 2, 0, 1);
    EXPECT_NO_THROW(painted(image, symbol, "NO HEIGHT", 0));
    EXPECT_GT(symbol.getSymbol().rows, 0);
    EXPECT_EQ(zinttest::inkCount(image), 0);
}

TEST(PDF417, ANewContentReplacesTheOldSymbolWhole)
{
    Image changed(640, 640), fresh(640, 640);
    PDF417 symbol(BARCODE_PDF417, 3, 2, 90, 2), other(BARCODE_PDF417, 3, 2, 90, 2);
    painted(changed, symbol, "A MUCH LONGER FIRST CONTENT", 1);
    painted(changed, symbol, "SHORT", 1);
    painted(fresh, other, "SHORT", 1);
    EXPECT_TRUE(PixelCanvas::of(changed) == PixelCanvas::of(fresh));
}

TEST(PDF417, RefusalsRaiseTheErrorOfTheirSymbologyAndCode)
{
    struct Row {
        int32_t symbology;
        int32_t columns;
        int32_t height;
        int32_t level;
        std::string content;
        const char* text;
    };
    const Row rows[] = {
        {BARCODE_PDF417, 3, 120, 2, "", "ERROR in PDF_417  - ERROR_INVALID_DATA "},
        {BARCODE_PDF417TRUNC, 3, 120, 2, "", "ERROR in PDF_417 PDF417TRUNC - ERROR_INVALID_DATA "},
        {BARCODE_MICROPDF417, 1, 120, 2, std::string(300, 'A'), "ERROR in PDF_417 MICROPDF417 - ERROR_TOO_LONG "},
        {BARCODE_HIBC_PDF, 3, 120, 2, "a!", "ERROR in PDF_417 HIBC_PDF - ERROR_INVALID_DATA "},
        {BARCODE_PDF417, 31, 120, 2, "COLUMNS", "ERROR in PDF_417  ERROR: Not defined. ERROR Nr.2"},
        {BARCODE_PDF417, 3, 120, 9, "LEVEL", "ERROR in PDF_417  ERROR: Not defined. ERROR Nr.2"},
        {BARCODE_PDF417, 3, 10, 2, "LOW", "ERROR in PDF_417  ERROR: Not defined. ERROR Nr.4"},
        {BARCODE_PDF417, 3, 99999, 2, "HIGH", "ERROR in PDF_417  ERROR: Not defined. ERROR Nr.8"},
        {BARCODE_QRCODE, 3, 120, 2, "QR",
         "ERROR in PDF_417 Barcode is not defined. (Strange) ERROR: Not defined. ERROR Nr.8"},
        {BARCODE_RSS14, 3, 120, 2, "1", "ERROR in PDF_417 OMNIDIRECTIONAL_TRUNCATED ERROR: Not defined. ERROR Nr.8"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.text);
        Image image(640, 640);
        PDF417 symbol(r.symbology, r.columns, 2, r.height, r.level);
        expectFailure<KT_ERROR::format_error>([&] { painted(image, symbol, r.content, 0); }, r.text);
        EXPECT_EQ(zinttest::inkCount(image), 0);
    }
}

TEST(PDF417, AModuleOffTheRasterEndsThePaintAsTheRasterSays)
{
    Image image(128, 128);
    PDF417 symbol(BARCODE_PDF417, 3, 2, 60, 2);
    EXPECT_THROW(painted(image, symbol, "OFF THE RASTER", 0), KT_ERROR::drawable_off_format);
}
