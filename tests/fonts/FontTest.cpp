#include "fonts/Font.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>

#include "errors/KT_Error.h"
#include "fonts/FontTransforms.h"
#include "fonts/Windows1252Table.h"
#include "format/ContentEscapeReader.h"
#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/PixelCanvas.h"

using namespace fonttest;

namespace {

constexpr FT_Int32 loadFlags = 167940;
constexpr int32_t arial = 5;

// FreeType on its own, without the cache: the reference the rasteriser is held against.
class DirectFace {
public:
    DirectFace(int32_t fontNumber, int32_t size, int32_t orientation)
    {
        FT_Init_FreeType(&library);
        const std::string path = fontProvider->getFontPath() + fontProvider->getFontFile(fontNumber);
        FT_New_Face(library, path.c_str(), 0, &face);
        FT_Set_Char_Size(face, size * 64, size * 64, 303, 303);
        FT_Matrix matrix = faceTransforms[static_cast<size_t>(orientation)];
        FT_Set_Transform(face, &matrix, nullptr);
    }
    ~DirectFace()
    {
        FT_Done_Face(face);
        FT_Done_FreeType(library);
    }
    DirectFace(const DirectFace&) = delete;
    DirectFace& operator=(const DirectFace&) = delete;

    FT_GlyphSlot load(FT_ULong code)
    {
        FT_Load_Glyph(face, FT_Get_Char_Index(face, code), loadFlags);
        return face->glyph;
    }

    FT_Library library = nullptr;
    FT_Face face = nullptr;
};

bool bitmapPixel(const FT_Bitmap& bitmap, int32_t column, int32_t row)
{
    return (bitmap.buffer[row * bitmap.pitch + column / 8] >> (7 - column % 8)) & 1;
}

int32_t inkCount(Image& image)
{
    int32_t count = 0;
    for (int32_t y = 0; y < static_cast<int32_t>(image.getHeight()); ++y)
        for (int32_t x = 0; x < static_cast<int32_t>(image.getWidth()); ++x)
            count += image.getPixel(x, y);
    return count;
}

// Expects exactly the glyph of `code`, as FreeType renders it, with its origin at x, y.
void expectSingleGlyph(Image& image, const Area& area, int32_t x, int32_t y, int32_t size, int32_t orientation,
                       FT_ULong code)
{
    DirectFace direct(arial, size, orientation);
    const FT_GlyphSlot slot = direct.load(code);
    const FT_Bitmap& bitmap = slot->bitmap;
    const int32_t left = x + slot->bitmap_left;
    const int32_t top = y - slot->bitmap_top;
    EXPECT_EQ(area.left, left);
    EXPECT_EQ(area.top, top);
    EXPECT_EQ(area.right, left + static_cast<int32_t>(bitmap.width));
    EXPECT_EQ(area.bottom, top + static_cast<int32_t>(bitmap.rows));
    int32_t expectedInk = 0;
    for (int32_t r = 0; r < static_cast<int32_t>(bitmap.rows); ++r)
        for (int32_t c = 0; c < static_cast<int32_t>(bitmap.width); ++c) {
            expectedInk += bitmapPixel(bitmap, c, r);
            ASSERT_EQ(image.getPixel(left + c, top + r), bitmapPixel(bitmap, c, r)) << c << "/" << r;
        }
    EXPECT_EQ(inkCount(image), expectedInk);
    EXPECT_GT(expectedInk, 0);
}

// Collects what is printed on standard output while it lives.
class CoutCapture {
public:
    CoutCapture() : previous(std::cout.rdbuf(captured.rdbuf())) {}
    ~CoutCapture() { std::cout.rdbuf(previous); }
    CoutCapture(const CoutCapture&) = delete;
    CoutCapture& operator=(const CoutCapture&) = delete;

