#include "fonts/Font.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <utility>

#include "errors/KT_Error.h"
#include "fonts/FontProvider.h"
#include "fonts/FontTransforms.h"
#include "fonts/Windows1252Table.h"
#include "format/ContentEscapeReader.h"
#include "graphics/Image.h"

using KT_ERROR::kt_exception;

Font processFont;

namespace {

constexpr FT_UInt maxFaces = 4;
constexpr FT_UInt maxSizes = 8;
constexpr FT_ULong maxBytes = 400000;
// Text sizes in formats are tuned to this figure, not to the raster's 12 dots per millimetre.
constexpr FT_UInt resolution = 303;
constexpr FT_Int32 loadFlags = FT_LOAD_RENDER | FT_LOAD_MONOCHROME | FT_LOAD_NO_AUTOHINT | FT_LOAD_TARGET_MONO;
static_assert(loadFlags == 167940);
constexpr int32_t emptyEdge = 0x7FFFFFFF;
constexpr uint32_t space = 32;

// The pen is 16.16 in 32 bits and wraps as such far off the raster.
int32_t wrap(int64_t value)
{
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

struct Pen {
    int32_t x;
    int32_t y;

    void add(int64_t dx, int64_t dy)
    {
        x = wrap(int64_t{x} + dx);
        y = wrap(int64_t{y} + dy);
    }
    int32_t dotX() const { return x >> 16; }
    int32_t dotY() const { return y >> 16; }
};

FTC_ScalerRec makeScaler(int32_t faceId, int32_t size)
{
    FTC_ScalerRec scaler{};
    scaler.face_id = reinterpret_cast<FTC_FaceID>(static_cast<intptr_t>(faceId));
    scaler.width = static_cast<FT_UInt>(size * 64);
    scaler.height = static_cast<FT_UInt>(size * 64);
    scaler.pixel = 0;
    scaler.x_res = resolution;
    scaler.y_res = resolution;
    return scaler;
}

const FT_Matrix& penTransform(int32_t orientation)
{
    return penTransforms[static_cast<size_t>(orientation & 3)];
}

FT_Vector transformed(FT_Pos x, FT_Pos y, const FT_Matrix& matrix)
{
    FT_Vector vector{x, y};
    FT_Vector_Transform(&vector, &matrix);
    return vector;
}

// From 0xA0 on the page agrees with Unicode.
uint32_t windows1252(uint32_t byte)
{
    return byte < 0xA0 ? windows1252Table[byte - 0x80] : byte;
}

// One reader per pass, with the hooks that make code points of UNIC sequences and high bytes.
class TextCharacters {
public:
    explicit TextCharacters(std::string text) : reader(Font::sequenceHook, Font::itemFilter)
    {
        reader.setContent(std::move(text));
    }
    bool hasNext() const { return reader.hasNext(); }
    uint32_t next() { return reader.next().value; }
    uint32_t peek() const { return reader.peek().value; }
    uint32_t takeRun() { return reader.takeRun(); }

private:
    KT_FMT::ContentEscapeReader reader;
};

constexpr uint64_t unbounded = UINT64_MAX;

// Glyphs from `from` on, `step` apart, before the pen would wrap.
uint64_t stepsBeforeWrap(int32_t from, int32_t step)
{
    if (step > 0)
        return static_cast<uint64_t>(INT32_MAX - int64_t{from}) / static_cast<uint64_t>(step) + 1;
    if (step < 0)
        return static_cast<uint64_t>(int64_t{from} - INT32_MIN) / static_cast<uint64_t>(-int64_t{step}) + 1;
    return unbounded;
}

// Glyphs from `from` on, `step` apart, before one lies in [low, high]; unbounded if none does before a wrap.
uint64_t stepsBeforeEntry(int32_t from, int32_t step, int64_t low, int64_t high)
{
    if (low > high)
        return unbounded;
    if (from >= low && from <= high)
        return 0;
    if (from < low && step > 0)
        return static_cast<uint64_t>((low - from + step - 1) / step);
    if (from > high && step < 0)
        return static_cast<uint64_t>((from - high - step - 1) / -int64_t{step});
    return unbounded;
}

// How many glyphs from `pen` on, `step` apart, surely put nothing on the raster and don't wrap the pen; 0 when
// the first may land. The window is wider than the blit's own test on the left, where that test is quirky.
// No raster at all has no words.
uint64_t offRasterStretch(const Pen& pen, const Pen& step, int32_t rasterWords, int32_t rasterRows, int32_t left,
                          int32_t top, const FT_Bitmap& bitmap)
{
    int64_t lowX = 1, highX = 0, lowY = 1, highY = 0;
    if (rasterWords > 0) {
        const int64_t width = bitmap.width;
        lowX = (-32 * (width / 32 + 2) - left) * 65536;
        highX = (int64_t{rasterWords} * 32 - 1 - left) * 65536 + 65535;
        lowY = (int64_t{top} - bitmap.rows + 1) * 65536;
        highY = (int64_t{rasterRows} - 1 + top) * 65536 + 65535;
    }
    const uint64_t entry = std::max(stepsBeforeEntry(pen.x, step.x, lowX, highX),
                                    stepsBeforeEntry(pen.y, step.y, lowY, highY));
    return std::min({entry, stepsBeforeWrap(pen.x, step.x), stepsBeforeWrap(pen.y, step.y)});
}

// Gathers the 32 pixels of a bitmap row from byte `first` on, most significant first.
uint32_t gatherWord(const unsigned char* row, int32_t pitch, int32_t first)
{
    uint32_t word = 0;
    for (int32_t i = first; i < first + 4; ++i)
        word = (word << 8) | (i < pitch ? row[i] : 0u);
    return word;
}

}  // namespace

Font::Font()
{
    if (FT_Init_FreeType(&library) != 0)
        throw kt_exception("Font: error initializing the font library");
    if (const FT_Error error = FTC_Manager_New(library, maxFaces, maxSizes, maxBytes, requestFace, nullptr, &manager))
        throw kt_exception(KT_ERROR::text("Error initializing the cache manager: ", error));
    if (const FT_Error error = FTC_ImageCache_New(manager, &imageCache))
        throw kt_exception(KT_ERROR::text("error initializing the image cache: ", error));
}

Font::~Font()
{
    FTC_Manager_Done(manager);
    FT_Done_FreeType(library);
}

FT_Error Font::requestFace(FTC_FaceID faceId, FT_Library library, FT_Pointer, FT_Face* face)
{
    const auto id = static_cast<int32_t>(reinterpret_cast<intptr_t>(faceId));
    const int32_t orientation = id & 3;
    const int32_t number = id >> 2;
    if (fontProvider == nullptr || !fontProvider->isMapped(number))
        return 1;
    const std::string path = fontProvider->getFontPath() + fontProvider->getFontFile(number);
    if (FT_New_Face(library, path.c_str(), 0, face) != 0)
        return 1;
    FT_Matrix matrix = faceTransforms[static_cast<size_t>(orientation)];
    FT_Set_Transform(*face, &matrix, nullptr);
    return 0;
}

// The face is looked up first. With all size slots taken, a size lookup recycles the oldest slot: it frees the
// slot's size, gives the slot the new face and then requests that face; a request that fails discards every
// size of the face, the recycled slot included, whose size is then freed a second time. A face that is in the
// cache already can't fail that way.
FT_Size Font::lookupSize(FTC_Scaler scaler, const std::string& failure, const char* nullFailure)
{
    FT_Face face = nullptr;
    if (const FT_Error error = FTC_Manager_LookupFace(manager, scaler->face_id, &face))
        throw kt_exception(KT_ERROR::text(failure, error));
    FT_Size size = nullptr;
    if (const FT_Error error = FTC_Manager_LookupSize(manager, scaler, &size))
        throw kt_exception(KT_ERROR::text(failure, error));
    if (size == nullptr)
        throw kt_exception(nullFailure);
    return size;
}

// The lookup's result is not looked at: a glyph the font lacks comes as its glyph 0.
FT_Glyph Font::lookupGlyph(FTC_Scaler scaler, FT_UInt glyphIndex)
{
    FT_Glyph glyph = nullptr;
    FTC_ImageCache_LookupScaler(imageCache, scaler, loadFlags, glyphIndex, &glyph, nullptr);
    return glyph;
}

void Font::renderText(int32_t x, int32_t y, int32_t fontNumber, int32_t size, std::string text,
                      int32_t orientation, Area* area, Image* target, int32_t spacing)
{
    FTC_ScalerRec scaler = makeScaler(fontNumber * 4 + orientation, size);
    const FT_Face face =
        lookupSize(&scaler, KT_ERROR::text("Font::drawText() error acquiring size ", fontNumber, ": "),
                   "Font::drawText() error acquiring size, pointer NULL: ")
            ->face;
    if (area != nullptr) {
        area->left = target != nullptr ? target->width : emptyEdge;
        area->top = target != nullptr ? target->height : emptyEdge;
        area->right = -1;
        area->bottom = -1;
    }
    const FT_Matrix& matrix = penTransform(orientation);
    const bool hasKerning = FT_HAS_KERNING(face);
    const FT_Vector extra = transformed(spacing, 0, matrix);
    FT_UInt previous = 0;
    Pen pen{wrap(int64_t{x} * 65536), wrap(int64_t{y} * 65536)};

    // A run of one symbol (a tally counter prints millions) looks its glyph and kerning up once: nothing
    // between two glyphs of the run touches the cache, so the glyph stays where the lookup left it.
    uint32_t lastSymbol = 0;
    FT_UInt glyphIndex = 0;
    FT_Glyph glyph = nullptr;
    FT_Vector kerning{};
    FT_UInt kerningPair[2] = {0, 0};
    const auto markArea = [&](const Pen& at) {
        FT_BBox box{};
        FT_Glyph_Get_CBox(glyph, FT_GLYPH_BBOX_PIXELS, &box);
        area->right = std::max<int64_t>(area->right, at.dotX() + box.xMax);
        area->bottom = std::max<int64_t>(area->bottom, at.dotY() - box.yMin);
        area->left = std::min<int64_t>(area->left, at.dotX() + box.xMin);
        area->top = std::min<int64_t>(area->top, at.dotY() - box.yMax);
    };
    TextCharacters characters(std::move(text));
    while (characters.hasNext()) {
        const uint32_t symbol = characters.peek();
        const uint32_t count = characters.takeRun();
        if (glyph == nullptr || symbol != lastSymbol) {
            glyphIndex = FT_Get_Char_Index(face, symbol);
            glyph = lookupGlyph(&scaler, glyphIndex);
            lastSymbol = symbol;
        }
        for (uint32_t i = 0; i < count; ++i) {
            const bool kerned = hasKerning && previous != 0 && glyphIndex != 0;
            if (kerned) {
                if (kerningPair[0] != previous || kerningPair[1] != glyphIndex) {
                    FT_Vector delta{};
                    FT_Get_Kerning(face, previous, glyphIndex, FT_KERNING_UNFITTED, &delta);
                    kerning = transformed(delta.x, delta.y, matrix);
                    kerningPair[0] = previous;
                    kerningPair[1] = glyphIndex;
                }
                pen.add(kerning.x * 1024, kerning.y * 1024);
            }
            if (glyph == nullptr || glyph->format != FT_GLYPH_FORMAT_BITMAP) {
                std::cout << "Received wrong glyph type from cache";
                return;
            }
            const auto bitmapGlyph = reinterpret_cast<FT_BitmapGlyph>(glyph);
            const bool marks = area != nullptr && symbol != space;
            // Past the first glyph of a run, every glyph stands one fixed step from the one before. A stretch
            // that can't reach the raster and doesn't wrap moves one way, so its ends bound its area.
            if (i > 0) {
                const Pen step{wrap((kerned ? kerning.x * 1024 : 0) + glyph->advance.x + extra.x),
                               wrap((kerned ? kerning.y * 1024 : 0) - glyph->advance.y + extra.y)};
                const uint64_t stretch = std::min<uint64_t>(
                    count - i, offRasterStretch(pen, step, target != nullptr ? target->wordsPerRow() : 0,
                                                target != nullptr ? target->height : 0, bitmapGlyph->left,
                                                bitmapGlyph->top, bitmapGlyph->bitmap));
                if (stretch > 1) {
                    if (marks)
                        markArea(pen);
                    const auto last = static_cast<int64_t>(stretch) - 1;
                    pen.add(last * step.x, last * step.y);
                    if (marks)
                        markArea(pen);
                    pen.add(glyph->advance.x + extra.x, -glyph->advance.y + extra.y);
                    i += static_cast<uint32_t>(last);
                    continue;
                }
            }
            if (marks)
                markArea(pen);
            if (target != nullptr)
                blitGlyph(*target, bitmapGlyph->bitmap, pen.dotX() + bitmapGlyph->left,
                          pen.dotY() - bitmapGlyph->top);
            pen.add(glyph->advance.x + extra.x, -glyph->advance.y + extra.y);
            previous = glyphIndex;
        }
    }
}

// ORs a mono bitmap into the rows word by word, clipping silently at every edge.
void Font::blitGlyph(Image& target, const FT_Bitmap& bitmap, int32_t left, int32_t top)
{
    if (bitmap.pixel_mode != FT_PIXEL_MODE_MONO) {
        std::cout << "Error: Invalid bitmap mode";
        return;
    }
    const int32_t rowWords = target.wordsPerRow();
    const int32_t rows = static_cast<int32_t>(bitmap.rows);
    const int32_t width = static_cast<int32_t>(bitmap.width);
    const int32_t shift = left & 31;
    // Deliberately one word less for every negative left, even a multiple of 32.
    const int32_t firstWord = left / 32 - (left < 0 ? 1 : 0);
    // A glyph whose rows or words all lie off the raster writes nothing; far off, that is most of a long text.
    if (int64_t{top} >= target.height || int64_t{top} + rows <= 0 || firstWord >= rowWords ||
        int64_t{firstWord} + width / 32 + 1 < 0)
        return;
    for (int32_t r = std::max(0, -top); r < rows && top + r < target.height; ++r) {
        const unsigned char* source = bitmap.buffer + static_cast<ptrdiff_t>(r) * bitmap.pitch;
        uint32_t* row = target.rows[top + r];
        for (int32_t c = 0; c * 32 <= width; ++c) {
            const uint32_t word = gatherWord(source, bitmap.pitch, c * 4);
            const int32_t t = firstWord + c;
            if (t >= rowWords)
                break;
            if (t >= 0)
                row[t] |= word >> shift;
            if (shift == 0)
                continue;
            if (t + 1 >= rowWords)
                break;
            if (t + 1 >= 0)
                row[t + 1] |= word << (32 - shift);
        }
    }
}

int32_t Font::getBaselineLength(int32_t fontNumber, int32_t size, const std::string& text, int32_t spacing)
{
    FTC_ScalerRec scaler = makeScaler(fontNumber * 4, size);
    const FT_Face face = lookupSize(&scaler, "Font::getBaselineLength() error acquiring size: ",
                                    "Font::getBaselineLength() error acquiring size, pointer NULL: ")
                             ->face;
    const bool hasKerning = FT_HAS_KERNING(face);
    const auto kerning = [&](FT_UInt left, FT_UInt right) {
        FT_Vector delta{};
        FT_Get_Kerning(face, left, right, FT_KERNING_UNFITTED, &delta);
        return static_cast<uint64_t>(delta.x) * 1024;
    };
    FT_UInt previous = 0;
    int32_t length = 0;
    TextCharacters characters(text);
    while (characters.hasNext()) {
        const uint32_t symbol = characters.peek();
        const uint64_t count = characters.takeRun();
        const FT_UInt glyphIndex = FT_Get_Char_Index(face, symbol);
        const FT_Glyph glyph = lookupGlyph(&scaler, glyphIndex);
        // The glyphs of a run add alike, in 32 bits as the length wraps, but for the kerning to the glyph
        // before the run. The gap behind the last character doesn't belong to the string's length.
        uint64_t added = (characters.hasNext() ? count : count - 1) * static_cast<uint64_t>(spacing);
        if (hasKerning && glyphIndex != 0) {
            if (previous != 0)
                added += kerning(previous, glyphIndex);
            if (count > 1)
                added += (count - 1) * kerning(glyphIndex, glyphIndex);
        }
        if (glyph != nullptr)
            added += count * static_cast<uint64_t>(glyph->advance.x);
        length = wrap(static_cast<int64_t>(length + added));
        previous = glyphIndex;
    }
    return length >> 16;
}

void Font::getSizeMetrics(int32_t fontNumber, int32_t size, int32_t orientation, FT_Pos& ascender,
                          FT_Pos& descender)
{
    FTC_ScalerRec scaler = makeScaler(fontNumber * 4 + orientation, size);
    const FT_Size ftSize = lookupSize(&scaler, KT_ERROR::text("Font::drawText() error acquiring size ", fontNumber, ": "),
                                      "Font::drawText() error acquiring size, pointer NULL: ");
    ascender = ftSize->metrics.ascender;
    descender = ftSize->metrics.descender;
}

void Font::preloadDigits(int32_t fontNumber, int32_t size, int32_t orientation)
{
    FTC_ScalerRec scaler = makeScaler(fontNumber * 4 + orientation, size);
    const FT_Face face = lookupSize(&scaler, "Font::drawText() error acquiring size: ",
                                    "Font::drawText() error acquiring size, pointer NULL: ")
                             ->face;
    for (char digit = '0'; digit <= '9'; ++digit)
        lookupGlyph(&scaler, FT_Get_Char_Index(face, static_cast<FT_ULong>(digit)));
}

void Font::sequenceHook(std::string id, std::string parm, KT_FMT::ContentItem& item)
{
    if (id != "UNIC")
        return;
    item.type = KT_FMT::ITEM_UNICODE;
    item.value = static_cast<uint32_t>(std::strtoul(parm.c_str(), nullptr, 16));
}

void Font::itemFilter(KT_FMT::ContentItem& item)
{
    if (item.type != KT_FMT::ITEM_BYTE || item.value < 0x80)
        return;
    item.type = KT_FMT::ITEM_UNICODE;
    item.value = windows1252(item.value);
}

void Font::flushCache()
{
    FTC_Manager_Reset(manager);
}

void Font::drawText(int32_t x, int32_t y, int32_t fontNumber, int32_t size, std::string text, int32_t orientation,
                    Area* area, Image* target, int32_t alignment, int32_t spacing, bool reversed)
{
    Area localArea{};
    Area& box = area != nullptr ? *area : localArea;
    const FT_Matrix& matrix = penTransform(orientation);
    int32_t anchorX = x;
    int32_t anchorY = y;
    if (alignment != 0) {
        int64_t offset = 0;
        if (alignment == 1) {
            // The width is measured unrotated and then turned with the text.
            Area measure{};
            renderText(x, y, fontNumber, size, text, 0, &measure, nullptr, spacing);
            const int64_t width = int64_t{measure.right} - measure.left + 1;
            offset = width / 2 + (int64_t{measure.left} - x);
        } else {
            offset = getBaselineLength(fontNumber, size, text, spacing);
        }
        const FT_Vector translation = transformed(wrap(offset), 0, matrix);
        anchorX = wrap(anchorX - translation.x);
        anchorY = wrap(anchorY - translation.y);
    }

    const bool boxed = reversed && target != nullptr;
    if (boxed) {
        renderText(anchorX, anchorY, fontNumber, size, text, orientation, &box, nullptr, spacing);
        FT_Pos ascender = 0;
        FT_Pos descender = 0;
        getSizeMetrics(fontNumber, size, orientation, ascender, descender);
        // 26.6 to whole dots, rounded, and turned to a y axis pointing down.
        const auto dots = [](FT_Pos value) { return -(((value >> 5) + 1) >> 1); };
        FT_Vector top = transformed(0, dots(ascender), matrix);
        FT_Vector bottom = transformed(0, dots(descender), matrix);
        for (FT_Vector* corner : {&top, &bottom}) {
            corner->x += anchorX;
            corner->y += anchorY;
            box.left = wrap(std::min<int64_t>(box.left, corner->x));
            box.right = wrap(std::max<int64_t>(box.right, corner->x));
            box.top = wrap(std::min<int64_t>(box.top, corner->y));
            box.bottom = wrap(std::max<int64_t>(box.bottom, corner->y));
        }
        box.right = wrap(int64_t{box.right} + 1);
        target->rectangleCorners(box.left, box.top, box.right, box.bottom, 0);
    }
    // The last pass takes the text over: a tally can be a gigabyte.
    renderText(anchorX, anchorY, fontNumber, size, std::move(text), orientation, boxed ? nullptr : &box, target,
               spacing);
    if (boxed)
        target->rectangleCorners(box.left, box.top, box.right, box.bottom, 2);
}
