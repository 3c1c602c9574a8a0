#include "format/TestFormats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <tuple>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "autocode/DateClock.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "format/TestFormatData.h"
#include "format/TestFormatTables.h"
#include "graphics/Image.h"
#include "tests/autocode/ClockState.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

using KT_FMT::KT_Format;
using KT_FMT::testFormatLength;
using Strings = std::vector<std::string>;
using Integers = std::vector<int32_t>;

namespace {

constexpr int32_t W = 640;

// Keeps the process-wide pattern length of a test to that test.
class LengthState {
public:
    LengthState() = default;
    LengthState(const LengthState&) = delete;
    LengthState& operator=(const LengthState&) = delete;
    ~LengthState() { testFormatLength = saved; }

private:
    uint32_t saved = testFormatLength;
};

// A raster, a format over it and the pattern length, without fonts.
class TestFormatBase {
protected:
    PixelCanvas build(uint32_t number, uint32_t length, const Integers& integers = {}, const Strings& strings = {})
    {
        testFormatLength = length;
        format.buildTestFormat(number, strings, integers);
        return PixelCanvas::of(image);
    }

    LengthState lengthState;
    ClockState clockState;
    Image image{W, 1200};
    KT_Format format{nullptr, &image, nullptr};
};

class TestFormats : public testing::Test, protected TestFormatBase {};

// The same with the default fonts installed, for the patterns that write.
class TextTestFormats : public fonttest::FontFixture, protected TestFormatBase {
protected:
    // A raster painted by hand with texts at the given places, to hold a pattern against.
    struct Reference {
        Image image{W, 1200};
        void text(int32_t x, int32_t y, int32_t size, int32_t font, const std::string& string, int32_t turn = 0)
        {
            image.printText(x, y, size, font, string, turn, nullptr, false, 0, true);
        }
        void corners(int32_t x0, int32_t y0, int32_t x1, int32_t y1) { image.rectangleCorners(x0, y0, x1, y1, 1); }
        PixelCanvas canvas() { return PixelCanvas::of(image); }
    };

    std::string clock(const char* pattern)
    {
        std::tm fields{};
        KT_AC::breakTime(KT_AC::now, fields);
        char buffer[128];
        return std::string(buffer, std::strftime(buffer, sizeof buffer, pattern, &fields));
    }

    // The settings list by hand: its six lines, 50 dots apart, and its frame.
    PixelCanvas settingsList(const std::vector<std::string>& lines)
    {
        Reference reference;
        for (size_t i = 0; i < lines.size(); ++i)
            reference.text(60, 60 + 50 * static_cast<int32_t>(i), 10, 5, lines[i]);
        reference.corners(0, 0, 12, 350);
        reference.corners(538, 0, 550, 350);
        reference.corners(12, 0, 538, 12);
        reference.corners(12, 338, 538, 350);
        return reference.canvas();
    }