    std::string text() const { return captured.str(); }

private:
    std::ostringstream captured;
    std::streambuf* previous;
};

uint32_t bigEndian(const std::string& bytes, size_t at, size_t length)
{
    uint32_t value = 0;
    for (size_t i = 0; i < length; ++i)
        value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

// A copy of a TrueType file whose glyph `index` claims far more contours than its data hold, so
// that FreeType refuses to load it.
std::string withBrokenGlyph(std::string font, FT_UInt index)
{
    size_t head = 0, loca = 0, glyf = 0;
    for (size_t table = 0; table < bigEndian(font, 4, 2); ++table) {
        const size_t entry = 12 + 16 * table;
        const std::string tag = font.substr(entry, 4);
        const size_t offset = bigEndian(font, entry + 8, 4);
        if (tag == "head")
            head = offset;
        else if (tag == "loca")
            loca = offset;
        else if (tag == "glyf")
            glyf = offset;
    }
    const bool longOffsets = bigEndian(font, head + 50, 2) != 0;
    const size_t glyph =
        glyf + (longOffsets ? bigEndian(font, loca + 4 * index, 4) : 2 * bigEndian(font, loca + 2 * index, 2));
    font[glyph] = 0x70;
    font[glyph + 1] = 0;
    return font;
}

class Font_ : public FontFixture {
protected:
    Area draw(Image& image, int32_t x, int32_t y, const std::string& text, int32_t orientation,
              int32_t alignment = 0, int32_t spacing = 0, bool reversed = false, int32_t size = 8)
    {
        Area area{};
        processFont.drawText(x, y, arial, size, text, orientation, &area, &image, alignment, spacing, reversed);
        return area;
    }
    Area measure(int32_t x, int32_t y, const std::string& text, int32_t orientation, int32_t alignment = 0,
                 int32_t spacing = 0)
    {
        Area area{};
        processFont.drawText(x, y, arial, 8, text, orientation, &area, nullptr, alignment, spacing, false);
        return area;
    }
};

void expectArea(const Area& actual, const Area& expected)
{
    EXPECT_EQ(actual.left, expected.left);
    EXPECT_EQ(actual.top, expected.top);
    EXPECT_EQ(actual.right, expected.right);
    EXPECT_EQ(actual.bottom, expected.bottom);
}

}  // namespace

TEST_F(Font_, SizeMetricsAreFreeTypesAt303DotsPerInch)
{
    for (int32_t size : {6, 8, 12, 30}) {
        SCOPED_TRACE(size);
        DirectFace direct(arial, size, 0);
        FT_Pos ascender = 0;
        FT_Pos descender = 0;
        processFont.getSizeMetrics(arial, size, 1, ascender, descender);
        EXPECT_EQ(ascender, direct.face->size->metrics.ascender);
        EXPECT_EQ(descender, direct.face->size->metrics.descender);
    }
}

TEST_F(Font_, BaselineLengthIsTheSumOfFreeTypesAdvancesAndKerning)
{
    for (const char* text : {"H", "AVATAR Tj", "0123456789", "Wo, Yo. To"}) {
        SCOPED_TRACE(text);
        DirectFace direct(arial, 12, 0);
        int64_t length = 0;
        FT_UInt previous = 0;
        for (const char* c = text; *c != 0; ++c) {
            const FT_UInt index = FT_Get_Char_Index(direct.face, static_cast<unsigned char>(*c));
            if (FT_HAS_KERNING(direct.face) && previous != 0 && index != 0) {
                FT_Vector delta{};
                FT_Get_Kerning(direct.face, previous, index, FT_KERNING_UNFITTED, &delta);
                length += delta.x * 1024;
            }
            length += direct.load(static_cast<unsigned char>(*c))->advance.x * 1024;
            previous = index;
        }
        EXPECT_EQ(processFont.getBaselineLength(arial, 12, text, 0), length >> 16);
    }
}

TEST_F(Font_, SpacingCountsOneTimeFewerThanTheCharactersInTheBaselineLength)
{
    const std::string text = "HIIIIIII";
    for (size_t n = 1; n <= text.size(); ++n) {
        SCOPED_TRACE(n);
        const std::string part = text.substr(0, n);
        EXPECT_EQ(processFont.getBaselineLength(arial, 8, part, 5 << 16) - processFont.getBaselineLength(arial, 8, part, 0),
                  5 * static_cast<int32_t>(n - 1));
    }
}

TEST_F(Font_, AGlyphIsFreeTypesBitmapAtThePenInEveryOrientation)
{
    for (int32_t orientation = 0; orientation < 4; ++orientation) {
        SCOPED_TRACE(orientation);
        Image image(640, 608);
        const Area area = draw(image, 300, 300, "H", orientation, 0, 0, false, 12);
        expectSingleGlyph(image, area, 300, 300, 12, orientation, 'H');
    }
}

// The reference places FreeType's own bitmaps: kerning moves the pen before a glyph is placed,
// spacing after its advance, both along the turned baseline. "AV" and "To" kern in this font.
TEST_F(Font_, EachGlyphStandsWhereAdvancesKerningAndSpacingPutThePen)
{
    const std::string text = "AVATo";
    const int32_t size = 12;
    const int32_t spacing = 3 << 16;
    const std::array<std::pair<int64_t, int64_t>, 4> along{{{1, 0}, {0, 1}, {-1, 0}, {0, -1}}};
    DirectFace flat(arial, size, 0);
    ASSERT_TRUE(FT_HAS_KERNING(flat.face));
    for (int32_t orientation = 0; orientation < 4; ++orientation) {
        SCOPED_TRACE(orientation);
        DirectFace turned(arial, size, orientation);
        const auto [dx, dy] = along[static_cast<size_t>(orientation)];
        PixelCanvas expected(640, 608);
        Area expectedArea{640, 608, -1, -1};
        int64_t penX = int64_t{300} << 16;
        int64_t penY = int64_t{300} << 16;
        int64_t kerning = 0;
        FT_UInt previous = 0;
        for (const char c : text) {
            const FT_UInt index = FT_Get_Char_Index(flat.face, static_cast<FT_ULong>(c));
            if (previous != 0) {
                FT_Vector delta{};
                FT_Get_Kerning(flat.face, previous, index, FT_KERNING_UNFITTED, &delta);
                kerning += delta.x;
                penX += dx * delta.x * 1024;
                penY += dy * delta.x * 1024;
            }
            const FT_GlyphSlot slot = turned.load(static_cast<FT_ULong>(c));
            const FT_Bitmap& bitmap = slot->bitmap;
            const auto left = static_cast<int32_t>(penX >> 16) + slot->bitmap_left;
            const auto top = static_cast<int32_t>(penY >> 16) - slot->bitmap_top;
            for (int32_t r = 0; r < static_cast<int32_t>(bitmap.rows); ++r)
                for (int32_t col = 0; col < static_cast<int32_t>(bitmap.width); ++col)
                    if (bitmapPixel(bitmap, col, r))
                        expected.at(left + col, top + r) = 1;
            expectedArea.left = std::min(expectedArea.left, left);
            expectedArea.top = std::min(expectedArea.top, top);
            expectedArea.right = std::max(expectedArea.right, left + static_cast<int32_t>(bitmap.width));
            expectedArea.bottom = std::max(expectedArea.bottom, top + static_cast<int32_t>(bitmap.rows));
            const int64_t step = flat.load(static_cast<FT_ULong>(c))->advance.x * 1024 + spacing;
            penX += dx * step;
            penY += dy * step;
            previous = index;
        }
        ASSERT_LT(kerning, -64) << "the string kerns by more than a dot";
        Image image(640, 608);
        expectArea(draw(image, 300, 300, text, orientation, 0, spacing, false, size), expectedArea);
        EXPECT_TRUE(PixelCanvas::of(image) == expected);
    }
}

TEST_F(Font_, TheBaselineRunsThroughTheAnchorInEveryOrientation)
{
    // H stands on the baseline, so its box touches the anchor's line on the side the turn gives.
    Image image(640, 608);
    EXPECT_EQ(draw(image, 300, 300, "HHH", 0).bottom, 300);
    EXPECT_EQ(draw(image, 300, 300, "HHH", 1).left, 300);
    EXPECT_EQ(draw(image, 300, 300, "HHH", 2).top, 300);
    EXPECT_EQ(draw(image, 300, 300, "HHH", 3).right, 300);
}

TEST_F(Font_, TextRunsAlongTheTurnedBaseline)
{
    const Area flat = measure(300, 300, "Hello", 0);
    const Area down = measure(300, 300, "Hello", 1);
    const Area back = measure(300, 300, "Hello", 2);
    const Area up = measure(300, 300, "Hello", 3);
    EXPECT_GE(flat.left, 300);
    EXPECT_GE(down.top, 300);
    EXPECT_LE(back.right, 301);
    EXPECT_LE(up.bottom, 301);
    EXPECT_EQ(flat.right - flat.left, down.bottom - down.top);
    EXPECT_EQ(flat.right - flat.left, back.right - back.left);
    EXPECT_EQ(flat.right - flat.left, up.bottom - up.top);
}

TEST_F(Font_, RightAlignmentPutsTheEndOfTheTextAtTheAnchor)
{
    const std::string text = "Right";
    for (int32_t spacing : {0, 5 << 16}) {
        const int32_t length = processFont.getBaselineLength(arial, 8, text, spacing);
        const std::array<std::pair<int32_t, int32_t>, 4> moves{{{-length, 0}, {0, -length}, {length, 0}, {0, length}}};
        for (int32_t orientation = 0; orientation < 4; ++orientation) {
            SCOPED_TRACE(orientation);
            const auto [dx, dy] = moves[static_cast<size_t>(orientation)];
            expectArea(measure(300, 300, text, orientation, 2, spacing),
                       measure(300 + dx, 300 + dy, text, orientation, 0, spacing));
        }
    }
}

TEST_F(Font_, RightAlignmentWithSpacingSubtractsItOneTimeFewerThanTheCharacters)
{
    const Area plain = measure(300, 300, "IIII", 0, 2, 0);
    const Area spaced = measure(300, 300, "IIII", 0, 2, 5 << 16);
    EXPECT_EQ(plain.right, spaced.right) << "the last character ends where it did";
    EXPECT_EQ(plain.left - spaced.left, 15);
}

TEST_F(Font_, AnyAlignmentOtherThanLeftOrCentreIsRight)
{
    expectArea(measure(300, 300, "Text", 1, 7), measure(300, 300, "Text", 1, 2));
}

TEST_F(Font_, CentringMeasuresUnrotatedAndMovesAlongTheBaseline)
{
    const Area unrotated = measure(300, 300, "Centre", 0);
    const int32_t width = unrotated.right - unrotated.left + 1;
    const int32_t offset = width / 2 + (unrotated.left - 300);
    const std::array<std::pair<int32_t, int32_t>, 4> moves{{{-offset, 0}, {0, -offset}, {offset, 0}, {0, offset}}};
    for (int32_t orientation = 0; orientation < 4; ++orientation) {
        SCOPED_TRACE(orientation);
        const auto [dx, dy] = moves[static_cast<size_t>(orientation)];
        expectArea(measure(300, 300, "Centre", orientation, 1),
                   measure(300 + dx, 300 + dy, "Centre", orientation, 0));
    }
}

TEST_F(Font_, Spacing005WidensEveryGapAlongTheBaseline)
{
    struct Case {
        int32_t orientation;
        int32_t Area::*grows;
        int32_t sign;
    };
    const Case cases[] = {{0, &Area::right, 1}, {1, &Area::bottom, 1}, {2, &Area::left, -1}, {3, &Area::top, -1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.orientation);
        const Area plain = measure(300, 300, "IIII", c.orientation, 0, 0);
        const Area spaced = measure(300, 300, "IIII", c.orientation, 0, 5 << 16);
        EXPECT_EQ((spaced.*c.grows - plain.*c.grows) * c.sign, 15);
    }
}

TEST_F(Font_, AStringOfSpacesLeavesTheAreaEmptyAndDrawsNothing)
{
    Image image(640, 608);
    for (const char* text : {"", "    "}) {
        SCOPED_TRACE(text);
        expectArea(draw(image, 100, 100, text, 0), Area{640, 608, -1, -1});
        expectArea(draw(image, 100, 100, text, 1, 1), Area{640, 608, -1, -1});
        expectArea(measure(100, 100, text, 0), Area{0x7FFFFFFF, 0x7FFFFFFF, -1, -1});
    }
    EXPECT_EQ(inkCount(image), 0);
}

TEST_F(Font_, TextLeftOfTheRasterIsClippedWithoutError)
{
    Image clipped(640, 608);
    Image whole(640, 608);
    draw(clipped, -20, 100, "Clipped text", 0);
    draw(whole, 44, 100, "Clipped text", 0);
    int32_t compared = 0;
    for (int32_t y = 60; y < 120; ++y)
        for (int32_t x = 0; x < 500; ++x) {
            ASSERT_EQ(clipped.getPixel(x, y), whole.getPixel(x + 64, y)) << x << "/" << y;
            compared += clipped.getPixel(x, y);
        }
    EXPECT_GT(compared, 0);
    EXPECT_LT(inkCount(clipped), inkCount(whole));
}

TEST_F(Font_, TextOffEveryEdgeIsClippedWithoutError)
{
    Image image(640, 608);
    draw(image, 600, 300, "Off the right edge", 0);
    draw(image, 300, 5, "Off the top", 0);
    draw(image, 300, 620, "Off the bottom", 2);
    draw(image, -500, -500, "Nowhere", 0);
    draw(image, 5000, 5000, "Nowhere", 3);
    EXPECT_GT(inkCount(image), 0);
}

TEST_F(Font_, AGlyphWhoseLeftEdgeIsANegativeMultipleOf32LandsOneWordFurtherLeft)
{
    DirectFace direct(arial, 40, 0);
    const FT_GlyphSlot slot = direct.load('W');
    ASSERT_GT(slot->bitmap.width, 96u);
    const int32_t x = -32 - slot->bitmap_left;
    Image image(640, 608);
    draw(image, x, 300, "W", 0, 0, 0, false, 40);
    const int32_t top = 300 - slot->bitmap_top;
    int32_t ink = 0;
    for (int32_t r = 0; r < static_cast<int32_t>(slot->bitmap.rows); ++r)
        for (int32_t c = 0; c + 64 < static_cast<int32_t>(slot->bitmap.width); ++c) {
            // Column 64 of the bitmap lands on column 0, where column 32 belongs.
            ASSERT_EQ(image.getPixel(c, top + r), bitmapPixel(slot->bitmap, c + 64, r)) << c << "/" << r;
            ink += image.getPixel(c, top + r);
        }
    EXPECT_GT(ink, 0);
}

TEST_F(Font_, BytesAbove127AreWindows1252)
{
    struct Case {
        const char* text;
        FT_ULong code;
    };
    const Case cases[] = {{"\x80", 0x20AC}, {"\xE9", 0xE9}, {"\x9F", 0x178}, {"A", 'A'}, {"\x81", 0x81}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        Image image(640, 608);
        const Area area = draw(image, 300, 300, c.text, 0, 0, 0, false, 12);
        expectSingleGlyph(image, area, 300, 300, 12, 0, c.code);
    }
}

TEST_F(Font_, ACharacterTheFontLacksDrawsItsGlyphZero)
{
    DirectFace direct(arial, 12, 0);
    ASSERT_EQ(FT_Get_Char_Index(direct.face, 0x81), 0u);
    FT_Load_Glyph(direct.face, 0, loadFlags);
    const int32_t notdefInk = [&] {
        int32_t ink = 0;
        const FT_Bitmap& bitmap = direct.face->glyph->bitmap;
        for (int32_t r = 0; r < static_cast<int32_t>(bitmap.rows); ++r)
            for (int32_t c = 0; c < static_cast<int32_t>(bitmap.width); ++c)
                ink += bitmapPixel(bitmap, c, r);
        return ink;
    }();
    Image image(640, 608);
    draw(image, 300, 300, "\x81", 0, 0, 0, false, 12);
    EXPECT_EQ(inkCount(image), notdefInk);
}

TEST(Windows1252Table, GivesTheCodePointsOfThePageAndKeepsTheFiveGaps)
{
    const std::array<uint16_t, 32> expected{
        0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6, 0x2030, 0x160,
        0x2039, 0x152,  0x8D,   0x17D,  0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};
    for (size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i + 0x80);
        EXPECT_EQ(windows1252Table[i], expected[i]);
    }
}

