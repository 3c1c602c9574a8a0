#include <gtest/gtest.h>

#include <vector>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

TEST(ImageCompositing, OrLongShiftedSplitsAWordAcrossTwo)
{
    Image image(96, 2);
    image.orLongShifted(0, 0, 8, 0xFF0000FF);
    EXPECT_EQ(image.getLong(0, 0), 0x00FF0000u);
    EXPECT_EQ(image.getLong(0, 1), 0xFF000000u);
    image.orLongShifted(1, 1, 32 + 4, 0x10000000);  // only the low five bits of the shift count
    EXPECT_EQ(image.getLong(1, 1), 0x01000000u);
    image.orLongShifted(1, 2, 0, 0x5);
    EXPECT_EQ(image.getLong(1, 2), 0x5u);
}

TEST(ImageCompositing, OrLongShiftedAtTheRightEdgeIsOffFormatEvenWithNothingShiftedOut)
{
    Image image(64, 2);
    EXPECT_EQ(throwsText([&] { image.orLongShifted(0, 1, 4, 0xF0000000); }), "trying to draw off format at (64/0)");
    EXPECT_EQ(image.getLong(0, 1), 0x0F000000u) << "the first half was written";
}

TEST(ImageCompositing, PasteOrsTheSourceInShifted)
{
    Image source(32, 2);
    source.setLong(0, 0, 0xF000000F);
    source.setLong(1, 0, 0x80000000);
    Image target(128, 8);
    target.setLong(3, 1, 0x00000001);
    target.paste(source, 2, 36);
    EXPECT_EQ(target.getLong(2, 1), 0x0F000000u);
    EXPECT_EQ(target.getLong(2, 2), 0xF0000000u);
    EXPECT_EQ(target.getLong(3, 1), 0x08000001u);
    EXPECT_EQ(target.getFirstUsedRow(), 2);
    EXPECT_EQ(target.getLastUsedRow(), 3);
}

TEST(ImageCompositing, PasteRefusesASourceEndingOnTheRightOrBottomEdge)
{
    Image source(32, 2);
    source.setLong(0, 0, ~0u);
    Image narrow(32, 8);
    EXPECT_EQ(throwsText([&] { narrow.paste(source, 0, 0); }), "trying to paste image at (0/0)");
    Image wide(64, 8);
    EXPECT_EQ(throwsText([&] { wide.paste(source, 6, 0); }), "trying to paste image at (0/6)");
    EXPECT_THROW(wide.paste(source, 0, 33), KT_ERROR::drawable_off_format);
    wide.paste(source, 5, 0);
    EXPECT_EQ(wide.getLong(5, 0), ~0u);
    EXPECT_EQ(wide.getLong(0, 0), 0u) << "nothing partly drawn by the refusals";
}

TEST(ImageCompositing, LoadRawCopiesBigEndianGroups)
{
    Image image(64, 4);
    const unsigned char bytes[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0,
                                   0x00, 0x00, 0x00, 0x01, 0x80, 0x00, 0x00, 0x00};
    EXPECT_EQ(image.loadRaw(bytes, 1, 0, 2, 64), 0);
    EXPECT_EQ(image.getLong(1, 0), 0x12345678u);
    EXPECT_EQ(image.getLong(1, 1), 0x9ABCDEF0u);
    EXPECT_EQ(image.getLong(2, 0), 0x00000001u);
    EXPECT_EQ(image.getLong(2, 1), 0x80000000u);
    EXPECT_EQ(image.getFirstUsedRow(), 1);
    EXPECT_EQ(image.getLastUsedRow(), 2);
}

TEST(ImageCompositing, LoadRawRefusesANullBufferAndARaggedWidth)
{
    Image image(64, 4);
    const unsigned char bytes[8] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(image.loadRaw(nullptr, 0, 0, 1, 32), 1);
    EXPECT_EQ(image.loadRaw(bytes, 0, 0, 1, 48), 2);
    EXPECT_EQ(image.getLong(0, 0), 0u);
    EXPECT_EQ(image.getLong(0, 1), 0u);
}

TEST(ImageCompositing, CropMarksDrawEightBarsAtTheCorners)
{
    Image image(128, 100);
    image.cropMarks(0, 0, 127, 99, 0);
    Image expected(128, 100);
    for (auto [x, y, w, h] : std::vector<std::array<int32_t, 4>>{{0, 0, 25, 5},
                                                                  {0, 0, 5, 25},
                                                                  {0, 74, 5, 25},
                                                                  {0, 94, 25, 5},
                                                                  {102, 0, 25, 5},
                                                                  {122, 0, 5, 25},
                                                                  {102, 94, 25, 5},
                                                                  {122, 74, 5, 25}})
        expected.rectangle(x, y, w, h, 1);
    EXPECT_EQ(PixelCanvas::of(image).pixels, PixelCanvas::of(expected).pixels);
}

TEST(ImageCompositing, CropMarksClampAndIgnoreOtherStylesAndReversedCorners)
{
    Image clamped(128, 100);
    clamped.cropMarks(-10, -10, 500, 500, 0);
    Image exact(128, 100);
    exact.cropMarks(0, 0, 127, 99, 0);
    EXPECT_EQ(PixelCanvas::of(clamped).pixels, PixelCanvas::of(exact).pixels);

    Image untouched(128, 100);
    untouched.cropMarks(0, 0, 127, 99, 1);
    untouched.cropMarks(100, 0, 0, 99, 0);
    untouched.cropMarks(0, 99, 127, 0, 0);
    EXPECT_EQ(untouched.getFirstUsedRow(), 0);
    EXPECT_EQ(untouched.getLastUsedRow(), 0);
    for (int v : PixelCanvas::of(untouched).pixels)
        ASSERT_EQ(v, 0);
}