    // The twelve lines of a parameter sheet by hand, in font 5; a null text is the clock's date or time.
    void sheetLines(Image& target, const int32_t (&columns)[4], const int32_t (&rows)[12], int32_t size,
                    const char* const (&texts)[12][4])
    {
        const std::string date = clock("%x"), time = clock("%X");
        for (int line = 0; line < 12; ++line)
            for (int c = 0; c < 4; ++c) {
                const std::string text = texts[line][c] != nullptr ? texts[line][c] : c == 1 ? date : time;
                if (!text.empty())
                    target.printText(columns[c], rows[line], size, 5, text, 0, nullptr, false, 0, true);
            }
    }
};

// The canvas of a pattern given as a rule on each dot, over the rows below `length`.
PixelCanvas ruled(int32_t length, const std::function<bool(int32_t, int32_t)>& inked)
{
    PixelCanvas canvas(W, 1200);
    for (int32_t y = 0; y < length; ++y)
        for (int32_t x = 0; x < W; ++x)
            canvas.at(x, y) = inked(x, y) ? 1 : 0;
    return canvas;
}

// A parameter sheet's settings and, for a length of 100 mm, its lines in columns 1 to 4.
const Integers sheetIntegers = {300, 80, 2, 1, 0, 1, 0, 1, 15, 1200, 0, 150, 250000};
const Strings sheetStrings = {"D 1.0", "T 2.0", "H 3.0", "M 4.0"};
const char* const sheetTexts[12][4] = {
    {"DIMM-PC:", "D 1.0", "", ""},
    {"Touchpanel:", "T 2.0", "", ""},
    {"Head:", "H 3.0", "", ""},
    {"MES:", "M 4.0", "", ""},
    {"Speed:", "300 mm/s", "Density:", "80 %"},
    {"Orientation:", "mirrore", "Print trigger:", "rising edge"},
    {"Error level:", "active low", "Inhibit level:", "low"},
    {"Network IF:", "off", "Print buffer:", "off"},
    {"Print delay:", "15 ms", "Head resist.:", "1200 Ohm"},
    {"Date:", nullptr, "Time:", nullptr},
    {"Mode:", "continuous", "Carriage pos.:", "12.50 mm"},
    {"Print length:", "100 mm", "Air pressure:", "2.500 MPa"},
};

// Inclusive corners, as the patterns give their bars.
void corners(PixelCanvas& canvas, int32_t x0, int32_t y0, int32_t x1, int32_t y1)
{
    canvas.fill(x0, y0, x1 - x0 + 1, y1 - y0 + 1);
}

TEST(TestFormatLength, IsOneHundredDotsAtStart)
{
    EXPECT_EQ(testFormatLength, 100u);
}

TEST(TestFormatNames, AreTenCharactersEach)
{
    for (std::string_view name : KT_FMT::testFormatNames) {
        SCOPED_TRACE(name);
        EXPECT_EQ(name.size(), 10u);
    }
}

TEST(TestFormatNames, ANameOfAnotherLengthIsRefused)
{
    expectFailure<KT_ERROR::kt_exception>([] { KT_FMT::checkTestFormatName("SHORT"); },
                                          "invalid test format name: SHORT");
    expectFailure<KT_ERROR::kt_exception>([] { KT_FMT::checkTestFormatName("ELEVEN CHAR"); },
                                          "invalid test format name: ELEVEN CHAR");
    EXPECT_NO_THROW(KT_FMT::checkTestFormatName("TEN CHARS!"));
}

TEST_F(TestFormats, NumberTwentyFourIsUnknown)
{
    expectFailure<KT_ERROR::kt_exception>([&] { build(24, 100); }, "unknown escape test format: 24");
    expectFailure<KT_ERROR::kt_exception>([&] { build(4000000000u, 100); },
                                          "unknown escape test format: 4000000000");
}

TEST_F(TestFormats, TheFormatTakesTheNameOfItsNumber)
{
    const struct {
        uint32_t number;
        const char* name;
    } cases[] = {{0, "LEGACY    "},  {1, "VERT. BARS"}, {2, "HOR. BARS "}, {3, "VERT. LINE"}, {4, "HOR. LINE "},
                 {5, "HATCH     "},  {6, "BLOWN PIX."}, {12, "HALF TONE "}, {13, "VAR. HATCH"}, {14, "HALF HATCH"},
                 {15, "V. LINES 1"}, {16, "V LINES 16"}, {17, "CONTS TEST"}, {22, "LINEARITY "}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number);
        build(c.number, 400);
        EXPECT_EQ(format.getName(), c.name);
        EXPECT_TRUE(format.getElementIds(31).empty());
    }
}

TEST_F(TestFormats, AFailedNumberKeepsTheNameTestformat)
{
    EXPECT_THROW(build(24, 100), KT_ERROR::kt_exception);
    EXPECT_EQ(format.getName(), "TESTFORMAT");
}

TEST_F(TestFormats, ANewPatternClearsTheLastOne)
{
    build(6, 50);
    const PixelCanvas lines = build(4, 50);
    EXPECT_EQ(lines, ruled(50, [](int32_t, int32_t y) { return y % 16 < 2; }));
}