TEST_F(Font_, AnUnmappedFontFailsWithItsText)
{
    Image image(640, 608);
    const auto textOf = [](auto call) -> std::string {
        try {
            call();
        } catch (const KT_ERROR::kt_exception& error) {
            return error.what();
        }
        return "no exception";
    };
    EXPECT_EQ(textOf([&] { processFont.drawText(1, 100, 9, 8, "text", 0, nullptr, &image, 0, 0, false); }),
              "Font::drawText() error acquiring size 9: 1");
    EXPECT_EQ(textOf([&] { processFont.drawText(1, 100, 9, 8, "text", 1, nullptr, nullptr, 1, 0, false); }),
              "Font::drawText() error acquiring size 9: 1");
    EXPECT_EQ(textOf([&] { processFont.drawText(1, 100, 9, 8, "text", 0, nullptr, &image, 2, 0, false); }),
              "Font::getBaselineLength() error acquiring size: 1");
    EXPECT_EQ(textOf([&] { processFont.preloadDigits(9, 8, 2); }), "Font::drawText() error acquiring size: 1");
    EXPECT_EQ(textOf([&] {
                  FT_Pos a = 0, d = 0;
                  processFont.getSizeMetrics(60, 8, 0, a, d);
              }),
              "Font::drawText() error acquiring size 60: 1");
    EXPECT_EQ(textOf([&] { processFont.preloadDigits(arial, 8, 3); }), "no exception");
}

