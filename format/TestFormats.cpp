#include "format/TestFormats.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <limits>
#include <sstream>

#include "autocode/DateClock.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "format/TestFormatData.h"
#include "format/TestFormatTables.h"
#include "graphics/Image.h"

namespace KT_FMT {

uint32_t testFormatLength = 100;

namespace {

using KT_ERROR::format_error;

constexpr uint32_t allOnes = 0xFFFFFFFF;

__attribute__((format(printf, 1, 2))) std::string printed(const char* pattern, ...)
{
    char buffer[256];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(buffer, sizeof buffer, pattern, arguments);
    va_end(arguments);
    return buffer;
}

std::string clockText(const char* pattern)
{
    std::tm fields{};
    if (!KT_AC::breakTime(KT_AC::now, fields))
        return {};
    char buffer[128];
    const size_t length = std::strftime(buffer, sizeof buffer, pattern, &fields);
    return std::string(buffer, length);
}

// The pattern's state: the raster, its width W and the length L, the latter capped where a row index can hold it.
struct Canvas {
    Image& image;
    int32_t W;
    int32_t L;
    int32_t words;

    explicit Canvas(Image& image)
        : image(image),
          W(static_cast<int32_t>(image.getWidth())),
          L(static_cast<int32_t>(std::min<uint32_t>(testFormatLength, std::numeric_limits<int32_t>::max()))),
          words(W / 32)
    {
    }