TEST_F(TestFormats, ShortLengthsAreRefusedBeforePainting)
{
    const struct {
        uint32_t number;
        uint32_t least;
        const char* message;
    } cases[] = {
        {0, 264, "format length for legacy format must be at least 22mm"},
        {2, 384, "format length for HorizontalBars format must be at least 32mm"},
        {7, 492, "format length for FontSizes format must be at least 41mm"},
        {8, 84, "format length for AllFonts format must be at least 7mm"},
        {9, 360, "format length for SpeedDensity format must be at least 30mm"},
        {11, 984, "format length for SalesShow format must be at least 82mm"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number);
        expectFailure<KT_ERROR::format_error>([&] { build(c.number, c.least - 1); }, c.message);
        EXPECT_EQ(PixelCanvas::of(image), PixelCanvas(W, 1200));
    }
}

TEST_F(TestFormats, HalvingSquaresStandEveryOtherSquareInEightRows)
{
    const struct {
        int32_t y;
        int32_t size;
    } rows[] = {{0, 128}, {128, 64}, {192, 32}, {224, 16}, {240, 8}, {248, 4}, {252, 2}, {254, 1}};
    PixelCanvas expected(W, 1200);
    for (const auto& row : rows)
        for (int32_t x = 0; x + row.size <= W; x += 2 * row.size)
            expected.fill(x, row.y, row.size, row.size);
    EXPECT_EQ(build(0, 264), expected);
}

TEST_F(TestFormats, VerticalBarsAreOneDotWiderThanTheirStep)
{
    const int32_t bars[][2] = {{0, 2}, {2, 3}, {6, 5}, {14, 9}, {30, 17}, {62, 33}, {126, 65}, {254, 129}};
    PixelCanvas expected(W, 1200);
    for (const auto& bar : bars)
        expected.fill(bar[0], 0, bar[1], 150);
    EXPECT_EQ(build(1, 150), expected);
}

TEST_F(TestFormats, HorizontalBarsAreOneDotTallerThanTheirStep)
{
    const int32_t bars[][2] = {{0, 2}, {2, 3}, {6, 5}, {14, 9}, {30, 17}, {62, 33}, {126, 65}, {254, 129}};
    PixelCanvas expected(W, 1200);
    for (const auto& bar : bars)
        expected.fill(0, bar[0], W, bar[1]);
    EXPECT_EQ(build(2, 384), expected);
}

TEST_F(TestFormats, WordPatternsCoverTheRowsOfTheLength)
{
    const struct {
        uint32_t number;
        std::function<bool(int32_t, int32_t)> inked;
    } cases[] = {
        {3, [](int32_t x, int32_t) { return x % 16 < 2; }},
        {4, [](int32_t, int32_t y) { return y % 16 < 2; }},
        {5, [](int32_t x, int32_t y) { return x % 16 < 2 || y % 16 < 2; }},
        {6, [](int32_t, int32_t) { return true; }},
        {12, [](int32_t x, int32_t y) { return y % 4 < 2 && x % 4 >= 2; }},
        {15, [](int32_t x, int32_t) { return x % 2 == 0; }},
        {16, [](int32_t x, int32_t) { return x % 32 < 16; }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number);
        EXPECT_EQ(build(c.number, 330), ruled(330, c.inked));
    }
}

TEST_F(TestFormats, HalfToneLeavesTheLastRowWhenTheLengthEndsInsideAPair)
{
    // Pairs start only below L - 1, so with L 5 the pair at row 4 is left out.
    EXPECT_EQ(build(12, 5), ruled(5, [](int32_t x, int32_t y) { return y < 2 && x % 4 >= 2; }));
    EXPECT_EQ(build(12, 6), ruled(6, [](int32_t x, int32_t y) { return y % 4 < 2 && x % 4 >= 2; }));
}