TEST_F(Font_, AnUnmappedFontAfterEveryFreeSizeIsTakenFailsWithItsTextAndTheCacheGoesOn)
{
    // The eight size slots hold sizes of one face when a face that can't be opened is asked for.
    Image before(640, 608);
    processFont.drawText(10, 50, arial, 10, "A", 0, nullptr, &before, 0, 0, false);
    Image image(640, 608);
    for (int32_t size = 11; size < 18; ++size)
        processFont.drawText(10, 50, arial, size, "A", 0, nullptr, &image, 0, 0, false);
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        try {
            processFont.drawText(10, 50, 25, 10, "B", 0, nullptr, &image, 0, 0, false);
            ADD_FAILURE() << "no exception";
        } catch (const KT_ERROR::kt_exception& error) {
            EXPECT_EQ(std::string(error.what()), "Font::drawText() error acquiring size 25: 1");
        }
    }
    Image after(640, 608);
    processFont.drawText(10, 50, arial, 10, "A", 0, nullptr, &after, 0, 0, false);
    int inkedWords = 0;
    for (int32_t row = 0; row < 608; ++row)
        for (int32_t col = 0; col < 20; ++col) {
            inkedWords += before.getLong(row, col) != 0;
            ASSERT_EQ(after.getLong(row, col), before.getLong(row, col)) << "row " << row << " word " << col;
        }
    EXPECT_GT(inkedWords, 10);
}

