#include "drawables/Drawable_PDF417.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"
#include "tests/symbologies/ZintTestSupport.h"

using KT_AC::Drawable_PDF417;
using KT_FMT::KT_Format;

namespace {

// The body of an ESC # B 12 record behind its type characters.
std::string pdf417Body(int32_t x, int32_t y, char turns, char reversed, const std::string& content,
                       int32_t symbology, int32_t columns, int32_t module, int32_t height, char level)
{
    return numberField(x) + numberField(y) + turns + reversed + "F" + content + "\x0b" + numberField(symbology, 4) +
           numberField(columns, 2) + numberField(module, 2) + numberField(height) + level;
}

class PDF417Drawable : public ::testing::Test {
protected:
    void SetUp() override
    {
        image = std::make_unique<Image>(640, 640);
        format = std::make_unique<KT_Format>(nullptr, image.get(), nullptr);
    }

    Drawable_PDF417& read(const std::string& body)
    {
        std::istringstream in(body);
        Drawable_PDF417::read(in, *format);
        return dynamic_cast<Drawable_PDF417&>(format->getDrawables()[format->getDrawables().size() - 1]);
    }

    std::unique_ptr<Image> image;
    std::unique_ptr<KT_Format> format;
};

}  // namespace

TEST_F(PDF417Drawable, TheRecordGivesSymbologyColumnsModuleHeightAndLevel)
{
    const Drawable_PDF417& d = read(pdf417Body(10, 20, '3', '0', "DATA", 56, 4, 3, 12345, '5'));
    EXPECT_EQ(d.getX(), 10);
    EXPECT_EQ(d.getY(), 20);
    EXPECT_EQ(d.getOrientation(), 3);
    EXPECT_EQ(d.getSymbology(), 56);
    EXPECT_EQ(d.getColumns(), 4);
    EXPECT_EQ(d.getModule(), 3);
    EXPECT_EQ(d.getHeight(), 12345);
    EXPECT_EQ(d.getLevel(), 5);
}

TEST_F(PDF417Drawable, EveryOrientationReadsBackFromXY)
{
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        image->clear();
        const char turn = static_cast<char>('0' + turns);
        Drawable_PDF417& d = read(pdf417Body(30, 40, turn, '0', "PDF417 DRAWABLE", 55, 3, 2, 120, '2'));
        d.redraw(*image);
        EXPECT_EQ(zinttest::zxingRead(*image, "PDF417"), "PDF417 DRAWABLE");
        // Nothing reaches above or left of x, y; turned by 2 and 3 the row and the column nearest to it are the
        // lost ones, 120 / 6 dots high and 2 wide.
        int32_t firstInkX = 640, firstInkY = 640;
        for (int32_t y = 0; y < 640; ++y)
            for (int32_t x = 0; x < 640; ++x)
                if (image->getPixel(x, y) != 0) {
                    firstInkX = std::min(firstInkX, x);
                    firstInkY = std::min(firstInkY, y);
                }
        const int32_t firstX[4] = {30, 30, 32, 50}, firstY[4] = {40, 40, 60, 42};
        EXPECT_EQ(firstInkX, firstX[turns]);
        EXPECT_EQ(firstInkY, firstY[turns]);
    }
}

TEST_F(PDF417Drawable, AReversedSymbolPrintsExactlyLikeANormalOne)
{
    Image normal(640, 640), reversed(640, 640);
    read(pdf417Body(30, 40, '0', '0', "SAME", 55, 3, 2, 120, '2')).redraw(normal);
    read(pdf417Body(30, 40, '0', '1', "SAME", 55, 3, 2, 120, '2')).redraw(reversed);
    EXPECT_TRUE(PixelCanvas::of(normal) == PixelCanvas::of(reversed));
}

TEST_F(PDF417Drawable, ARefusedContentRaisesFromTheRedraw)
{
    Drawable_PDF417& d = read(pdf417Body(30, 40, '0', '0', "", 84, 2, 2, 120, '2'));
    expectFailure<KT_ERROR::format_error>([&] { d.redraw(*image); },
                                          "ERROR in PDF_417 MICROPDF417 - ERROR_INVALID_DATA ");
}
