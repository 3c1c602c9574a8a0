#include "graphics/Image.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "errors/KT_Error.h"
#include "persistence/nullbuf.h"
#include "tests/support/ExpectFailure.h"

namespace {

std::string captureStdout(const std::function<void()>& action)
{
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}


class TempDir : public testing::Test {
protected:
    void SetUp() override
    {
        dir = std::filesystem::temp_directory_path() /
              ("ktr_image_" + std::to_string(::getpid()) + "_" +
               testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir);
    }
    void TearDown() override { std::filesystem::remove_all(dir); }
    std::string path(const std::string& name) const { return (dir / name).string(); }

    static std::vector<unsigned char> readAll(const std::string& file)
    {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    static uint32_t little(const std::vector<unsigned char>& bytes, size_t at, int count)
    {
        uint32_t value = 0;
        for (int i = 0; i < count; ++i)
            value |= static_cast<uint32_t>(bytes.at(at + i)) << (8 * i);
        return value;
    }

    std::filesystem::path dir;
};

// The pixels of an image as the reference that the word operations are checked against.
int countInk(Image& image)
{
    int ink = 0;
    for (int32_t y = 0; y < static_cast<int32_t>(image.getHeight()); ++y)
        for (int32_t x = 0; x < static_cast<int32_t>(image.getWidth()); ++x)
            ink += image.getPixel(x, y);
    return ink;
}

}  // namespace

TEST(Image, ANewImageIsBlankWithAnEmptyBandThatReadsAsZero)
{
    Image image(64, 10);
    EXPECT_EQ(image.getWidth(), 64u);
    EXPECT_EQ(image.getHeight(), 10u);
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
    EXPECT_EQ(countInk(image), 0);
    EXPECT_EQ(image.getXOrigin(), 0u);
    EXPECT_EQ(image.getYOrigin(), 0u);
}

TEST(Image, ConstructionLimitsApplyToTheWidthAsPassed)
{
    struct Case {
        int32_t width, height;
        bool accepted;
        uint32_t roundedWidth;
    };
    const Case cases[] = {{6000, 24000, true, 6016}, {6001, 10, false, 0}, {32, 24001, false, 0},
                          {0, 10, false, 0},        {32, 0, false, 0},    {-32, 10, false, 0},
                          {1, 1, true, 32},         {33, 1, true, 64},    {640, 608, true, 640}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " x " << c.height);
        if (c.accepted) {
            Image image(c.width, c.height);
            EXPECT_EQ(image.getWidth(), c.roundedWidth);
        } else {
            expectFailure<KT_ERROR::kt_exception>([&] { Image image(c.width, c.height); },
                                                  "trying to construct image with illegal parameters");
        }
    }
}

TEST(Image, AWidthThatIsNoMultipleOf32IsRoundedUpWithANoteOnTheDebugStream)
{
    std::ostringstream captured;
    std::streambuf* const previous = debugStream.rdbuf(captured.rdbuf());
    Image rounded(33, 1);
    Image exact(64, 1);
    debugStream.rdbuf(previous);
    EXPECT_EQ(captured.str(), "trying to construct imagewith width not divisible by 32, rounding up");
    EXPECT_EQ(rounded.getWidth(), 64u);
}

TEST(Image, ZeroWidthOrHeightPaintsNothingEvenOffTheRaster)
{
    Image image(64, 10);
    image.rectangle(5, 5, 0, 100, 1);
    image.rectangle(-40, 5, 0, 100, 1);
    image.rectangle(-40, -5, 10, 0, 1);
    EXPECT_EQ(countInk(image), 0);
}

TEST(Image, NegativeSizesDrawTowardsSmallerCoordinatesFromTheAnchor)
{
    Image image(64, 20);
    image.rectangle(10, 10, -3, -2, 1);
    for (int32_t y = 0; y < 20; ++y)
        for (int32_t x = 0; x < 64; ++x)
            EXPECT_EQ(image.getPixel(x, y), (x >= 8 && x <= 10 && y >= 9 && y <= 10) ? 1 : 0) << x << "," << y;
    EXPECT_EQ(image.getFirstUsedRow(), 9);
    EXPECT_EQ(image.getLastUsedRow(), 10);
}