TEST_F(Font_, AnUnreadableFontFileFailsLikeAnUnmappedOne)
{
    writeFile(dir.file("broken.ttf"), "not a font");
    fontProvider->addFont(8, "broken.ttf");
    Image image(640, 608);
    try {
        processFont.drawText(1, 100, 8, 8, "text", 0, nullptr, &image, 0, 0, false);
        FAIL() << "no exception";
    } catch (const KT_ERROR::kt_exception& error) {
        EXPECT_EQ(std::string(error.what()), "Font::drawText() error acquiring size 8: 1");
    }
}

TEST_F(Font_, AGlyphThatFailsToLoadEndsThePassWithAMessageAndNoError)
{
    DirectFace direct(arial, 12, 0);
    writeFile(dir.file("broken.ttf"),
              withBrokenGlyph(readFile(dir.file("arial_2.ttf")), FT_Get_Char_Index(direct.face, 'H')));
    fontProvider->addFont(9, "broken.ttf");
    Image broken(640, 608);
    Image firstOnly(640, 608);
    processFont.drawText(300, 300, 9, 12, "A", 0, nullptr, &firstOnly, 0, 0, false);
    CoutCapture out;
    EXPECT_NO_THROW(processFont.drawText(300, 300, 9, 12, "AHA", 0, nullptr, &broken, 0, 0, false));
    EXPECT_EQ(out.text(), "Received wrong glyph type from cache");
    EXPECT_TRUE(PixelCanvas::of(broken) == PixelCanvas::of(firstOnly)) << "the pass ends at the broken glyph";
    EXPECT_GT(inkCount(broken), 0);
}

