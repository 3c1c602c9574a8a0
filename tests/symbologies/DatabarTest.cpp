#include "symbologies/Databar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"
#include "tests/support/ScanSupport.h"
#include "tests/symbologies/ZintTestSupport.h"

using zinttest::placed;

namespace {

class DatabarTest : public zinttest::GS1Fixture {};

void paint(Image& image, Databar& symbol, const std::string& content, int32_t orientation, int32_t x = 40,
           int32_t y = 40)
{
    symbol.setOrientation(orientation);
    auto context = placed(image, x, y);
    symbol.paint(image, content, context);
}

const std::string expanded = "0101234567890128" "10ABC123\\<FNC1>2112345";
// The words of row `y` that hold ink.
int32_t inkWords(Image& image, int32_t y)
{
    int32_t ink = 0;
    for (int32_t col = 0; col < static_cast<int32_t>(image.getWidth() / 32); ++col)
        ink += image.getLong(y, col) != 0 ? 1 : 0;
    return ink;
}

const std::string expandedText = "(01)01234567890128(10)ABC123(21)12345";

}  // namespace

// ZXing reads the single-row symbols, zbar the stacked ones too; neither reads DataBar Limited.
TEST_F(DatabarTest, EverySymbologyReadsBackAtEveryOrientation)
{
    struct Row {
        int32_t symbology;
        std::string content;
        std::string zbarRead;
        std::string zxingFormat;
        std::string zxingRead;
    };
    const Row rows[] = {
        {BARCODE_RSS14, "0123456789012", "0101234567890128", "DataBar", "01234567890128"},
        {BARCODE_RSS_EXP, expanded, "0101234567890128" "10ABC123\x1d" "2112345", "DataBarExpanded", expandedText},
        {BARCODE_RSS14STACK, "0123456789012", "0101234567890128", "", ""},
        {BARCODE_RSS14STACK_OMNI, "0123456789012", "0101234567890128", "", ""},
        {BARCODE_RSS_EXPSTACK, expanded, "0101234567890128" "10ABC123\x1d" "2112345", "", ""},
    };
    for (const Row& r : rows)
        for (int32_t turns = 0; turns < 4; ++turns) {
            SCOPED_TRACE(testing::Message() << r.symbology << " turns " << turns);
            Image image(960, 960);
            Databar symbol(r.symbology, 150, 3, 0, 2);
            paint(image, symbol, r.content, turns);
            EXPECT_EQ(scantest::scanInk(image, scantest::zbar), r.zbarRead);
            if (!r.zxingFormat.empty()) {
                EXPECT_EQ(zinttest::zxingRead(image, r.zxingFormat), r.zxingRead);
            }
        }
}

TEST_F(DatabarTest, LimitedIsZintsRowAtEveryOrientation)
{
    const std::string row = zinttest::zintDump("-b 30 -d 0123456789012", 79).at(0);
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(320, 320);
        Databar symbol(BARCODE_RSS_LTD, 20, 2, 0, 0);
        paint(image, symbol, "0123456789012", turns);
        ASSERT_EQ(symbol.getSymbol().width, 79);
        std::string read;
        for (int32_t c = 0; c < 79; ++c) {
            const int32_t along = 40 + 2 * c, back = 40 + 158 - 2 * c - 1;
            const int32_t pixel[4] = {image.getPixel(along, 50), image.getPixel(50, along), image.getPixel(back, 50),
                                      image.getPixel(50, back)};
            read += pixel[turns] != 0 ? '1' : '0';
        }
        EXPECT_EQ(read, row);
    }
}