TEST_F(TestFormats, BlownPixelsWithLengthOneHundredLeaveRowOneHundredOnWhite)
{
    const PixelCanvas canvas = build(6, 100);
    EXPECT_EQ(canvas, ruled(100, [](int32_t, int32_t) { return true; }));
}

TEST_F(TestFormats, PatternsPastTheRasterAreOffFormat)
{
    for (uint32_t number : {3u, 4u, 6u, 15u, 16u, 17u}) {
        SCOPED_TRACE(number);
        EXPECT_THROW(build(number, 1201), KT_ERROR::drawable_off_format);
    }
}

TEST_F(TestFormats, VariableHatchDrawsTwoDotLinesAtTheGapPlusOne)
{
    const struct {
        int32_t gap;
        int32_t step;
    } cases[] = {{0, 1}, {3, 4}, {10, 11}, {99, 100}, {200, 100}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.gap);
        PixelCanvas expected(W, 1200);
        for (int32_t x = 0; x < W - 1; x += c.step)
            expected.fill(x, 0, 2, 300);
        for (int32_t y = 0; y < 300 - 1; y += c.step)
            expected.fill(0, y, W, 2);
        EXPECT_EQ(build(13, 300, {c.gap}), expected);
    }
}

TEST_F(TestFormats, VariableHatchWithGapTwoHundredIsTheGapNinetyNine)
{
    const PixelCanvas wide = build(13, 300, {200});
    EXPECT_EQ(wide, build(13, 300, {99}));
}

TEST_F(TestFormats, HalfHatchPaintsItsThreeParts)
{
    // W 640: T 213, the dither over words 0 to 6, the fine grid from 224 to 425, the coarse one from 426.
    PixelCanvas expected(W, 1200);
    for (int32_t y = 0; y < 200; ++y)
        for (int32_t x = 0; x < 224; ++x)
            expected.at(x, y) = (y % 2 != 0) == (x % 4 >= 2) ? 1 : 0;
    for (int32_t x = 224; x < 425; x += 11)
        corners(expected, x, 0, x + 1, 199);
    for (int32_t y = 0; y < 199; y += 11)
        corners(expected, 224, y, 425, y + 1);
    for (int32_t x = 426; x < 636; x += 12)
        corners(expected, x, 0, x + 4, 199);
    for (int32_t y = 0; y < 196; y += 12)
        corners(expected, 426, y, 639, y + 4);
    EXPECT_EQ(build(14, 200, {10, 8, 4}), expected);
}

TEST_F(TestFormats, GapsBelowZeroAreTheGapZero)
{
    const PixelCanvas negative = build(13, 40, {-5});
    EXPECT_EQ(negative, build(13, 40, {0}));
    const PixelCanvas negatives = build(14, 40, {-1, -3, -2});
    EXPECT_EQ(negatives, build(14, 40, {0, 0, 0}));
}

TEST_F(TestFormats, HalfHatchWithoutGapOrThicknessStepsOneDot)
{
    // q + t of 0 would never move on; the coarse grid then inks every dot of its third.
    const PixelCanvas canvas = build(14, 40, {0, 0, 0});
    for (int32_t y = 0; y < 39; ++y)
        for (int32_t x = 426; x < W; ++x)
            if (canvas.pixels[static_cast<size_t>(y) * W + x] != 1)
                FAIL() << "pixel " << x << ", " << y;
}

TEST_F(TestFormats, HalfHatchHoldsItsFiguresToNinetyNine)
{
    const PixelCanvas large = build(14, 300, {500, 300, 120});
    EXPECT_EQ(large, build(14, 300, {99, 99, 99}));
}

TEST_F(TestFormats, ContinuousTestFillsFourQuarters)
{
    const auto inked = [](int32_t x, int32_t y) {
        if (x < 160)
            return y % 6 == 0 || x % 6 == 0;
        if (x < 320)
            return y % 2 == 0;
        if (x < 480)
            return x % 2 == y % 2;
        return y % 16 < 8 || x % 16 >= 8;
    };
    EXPECT_EQ(build(17, 100), ruled(100, inked));
}