TEST_F(Font_, TheFaceOfAnIdIsTheFontTimesFourPlusTheTurn)
{
    FT_Library library = nullptr;
    FT_Init_FreeType(&library);
    FT_Face face = nullptr;
    ASSERT_EQ(Font::requestFace(reinterpret_cast<FTC_FaceID>(intptr_t{4 * 4 + 1}), library, nullptr, &face), 0);
    EXPECT_STREQ(face->family_name, "Liberation Sans");
    EXPECT_STREQ(face->style_name, "Bold");
    FT_Set_Char_Size(face, 8 * 64, 8 * 64, 303, 303);
    FT_Load_Char(face, 'H', loadFlags);
    EXPECT_EQ(face->glyph->advance.x, 0) << "orientation 1 turns the advance downwards";
    EXPECT_LT(face->glyph->advance.y, 0);
    FT_Done_Face(face);
    EXPECT_EQ(Font::requestFace(reinterpret_cast<FTC_FaceID>(intptr_t{9 * 4}), library, nullptr, &face), 1);
    FT_Done_FreeType(library);
}

TEST_F(Font_, ReversedTextIsWhiteInABoxFromAscenderToDescender)
{
    for (int32_t orientation = 0; orientation < 4; ++orientation) {
        SCOPED_TRACE(orientation);
        Image plain(640, 608);
        Image reversed(640, 608);
        const Area ink = draw(plain, 300, 300, "Hxg", orientation);
        const Area box = draw(reversed, 300, 300, "Hxg", orientation, 0, 0, true);
        FT_Pos ascender = 0;
        FT_Pos descender = 0;
        processFont.getSizeMetrics(arial, 8, orientation, ascender, descender);
        const int32_t up = static_cast<int32_t>((ascender + 32) / 64);
        const int32_t down = static_cast<int32_t>((-descender + 32) / 64);
        // The two corners lie on the anchor's line across the baseline, and widen the ink's box.
        const int32_t first = std::min(300, orientation % 2 == 0 ? ink.left : ink.top);
        const int32_t last = std::max(300, orientation % 2 == 0 ? ink.right : ink.bottom);
        const std::array<Area, 4> expected{{
            {first, 300 - up, last + 1, 300 + down},
            {300 - down, first, 300 + up + 1, last},
            {first, 300 - down, last + 1, 300 + up},
            {300 - up, first, 300 + down + 1, last},
        }};
        expectArea(box, expected[static_cast<size_t>(orientation)]);
        for (int32_t y = box.top - 2; y <= box.bottom + 2; ++y)
            for (int32_t x = box.left - 2; x <= box.right + 2; ++x) {
                const bool inside = x >= box.left && x <= box.right && y >= box.top && y <= box.bottom;
                ASSERT_EQ(reversed.getPixel(x, y), inside ? 1 - plain.getPixel(x, y) : 0) << x << "/" << y;
            }
    }
}

