#pragma once
#include <cstdint>
#include <string>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_CACHE_H
#include FT_GLYPH_H

#include "graphics/GraphicsContext.h"

class Image;

namespace KT_FMT {
struct ContentItem;
}

// Turns strings into ink on an Image at any quarter turn, and measures them. Faces, sizes and
// rotated glyph bitmaps come from FreeType's cache; a face id is fontNumber * 4 + orientation.
class Font {
public:
    Font();
    ~Font();
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    // Alignment 0 is left, 1 centre, anything else right; spacing is 16.16 dots behind each character.
    // A null target measures only; a null area discards the box.
    void drawText(int32_t x, int32_t y, int32_t fontNumber, int32_t size, std::string text, int32_t orientation,
                  Area* area, Image* target, int32_t alignment, int32_t spacing, bool reversed);
    // One pass over the string with the pen starting at x, y.
    void renderText(int32_t x, int32_t y, int32_t fontNumber, int32_t size, std::string text,
                    int32_t orientation, Area* area, Image* target, int32_t spacing);
    // The advance width of the string at orientation 0, in whole dots.
    int32_t getBaselineLength(int32_t fontNumber, int32_t size, const std::string& text, int32_t spacing);
    // The ascender and descender of the scaled size, 26.6.
    void getSizeMetrics(int32_t fontNumber, int32_t size, int32_t orientation, FT_Pos& ascender, FT_Pos& descender);
    // Pulls the digits into the cache, so that painting variable numbers reads no file.
    void preloadDigits(int32_t fontNumber, int32_t size, int32_t orientation);
    // Forgets all faces, sizes and glyphs; a font directory or map that changed needs it.
    void flushCache();

    // The hooks of the content reader: "UNIC" gives a code point, given in hexadecimal; bytes
    // above 127 are read as Windows-1252. Other sequences draw nothing.
    static void sequenceHook(std::string id, std::string parm, KT_FMT::ContentItem& item);
    static void itemFilter(KT_FMT::ContentItem& item);

    // Opens the face of a face id for the cache manager: 0 on success, 1 on failure.
    static FT_Error requestFace(FTC_FaceID faceId, FT_Library library, FT_Pointer requestData, FT_Face* face);

private:
    FT_Size lookupSize(FTC_Scaler scaler, const std::string& failure, const char* nullFailure);
    FT_Glyph lookupGlyph(FTC_Scaler scaler, FT_UInt glyphIndex);
    static void blitGlyph(Image& target, const FT_Bitmap& bitmap, int32_t left, int32_t top);

    FT_Library library = nullptr;
    FTC_Manager manager = nullptr;
    FTC_ImageCache imageCache = nullptr;
};

// The one font of the process, made before main runs; it serves all text of a run.
extern Font processFont;
