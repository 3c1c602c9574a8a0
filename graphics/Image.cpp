#include "graphics/Image.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <new>

#include "errors/KT_Error.h"
#include "persistence/nullbuf.h"

using KT_ERROR::drawable_off_format;
using KT_ERROR::kt_exception;
using KT_ERROR::text;

// Bits of a word that lie left of column `left`, which stay when an area starting there is drawn.
uint32_t Image::keepLeftOf(int32_t left)
{
    const int32_t offset = left % 32;
    return offset == 0 ? 0u : ~0u << (32 - offset);
}

// Bits of a word that lie right of column `right`, which stay when an area ending there is drawn.
uint32_t Image::keepRightOf(int32_t right)
{
    const int32_t offset = right % 32;
    return offset == 31 ? 0u : ~0u >> (offset + 1);
}

Image::Image(int32_t width, int32_t height)
    : width(width), height(height), lastUsedRow(-1), firstUsedRow(-1), rows(nullptr), ownsRows(true),
      background(nullptr)
{
    if (width > 6000 || height > 24000 || width < 1 || height < 1)
        throw kt_exception("trying to construct image with illegal parameters");
    if (width % 32 != 0) {
        debugStream << "trying to construct imagewith width not divisible by 32, rounding up";
        this->width = (width / 32 + 1) * 32;
    }
    // One spare word per row, which no pixel uses. The system hands large blocks out as zeroed pages that
    // cost nothing until touched, so the fresh raster is paper already and only the band needs clearing.
    const size_t stride = static_cast<size_t>(wordsPerRow()) + 1;
    ownedWords.reset(static_cast<uint32_t*>(std::calloc(stride * static_cast<size_t>(height), sizeof(uint32_t))));
    if (!ownedWords)
        throw std::bad_alloc();
    ownedRows = std::make_unique_for_overwrite<uint32_t*[]>(static_cast<size_t>(height));
    for (int32_t r = 0; r < height; ++r)
        ownedRows[r] = ownedWords.get() + stride * static_cast<size_t>(r);
    rows = ownedRows.get();
    setBandEmpty();
}

void Image::FreeWords::operator()(uint32_t* words) const
{
    std::free(words);
}

Image::Image(int32_t wordsPerRow, int32_t height, uint32_t** foreignRows)
    : width(wordsPerRow * 32), height(height), lastUsedRow(-1), firstUsedRow(-1), rows(foreignRows),
      ownsRows(false), background(nullptr)
{
    rescanBand();
}

bool Image::isInside(int32_t x, int32_t y) const
{
    return x >= 0 && y >= 0 && x < width && y < height;
}

int Image::getPixel(int32_t x, int32_t y)
{
    if (!isInside(x, y)) {
        std::cout << "Illegal arguments Image::getPixel()";
        return 0;
    }
    return (rows[y][x / 32] >> (31 - x % 32)) & 1u;
}

void Image::setPixel(int32_t x, int32_t y, int colour)
{
    if (!isInside(x, y))
        throw drawable_off_format(text("trying to draw off format at (", x, "/", y, ")"));
    const uint32_t bit = 1u << (31 - x % 32);
    switch (colour) {
    case 0:
        rows[y][x / 32] &= ~bit;
        break;
    case 1:
        rows[y][x / 32] |= bit;
        extendBand(y, y);
        break;
    case 2:
        setPixel(x, y, getPixel(x, y) ? 0 : 1);
        break;
    default:
        throw kt_exception("illegal colour argument to Image::setPixel()");
    }
}