TEST_F(Font_, OnlyTheBoxOfReversedTextCanFallOffTheRaster)
{
    Image image(640, 608);
    EXPECT_NO_THROW(draw(image, 100, 5, "Top", 0));
    EXPECT_THROW(draw(image, 100, 5, "Top", 0, 0, 0, true), KT_ERROR::drawable_off_format);
    expectArea(measure(100, 5, "Top", 0), [&] {
        Area area{};
        processFont.drawText(100, 5, arial, 8, "Top", 0, &area, nullptr, 0, 0, true);
        return area;
    }());
}

TEST_F(Font_, ContentEscapesAreDecodedBeforeDrawing)
{
    struct Case {
        const char* text;
        FT_ULong code;
    };
    const Case cases[] = {
        {"\\<UNIC(20ac)>", 0x20AC}, {"\\<UNIC(20AC)>", 0x20AC}, {"\\<ASC(128)>", 0x20AC},
        {"\\<FNC1>H", 'H'},         {"H\\<FNC1>", 'H'},         {"\\\\", '\\'},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Image image(640, 608);
        const Area area = draw(image, 300, 300, c.text, 0, 0, 0, false, 12);
        expectSingleGlyph(image, area, 300, 300, 12, 0, c.code);
    }
}

TEST_F(Font_, ASequenceThatDrawsNothingAddsNoLengthOrSpacing)
{
    EXPECT_EQ(processFont.getBaselineLength(arial, 8, "H\\<FNC1>", 5 << 16),
              processFont.getBaselineLength(arial, 8, "H", 5 << 16));
    EXPECT_EQ(processFont.getBaselineLength(arial, 8, "\\<UNIC(48)>\\<UNIC(48)>", 5 << 16),
              processFont.getBaselineLength(arial, 8, "HH", 5 << 16));
}

TEST_F(Font_, ABrokenContentEscapeRaisesWhenDrawn)
{
    Image image(640, 608);
    EXPECT_THROW(draw(image, 300, 300, "a\\b", 0), KT_ERROR::bad_content_sequence);
    EXPECT_THROW(processFont.getBaselineLength(arial, 8, "\\<UNIC(20ac)", 0), KT_ERROR::bad_content_sequence);
}

TEST_F(Font_, ALongRunOfOneSymbolDrawsAndMeasuresAsItsSymbolsOneByOne)
{
    // The pen wraps every 65536 dots, so a long run comes back onto the raster from the other side; negative
    // spacing walks it backwards. Runs are cut short where they can't land and don't wrap.
    struct Case {
        char symbol;
        uint32_t count;
        int32_t x, y, orientation, alignment, spacing;
        bool reversed;
    };
    // Spacing in 16.16, as the text record gives it; the last two step nearly half the pen's range at once.
    const Case cases[] = {
        {'I', 30000, 2000, 300, 0, 0, 0, false},           {'I', 30000, -900, 300, 0, 0, 5 << 16, false},
        {'W', 12000, 320, 300, 1, 0, 3 << 16, false},      {'|', 20000, 320, 9000, 2, 0, -7 * 65536, false},
        {'.', 40000, 320, -5000, 3, 0, -1 * 65536, false}, {'V', 9000, 100, 200, 0, 1, 0, false},
        {'A', 9000, 600, 100, 1, 2, 2 << 16, false},       {'I', 40, 50, 50, 0, 0, -1 * 65536, true},
        {' ', 30000, 10, 10, 0, 0, 4 << 16, false},        {'I', 3, 300, 300, 0, 0, 0, false},
        {'I', 70000, 300, 300, 0, 0, 0x7FFF0000, false},  {'j', 5000, 30000, 300, 0, 0, -0x7FFF0000, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(1, c.symbol) + " x" + std::to_string(c.count) + " turn " +
                     std::to_string(c.orientation) + " spacing " + std::to_string(c.spacing / 65536.0));
        Image runImage(640, 608);
        Image singleImage(640, 608);
        const std::string run(c.count, c.symbol);
        const std::string single = oneByOne(c.symbol, c.count);
        const Area runArea = draw(runImage, c.x, c.y, run, c.orientation, c.alignment, c.spacing, c.reversed);
        const Area singleArea = draw(singleImage, c.x, c.y, single, c.orientation, c.alignment, c.spacing, c.reversed);
        EXPECT_EQ(runArea, singleArea);
        EXPECT_TRUE(PixelCanvas::of(runImage) == PixelCanvas::of(singleImage));
        EXPECT_EQ(measure(c.x, c.y, run, c.orientation, c.alignment, c.spacing),
                  measure(c.x, c.y, single, c.orientation, c.alignment, c.spacing));
        EXPECT_EQ(processFont.getBaselineLength(arial, 8, run, c.spacing),
                  processFont.getBaselineLength(arial, 8, single, c.spacing));
    }
}

