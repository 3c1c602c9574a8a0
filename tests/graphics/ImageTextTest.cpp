#include <gtest/gtest.h>

#include "fonts/Font.h"
#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"

using namespace fonttest;

namespace {

class ImageText : public FontFixture {};

bool sameRaster(Image& a, Image& b)
{
    for (int32_t row = 0; row < static_cast<int32_t>(a.getHeight()); ++row)
        for (int32_t col = 0; col < static_cast<int32_t>(a.getWidth() / 32); ++col)
            if (a.getLong(row, col) != b.getLong(row, col))
                return false;
    return true;
}

}  // namespace

TEST_F(ImageText, DrawTextPaintsWhatTheFontPaintsAndExtendsTheBandWithTheArea)
{
    Image image(640, 608);
    Image reference(640, 608);
    Area area{};
    GraphicsContext& context = image;
    context.drawText(100, 200, 10, 4, "Band", 1, &area, 1, 3 << 16, false);
    Area expected{};
    processFont.drawText(100, 200, 4, 10, "Band", 1, &expected, &reference, 1, 3 << 16, false);
    EXPECT_TRUE(sameRaster(image, reference));
    EXPECT_EQ(area.top, expected.top);
    EXPECT_EQ(area.bottom, expected.bottom);
    EXPECT_EQ(image.getFirstUsedRow(), area.top);
    EXPECT_EQ(image.getLastUsedRow(), area.bottom) << "the area's bottom lies one row below the ink";
}

TEST_F(ImageText, DrawTextWithoutAnAreaStillExtendsTheBand)
{
    Image image(640, 608);
    image.drawText(100, 200, 10, 5, "H", 0, nullptr, 0, 0, false);
    EXPECT_EQ(image.getLastUsedRow(), 200);
    EXPECT_LT(image.getFirstUsedRow(), 200);
}

TEST_F(ImageText, AnEmptyTextLeavesTheAreaEmptyAndTheBandAsItWas)
{
    Image image(640, 608);
    Area area{1, 2, 3, 4};
    image.drawText(100, 200, 10, 5, "", 0, &area, 0, 0, false);
    EXPECT_EQ(area.left, 640);
    EXPECT_EQ(area.top, 608);
    EXPECT_EQ(area.right, -1);
    EXPECT_EQ(area.bottom, -1);
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
}

TEST_F(ImageText, TextBelowTheRasterClampsTheBandToTheLastRow)
{
    Image image(640, 608);
    image.drawText(100, 610, 10, 5, "Hg", 0, nullptr, 0, 0, false);
    EXPECT_EQ(image.getLastUsedRow(), 607);
}

TEST_F(ImageText, PrintTextCentredIsDrawTextCentred)
{
    Image printed(640, 608);
    Image drawn(640, 608);
    Area printedArea{};
    Area drawnArea{};
    printed.printText(320, 300, 8, 0, "0123", 2, &printedArea, true, 1 << 16, true);
    drawn.drawText(320, 300, 8, 0, "0123", 2, &drawnArea, 1, 1 << 16, false);
    EXPECT_TRUE(sameRaster(printed, drawn));
    EXPECT_EQ(printedArea.left, drawnArea.left);
    EXPECT_EQ(printedArea.right, drawnArea.right);
    Image left(640, 608);
    Image leftDrawn(640, 608);
    left.printText(320, 300, 8, 0, "0123", 0, nullptr, false, 0, true);
    leftDrawn.drawText(320, 300, 8, 0, "0123", 0, nullptr, 0, 0, false);
    EXPECT_TRUE(sameRaster(left, leftDrawn));
}

TEST_F(ImageText, PrintTextThatOnlyMeasuresLeavesTheRasterBlankButWidensTheBand)
{
    Image image(640, 608);
    Image blank(640, 608);
    Area area{};
    image.printText(320, 300, 8, 0, "0123", 0, &area, true, 0, false);
    EXPECT_TRUE(sameRaster(image, blank));
    EXPECT_LT(area.left, 320);
    EXPECT_GT(area.right, 320);
    EXPECT_EQ(image.getFirstUsedRow(), area.top);
    EXPECT_EQ(image.getLastUsedRow(), area.bottom);
}