TEST_F(TextTestFormats, QualityPatternParsesTheStoredSampleFormat)
{
    build(23, 100, {1, 40, 120, 7, 5, 33}, {"wax"});
    EXPECT_EQ(format.getName(), "QUALITY   ");
    const std::vector<std::string> ids = format.getElementIds(1);
    for (const char* id : {"VIribbon", "VIspeed", "VIpressure", "VIdensity"}) {
        SCOPED_TRACE(id);
        EXPECT_NE(std::find(ids.begin(), ids.end(), id), ids.end());
    }
    EXPECT_FALSE(format.isEmpty());
}

TEST_F(TextTestFormats, QualityCopiesAcrossTheHeadAllButTheLastUsedRow)
{
    Image wide(3 * W, 1200);
    KT_Format wideFormat(nullptr, &wide, nullptr);
    testFormatLength = 100;
    wideFormat.buildTestFormat(23, {"wax"}, {1, 40, 120, 7, 5, 33});
    const PixelCanvas single = PixelCanvas::of(wide);
    wideFormat.buildTestFormat(23, {"wax"}, {3, 40, 120, 7, 5, 33});
    const int32_t first = wide.getFirstUsedRow(), last = wide.getLastUsedRow();
    ASSERT_LT(first, last);
    for (int32_t y = 0; y < 1200; ++y)
        for (int32_t x = 0; x < 3 * W; ++x) {
            const bool copied = x >= W && y >= first && y < last;
            const int expected = copied ? single.pixels[static_cast<size_t>(y) * 3 * W + x % W]
                                        : single.pixels[static_cast<size_t>(y) * 3 * W + x];
            if (wide.getPixel(x, y) != expected)
                FAIL() << "pixel " << x << ", " << y;
        }
}

TEST_F(TextTestFormats, QualityCopiesPastTheRasterAreOffFormat)
{
    EXPECT_THROW(build(23, 100, {2}), KT_ERROR::drawable_off_format);
}

TEST(TestFormatData, TheStoredSampleFormatIsAnEscapeFileBehindItsPrefix)
{
    const auto& bytes = KT_FMT::testSampleFormat;
    EXPECT_EQ(bytes.size(), 18322u);
    EXPECT_EQ(std::string(bytes.begin() + 10, bytes.begin() + 20), "QUALITY   ");
    EXPECT_EQ(bytes[20], 0x1B);
}

TEST_F(TextTestFormats, FontSizesLadderTheNumbersTwoToThirtyFive)
{
    Reference reference;
    // Eleven numbers on the first line, then 7, 5, 4, 4, 3 at growing steps.
    const struct {
        int32_t first;
        int32_t last;
        int32_t y;
        int32_t step;
    } lines[] = {{2, 12, 40, 50}, {13, 19, 120, 90}, {20, 24, 220, 130}, {25, 28, 340, 165},
                 {29, 32, 465, 165}, {33, 35, 590, 165}};
    for (const auto& line : lines)
        for (int32_t n = line.first; n <= line.last; ++n)
            reference.text(1 + (n - line.first) * line.step, line.y, n, 5, std::to_string(n));
    EXPECT_EQ(build(7, 492), reference.canvas());
}

TEST_F(TextTestFormats, AllFontsStopsAtTheFirstFontTheLengthDoesNotReach)
{
    const struct {
        uint32_t length;
        int fonts;
    } cases[] = {{84, 1}, {202, 1}, {203, 2}, {322, 2}, {323, 3}, {443, 4}, {563, 5}, {683, 6}, {1000, 6}};
    const char* labels[] = {"OCR-B - 0123456789", "GILL - 0123456789",     "HELV - 0123456789",
                            "CENTURY - 0123456789", "ARIALBLD - 0123456789", "ARIAL - 0123456789"};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.length);
        Reference reference;
        for (int f = 0; f < c.fonts; ++f) {
            reference.text(0, 40 + 120 * f, 8, f, labels[f]);
            reference.text(0, 80 + 120 * f, 8, f, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
        }
        EXPECT_EQ(build(8, c.length), reference.canvas());
    }
}