TEST(Image, TheTopLeftPixelIsTheTopBitOfTheFirstWord)
{
    Image image(640, 10);
    image.rectangle(0, 0, 1, 1, 1);
    EXPECT_EQ(image.getLong(0, 0), 0x80000000u);
}

TEST(Image, ARectangleOffTheRasterIsRefusedWhole)
{
    Image image(64, 10);
    expectFailure<KT_ERROR::drawable_off_format>([&] { image.rectangle(60, 2, 5, 3, 1); },
                                                 "rectangle off image(x/y/w/h): (60/2/5/3)");
    EXPECT_EQ(throwsText([&] { image.rectangle(0, -1, 5, 3, 1); }), "rectangle off image(x/y/w/h): (0/-1/5/3)");
    EXPECT_EQ(throwsText([&] { image.rectangle(0, 8, 5, 3, 1); }), "rectangle off image(x/y/w/h): (0/8/5/3)");
    EXPECT_EQ(countInk(image), 0);
}

TEST(Image, RectanglesMatchAPixelByPixelReferenceInAllColours)
{
    struct Case {
        int32_t x, y, w, h;
    };
    const Case cases[] = {{0, 0, 96, 3},  {1, 1, 30, 2},  {31, 0, 2, 4},  {5, 2, 90, 5},
                          {32, 3, 32, 1}, {63, 0, 1, 8},  {40, 4, -20, -3}, {95, 7, -95, 1}};
    for (int colour = 0; colour <= 2; ++colour) {
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << "colour " << colour << " at " << c.x << "/" << c.y << "/" << c.w
                                            << "/" << c.h);
            Image image(96, 8);
            image.rectangle(10, 1, 60, 5, 1);
            std::vector<int> expected(96 * 8);
            for (int32_t y = 0; y < 8; ++y)
                for (int32_t x = 0; x < 96; ++x)
                    expected[y * 96 + x] = image.getPixel(x, y);
            const int32_t left = std::min(c.x, c.x + c.w - (c.w > 0 ? 1 : -1));
            const int32_t right = std::max(c.x, c.x + c.w - (c.w > 0 ? 1 : -1));
            const int32_t top = std::min(c.y, c.y + c.h - (c.h > 0 ? 1 : -1));
            const int32_t bottom = std::max(c.y, c.y + c.h - (c.h > 0 ? 1 : -1));
            for (int32_t y = top; y <= bottom; ++y)
                for (int32_t x = left; x <= right; ++x) {
                    int& pixel = expected[y * 96 + x];
                    pixel = colour == 0 ? 0 : colour == 1 ? 1 : 1 - pixel;
                }
            image.rectangle(c.x, c.y, c.w, c.h, colour);
            for (int32_t y = 0; y < 8; ++y)
                for (int32_t x = 0; x < 96; ++x)
                    ASSERT_EQ(image.getPixel(x, y), expected[y * 96 + x]) << x << "," << y;
        }
    }
}

TEST(Image, TheInheritedRectangleFormsEndInTheRectangleOfTheImage)
{
    Image image(64, 8);
    image.rectangle(Point{33, 2}, Point{40, 5}, 1);
    image.rectangleCorners(1, 6, 2, 6, 1);
    for (int32_t y = 0; y < 8; ++y)
        for (int32_t x = 0; x < 64; ++x)
            ASSERT_EQ(image.getPixel(x, y), (x >= 33 && x <= 40 && y >= 2 && y <= 5) || (x >= 1 && x <= 2 && y == 6))
                << x << "," << y;
    expectFailure<KT_ERROR::drawable_off_format>([&] { image.rectangle(Point{60, 0}, Point{64, 0}, 1); },
                                                 "rectangle off image(x/y/w/h): (60/0/5/1)");
}

