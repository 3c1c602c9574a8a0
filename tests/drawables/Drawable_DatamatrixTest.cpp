#include "drawables/Drawable_Datamatrix.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/GFX_Exception.h"
#include "graphics/Image.h"
#include "graphics/TransformedContext.h"
#include "symbologies/Datamatrix.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"
#include "tests/support/ScanSupport.h"

using KT_AC::Drawable_Datamatrix;
using KT_FMT::KT_Format;

namespace {

struct Record {
    int32_t x = 100;
    int32_t y = 80;
    int32_t orientation = 0;
    char reversed = '0';
    std::string content = "123456";
    int32_t module = 4;
    int32_t width = 0;
    int32_t height = 0;
    int32_t ecc = 200;

    std::string bytes() const
    {
        return "\x1b#B07" + numberField(x) + numberField(y) + numberField(orientation, 1) + reversed + "F" + content +
               "\v" + numberField(module, 2) + numberField(width, 3) + numberField(height, 3) + numberField(ecc, 3) +
               "71";
    }
};

class DatamatrixDrawableTest : public testing::Test {
protected:
    void parse(const Record& record) { parse(record.bytes()); }
    void parse(const std::string& records)
    {
        image.clear();
        format.getDrawables().clear();
        format.getElements().clear();
        std::istringstream in("MATRIX    " + records + "\xff");
        format.parse(in, nullptr, 0);
    }
    Drawable_Datamatrix& drawable() { return dynamic_cast<Drawable_Datamatrix&>(format.getDrawables()[0]); }

    Image image{640, 480};
    KT_Format format{nullptr, &image, nullptr};
};

// The inked box of a raster: left, top, right, bottom.
Area inkBox(Image& image)
{
    Area box{static_cast<int32_t>(image.getWidth()), static_cast<int32_t>(image.getHeight()), -1, -1};
    for (int32_t y = 0; y < static_cast<int32_t>(image.getHeight()); ++y)
        for (int32_t x = 0; x < static_cast<int32_t>(image.getWidth()); ++x)
            if (image.getPixel(x, y) != 0) {
                box.left = std::min(box.left, x);
                box.top = std::min(box.top, y);
                box.right = std::max(box.right, x);
                box.bottom = std::max(box.bottom, y);
            }
    return box;
}

std::string zxingRead(Image& image)
{
    return scantest::scanInk(image, [](const std::string& path) { return scantest::zxing(path, "DataMatrix"); });
}

}  // namespace

TEST_F(DatamatrixDrawableTest, ARecordReadsEveryFieldAndMakesItsSymbol)
{
    Record record;
    record.orientation = 2;
    record.reversed = '1';
    record.module = 3;
    record.width = 18;
    record.height = 8;
    parse(record);
    ASSERT_EQ(format.getDrawables().size(), 1u);
    Drawable_Datamatrix& d = drawable();
    EXPECT_EQ(d.getX(), 100);
    EXPECT_EQ(d.getY(), 80);
    EXPECT_EQ(d.getOrientation(), 2);
    EXPECT_TRUE(d.isReversed());
    EXPECT_EQ(d.getContentId(), "&0");
    EXPECT_TRUE(d.getIsStatic());
    EXPECT_EQ(d.getModule(), 3);
    EXPECT_EQ(d.getWidth(), 18);
    EXPECT_EQ(d.getHeight(), 8);
    EXPECT_EQ(d.getEcc(), 200);
    EXPECT_EQ(d.getReservedDigit(), 7);
    EXPECT_TRUE(d.getReservedFlag());
    EXPECT_EQ(d.getSymbol().getSize().id, 25);
}