TEST_F(TextTestFormats, AllFontsOnOtherWidthsIsLargerAndIndented)
{
    Image wide(1280, 300);
    KT_Format wideFormat(nullptr, &wide, nullptr);
    Image expected(1280, 300);
    expected.printText(20, 40, 12, 0, "OCR-B - 0123456789", 0, nullptr, false, 0, true);
    expected.printText(20, 80, 12, 0, "ABCDEFGHIJKLMNOPQRSTUVWXYZ", 0, nullptr, false, 0, true);
    testFormatLength = 202;
    wideFormat.buildTestFormat(8, {}, {});
    EXPECT_EQ(PixelCanvas::of(wide), PixelCanvas::of(expected));
}

TEST_F(TextTestFormats, SpeedDensityListsTheSettingsInAFrame)
{
    EXPECT_EQ(build(9, 360, {7, 42, 123, 4567, 8, 5, 9, 24, 11, 2026}),
              settingsList({"SPEED - 007", "DENSITY - 042", "RESISTANCE - 0123",
                            "PRINTCOUNT - 004567", "TIME - 08:05:09", "DATE - 24/11/2026"}));
}

TEST_F(TextTestFormats, SpeedDensityReadsMissingIntegersAsZero)
{
    EXPECT_EQ(build(9, 360, {9}),
              settingsList({"SPEED - 009", "DENSITY - 000", "RESISTANCE - 0000",
                            "PRINTCOUNT - 000000", "TIME - 00:00:00", "DATE - 00/00/0000"}));
}

TEST_F(TextTestFormats, SpeedDensityFiguresWiderThanTheirFieldsOrBelowZeroKeepAllTheirCharacters)
{
    EXPECT_EQ(build(9, 360, {1234, -5, 123456, 12345678, 123, -1, 0, -3, 100, 12345}),
              settingsList({"SPEED - 1234", "DENSITY - -05", "RESISTANCE - 123456",
                            "PRINTCOUNT - 12345678", "TIME - 123:-1:00", "DATE - -3/100/12345"}));
}

TEST_F(TextTestFormats, BoxFrameIsTwelveDotsThickAndTheGivenMillimetresTall)
{
    const struct {
        int32_t given;
        int32_t millimetres;
        int32_t textY;
    } cases[] = {{3, 5, 45}, {5, 5, 45}, {6, 6, 50}, {40, 40, 50}, {65536 + 20, 20, 50}, {-7, 5, 45}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.given);
        Reference reference;
        const int32_t v = c.millimetres;
        reference.corners(0, 0, W - 1, 12);
        reference.corners(0, 12 * v - 12, W - 1, 12 * v);
        reference.corners(0, 12, 12, 12 * v - 12);
        reference.corners(W - 12, 12, W - 1, 12 * v - 12);
        reference.text(50, c.textY, 10, 5, "BOX " + std::to_string(v) + " mm TEST FORMAT");
        EXPECT_EQ(build(10, 600, {c.given}), reference.canvas());
    }
}

TEST_F(TextTestFormats, BoxFrameIsHeldToTheLengthInDotsThoughItCountsMillimetres)
{
    // 80 millimetres asked for with a length of 60 dots: the frame comes out 59 millimetres tall.
    Reference reference;
    reference.corners(0, 0, W - 1, 12);
    reference.corners(0, 12 * 59 - 12, W - 1, 12 * 59);
    reference.corners(0, 12, 12, 12 * 59 - 12);
    reference.corners(W - 12, 12, W - 1, 12 * 59 - 12);
    reference.text(50, 50, 10, 5, "BOX 59 mm TEST FORMAT");
    EXPECT_EQ(build(10, 60, {80}), reference.canvas());
}