TEST_F(DatabarTest, RowHeightsFollowTheSymbology)
{
    struct Row {
        int32_t symbology;
        int32_t height;
        std::string content;
        std::vector<int32_t> heights;
    };
    const Row rows[] = {
        {BARCODE_RSS14, 150, "0123456789012", {150}},
        {BARCODE_RSS_LTD, 150, "0123456789012", {150}},
        {BARCODE_RSS_EXP, 150, expanded, {150}},
        // 130 / 13 * 5 and 130 / 13 * 7 about a separator of one module.
        {BARCODE_RSS14STACK, 130, "0123456789012", {50, 3, 70}},
        {BARCODE_RSS14STACK, 140, "0123456789012", {50, 3, 70}},
        // (150 - 3 * 3) / 2 above and below three separators.
        {BARCODE_RSS14STACK_OMNI, 150, "0123456789012", {70, 3, 3, 3, 70}},
        // Three data rows share what the two groups of three separators leave: (150 - 18) / 3.
        {BARCODE_RSS_EXPSTACK, 150, expanded, {44, 3, 3, 3, 44, 3, 3, 3, 44}},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << r.symbology << " height " << r.height);
        Image image(960, 960);
        Databar symbol(r.symbology, r.height, 3, 0, 2);
        paint(image, symbol, r.content, 0);
        EXPECT_EQ(symbol.getRowHeights(), r.heights);
        int32_t total = 0;
        for (int32_t h : r.heights)
            total += h;
        EXPECT_GT(inkWords(image, 40 + total - 1), 0);
        EXPECT_EQ(inkWords(image, 40 + total), 0);
    }
}

namespace {

class DatabarText : public fonttest::FontFixture {
protected:
    void SetUp() override
    {
        FontFixture::SetUp();
        KT_FMT::fillGS1Table();
    }
};

// The inked box of the raster within `region`; all zero if there is none.
Area inkBox(Image& image, Area region)
{
    Area box{region.right + 1, region.bottom + 1, -1, -1};
    for (int32_t y = region.top; y <= region.bottom; ++y)
        for (int32_t x = region.left; x <= region.right; ++x)
            if (image.getPixel(x, y) != 0)
                box = Area{std::min(box.left, x), std::min(box.top, y), std::max(box.right, x),
                           std::max(box.bottom, y)};
    return box.right < 0 ? Area{} : box;
}

}  // namespace

TEST_F(DatabarText, TheLineFillsTheBandBesideTheFootOfTheSymbolAtEveryOrientation)
{
    // 96 modules of 3 dots, 150 high, a band of 90: the symbol and the band take 288 by 240 dots.
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(480, 480);
        Databar symbol(BARCODE_RSS14, 150, 3, 90, 0);
        paint(image, symbol, "0123456789012", turns);
        const bool across = turns == 1 || turns == 3;
        const Area band[4] = {{40, 190, 327, 279}, {40, 40, 129, 327}, {40, 40, 327, 129}, {190, 40, 279, 327}};
        const Area symbolArea[4] = {{40, 40, 327, 189}, {130, 40, 279, 327}, {40, 130, 327, 279}, {40, 40, 189, 327}};
        const Area text = inkBox(image, band[turns]);
        EXPECT_NE(text.right, 0) << "a line in the band";
        const int32_t run = across ? text.bottom - text.top : text.right - text.left;
        EXPECT_GT(run, 288 * 3 / 4) << "the line runs along most of the symbol";
        EXPECT_LE(run, 288 + 20);
        // The symbol itself stands where the band is not; it opens with a space module.
        const Area bars = inkBox(image, symbolArea[turns]);
        EXPECT_EQ(across ? bars.bottom - bars.top : bars.right - bars.left, 284);
        EXPECT_EQ(scantest::scanInk(image, scantest::zbar, symbolArea[turns]), "0101234567890128");
    }
}