TEST(Image, ClearLeavesTheSpareWordBehindEachRowAlone)
{
    std::vector<uint32_t> words(3 * 2, 0);
    uint32_t* rows[] = {words.data(), words.data() + 3};
    words[2] = 0xDEADBEEF;
    words[5] = 0xCAFEF00D;
    words[0] = 0x1;
    Image image(2, 2, rows);
    image.clear();
    EXPECT_EQ(words[0], 0u);
    EXPECT_EQ(words[2], 0xDEADBEEFu);
    EXPECT_EQ(words[5], 0xCAFEF00Du);
}

TEST(Image, AnUnknownColourDoesNothing)
{
    Image image(64, 4);
    image.rectangle(0, 0, 64, 4, 7);
    EXPECT_EQ(countInk(image), 0);
}

TEST(Image, ErasingTightensTheBandAndInvertingOnlyWidensIt)
{
    Image image(64, 20);
    image.rectangle(0, 3, 5, 2, 1);
    image.rectangle(0, 10, 5, 3, 1);
    EXPECT_EQ(image.getFirstUsedRow(), 3);
    EXPECT_EQ(image.getLastUsedRow(), 12);
    image.rectangle(0, 2, 64, 3, 0);
    EXPECT_EQ(image.getFirstUsedRow(), 10);
    image.rectangle(0, 11, 64, 5, 0);
    EXPECT_EQ(image.getLastUsedRow(), 10);
    image.rectangle(0, 15, 3, 2, 2);
    image.rectangle(0, 15, 3, 2, 2);
    EXPECT_EQ(image.getLastUsedRow(), 16);
    image.rectangle(0, 0, 64, 20, 0);
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
}

TEST(Image, SetPixelColourZeroLeavesTheBandTooWide)
{
    Image image(64, 20);
    image.setPixel(3, 7, 1);
    EXPECT_EQ(image.getFirstUsedRow(), 7);
    image.setPixel(3, 7, 0);
    EXPECT_EQ(image.getPixel(3, 7), 0);
    EXPECT_EQ(image.getFirstUsedRow(), 7);
    EXPECT_EQ(image.getLastUsedRow(), 7);
}

TEST(Image, SetPixelInvertsAndRefusesBadArguments)
{
    Image image(64, 4);
    image.setPixel(33, 2, 2);
    EXPECT_EQ(image.getPixel(33, 2), 1);
    image.setPixel(33, 2, 2);
    EXPECT_EQ(image.getPixel(33, 2), 0);
    expectFailure<KT_ERROR::drawable_off_format>([&] { image.setPixel(64, 0, 1); },
                                                 "trying to draw off format at (64/0)");
    expectFailure<KT_ERROR::drawable_off_format>([&] { image.setPixel(-1, 0, 7); },
                                                 "trying to draw off format at (-1/0)");
    expectFailure<KT_ERROR::kt_exception>([&] { image.setPixel(1, 1, 3); },
                                          "illegal colour argument to Image::setPixel()");
}

namespace {

// An image that writes down the pixel calls that reach it.
class PixelSpy : public Image {
public:
    PixelSpy() : Image(64, 4) {}
    int getPixel(int32_t x, int32_t y) override
    {
        calls.push_back("get");
        return Image::getPixel(x, y);
    }
    void setPixel(int32_t x, int32_t y, int colour) override
    {
        calls.push_back("set " + std::to_string(colour));
        Image::setPixel(x, y, colour);
    }
    std::vector<std::string> calls;
};

}  // namespace

TEST(Image, InvertingAPixelReadsAndWritesItThroughTheVirtualSlots)
{
    PixelSpy image;
    image.setPixel(5, 1, 2);
    EXPECT_EQ(image.calls, (std::vector<std::string>{"set 2", "get", "set 1"}));
    image.calls.clear();
    image.setPixel(5, 1, 2);
    EXPECT_EQ(image.calls, (std::vector<std::string>{"set 2", "get", "set 0"}));
}

TEST(Image, GetPixelOutsideSaysSoAndReturnsPaper)
{
    Image image(64, 4);
    int value = -1;
    EXPECT_EQ(captureStdout([&] { value = image.getPixel(0, 4); }), "Illegal arguments Image::getPixel()");
    EXPECT_EQ(value, 0);
    EXPECT_FALSE(image.isInside(64, 0));
    EXPECT_FALSE(image.isInside(-1, 0));
    EXPECT_TRUE(image.isInside(63, 3));
}