TEST_F(TextTestFormats, SalesShowPaintsTwelveTextsInAFrame)
{
    Reference reference;
    reference.text(80, 100, 12, 4, "Velmora");
    reference.text(230, 160, 12, 4, "Demo");
    reference.text(220, 320, 12, 4, "Test1");
    reference.text(410, 360, 12, 4, "Test2", 3);
    reference.text(350, 530, 12, 4, "Test3", 2);
    reference.text(160, 510, 12, 4, "Test4", 1);
    reference.text(50, 740, 12, 2, "Century");
    reference.text(350, 740, 12, 1, "Gill-B");
    reference.text(50, 840, 12, 3, "Helvetica");
    reference.text(350, 840, 12, 0, "OCR-B");
    reference.text(50, 940, 12, 4, "Arial-B");
    reference.text(350, 940, 12, 5, "Arial");
    reference.corners(0, 0, 12, 980);
    reference.corners(W - 13, 0, W - 1, 980);
    reference.corners(12, 0, W - 12, 12);
    reference.corners(12, 968, W - 12, 980);
    EXPECT_EQ(build(11, 984), reference.canvas());
}

TEST_F(TextTestFormats, CheckPrintShowsItsFiguresAndTheLogoRowsEightyBytesApart)
{
    const PixelCanvas canvas = build(18, 100, {55, 120, 45678}, {"Batch 7", "Anna", "Wax"});
    Reference reference;
    reference.image.cropMarks(0, 0, W - 1, 599, 0);
    reference.text(50, 100, 12, 4, "CHECK PRINT");
    reference.text(50, 150, 10, 4, "Batch 7");
    reference.text(50, 230, 8, 5, clock("%d.%m.%Y %X"));
    reference.text(50, 270, 8, 5, "Checked:  Anna");
    reference.text(50, 310, 8, 5, "Ribbon type:  Wax");
    reference.text(50, 350, 8, 5, "Density:  55 %   Speed: 120 mm/s");
    reference.text(50, 390, 8, 5, "Air pressure:  0.456 MPa");
    PixelCanvas expected = reference.canvas();
    for (int32_t row = 0; row < 112; ++row)
        for (int32_t x = 0; x < 256; ++x) {
            const unsigned char byte = KT_FMT::testFormatLogos[static_cast<size_t>(row) * 80 + x / 8];
            expected.at(x, 430 + row) = (byte >> (7 - x % 8)) & 1;
        }
    expected.fill(0, 575, W - 1, 24);
    EXPECT_EQ(canvas, expected);
}

TEST_F(TextTestFormats, ParameterSheetOnTheNarrowHead)
{
    const PixelCanvas canvas = build(19, 1200, sheetIntegers, sheetStrings);
    Reference reference;
    reference.image.cropMarks(0, 0, W - 1, 599, 0);
    const int32_t rows[] = {90, 120, 150, 180, 225, 255, 285, 315, 345, 375, 405, 435};
    sheetLines(reference.image, {5, 175, 330, 500}, rows, 6, sheetTexts);
    reference.image.loadRaw(KT_FMT::testFormatLogos.data(), 475, 192, 112, 256);
    EXPECT_EQ(canvas, reference.canvas());
}

TEST_F(TextTestFormats, ParameterSheetSpellsTheSettingsThatAreSet)
{
    const struct {
        int32_t orientation;
        const char* text;
    } cases[] = {{1, "normal"}, {2, "mirrore"}, {3, "180\xb0/normal"}, {4, "180\xb0/mirror"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.orientation);
        const PixelCanvas canvas = build(19, 600, {0, 0, c.orientation, 0, 1, 0, 1, 0, 0, 0, 1, 150, 0});
        Reference reference;
        reference.text(175, 255, 6, 5, c.text);
        reference.text(175, 285, 6, 5, "active high");
        reference.text(175, 315, 6, 5, "on");
        reference.text(175, 405, 6, 5, "intermittend");
        reference.text(500, 405, 6, 5, "n/a");
        const PixelCanvas expected = reference.canvas();
        for (const auto& [y, x0, x1] : {std::tuple{255, 175, 330}, {285, 175, 330}, {315, 175, 330},
                                        {405, 175, 330}, {405, 500, 640}})
            for (int32_t yy = y - 22; yy < y + 6; ++yy)
                for (int32_t x = x0; x < x1; ++x)
                    if (canvas.pixels[static_cast<size_t>(yy) * W + x] != expected.pixels[static_cast<size_t>(yy) * W + x])
                        FAIL() << "pixel " << x << ", " << yy;
    }
}