TEST_F(DatabarText, TheBandCapsTheFontSize)
{
    Image wide(480, 480), narrow(480, 480);
    Databar big(BARCODE_RSS14, 150, 3, 90, 0), small(BARCODE_RSS14, 150, 3, 12, 0);
    paint(wide, big, "0123456789012", 0);
    paint(narrow, small, "0123456789012", 0);
    const Area tall = inkBox(wide, Area{0, 190, 479, 479}), low = inkBox(narrow, Area{0, 190, 479, 479});
    // The width asks for size 6; (0.9 * 12 - 3) / 3 allows 2.
    EXPECT_LT(low.bottom - low.top, (tall.bottom - tall.top) / 2);
    EXPECT_LT(low.right - low.left, (tall.right - tall.left) / 2);
}

TEST_F(DatabarText, StackedSymbolsAndABandOfZeroHaveNoLine)
{
    struct Row {
        int32_t symbology;
        int32_t textHeight;
        std::string content;
    };
    const Row rows[] = {
        {BARCODE_RSS14, 0, "0123456789012"},
        {BARCODE_RSS14STACK, 90, "0123456789012"},
        {BARCODE_RSS14STACK_OMNI, 90, "0123456789012"},
        {BARCODE_RSS_EXPSTACK, 90, expanded},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.symbology);
        Image image(480, 480);
        Databar symbol(r.symbology, 150, 3, r.textHeight, 2);
        paint(image, symbol, r.content, 0);
        EXPECT_EQ(inkBox(image, Area{0, 190, 479, 479}).right, 0);
    }
}

TEST_F(DatabarText, TheLineOfAPreviousPaintStays)
{
    Image first(480, 480), second(480, 480), both(480, 480);
    Databar a(BARCODE_RSS14, 150, 3, 90, 0), b(BARCODE_RSS14, 150, 3, 90, 0), c(BARCODE_RSS14, 150, 3, 90, 0);
    paint(first, a, "1111111111111", 0);
    paint(second, b, "2222222222222", 0);
    paint(both, c, "1111111111111", 0);
    paint(both, c, "2222222222222", 0);
    PixelCanvas expected = PixelCanvas::of(second);
    const PixelCanvas old = PixelCanvas::of(first);
    for (int32_t y = 190; y < 480; ++y)
        for (int32_t x = 0; x < 480; ++x)
            expected.at(x, y) |= old.pixels[static_cast<size_t>(y) * 480 + x];
    EXPECT_TRUE(PixelCanvas::of(both) == expected);
}

TEST_F(DatabarTest, ANewContentReplacesTheOldRowsWhole)
{
    Image changed(960, 960), fresh(960, 960);
    Databar symbol(BARCODE_RSS_EXPSTACK, 150, 3, 0, 2), other(BARCODE_RSS_EXPSTACK, 150, 3, 0, 2);
    paint(changed, symbol, expanded, 3);
    paint(changed, symbol, "0101234567890128", 3);
    paint(fresh, other, "0101234567890128", 3);
    EXPECT_TRUE(PixelCanvas::of(changed) == PixelCanvas::of(fresh));
    EXPECT_EQ(scantest::scanInk(changed, scantest::zbar), "0101234567890128");
}