void Image::rectangle(int32_t x, int32_t y, int32_t w, int32_t h, int colour)
{
    if (w == 0 || h == 0)
        return;
    const int32_t farX = x + w - (w >= 0 ? 1 : -1);
    const int32_t farY = y + h - (h >= 0 ? 1 : -1);
    const int32_t left = std::min(x, farX), right = std::max(x, farX);
    const int32_t top = std::min(y, farY), bottom = std::max(y, farY);
    if (left < 0 || top < 0 || right >= width || bottom >= height)
        throw drawable_off_format(text("rectangle off image(x/y/w/h): (", x, "/", y, "/", w, "/", h, ")"));

    const int32_t firstWord = left / 32, lastWord = right / 32;
    const uint32_t startKeep = keepLeftOf(left);
    const uint32_t endKeep = keepRightOf(right);
    switch (colour) {
    case 0:
        for (int32_t r = top; r <= bottom; ++r) {
            uint32_t* row = rows[r];
            if (firstWord == lastWord) {
                row[firstWord] &= startKeep | endKeep;
                continue;
            }
            row[firstWord] &= startKeep;
            std::fill(row + firstWord + 1, row + lastWord, 0u);
            row[lastWord] &= endKeep;
        }
        if (top <= firstUsedRow && firstUsedRow <= bottom)
            recomputeFirstUsedRow();
        if (top <= lastUsedRow && lastUsedRow <= bottom)
            recomputeLastUsedRow();
        break;
    case 1:
        for (int32_t r = top; r <= bottom; ++r) {
            uint32_t* row = rows[r];
            if (firstWord == lastWord) {
                row[firstWord] |= ~startKeep & ~endKeep;
                continue;
            }
            row[firstWord] |= ~startKeep;
            std::fill(row + firstWord + 1, row + lastWord, ~0u);
            row[lastWord] |= ~endKeep;
        }
        extendBand(top, bottom);
        break;
    case 2:
        for (int32_t r = top; r <= bottom; ++r) {
            uint32_t* row = rows[r];
            if (firstWord == lastWord) {
                row[firstWord] ^= ~startKeep & ~endKeep;
                continue;
            }
            row[firstWord] ^= ~startKeep;
            for (int32_t c = firstWord + 1; c < lastWord; ++c)
                row[c] = ~row[c];
            row[lastWord] ^= ~endKeep;
        }
        extendBand(top, bottom);
        break;
    default:
        break;
    }
}

void Image::clear()
{
    rectangle(0, 0, width, height, 0);
    setBandEmpty();
}

uint32_t Image::getLong(int32_t row, int32_t col) const
{
    if (row < 0 || row >= height)
        throw kt_exception(text("calling getLong() with illegal row arguments: (row/col) (", row, "/", col, ")"));
    if (col < 0 || col >= wordsPerRow())
        throw kt_exception(text("calling getLong() with illegal column arguments: (row/col) (", row, "/", col, ")"));
    return rows[row][col];
}

void Image::setLong(int32_t row, int32_t col, uint32_t value)
{
    if (row < 0 || row >= height)
        throw drawable_off_format(
            text("calling setLong() with illegal row argument: (row/col) (", row, "/", col, ")"));
    if (col < 0 || col >= wordsPerRow())
        throw drawable_off_format(
            text("calling setLong() with illegal column argument: (row/col) (", row, "/", col, ")"));
    rows[row][col] = value;
    if (value != 0) {
        lastUsedRow = std::max(lastUsedRow, row);
        firstUsedRow = std::min(firstUsedRow, row);
    } else if (row == firstUsedRow) {
        recomputeFirstUsedRow();
    }
    if (row == lastUsedRow)
        recomputeLastUsedRow();
}

void Image::throwOrLongOffFormat(int32_t row, int32_t col)
{
    throw drawable_off_format(text("trying to draw off format at (", col * 32, "/", row, ")"));
}

int32_t Image::getLastUsedRow() const
{
    return lastUsedRow == -1 ? 0 : lastUsedRow;
}

int32_t Image::getFirstUsedRow() const
{
    return lastUsedRow != -1 ? firstUsedRow : 0;
}

bool Image::rowIsBlank(int32_t row) const
{
    const uint32_t* words = rows[row];
    return std::all_of(words, words + wordsPerRow(), [](uint32_t w) { return w == 0; });
}

void Image::setBandEmpty()
{
    firstUsedRow = height;
    lastUsedRow = -1;
}

void Image::extendBand(int32_t top, int32_t bottom)
{
    firstUsedRow = std::max(0, std::min(firstUsedRow, top));
    lastUsedRow = std::min(height - 1, std::max(lastUsedRow, bottom));
}

void Image::recomputeFirstUsedRow()
{
    if (firstUsedRow > lastUsedRow) {
        setBandEmpty();
        return;
    }
    if (firstUsedRow < 0 || firstUsedRow >= height) {
        firstUsedRow = height;
        return;
    }
    while (firstUsedRow <= lastUsedRow && firstUsedRow < height && rowIsBlank(firstUsedRow))
        ++firstUsedRow;
    if (firstUsedRow > lastUsedRow)
        setBandEmpty();
}

void Image::recomputeLastUsedRow()
{
    if (firstUsedRow > lastUsedRow) {
        setBandEmpty();
        return;
    }
    if (lastUsedRow < -1 || lastUsedRow >= height) {
        lastUsedRow = -1;
        return;
    }
    while (lastUsedRow >= 0 && lastUsedRow >= firstUsedRow && rowIsBlank(lastUsedRow))
        --lastUsedRow;
    if (lastUsedRow < firstUsedRow)
        setBandEmpty();
}

void Image::rescanBand()
{
    firstUsedRow = 0;
    lastUsedRow = height - 1;
    recomputeFirstUsedRow();
    recomputeLastUsedRow();
}