TEST_F(TextTestFormats, ParameterSheetOnAWideHeadSetsEveryLineInTheCentredColumns)
{
    Image wide(1600, 1200);
    KT_Format wideFormat(nullptr, &wide, nullptr);
    testFormatLength = 1200;
    wideFormat.buildTestFormat(19, sheetStrings, sheetIntegers);
    Image reference(1600, 1200);
    reference.cropMarks(0, 0, 1599, 999, 0);
    // Start 65, line 50, a half line more before line 5; the columns stand (1600 - 1280) / 2 further right.
    const int32_t rows[] = {140, 190, 240, 290, 365, 415, 465, 515, 565, 615, 665, 715};
    sheetLines(reference, {170, 520, 810, 1160}, rows, 10, sheetTexts);
    reference.loadRaw(KT_FMT::testFormatLogos.data() + 112 * 32, 755, 544, 224, 512);
    EXPECT_EQ(PixelCanvas::of(wide), PixelCanvas::of(reference));
}

TEST_F(TextTestFormats, TwoLinesCentreEachTextByTwentyDotsACharacter)
{
    Reference reference;
    reference.text(270, 60, 8, 0, "ABCDE");
    reference.text(200, 110, 8, 0, "ABCDEFGHIJKL");
    EXPECT_EQ(build(20, 100, {}, {"ABCDE", "ABCDEFGHIJKL"}), reference.canvas());
}

TEST_F(TextTestFormats, DateTimeShowsTheClockOfThePattern)
{
    const PixelCanvas canvas = build(21, 100);
    Reference reference;
    reference.text(260, 30, 6, 5, clock("%d.%m.%Y"));
    reference.text(260, 60, 6, 5, clock("%X"));
    EXPECT_EQ(canvas, reference.canvas());
}

TEST_F(TextTestFormats, LinearityRulerTicksEveryTwoDotsOutsideAndLessInwards)
{
    Reference reference;
    Image& r = reference.image;
    r.drawText(210, 30, 8, 5, "pt", 0, nullptr, 0, 0, false);
    r.drawText(430, 30, 8, 5, "mm", 0, nullptr, 2, 0, false);
    for (int32_t y : {0, 120, 240})
        r.rectangle(200, y, 240, 3, 1);
    r.drawText(210, 117, 8, 5, "120", 0, nullptr, 0, 0, false);
    r.drawText(430, 117, 8, 5, "10", 0, nullptr, 2, 0, false);
    r.drawText(210, 237, 8, 5, "240", 0, nullptr, 0, 0, false);
    r.drawText(430, 237, 8, 5, "20", 0, nullptr, 2, 0, false);
    PixelCanvas expected = reference.canvas();
    const int32_t scales[][3] = {{0, 590, 2}, {50, 540, 4}, {100, 490, 8}, {150, 440, 16}};
    for (const auto& scale : scales)
        for (int32_t y = 0; y < 250; y += scale[2]) {
            expected.fill(scale[0], y, 50, 1);
            expected.fill(scale[1], y, 50, 1);
        }
    EXPECT_EQ(build(22, 250, {2}), expected);
    EXPECT_EQ(build(22, 250, {3}), expected);
}

TEST_F(TextTestFormats, LinearityWithoutAWholeCountDrawsNoRuler)
{
    EXPECT_EQ(build(22, 250, {1}), PixelCanvas(W, 1200));
}

TEST_F(TextTestFormats, LinearitySecondRulerStandsSixHundredFortyDotsOnAndLeavesANarrowRaster)
{
    EXPECT_THROW(build(22, 250, {4}), KT_ERROR::drawable_off_format);
}

}  // namespace