TEST_F(DatabarTest, RefusalsRaiseTheErrorOfTheirSymbologyAndCode)
{
    struct Row {
        int32_t symbology;
        int32_t height;
        std::string content;
        const char* text;
    };
    const Row rows[] = {
        {BARCODE_RSS_EXP, 150, "7712345", "ERROR in Databar EXPANDED ai_number_replace: no more AI-Found"},
        {BARCODE_RSS_EXP, 150, "310",
         "ERROR in Databar EXPANDED ai_number_replace: Reached end of GS1-String can not insert']'. Check your "
         "input-message!"},
        {BARCODE_RSS_EXPSTACK, 150, "10" + std::string(20, '1'),
         "ERROR in Databar EXPANDED_STACKED ai_number_replace: Variable_Length exceeded the HasVariableLength"},
        {BARCODE_RSS_EXP, 150, "0112345", "ERROR in Databar EXPANDED ai_number_replace: length exeeded"},
        {BARCODE_RSS14, 150, "012345678901234", "ERROR in Databar OMNIDIRECTIONAL_TRUNCATED - ERROR_TOO_LONG "},
        {BARCODE_RSS_LTD, 150, "2123456789012", "ERROR in Databar LIMITED - ERROR_INVALID_DATA "},
        {BARCODE_RSS14STACK, 150, "01234A", "ERROR in Databar STACKED - ERROR_INVALID_DATA "},
        {BARCODE_RSS14STACK_OMNI, 150, "01234567890127",
         "ERROR in Databar STACKED_OMNIDIRECTIONAL ERROR: Not defined. ERROR Nr.7"},
        {BARCODE_RSS_EXP, 150, "0101234567890127", "ERROR in Databar EXPANDED ERROR: Not defined. ERROR Nr.4"},
        {BARCODE_RSS14, 99999, "0123456789012",
         "ERROR in Databar OMNIDIRECTIONAL_TRUNCATED ERROR: Not defined. ERROR Nr.8"},
        {BARCODE_PDF417, 150, "0123456789012", "ERROR in Databar  ERROR: Not defined. ERROR Nr.8"},
        {BARCODE_QRCODE, 150, "0123456789012",
         "ERROR in Databar Barcode is not defined. (Strange) ERROR: Not defined. ERROR Nr.8"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.text);
        Image image(960, 960);
        Databar symbol(r.symbology, r.height, 3, 0, 2);
        expectFailure<KT_ERROR::format_error>([&] { paint(image, symbol, r.content, 0); }, r.text);
        EXPECT_EQ(zinttest::inkCount(image), 0);
    }
}

TEST_F(DatabarTest, AContentEndingRightAfterAFixedFieldReadsBack)
{
    Image image(960, 960);
    Databar symbol(BARCODE_RSS_EXP, 150, 3, 0, 0);
    paint(image, symbol, "0101234567890128", 0);
    EXPECT_EQ(scantest::scanInk(image, scantest::zbar), "0101234567890128");
}

TEST_F(DatabarTest, ARewriteFailureLeavesTheOldSymbolAndALibraryFailureClearsIt)
{
    Image image(960, 960);
    Databar symbol(BARCODE_RSS_EXP, 150, 3, 0, 0);
    paint(image, symbol, expanded, 0);
    const PixelCanvas before = PixelCanvas::of(image);
    EXPECT_THROW(paint(image, symbol, "7712345", 0), KT_ERROR::format_error);
    EXPECT_TRUE(PixelCanvas::of(image) == before);
    EXPECT_THROW(paint(image, symbol, "0101234567890127", 0), KT_ERROR::format_error);
    EXPECT_EQ(zinttest::inkCount(image), 0);
}

TEST_F(DatabarTest, ASymbolRefusedWithAWarningIsClearedByTheNextPaint)
{
    // A bad check digit still gives rows, of another count than the symbol before and after it.
    Image image(960, 960), fresh(960, 960);
    Databar symbol(BARCODE_RSS_EXPSTACK, 150, 3, 0, 2), other(BARCODE_RSS_EXPSTACK, 150, 3, 0, 2);
    paint(image, symbol, "0101234567890128", 0);
    EXPECT_THROW(paint(image, symbol, expanded + "\\<FNC1>0101234567890127", 0), KT_ERROR::format_error);
    EXPECT_EQ(zinttest::inkCount(image), 0);
    EXPECT_EQ(symbol.getSymbol().rows, 13);
    paint(image, symbol, "0101234567890128", 0);
    paint(fresh, other, "0101234567890128", 0);
    EXPECT_TRUE(PixelCanvas::of(image) == PixelCanvas::of(fresh));
}

TEST_F(DatabarTest, ARunOffTheRasterEndsThePaintAsTheRasterSays)
{
    Image image(128, 480);
    Databar symbol(BARCODE_RSS14, 150, 3, 0, 0);
    EXPECT_THROW(paint(image, symbol, "0123456789012", 0), KT_ERROR::drawable_off_format);
}