    void needs(int32_t least, const char* message) const
    {
        if (L < least)
            throw format_error(message);
    }
    void corners(int32_t x0, int32_t y0, int32_t x1, int32_t y1) { image.rectangleCorners(x0, y0, x1, y1, 1); }
    void text(int32_t x, int32_t y, int32_t size, int32_t font, const std::string& string, int32_t orientation = 0)
    {
        image.printText(x, y, size, font, string, orientation, nullptr, false, 0, true);
    }
    void wordRow(int32_t row, int32_t firstWord, int32_t endWord, uint32_t value)
    {
        for (int32_t c = firstWord; c < endWord; ++c)
            image.setLong(row, c, value);
    }
    void wordRows(uint32_t value)
    {
        for (int32_t row = 0; row < L; ++row)
            wordRow(row, 0, words, value);
    }
};

void halvingSquares(Canvas& canvas)
{
    canvas.needs(264, "format length for legacy format must be at least 22mm");
    int32_t s = 128, y = 0;
    for (int i = 0; i < 8; ++i) {
        for (int32_t x = 0; x <= canvas.W - s; x += 2 * s)
            canvas.image.rectangle(x, y, s, s, 1);
        y += s;
        s /= 2;
    }
}

void verticalBars(Canvas& canvas)
{
    int32_t w = 1, x = 0;
    for (int i = 0; i < 8; ++i) {
        canvas.corners(x, 0, x + w, canvas.L - 1);
        x += 2 * w;
        w *= 2;
    }
}

void horizontalBars(Canvas& canvas)
{
    canvas.needs(384, "format length for HorizontalBars format must be at least 32mm");
    int32_t h = 1, y = 0;
    for (int i = 0; i < 8; ++i) {
        canvas.corners(0, y, canvas.W - 1, y + h);
        y += 2 * h;
        h *= 2;
    }
}

void horizontalLines(Canvas& canvas)
{
    for (int32_t row = 0; row < canvas.L; ++row)
        if (row % 16 <= 1)
            canvas.wordRow(row, 0, canvas.words, allOnes);
}

void fontSizes(Canvas& canvas)
{
    canvas.needs(492, "format length for FontSizes format must be at least 41mm");
    int32_t x = 1, y = 40, stepX = 50, stepY = 60, left = 10, perLine = 8;
    for (int32_t size = 2; size <= 35; ++size) {
        canvas.text(x, y, size, 5, std::to_string(size));
        x += stepX;
        // Deliberate: the count runs down past zero, so the first line takes eleven numbers.
        if (left-- == 0) {
            perLine = std::max(perLine - 2, 3);
            left = perLine;
            stepX = std::min(stepX + 40, 165);
            stepY = std::min(stepY + 20, 125);
            y += stepY;
            x = 1;
        }
    }
}

void allFonts(Canvas& canvas)
{
    canvas.needs(84, "format length for AllFonts format must be at least 7mm");
    const bool narrow = canvas.W == 640;
    const int32_t size = narrow ? 8 : 12, x = narrow ? 0 : 20;
    for (const FontLine& line : allFontsLines) {
        if (static_cast<uint32_t>(canvas.L) < line.leastLength)
            return;
        canvas.text(x, line.y, size, line.font, std::string(line.label));
        canvas.text(x, line.y + 40, size, line.font, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    }
}

void speedDensity(Canvas& canvas, const TestFormatParameters& p)
{
    canvas.needs(360, "format length for SpeedDensity format must be at least 30mm");
    auto line = [&](int32_t y, const std::string& string) { canvas.text(60, y, 10, 5, string); };
    line(60, printed("SPEED - %03d", p.integer(0)));
    line(110, printed("DENSITY - %03d", p.integer(1)));
    line(160, printed("RESISTANCE - %04d", p.integer(2)));
    line(210, printed("PRINTCOUNT - %06d", p.integer(3)));
    line(260, printed("TIME - %02d:%02d:%02d", p.integer(4), p.integer(5), p.integer(6)));
    line(310, printed("DATE - %02d/%02d/%04d", p.integer(7), p.integer(8), p.integer(9)));
    canvas.corners(0, 0, 12, 350);
    canvas.corners(538, 0, 550, 350);
    canvas.corners(12, 0, 538, 12);
    canvas.corners(12, 338, 538, 350);
}

void boxFrame(Canvas& canvas, const TestFormatParameters& p)
{
    int32_t v = static_cast<int16_t>(p.integer(0));
    // Deliberate: a length in millimetres held against the pattern length in dots.
    if (v < 5)
        v = 5;
    else if (v > canvas.L - 1)
        v = canvas.L - 1;
    const int32_t W = canvas.W;
    canvas.corners(0, 0, W - 1, 12);
    canvas.corners(0, 12 * v - 12, W - 1, 12 * v);
    canvas.corners(0, 12, 12, 12 * v - 12);
    canvas.corners(W - 12, 12, W - 1, 12 * v - 12);
    canvas.text(50, v == 5 ? 45 : 50, 10, 5, printed("BOX %d mm TEST FORMAT", v));
}

void salesShow(Canvas& canvas)
{
    canvas.needs(984, "format length for SalesShow format must be at least 82mm");
    for (const PlacedText& placed : salesShowTexts)
        canvas.text(placed.x, placed.y, 12, placed.font, std::string(placed.text), placed.orientation);
    const int32_t W = canvas.W;
    canvas.corners(0, 0, 12, 980);
    canvas.corners(W - 13, 0, W - 1, 980);
    canvas.corners(12, 0, W - 12, 12);
    canvas.corners(12, 968, W - 12, 980);
}

void halfTone(Canvas& canvas)
{
    for (int32_t y = 0; y < canvas.L - 1; y += 4) {
        canvas.wordRow(y, 0, canvas.words, 0x33333333);
        canvas.wordRow(y + 1, 0, canvas.words, 0x33333333);
    }
}

// Held to 0 to 99: a gap below zero could make a step that never moves on.
int32_t gap(int32_t value)
{
    return std::clamp(value, 0, 99);
}

void grid(Canvas& canvas, int32_t left, int32_t right, int32_t step, int32_t thickness)
{
    // q + t of 0 would stand still; one dot on is the smallest step.
    step = std::max(step, 1);
    for (int32_t x = left; x < right - thickness; x += step)
        canvas.corners(x, 0, x + thickness, canvas.L - 1);
    for (int32_t y = 0; y < canvas.L - thickness; y += step)
        canvas.corners(left, y, right - 1, y + thickness);
}

void variableHatch(Canvas& canvas, const TestFormatParameters& p)
{
    grid(canvas, 0, canvas.W, 1 + gap(p.integer(0)), 1);
}

void halfHatch(Canvas& canvas, const TestFormatParameters& p)
{
    const int32_t pGap = gap(p.integer(0)), q = gap(p.integer(1)), t = gap(p.integer(2));
    const int32_t T = canvas.W / 3;
    for (int32_t row = 0; row < canvas.L; ++row)
        canvas.wordRow(row, 0, T / 32 + 1, row % 2 != 0 ? 0x33333333 : 0xCCCCCCCC);
    const int32_t S = (T / 32 + 1) * 32;
    grid(canvas, S, 2 * T, pGap + 1, 1);
    grid(canvas, 2 * T, canvas.W, q + t, t);
}

void fourQuarters(Canvas& canvas)
{
    const int32_t Q = canvas.W / 4, W = canvas.W;
    for (int32_t row = 0; row < canvas.L; ++row) {
        const bool even = row % 2 == 0;
        if (row % 6 == 0)
            canvas.wordRow(row, 0, W / 128, allOnes);
        else
            for (int32_t x = 0; x < Q; x += 6)
                canvas.image.setPixel(x, row, 1);
        canvas.wordRow(row, W / 128, 2 * Q / 32, even ? allOnes : 0);
        canvas.wordRow(row, 2 * Q / 32, 3 * Q / 32, even ? 0xAAAAAAAA : 0x55555555);
        canvas.wordRow(row, 3 * Q / 32, W / 32, row % 16 < 8 ? allOnes : 0x00FF00FF);
    }
}

// Deliberate: the figure loses its last two digits before it is shown in thousandths.
double airPressure(int32_t figure)
{
    return (figure / 100) / 1000.0;
}

void checkPrint(Canvas& canvas, const TestFormatParameters& p)
{
    const int32_t x = (canvas.W - 640) / 2 + 50;
    canvas.image.cropMarks(0, 0, canvas.W - 1, 599, 0);
    canvas.text(x, 100, 12, 4, "CHECK PRINT");
    canvas.text(x, 150, 10, 4, p.string(0));
    canvas.text(x, 230, 8, 5, clockText("%d.%m.%Y %X"));
    canvas.text(x, 270, 8, 5, printed("Checked:  %s", p.string(1).c_str()));
    canvas.text(x, 310, 8, 5, printed("Ribbon type:  %s", p.string(2).c_str()));
    canvas.text(x, 350, 8, 5, printed("Density:  %i %%   Speed: %i mm/s", p.integer(0), p.integer(1)));
    canvas.text(x, 390, 8, 5, printed("Air pressure:  %.3f MPa", airPressure(p.integer(2))));
    // Deliberate: rows 80 bytes apart, so that they run on past the small logo into the large one.
    for (int32_t row = 0; row < smallLogoHeight; ++row) {
        const unsigned char* bytes = testFormatLogos.data() + row * 80;
        for (int32_t i = 0; i < 8; ++i) {
            const uint32_t word = uint32_t{bytes[4 * i]} << 24 | uint32_t{bytes[4 * i + 1]} << 16 |
                                  uint32_t{bytes[4 * i + 2]} << 8 | uint32_t{bytes[4 * i + 3]};
            canvas.image.setLong(430 + row, (x - 50) / 32 + i, word);
        }
    }
    canvas.image.rectangle(0, 575, canvas.W - 1, 24, 1);
}

void parameterSheet(Canvas& canvas, const TestFormatParameters& p)
{
    const bool narrow = canvas.W == 640;
    const SheetGeometry& g = narrow ? narrowSheet : wideSheet;
    const int32_t o = narrow ? 0 : (canvas.W - 1280) / 2;
    canvas.image.cropMarks(0, 0, canvas.W - 1, g.height - 1, 0);
    int32_t y = g.start + g.line / 2 + g.line;
    auto line = [&](int32_t number, const std::string& a, const std::string& b, const std::string& c = "",
                    const std::string& d = "") {
        if (number == 5)
            y = y + g.line / 2 + g.line;
        else if (number > 1)
            y += g.line;
        const std::string texts[4] = {a, b, c, d};
        for (int i = 0; i < 4; ++i)
            if (!texts[i].empty())
                canvas.text(o + g.columns[i], y, g.size, 5, texts[i]);
    };
    const int32_t orientation = p.integer(2);
    const std::string orientationText =
        orientation >= 1 && orientation <= 4 ? std::string(orientationNames[orientation - 1]) : std::string();
    const bool intermittent = p.integer(10) != 0;
    line(1, "DIMM-PC:", p.string(0));
    line(2, "Touchpanel:", p.string(1));
    line(3, "Head:", p.string(2));
    line(4, "MES:", p.string(3));
    line(5, "Speed:", printed("%i mm/s", p.integer(0)), "Density:", printed("%i %%", p.integer(1)));
    line(6, "Orientation:", orientationText, "Print trigger:", p.integer(3) ? "rising edge" : "falling edge");
    line(7, "Error level:", p.integer(4) ? "active high" : "active low", "Inhibit level:",
         p.integer(5) ? "low" : "high");
    line(8, "Network IF:", p.integer(6) ? "on" : "off", "Print buffer:", p.integer(7) ? "off" : "on");
    line(9, "Print delay:", printed("%i ms", p.integer(8)), "Head resist.:", printed("%i Ohm", p.integer(9)));
    line(10, "Date:", clockText("%x"), "Time:", clockText("%X"));
    line(11, "Mode:", intermittent ? "intermittend" : "continuous", "Carriage pos.:",
         intermittent ? "n/a" : printed("%.2f mm", p.integer(11) / 12.0));
    line(12, "Print length:", printed("%i mm", canvas.L / 12), "Air pressure:",
         printed("%.3f MPa", airPressure(p.integer(12))));
    y += 40;
    if (narrow)
        canvas.image.loadRaw(testFormatLogos.data(), y, 192, smallLogoHeight, smallLogoWidth);
    else
        canvas.image.loadRaw(testFormatLogos.data() + smallLogoBytes, y, (canvas.W - 512) / 2, largeLogoHeight,
                             largeLogoWidth);
}

void twoLines(Canvas& canvas, const TestFormatParameters& p)
{
    const std::string a = p.string(0), b = p.string(1);
    canvas.text((canvas.W - 20 * static_cast<int32_t>(a.size())) / 2, 60, 8, 0, a);
    canvas.text((canvas.W - 20 * static_cast<int32_t>(b.size())) / 2, 110, 8, 0, b);
}

void dateTime(Canvas& canvas)
{
    const int32_t x = (canvas.W - 120) / 2;
    canvas.text(x, 30, 6, 5, clockText("%d.%m.%Y"));
    canvas.text(x, 60, 6, 5, clockText("%X"));
}

void rulers(Canvas& canvas, const TestFormatParameters& p)
{
    Image& image = canvas.image;
    const int32_t count = p.integer(0) / 2;
    for (int32_t k = 0; k < count; ++k) {
        const int32_t base = 640 * k;
        image.drawText(base + 210, 30, 8, 5, "pt", 0, nullptr, 0, 0, false);
        image.drawText(base + 430, 30, 8, 5, "mm", 0, nullptr, 2, 0, false);
        for (int32_t r = 0; r < canvas.L; ++r) {
            if (r % 120 == 0) {
                image.rectangle(base + 200, r, 240, 3, 1);
                if (r != 0) {
                    image.drawText(base + 210, r - 3, 8, 5, std::to_string(r), 0, nullptr, 0, 0, false);
                    image.drawText(base + 430, r - 3, 8, 5, std::to_string(r / 12), 0, nullptr, 2, 0, false);
                }
            }
            for (int32_t level = 0, every = 2; level < 4; ++level, every *= 2)
                if (r % every == 0) {
                    image.rectangle(base + 50 * level, r, 50, 1, 1);
                    image.rectangle(base + 590 - 50 * level, r, 50, 1, 1);
                }
        }
    }
}

void qualitySample(Canvas& canvas, KT_Format& format, const TestFormatParameters& p)
{
    std::istringstream stored(std::string(testSampleFormat.begin() + 10, testSampleFormat.end()));
    format.parse(stored, nullptr, 0);
    canvas.text(240, 225, 7, 2, p.string(0));
    canvas.text(240, 258, 7, 2, printed("%i", p.integer(1)));
    canvas.text(240, 291, 7, 2, printed("%i", p.integer(2)));
    canvas.text(444, 225, 7, 2, printed("%i", p.integer(3)));
    canvas.text(420, 258, 7, 2, printed("%d", p.integer(4)));
    canvas.text(468, 291, 7, 2, printed("%d", p.integer(5)));
    const int32_t count = p.integer(0);
    if (count <= 1)
        return;
    Image& image = canvas.image;
    // Deliberate: the last used row is not copied.
    const int32_t first = image.getFirstUsedRow(), last = image.getLastUsedRow();
    for (int32_t row = first; row < last; ++row)
        for (int32_t c = 0; c < 20; ++c)
            for (int32_t k = 1; k < count; ++k)
                image.setLong(row, c + 20 * k, image.getLong(row, c));
}

}  // namespace

void paintTestFormat(uint32_t number, KT_Format& format, const TestFormatParameters& parameters)
{
    Canvas canvas(*format.getImage());
    switch (number) {
    case 0: return halvingSquares(canvas);
    case 1: return verticalBars(canvas);
    case 2: return horizontalBars(canvas);
    case 3: return canvas.wordRows(0xC000C000);
    case 4: return horizontalLines(canvas);
    case 5:
        canvas.wordRows(0xC000C000);
        return horizontalLines(canvas);
    case 6: return canvas.wordRows(allOnes);
    case 7: return fontSizes(canvas);
    case 8: return allFonts(canvas);
    case 9: return speedDensity(canvas, parameters);
    case 10: return boxFrame(canvas, parameters);
    case 11: return salesShow(canvas);
    case 12: return halfTone(canvas);
    case 13: return variableHatch(canvas, parameters);
    case 14: return halfHatch(canvas, parameters);
    case 15: return canvas.wordRows(0xAAAAAAAA);
    case 16: return canvas.wordRows(0xFFFF0000);
    case 17: return fourQuarters(canvas);
    case 18: return checkPrint(canvas, parameters);
    case 19: return parameterSheet(canvas, parameters);
    case 20: return twoLines(canvas, parameters);
    case 21: return dateTime(canvas);
    case 22: return rulers(canvas, parameters);
    case 23: return qualitySample(canvas, format, parameters);
    default: throw KT_ERROR::kt_exception(KT_ERROR::text("unknown escape test format: ", number));
    }
}

void checkTestFormatName(const std::string& name)
{
    if (name.size() != 10)
        throw KT_ERROR::kt_exception(KT_ERROR::text("invalid test format name: ", name));
}

void KT_Format::buildTestFormat(uint32_t number, const std::vector<std::string>& strings,
                                const std::vector<int32_t>& integers)
{
    clear();
    name = "TESTFORMAT";
    // The pattern stands in the raster until the next format clears it, even one that failed halfway.
    empty = false;
    // One reading of the clock for every date and time of the pattern.
    KT_AC::refreshNow();
    paintTestFormat(number, *this, TestFormatParameters{strings, integers});
    name = std::string(testFormatNames[number]);
    checkTestFormatName(name);
}

}  // namespace KT_FMT