TEST(Image, WordAccessChecksRowAndColumnWithItsOwnTexts)
{
    Image image(64, 4);
    using KT_ERROR::drawable_off_format;
    using KT_ERROR::kt_exception;
    struct Case {
        std::string name;
        std::function<void()> action;
        bool offFormat;
        std::string text;
    };
    const std::vector<Case> cases = {
        {"getLong row", [&] { image.getLong(4, 0); }, false,
         "calling getLong() with illegal row arguments: (row/col) (4/0)"},
        {"getLong negative row", [&] { image.getLong(-1, 9); }, false,
         "calling getLong() with illegal row arguments: (row/col) (-1/9)"},
        {"getLong column", [&] { image.getLong(0, 2); }, false,
         "calling getLong() with illegal column arguments: (row/col) (0/2)"},
        {"getLong negative column", [&] { image.getLong(3, -1); }, false,
         "calling getLong() with illegal column arguments: (row/col) (3/-1)"},
        {"setLong row", [&] { image.setLong(-1, 0, 1); }, true,
         "calling setLong() with illegal row argument: (row/col) (-1/0)"},
        {"setLong column", [&] { image.setLong(0, 2, 1); }, true,
         "calling setLong() with illegal column argument: (row/col) (0/2)"},
        {"orLong column", [&] { image.orLong(0, 2, 1); }, true, "trying to draw off format at (64/0)"},
        {"orLong row", [&] { image.orLong(4, 1, 1); }, true, "trying to draw off format at (32/4)"},
        {"orLong negative column", [&] { image.orLong(1, -1, 0); }, true, "trying to draw off format at (-32/1)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.offFormat)
            expectFailure<drawable_off_format>(c.action, c.text);
        else
            expectFailure<kt_exception>(c.action, c.text);
    }
    EXPECT_EQ(countInk(image), 0);
}

TEST(Image, WordWritesKeepTheBand)
{
    Image image(64, 10);
    image.setLong(4, 1, 0x00F00000);
    image.orLong(7, 0, 0x1);
    EXPECT_EQ(image.getLong(4, 1), 0x00F00000u);
    EXPECT_EQ(image.getPixel(40, 4), 1);
    EXPECT_EQ(image.getPixel(31, 7), 1);
    EXPECT_EQ(image.getFirstUsedRow(), 4);
    EXPECT_EQ(image.getLastUsedRow(), 7);
    image.setLong(4, 1, 0);
    EXPECT_EQ(image.getFirstUsedRow(), 7);
    image.setLong(7, 0, 0);
    EXPECT_EQ(image.getFirstUsedRow(), 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
    image.orLong(2, 0, 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
}

TEST(Image, ForeignRowsAreScannedForTheBand)
{
    std::vector<uint32_t> words(2 * 6, 0);
    std::vector<uint32_t*> rows;
    for (int r = 0; r < 6; ++r)
        rows.push_back(words.data() + 2 * r);
    words[2 * 2 + 1] = 0x10;
    words[2 * 4] = 0x80000000;
    Image image(2, 6, rows.data());
    EXPECT_EQ(image.getWidth(), 64u);
    EXPECT_EQ(image.getFirstUsedRow(), 2);
    EXPECT_EQ(image.getLastUsedRow(), 4);
    EXPECT_EQ(image.getPixel(59, 2), 1);
}

TEST_F(TempDir, AFullSaveOf640By608Is48702BytesWithItsHeader)
{
    Image image(640, 608);
    image.setPixel(0, 0, 1);
    image.setPixel(639, 607, 1);
    ASSERT_TRUE(image.saveBitmap(0, 0, 640, 608, path("full.bmp")));
    const auto bytes = readAll(path("full.bmp"));
    ASSERT_EQ(bytes.size(), 48702u);
    EXPECT_EQ(bytes[0], 'B');
    EXPECT_EQ(bytes[1], 'M');
    EXPECT_EQ(little(bytes, 2, 4), 48702u);
    EXPECT_EQ(little(bytes, 6, 2), 0u);
    EXPECT_EQ(little(bytes, 8, 2), 0u);
    EXPECT_EQ(little(bytes, 10, 4), 62u);
    EXPECT_EQ(little(bytes, 14, 4), 40u);
    EXPECT_EQ(little(bytes, 18, 4), 640u);
    EXPECT_EQ(little(bytes, 22, 4), 608u);
    EXPECT_EQ(little(bytes, 26, 2), 1u);
    EXPECT_EQ(little(bytes, 28, 2), 1u);
    EXPECT_EQ(little(bytes, 30, 4), 0u);
    EXPECT_EQ(little(bytes, 34, 4), 48640u);
    EXPECT_EQ(little(bytes, 38, 4), 12000u);
    EXPECT_EQ(little(bytes, 42, 4), 12000u);
    EXPECT_EQ(little(bytes, 46, 4), 0u);
    EXPECT_EQ(little(bytes, 50, 4), 0u);
    EXPECT_EQ(little(bytes, 54, 4), 0x00FFFFFFu);
    EXPECT_EQ(little(bytes, 58, 4), 0u);
    // The bottom row comes first: its last pixel is the lowest bit of the row's last byte.
    EXPECT_EQ(bytes[62 + 79], 0x01);
    EXPECT_EQ(bytes[62 + 607 * 80], 0x80);
    int inkedBytes = 0;
    for (size_t i = 62; i < bytes.size(); ++i)
        inkedBytes += bytes[i] != 0;
    EXPECT_EQ(inkedBytes, 2);
}

TEST_F(TempDir, OnePixelTrimmedGivesOneWordAndItsPlaceAndLoadsBackThere)
{
    Image image(640, 608);
    image.setPixel(70, 5, 1);
    ASSERT_TRUE(image.saveTrimmed(path("one.bmp")));
    const auto bytes = readAll(path("one.bmp"));
    ASSERT_EQ(bytes.size(), 66u);
    EXPECT_EQ(little(bytes, 6, 2), 64u);
    EXPECT_EQ(little(bytes, 8, 2), 5u);
    EXPECT_EQ(little(bytes, 18, 4), 32u);
    EXPECT_EQ(little(bytes, 22, 4), 1u);
    EXPECT_EQ(bytes[62], 0x02);

    Image loaded(640, 608);
    ASSERT_TRUE(loaded.loadBitmap(0, 0, path("one.bmp"), true));
    EXPECT_EQ(loaded.getLong(5, 2), 0x02000000u);
    EXPECT_EQ(countInk(loaded), 1);
    EXPECT_EQ(loaded.getFirstUsedRow(), 5);
    EXPECT_EQ(loaded.getLastUsedRow(), 5);

    Image shifted(640, 608);
    ASSERT_TRUE(shifted.loadBitmap(32, 1, path("one.bmp"), true));
    EXPECT_EQ(shifted.getLong(6, 3), 0x02000000u) << "the stored place adds to the one asked for";

    Image unplaced(640, 608);
    ASSERT_TRUE(unplaced.loadBitmap(0, 0, path("one.bmp"), false));
    EXPECT_EQ(unplaced.getPixel(6, 0), 1);
}

TEST_F(TempDir, ABlankRasterTrimsToOneWhiteRowAboveTheRaster)
{
    Image image(640, 608);
    ASSERT_TRUE(image.saveTrimmed(path("blank.bmp")));
    const auto bytes = readAll(path("blank.bmp"));
    ASSERT_EQ(bytes.size(), 66u);
    EXPECT_EQ(little(bytes, 6, 2), 0u);
    EXPECT_EQ(static_cast<int16_t>(little(bytes, 8, 2)), -1);
    EXPECT_EQ(little(bytes, 18, 4), 32u);
    EXPECT_EQ(little(bytes, 22, 4), 1u);
    EXPECT_EQ(little(bytes, 62, 4), 0u);
}

TEST_F(TempDir, TheTrimmedBoxIsWordAlignedAndExactInHeight)
{
    Image image(640, 608);
    image.rectangle(40, 10, 1, 1, 1);
    image.rectangle(130, 20, 1, 3, 1);
    ASSERT_TRUE(image.saveTrimmed(path("box.bmp")));
    const auto bytes = readAll(path("box.bmp"));
    EXPECT_EQ(little(bytes, 6, 2), 32u);
    EXPECT_EQ(little(bytes, 8, 2), 10u);
    EXPECT_EQ(little(bytes, 18, 4), 128u);
    EXPECT_EQ(little(bytes, 22, 4), 13u);
    EXPECT_EQ(bytes.size(), 62u + 128 * 13 / 8);
}

TEST_F(TempDir, SaveUsedRowsWritesFullRowsOfTheBand)
{
    Image image(64, 30);
    image.rectangle(3, 4, 2, 6, 1);
    ASSERT_TRUE(image.saveUsedRows(path("rows.bmp")));
    const auto bytes = readAll(path("rows.bmp"));
    EXPECT_EQ(little(bytes, 8, 2), 4u);
    EXPECT_EQ(little(bytes, 18, 4), 64u);
    EXPECT_EQ(little(bytes, 22, 4), 6u);
}

TEST_F(TempDir, AnUnalignedSaveIsRefusedAndLeavesAnEmptyFile)
{
    Image image(64, 4);
    bool saved = true;
    EXPECT_EQ(captureStdout([&] { saved = image.saveBitmap(16, 0, 32, 4, path("x16.bmp")); }),
              "Image::saveBitmap(): x_off and w must be divisible by 32");
    EXPECT_FALSE(saved);
    ASSERT_TRUE(std::filesystem::exists(path("x16.bmp")));
    EXPECT_EQ(std::filesystem::file_size(path("x16.bmp")), 0u);
    EXPECT_EQ(captureStdout([&] { saved = image.saveBitmap(0, 0, 40, 4, path("w40.bmp")); }),
              "Image::saveBitmap(): x_off and w must be divisible by 32");
    EXPECT_FALSE(saved);
}

TEST_F(TempDir, AFileThatCannotBeCreatedIsReported)
{
    Image image(64, 4);
    bool saved = true;
    EXPECT_EQ(captureStdout([&] { saved = image.saveBitmap(0, 0, 64, 4, path("no/such/dir.bmp")); }),
              "Can't open bmp file for writing");
    EXPECT_FALSE(saved);
}

TEST_F(TempDir, LoadBitmapRefusesEachBadHeaderWithItsMessage)
{
    Image source(64, 4);
    source.rectangle(0, 0, 64, 4, 1);
    ASSERT_TRUE(source.saveBitmap(0, 0, 64, 4, path("good.bmp")));
    const auto good = readAll(path("good.bmp"));

    struct Case {
        std::string name;
        std::function<void(std::vector<unsigned char>&)> spoil;
        std::string message;
    };
    const std::vector<Case> cases = {
        {"signature", [](auto& b) { b[1] = 'X'; }, "Image::loadBitmap(): File is not a bitmap"},
        {"extra byte", [](auto& b) { b.push_back(0); },
         "Image::loadBitmap(): File size doesn't match:\nfile says 94 filesystem says 95"},
        {"header size", [](auto& b) { b[14] = 12; }, "Image::loadBitmap(): Wrong bitmap type"},
        {"width", [](auto& b) { b[18] = 65; }, "Image::loadBitmap(): bitmap width not divisable by 32"},
        {"depth", [](auto& b) { b[28] = 8; }, "Image::loadBitmap(): wrong colour depth"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto bytes = good;
        c.spoil(bytes);
        {
            std::ofstream out(path("bad.bmp"), std::ios::binary | std::ios::trunc);
            out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        }
        Image target(64, 4);
        target.setPixel(1, 1, 1);
        bool loaded = true;
        EXPECT_EQ(captureStdout([&] { loaded = target.loadBitmap(0, 0, path("bad.bmp"), false); }), c.message);
        EXPECT_FALSE(loaded);
        EXPECT_EQ(countInk(target), 1);
        EXPECT_EQ(target.getFirstUsedRow(), 1);
    }
}

TEST_F(TempDir, LoadBitmapOfRowsWithoutAWordReadsNothingAndEndsAtOnce)
{
    // Two billion rows of no width used to be walked one by one; none of them can hold a byte.
    Image source(32, 1);
    ASSERT_TRUE(source.saveBitmap(0, 0, 32, 1, path("empty.bmp")));
    const auto good = readAll(path("empty.bmp"));
    for (const uint32_t width : {0u, 0xFFFFFFE0u}) {
        SCOPED_TRACE(width);
        auto bytes = good;
        for (int i = 0; i < 4; ++i) {
            bytes[18 + i] = static_cast<unsigned char>(width >> (8 * i));
            bytes[22 + i] = static_cast<unsigned char>(0x7FFFFFFFu >> (8 * i));
        }
        {
            std::ofstream out(path("rows.bmp"), std::ios::binary | std::ios::trunc);
            out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        }
        Image target(64, 4);
        target.setPixel(1, 1, 1);
        const auto begin = std::chrono::steady_clock::now();
        bool loaded = false;
        EXPECT_EQ(captureStdout([&] { loaded = target.loadBitmap(0, 0, path("rows.bmp"), false); }), "");
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500)) << "walked the rows";
        EXPECT_TRUE(loaded);
        EXPECT_EQ(countInk(target), 1);
        EXPECT_EQ(target.getFirstUsedRow(), 1);
    }
}

TEST_F(TempDir, LoadBitmapWithoutAFileFailsOnTheSize)
{
    Image image(64, 4);
    bool loaded = true;
    EXPECT_EQ(captureStdout([&] { loaded = image.loadBitmap(0, 0, path("missing.bmp"), false); }),
              "Image::loadBitmap(): Failed to obtain file size");
    EXPECT_FALSE(loaded);
}

TEST_F(TempDir, LoadBitmapDropsWhatFallsOutsideAndReadsThePaletteAsIgnored)
{
    Image source(96, 4);
    source.rectangle(0, 0, 96, 4, 1);
    ASSERT_TRUE(source.saveBitmap(0, 0, 96, 4, path("wide.bmp")));
    auto bytes = readAll(path("wide.bmp"));
    std::swap(bytes[54], bytes[58]);
    {
        std::ofstream out(path("wide.bmp"), std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    Image target(64, 3);
    ASSERT_TRUE(target.loadBitmap(32, 1, path("wide.bmp"), false));
    EXPECT_EQ(target.getLong(0, 0), 0u);
    EXPECT_EQ(target.getLong(0, 1), 0u);
    EXPECT_EQ(target.getLong(1, 0), 0u);
    EXPECT_EQ(target.getLong(1, 1), ~0u);
    EXPECT_EQ(target.getLong(2, 1), ~0u);
    EXPECT_EQ(target.getFirstUsedRow(), 1);
    EXPECT_EQ(target.getLastUsedRow(), 2);
}

TEST_F(TempDir, CompressionSeventyTwoLeavesThePixelsAlone)
{
    Image source(32, 2);
    source.rectangle(0, 0, 32, 2, 1);
    ASSERT_TRUE(source.saveBitmap(0, 0, 32, 2, path("marked.bmp")));
    auto bytes = readAll(path("marked.bmp"));
    bytes[30] = 72;
    {
        std::ofstream out(path("marked.bmp"), std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    Image target(32, 2);
    target.setPixel(0, 1, 1);
    ASSERT_TRUE(target.loadBitmap(0, 0, path("marked.bmp"), false));
    EXPECT_EQ(countInk(target), 1);
}

TEST_F(TempDir, AHeaderThatPromisesMoreRowsThanTheFileHoldsStopsAtItsEnd)
{
    Image source(32, 2);
    source.rectangle(0, 0, 32, 2, 1);
    ASSERT_TRUE(source.saveBitmap(0, 0, 32, 2, path("short.bmp")));
    auto bytes = readAll(path("short.bmp"));
    bytes[22] = 0xFF;
    bytes[23] = 0xFF;
    bytes[24] = 0xFF;
    bytes[25] = 0x7F;
    {
        std::ofstream out(path("short.bmp"), std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    Image target(32, 4);
    target.rectangle(0, 0, 32, 4, 1);
    ASSERT_TRUE(target.loadBitmap(0, -0x7FFFFFFE + 4, path("short.bmp"), false));
    EXPECT_EQ(countInk(target), 32 * 4);
}

TEST(Image, EveryOperationThatInksKeepsItsRowsInsideTheBand)
{
    // The trimmed and the full save read only the band, so no ink may ever lie outside it.
    Image image(256, 96);
    Image background(256, 96);
    background.rectangle(0, 40, 256, 20, 1);
    Image patch(64, 3);
    patch.rectangle(0, 0, 64, 3, 1);
    const unsigned char raw[8] = {0xFF, 0, 0, 1, 0x80, 0, 0, 0};
    uint32_t seed = 12345;
    const auto next = [&](uint32_t below) {
        seed = seed * 1103515245u + 12345u;
        return static_cast<int32_t>((seed >> 8) % below);
    };
    for (int step = 0; step < 3000; ++step) {
        const int32_t x = next(250), y = next(90);
        // An operation that runs off the raster stops midway; what it painted still counts.
        try {
            switch (next(9)) {
            case 0: image.rectangle(x, y, next(256 - x) + 1, next(96 - y) + 1, next(3)); break;
            case 1: image.setPixel(x, y, next(3)); break;
            case 2: image.setLong(y, next(8), next(2) == 0 ? 0u : seed); break;
            case 3: image.orLong(y, next(8), next(2) == 0 ? 0u : seed); break;
            case 4: image.orLongShifted(y, next(7), next(32), seed); break;
            case 5: if (x < 160 && y < 90) image.paste(patch, y, x); break;
            case 6: image.setBackground(next(2) == 0 ? nullptr : &background);
                    image.restoreArea(Area{x, y, x + next(40), y + next(10)}); break;
            case 7: image.loadRaw(raw, y, 0, 1, 64); break;
            default: image.cropMarks(x, y, x + next(100), y + next(20), 0); break;
            }
        } catch (const std::exception&) {
        }
        int32_t firstInk = -1, lastInk = -1;
        for (int32_t row = 0; row < 96; ++row)
            for (int32_t col = 0; col < 8; ++col)
                if (image.getLong(row, col) != 0) {
                    firstInk = firstInk < 0 ? row : firstInk;
                    lastInk = row;
                }
        if (firstInk < 0)
            continue;
        ASSERT_LE(image.getFirstUsedRow(), firstInk) << "step " << step;
        ASSERT_GE(image.getLastUsedRow(), lastInk) << "step " << step;
    }
}

TEST_F(TempDir, AFullSaveOfAKtd2RasterWritesEveryRowInItsPlaceAcrossItsBlocks)
{
    // Two megabytes go out in blocks; rows outside the band come out as paper without being read.
    Image image(2560, 6400);
    for (int32_t y : {0, 813, 814, 3276, 6399})
        image.rectangle(y % 2560, y, 40, 1, 1);
    ASSERT_TRUE(image.saveBitmap(0, 0, 2560, 6400, path("ktd2.bmp")));
    const auto bytes = readAll(path("ktd2.bmp"));
    ASSERT_EQ(bytes.size(), 62u + 320u * 6400u);
    for (int32_t y = 0; y < 6400; ++y)
        for (int32_t x = 0; x < 2560; x += 8) {
            unsigned char expected = 0;
            for (int32_t bit = 0; bit < 8; ++bit)
                expected = static_cast<unsigned char>(expected << 1 | image.getPixel(x + bit, y));
            ASSERT_EQ(bytes[62 + static_cast<size_t>(6399 - y) * 320 + static_cast<size_t>(x / 8)], expected)
                << "row " << y << " byte " << x / 8;
        }
}