TEST_F(Font_, TheFirstGlyphOfARunKernsAgainstTheGlyphBeforeIt)
{
    const std::string run = "A" + std::string(5, 'V');
    const std::string single = "A" + oneByOne('V', 5);
    ASSERT_NE(processFont.getBaselineLength(arial, 30, "AV", 0),
              processFont.getBaselineLength(arial, 30, "A", 0) + processFont.getBaselineLength(arial, 30, "V", 0))
        << "A and V kern";
    EXPECT_EQ(processFont.getBaselineLength(arial, 30, run, 2 << 16),
              processFont.getBaselineLength(arial, 30, single, 2 << 16));
    Image runImage(640, 608);
    Image singleImage(640, 608);
    EXPECT_EQ(draw(runImage, 20, 300, run, 0, 0, 0, false, 30), draw(singleImage, 20, 300, single, 0, 0, 0, false, 30));
    EXPECT_TRUE(PixelCanvas::of(runImage) == PixelCanvas::of(singleImage));
}

TEST_F(Font_, ARunThatWrapsPutsItsGlyphsBackOnTheRaster)
{
    // 9000 capital I of 3 dots from x 2000 travel past the pen's 65536 dots and come back from the left.
    Image image(640, 608);
    draw(image, 2000, 300, std::string(9000, 'I'), 0);
    EXPECT_GT(inkCount(image), 1000);
}

TEST(FontHooks, UnicGivesTheHexadecimalCodePointAndOtherSequencesNothing)
{
    struct Case {
        const char* id;
        const char* parm;
        uint32_t type;
        uint32_t value;
    };
    const Case cases[] = {
        {"UNIC", "20ac", KT_FMT::ITEM_UNICODE, 0x20AC}, {"UNIC", "0x41", KT_FMT::ITEM_UNICODE, 0x41},
        {"UNIC", "", KT_FMT::ITEM_UNICODE, 0},          {"UNIC", "zz", KT_FMT::ITEM_UNICODE, 0},
        {"unic", "41", KT_FMT::ITEM_NONE, 0},           {"FNC1", "", KT_FMT::ITEM_NONE, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.id) + "(" + c.parm + ")");
        KT_FMT::ContentItem item{KT_FMT::ITEM_NONE, 0};
        Font::sequenceHook(c.id, c.parm, item);
        EXPECT_EQ(item.type, c.type);
        EXPECT_EQ(item.value, c.value);
    }
}

TEST(FontHooks, TheFilterTurnsHighBytesIntoWindows1252CodePoints)
{
    struct Case {
        KT_FMT::ContentItem in;
        KT_FMT::ContentItem out;
    };
    const Case cases[] = {
        {{KT_FMT::ITEM_BYTE, 0x41}, {KT_FMT::ITEM_BYTE, 0x41}},
        {{KT_FMT::ITEM_BYTE, 0x7F}, {KT_FMT::ITEM_BYTE, 0x7F}},
        {{KT_FMT::ITEM_BYTE, 0x80}, {KT_FMT::ITEM_UNICODE, 0x20AC}},
        {{KT_FMT::ITEM_BYTE, 0x8D}, {KT_FMT::ITEM_UNICODE, 0x8D}},
        {{KT_FMT::ITEM_BYTE, 0xA0}, {KT_FMT::ITEM_UNICODE, 0xA0}},
        {{KT_FMT::ITEM_BYTE, 0xFF}, {KT_FMT::ITEM_UNICODE, 0xFF}},
        {{KT_FMT::ITEM_UNICODE, 0x80}, {KT_FMT::ITEM_UNICODE, 0x80}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.in.value);
        KT_FMT::ContentItem item = c.in;
        Font::itemFilter(item);
        EXPECT_EQ(item.type, c.out.type);
        EXPECT_EQ(item.value, c.out.value);
    }
}