TEST_F(DatamatrixDrawableTest, BadSymbolParametersFailWhileTheFormatIsRead)
{
    struct Row {
        int32_t module;
        int32_t width;
        int32_t height;
        int32_t ecc;
        const char* message;
    };
    const Row rows[] = {
        {4, 0, 0, 0, "datamatrix: only supporting ecc level 200, not 0"},
        {0, 0, 0, 200, "datamatrix: module size must be greater than zero "},
        {4, 11, 11, 200, "datamatrix: illegal symbol size (11/11)"},
        {4, 8, 18, 200, "datamatrix: illegal symbol size (8/18)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        Record record;
        record.module = row.module;
        record.width = row.width;
        record.height = row.height;
        record.ecc = row.ecc;
        // The content is bad as well: it is not looked at before painting.
        record.content = "\\<ECI(1)>";
        expectFailure<KT_ERROR::drawable_illegal_parameter>([&] { parse(record); }, row.message);
        EXPECT_EQ(format.getDrawables().size(), 0u);
    }
}

TEST_F(DatamatrixDrawableTest, AReversedFlagOtherThanZeroOrOneFailsWithThePosition)
{
    Record record;
    record.reversed = '2';
    expectFailure<KT_ERROR::bad_escape_sequence>(
        [&] { parse(record); }, "datamatrix,qrcode,databar: reversed option needs to be '0' or '1', got: 2 100 80");
}

TEST_F(DatamatrixDrawableTest, BadEciOrStructuredAppendParametersFailWhenTheSymbolIsPainted)
{
    Record record;
    record.content = "\\<ECI(1)>";
    expectFailure<KT_ERROR::bad_content_sequence>([&] { parse(record); },
                                                  "datamatrix: eci parameter must be 6 characters long: 1");
    record.content = "\\<DMX_SA(0102000001)>";
    expectFailure<KT_ERROR::bad_content_sequence>(
        [&] { parse(record); }, "datamatrix: illegal file code words in structured append: 0/1");
}

TEST_F(DatamatrixDrawableTest, SizeZeroChoosesASquareFromTheContentAnd18By8IsThatRectangle)
{
    Record record;
    record.module = 2;
    record.content = "12345678901234";
    parse(record);
    EXPECT_EQ(drawable().getSymbol().getSize().id, 3);
    EXPECT_EQ(drawable().getPaintedArea().right, 100 + 28);
    EXPECT_EQ(drawable().getPaintedArea().bottom, 80 + 28);
    record.width = 18;
    record.height = 8;
    record.content = "123456";
    parse(record);
    EXPECT_EQ(drawable().getSymbol().getSize().id, 25);
    const Area ink = inkBox(image);
    EXPECT_EQ(ink.left, 100);
    EXPECT_EQ(ink.top, 80);
    EXPECT_EQ(ink.right, 100 + 35);
    EXPECT_EQ(ink.bottom, 80 + 15);
}

TEST_F(DatamatrixDrawableTest, ATurnedSymbolKeepsItsTopLeftCornerAtThePositionWithinOneDot)
{
    // Turned rectangles draw back from their mapped corner, so the symbol lands one dot right of or below
    // the position at the turns that mirror that axis; the painted area is the box from the position.
    struct Row {
        int32_t orientation;
        Area ink;
        Area painted;
    };
    const Row rows[] = {
        {0, {100, 80, 135, 95}, {100, 80, 136, 96}},
        {1, {101, 80, 116, 115}, {100, 80, 116, 116}},
        {2, {101, 81, 136, 96}, {100, 80, 136, 96}},
        {3, {100, 81, 115, 116}, {100, 80, 116, 116}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.orientation);
        Record record;
        record.orientation = row.orientation;
        record.module = 2;
        record.width = 18;
        record.height = 8;
        parse(record);
        const Area ink = inkBox(image);
        EXPECT_EQ(ink.left, row.ink.left);
        EXPECT_EQ(ink.top, row.ink.top);
        EXPECT_EQ(ink.right, row.ink.right);
        EXPECT_EQ(ink.bottom, row.ink.bottom);
        const Area& painted = drawable().getPaintedArea();
        EXPECT_EQ(painted.left, row.painted.left);
        EXPECT_EQ(painted.top, row.painted.top);
        EXPECT_EQ(painted.right, row.painted.right);
        EXPECT_EQ(painted.bottom, row.painted.bottom);
    }
}

TEST_F(DatamatrixDrawableTest, AReversedTurnedRectangleInvertsTheUnturnedShapeWithAQuietZoneOfOneModule)
{
    for (int32_t orientation = 0; orientation < 4; ++orientation) {
        SCOPED_TRACE(orientation);
        Record record;
        record.orientation = orientation;
        record.module = 2;
        record.width = 18;
        record.height = 8;
        parse(record);
        Image shifted(640, 480);
        record.x += 2;
        record.y += 2;
        KT_Format plain(nullptr, &shifted, nullptr);
        std::istringstream in("PLAIN     " + record.bytes() + "\xff");
        plain.parse(in, nullptr, 0);
        PixelCanvas expected = PixelCanvas::of(shifted);
        // The unturned 36 x 16 dots and a module all round, whatever the turn.
        expected.fill(100, 80, 40, 20, true);

        record.x -= 2;
        record.y -= 2;
        record.reversed = '1';
        parse(record);
        EXPECT_TRUE(PixelCanvas::of(image) == expected);
        const Area& painted = drawable().getPaintedArea();
        EXPECT_EQ(painted.left, 100);
        EXPECT_EQ(painted.top, 80);
        EXPECT_EQ(painted.right, 139);
        EXPECT_EQ(painted.bottom, 99);
    }
}

TEST_F(DatamatrixDrawableTest, EveryRedrawPaintsTheSameSymbol)
{
    Record record;
    record.content = "ABCDEFGHIJKLMNOPQRSTUVWX";
    parse(record);
    const PixelCanvas first = PixelCanvas::of(image);
    image.clear();
    drawable().redraw(image);
    EXPECT_TRUE(PixelCanvas::of(image) == first);
}

TEST_F(DatamatrixDrawableTest, BothScannersReadTheSymbolAtEveryTurnReversedOrNot)
{
    // Contents whose C40, Text or X12 runs end with an unlatch, or that stay in ASCII or Base 256.
    const std::string contents[] = {"123456", "ABCDEFGHIJKLMNOPQRSTUVWX", "abcdefghijklmnopqrstuvwxyz",
                                    "**>>**>>**>>**>>**>>**>>", "Hello, World! 12345 (test) #42",
                                    "\xe4\xf6\xfc\xe4\xf6\xfc"};
    for (const std::string& content : contents)
        for (int32_t orientation = 0; orientation < 4; ++orientation)
            for (char reversed : {'0', '1'}) {
                SCOPED_TRACE(testing::Message() << content << " turn " << orientation << " reversed " << reversed);
                Record record;
                record.content = content;
                record.orientation = orientation;
                record.reversed = reversed;
                parse(record);
                if (reversed == '1') {
                    const Area& painted = drawable().getPaintedArea();
                    image.rectangle(painted.left, painted.top, painted.right - painted.left + 1,
                                    painted.bottom - painted.top + 1, 2);
                }
                EXPECT_EQ(scantest::scanInk(image, scantest::dmtx), content);
                EXPECT_EQ(zxingRead(image), content);
            }
}

TEST_F(DatamatrixDrawableTest, AnOriginOutsideTheRasterIsRefusedByTheContext)
{
    Record record;
    record.x = 640;
    EXPECT_THROW(parse(record), GFX_OutsideContextException);
}

TEST_F(DatamatrixDrawableTest, ModulesOffTheRasterEndThePaint)
{
    Record record;
    record.x = 620;
    // The placement reaches column 7, row 3 of the 10 x 10 modules before any module beyond x 639.
    expectFailure<KT_ERROR::drawable_off_format>([&] { parse(record); }, "rectangle off image(x/y/w/h): (648/92/4/4)");
}
