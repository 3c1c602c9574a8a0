#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "graphics/Area.h"
#include "graphics/GraphicsContext.h"

// The one-bit raster. Pixel x of a row lies in word x / 32 at bit 31 - x % 32; a set bit is ink.
class Image : public GraphicsContext {
public:
    Image(int32_t width, int32_t height);
    // Wraps rows that somebody else owns; the caller keeps them alive.
    Image(int32_t wordsPerRow, int32_t height, uint32_t** foreignRows);
    ~Image() override = default;
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    uint32_t getXOrigin() override { return 0; }
    uint32_t getYOrigin() override { return 0; }
    uint32_t getWidth() override { return static_cast<uint32_t>(width); }
    uint32_t getHeight() override { return static_cast<uint32_t>(height); }
    int getPixel(int32_t x, int32_t y) override;
    void setPixel(int32_t x, int32_t y, int colour) override;
    using GraphicsContext::rectangle;
    void rectangle(int32_t x, int32_t y, int32_t w, int32_t h, int colour) override;
    void clear() override;
    void drawText(int32_t x, int32_t y, int32_t size, int32_t fontNumber, std::string text, int32_t orientation,
                  Area* area, int32_t alignment, int32_t spacing, bool reversed) override;
    // The form of the test patterns and barcode texts: centred or left, painted or only measured.
    void printText(int32_t x, int32_t y, int32_t size, int32_t fontNumber, const std::string& text,
                   int32_t orientation, Area* area, bool centred, int32_t spacing, bool paint);

    bool isInside(int32_t x, int32_t y) const;
    uint32_t getLong(int32_t row, int32_t col) const;
    void setLong(int32_t row, int32_t col, uint32_t value);
    // Inline, as bars and graphics call it once per word and row.
    void orLong(int32_t row, int32_t col, uint32_t value)
    {
        if (row < 0 || row >= height || col < 0 || col >= wordsPerRow())
            throwOrLongOffFormat(row, col);
        rows[row][col] |= value;
        if (value != 0) {
            lastUsedRow = lastUsedRow > row ? lastUsedRow : row;
            firstUsedRow = firstUsedRow < row ? firstUsedRow : row;
        }
    }

    int32_t getLastUsedRow() const;
    int32_t getFirstUsedRow() const;
    // Widens the band of used rows to take in rows top to bottom, clamped to the raster.
    void extendBand(int32_t top, int32_t bottom);

    bool saveBitmap(int32_t x, int32_t y, int32_t w, int32_t h, const std::string& path) const;
    bool saveTrimmed(const std::string& path) const;
    bool saveUsedRows(const std::string& path) const;
    bool loadBitmap(int32_t x, int32_t y, const std::string& path, bool useStoredOffset);

    // Compositing: combining rasters and reading them out.
    void orLongShifted(int32_t row, int32_t col, uint32_t shift, uint32_t value);
    void paste(const Image& source, int32_t row, int32_t x);
    int loadRaw(const unsigned char* buffer, int32_t row, int32_t x, int32_t height, int32_t widthInDots);
    void cropMarks(int32_t x0, int32_t y0, int32_t x1, int32_t y1, int style);
    uint32_t histogram(std::vector<uint16_t>& out, int32_t startRow, int32_t endRow) const;
    void setBackground(Image* image);
    Image* getBackground() const { return background; }
    void restoreArea(Area area);

private:
    // Glyphs are ORed into the rows directly; the band follows from the text's area afterwards.
    friend class Font;

    int32_t wordsPerRow() const { return width / 32; }
    [[noreturn]] static void throwOrLongOffFormat(int32_t row, int32_t col);
    static uint32_t keepLeftOf(int32_t left);
    static uint32_t keepRightOf(int32_t right);
    bool rowIsBlank(int32_t row) const;
    void packRow(int32_t r, int32_t firstWord, int32_t endWord, char* out) const;
    void setBandEmpty();
    void recomputeFirstUsedRow();
    void recomputeLastUsedRow();
    void rescanBand();

    int32_t width;
    int32_t height;
    int32_t lastUsedRow;
    int32_t firstUsedRow;
    uint32_t** rows;
    bool ownsRows;
    Image* background;

    struct FreeWords {
        void operator()(uint32_t* words) const;
    };
    std::unique_ptr<uint32_t[], FreeWords> ownedWords;
    std::unique_ptr<uint32_t*[]> ownedRows;
};
