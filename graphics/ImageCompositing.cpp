#include <algorithm>
#include <bit>

#include "errors/KT_Error.h"
#include "graphics/Image.h"

using KT_ERROR::text;

void Image::orLongShifted(int32_t row, int32_t col, uint32_t shift, uint32_t value)
{
    shift &= 31;
    if (shift == 0) {
        orLong(row, col, value);
        return;
    }
    orLong(row, col, value >> shift);
    // Made even when nothing is shifted out, so a word ending at the right edge is off format.
    orLong(row, col + 1, value << (32 - shift));
}

void Image::paste(const Image& source, int32_t row, int32_t x)
{
    const int32_t h = source.height;
    const int32_t wordCount = source.wordsPerRow();
    const int32_t firstCol = x / 32;
    const int32_t lastCol = firstCol + wordCount;
    if (!(lastCol < wordsPerRow() && h + row < height))
        throw KT_ERROR::drawable_off_format(text("trying to paste image at (", firstCol * 32, "/", row, ")"));
    const auto shift = static_cast<uint32_t>(x % 32);
    for (int32_t r = 0; r < h; ++r)
        for (int32_t c = 0; c < wordCount; ++c)
            orLongShifted(row + r, firstCol + c, shift, source.rows[r][c]);
}

int Image::loadRaw(const unsigned char* buffer, int32_t row, int32_t x, int32_t height, int32_t widthInDots)
{
    if (buffer == nullptr)
        return 1;
    if (widthInDots % 32 != 0)
        return 2;
    const int32_t bytesPerRow = widthInDots / 8;
    for (int32_t r = 0; r < height; ++r) {
        const unsigned char* bytes = buffer + static_cast<size_t>(r) * static_cast<size_t>(bytesPerRow);
        for (int32_t i = 0; i < bytesPerRow; i += 4) {
            const uint32_t group = uint32_t{bytes[i]} << 24 | uint32_t{bytes[i + 1]} << 16 |
                                   uint32_t{bytes[i + 2]} << 8 | uint32_t{bytes[i + 3]};
            setLong(r + row, x / 32 + i / 4, group);
        }
    }
    return 0;
}

void Image::cropMarks(int32_t x0, int32_t y0, int32_t x1, int32_t y1, int style)
{
    if (x0 > x1 || y0 > y1)
        return;
    x0 = std::clamp(x0, 0, width - 1);
    x1 = std::clamp(x1, 0, width - 1);
    y0 = std::clamp(y0, 0, height - 1);
    y1 = std::clamp(y1, 0, height - 1);
    if (style != 0)
        return;
    rectangle(x0, y0, 25, 5, 1);
    rectangle(x0, y0, 5, 25, 1);
    rectangle(x0, y1 - 25, 5, 25, 1);
    rectangle(x0, y1 - 5, 25, 5, 1);
    rectangle(x1 - 25, y0, 25, 5, 1);
    rectangle(x1 - 5, y0, 5, 25, 1);
    rectangle(x1 - 25, y1 - 5, 25, 5, 1);
    rectangle(x1 - 5, y1 - 25, 5, 25, 1);
}

uint32_t Image::histogram(std::vector<uint16_t>& out, int32_t startRow, int32_t endRow) const
{
    if (startRow < 0 || startRow >= height || endRow < 0 || endRow >= height)
        throw KT_ERROR::internal_error("histogramm starting or ending index out of bounds");
    const int32_t step = startRow >= endRow ? -1 : 1;
    uint32_t largest = 0;
    for (int32_t r = startRow;; r += step) {
        uint32_t count = 0;
        for (int32_t c = 0; c < wordsPerRow(); ++c)
            if (rows[r][c] != 0)
                count += static_cast<uint32_t>(std::popcount(rows[r][c]));
        out.push_back(static_cast<uint16_t>(count));
        largest = std::max(largest, count);
        if (r == endRow)
            break;
    }
    return largest;
}

void Image::setBackground(Image* image)
{
    if (image != nullptr && (image->width != width || image->height != height))
        throw KT_ERROR::internal_error("background image must have same dimensions");
    background = image;
}

void Image::restoreArea(Area area)
{
    area.left = std::clamp(area.left, 0, width - 1);
    area.right = std::clamp(area.right, 0, width - 1);
    area.top = std::clamp(area.top, 0, height - 1);
    area.bottom = std::clamp(area.bottom, 0, height - 1);
    if (background == nullptr) {
        rectangleCorners(area.left, area.top, area.right, area.bottom, 0);
        return;
    }
    const int32_t firstWord = area.left / 32, lastWord = area.right / 32;
    const uint32_t startKeep = keepLeftOf(area.left);
    const uint32_t endKeep = keepRightOf(area.right);
    for (int32_t r = area.top; r <= area.bottom; ++r) {
        uint32_t* own = rows[r];
        const uint32_t* back = background->rows[r];
        for (int32_t c = firstWord; c <= lastWord; ++c) {
            uint32_t keep = 0;
            if (c == firstWord)
                keep |= startKeep;
            if (c == lastWord)
                keep |= endKeep;
            own[c] = (own[c] & keep) | (back[c] & ~keep);
        }
    }
    const int32_t oldFirst = firstUsedRow, oldLast = lastUsedRow;
    extendBand(area.top, area.bottom);
    if (!(lastUsedRow == oldLast && lastUsedRow != area.bottom))
        recomputeLastUsedRow();
    if (!(firstUsedRow == oldFirst && firstUsedRow != area.top))
        recomputeFirstUsedRow();
}