TEST(ImageCompositing, HistogramCountsInkPerRowInTheDirectionAsked)
{
    Image image(64, 8);
    image.rectangle(0, 2, 3, 1, 1);
    image.rectangle(30, 3, 10, 1, 1);
    image.rectangle(0, 5, 64, 1, 1);
    std::vector<uint16_t> down;
    EXPECT_EQ(image.histogram(down, 5, 2), 64u);
    EXPECT_EQ(down, (std::vector<uint16_t>{64, 0, 10, 3}));
    std::vector<uint16_t> up{9};
    EXPECT_EQ(image.histogram(up, 2, 3), 10u);
    EXPECT_EQ(up, (std::vector<uint16_t>{9, 3, 10}));
    std::vector<uint16_t> blank;
    EXPECT_EQ(image.histogram(blank, 7, 7), 0u);
    EXPECT_EQ(blank, (std::vector<uint16_t>{0}));
}

TEST(ImageCompositing, HistogramRefusesRowsOutsideTheRaster)
{
    Image image(64, 8);
    std::vector<uint16_t> out;
    EXPECT_EQ(throwsText([&] { image.histogram(out, 0, 8); }), "histogramm starting or ending index out of bounds");
    EXPECT_THROW(image.histogram(out, -1, 3), KT_ERROR::internal_error);
    EXPECT_TRUE(out.empty());
}

TEST(ImageCompositing, ABackgroundMustHaveTheSameSize)
{
    Image image(64, 8);
    Image same(64, 8);
    Image other(64, 9);
    image.setBackground(&same);
    EXPECT_EQ(throwsText([&] { image.setBackground(&other); }), "background image must have same dimensions");
    EXPECT_THROW(image.setBackground(&other), KT_ERROR::internal_error);
    EXPECT_EQ(image.getBackground(), &same);
    image.setBackground(nullptr);
    EXPECT_EQ(image.getBackground(), nullptr);
}

TEST(ImageCompositing, RestoreAreaWithoutBackgroundErasesTheClampedArea)
{
    Image image(64, 8);
    image.rectangle(0, 0, 64, 8, 1);
    image.restoreArea({-5, 2, 40, 100});
    for (int32_t y = 0; y < 8; ++y)
        for (int32_t x = 0; x < 64; ++x)
            ASSERT_EQ(image.getPixel(x, y), (y >= 2 && x <= 40) ? 0 : 1) << x << "," << y;
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 7);
}

TEST(ImageCompositing, RestoreAreaCopiesTheBackgroundInsideTheAreaOnly)
{
    Image background(96, 10);
    background.rectangle(0, 0, 96, 10, 2);
    background.rectangle(20, 4, 60, 2, 0);
    Image image(96, 10);
    image.setBackground(&background);
    image.rectangle(10, 1, 70, 8, 1);
    std::vector<int> expected = PixelCanvas::of(image).pixels;
    const std::vector<int> back = PixelCanvas::of(background).pixels;
    for (int32_t y = 3; y <= 6; ++y)
        for (int32_t x = 5; x <= 70; ++x)
            expected[y * 96 + x] = back[y * 96 + x];
    image.restoreArea({5, 3, 70, 6});
    EXPECT_EQ(PixelCanvas::of(image).pixels, expected);
}

TEST(ImageCompositing, RestoreAreaKeepsTheBandTrue)
{
    Image background(64, 20);
    background.rectangle(0, 12, 8, 2, 1);
    Image image(64, 20);
    image.setBackground(&background);
    image.rectangle(0, 5, 64, 3, 1);
    image.restoreArea({0, 0, 63, 10});
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
    image.restoreArea({0, 0, 63, 19});
    EXPECT_EQ(image.getFirstUsedRow(), 12);
    EXPECT_EQ(image.getLastUsedRow(), 13);
}

TEST(ImageCompositing, RestoreAreaLeavesALooseBandEdgeAloneUnlessTheAreaMovesItOrEndsOnIt)
{
    Image background(64, 20);
    Image image(64, 20);
    image.setBackground(&background);
    image.setPixel(0, 3, 1);
    image.setPixel(0, 10, 1);
    image.setPixel(0, 10, 0);  // leaves the band reaching down to row 10
    image.restoreArea({32, 5, 63, 6});
    EXPECT_EQ(image.getFirstUsedRow(), 3);
    EXPECT_EQ(image.getLastUsedRow(), 10) << "an unchanged last row that isn't the area's bottom stays";
    image.restoreArea({32, 5, 63, 10});
    EXPECT_EQ(image.getLastUsedRow(), 3) << "the area ends on the last row, which is therefore rescanned";

    image.setPixel(0, 1, 1);
    image.setPixel(0, 1, 0);  // and now up to row 1
    image.restoreArea({32, 2, 63, 2});
    EXPECT_EQ(image.getFirstUsedRow(), 1);
    image.restoreArea({32, 1, 63, 2});
    EXPECT_EQ(image.getFirstUsedRow(), 3);
}
