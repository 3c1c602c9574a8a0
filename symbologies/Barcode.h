#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "graphics/Area.h"

class Image;

// The base of the linear symbologies. A symbol lives for one paint: the derived constructor
// validates and encodes, `paint` puts the bars and the human-readable line on an image.
class Barcode {
public:
    Barcode(const Barcode&) = delete;
    Barcode& operator=(const Barcode&) = delete;
    virtual ~Barcode() = default;

    virtual int validate() = 0;
    // The modulo-10 check value of `data`, 0 to 9; the caller adds 48.
    virtual int checkDigit();
    virtual void encode() = 0;
    virtual void draw(Image& context, Area& rectangle) = 0;

    // On return `rectangle` holds the area the symbol covers on `context`.
    void paint(Image& context, Area& rectangle);

    const std::string& getData() const { return data; }
    const std::string& getBars() const { return bars; }
    const std::string& getBitString() const { return bitString; }
    const std::string& getText() const { return text; }
    int32_t getQuietLeft() const { return quietLeft; }
    int32_t getQuietRight() const { return quietRight; }

protected:
    Barcode() = default;

    // Stores what every derived constructor is given, before it validates and encodes.
    void setParameters(const std::string& content, int32_t x, int32_t y, int32_t height, int32_t quarterTurns,
                       bool addCheckDigit, bool showText, int32_t reversed);
    // Module widths: bar-width digit d takes d modules.
    void setModuleWidths(int32_t module);
    // Two-width tables: digit 1 is narrow, digit 2 wide.
    void setNarrowAndWide(int32_t narrow, int32_t wide);

    void buildBitString(int32_t typeNumber);
    void drawBars(Image& context, int32_t barHeight, Area& rectangle, bool atOrigin);
    // Paints centred text anchored at (sx, sy) in 0-degree symbol coordinates, turned with the symbol.
    void drawLabel(int32_t sx, int32_t sy, int32_t fontSize, int32_t font, const std::string& string,
                   int32_t spacing, Image& context);
    void fillInSymbol(int32_t sx, int32_t sy, int32_t w, int32_t h, int mode, Image& context);
    // The bounding rectangle of centred, unturned text at (sx, sy), without painting it.
    Area measureLabel(int32_t sx, int32_t sy, int32_t fontSize, const std::string& string, Image& context);
    // The baseline of text measured at the symbol's bottom edge: raised by what hangs below it.
    int32_t baselineFor(const Area& measured) const;

    // The draw without text: bars over the whole height, which must be at least 12 dots.
    void drawBarsOnly(Image& context, Area& rectangle, const char* heightMessage);
    // The draw of the symbologies whose text is one centred line: font size from the narrow width,
    // bars above the text less one narrow width. `beforeText` paints between bars and text.
    void drawCentredLine(Image& context, Area& rectangle, const char* heightMessage,
                         const std::function<void(int32_t barHeight)>& beforeText = nullptr);
    // Raises `message` as a render-time error for bars lower than 12 dots.
    static void requireBarHeight(int32_t barHeight, const char* message);

    std::string data;
    int32_t x = 0;
    int32_t y = 0;
    int32_t widths[4] = {0, 0, 0, 0};
    int32_t height = 0;
    int32_t orientation = 0;
    bool addCheckDigit = false;
    bool showText = false;
    std::string bars;
    std::string bitString;
    std::string text;
    int32_t quietLeft = 0;
    int32_t quietRight = 0;
    int32_t reversed = 0;

private:
    int32_t baseX() const { return reversed != 0 ? 0 : x; }
    int32_t baseY() const { return reversed != 0 ? 0 : y; }
    int32_t length() const { return static_cast<int32_t>(bitString.size()); }
    void orBarRows(Image& context, int32_t firstRow, int32_t rowCount, int32_t px);
    void drawBarColumns(Image& context, int32_t barHeight, int32_t px, int32_t py);
};
