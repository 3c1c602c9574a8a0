#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>

#include "graphics/Image.h"

namespace {

constexpr uint32_t headerBytes = 62;

void putLittle(std::array<char, headerBytes>& header, size_t at, uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        header[at + i] = static_cast<char>(value >> (8 * i));
}

uint32_t readLittle(std::istream& in, int bytes)
{
    uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
        value |= static_cast<uint32_t>(static_cast<unsigned char>(in.get())) << (8 * i);
    return value;
}

uint32_t readBigWord(std::istream& in)
{
    char bytes[4] = {};
    in.read(bytes, 4);
    return static_cast<uint32_t>(static_cast<unsigned char>(bytes[0])) << 24 |
           static_cast<uint32_t>(static_cast<unsigned char>(bytes[1])) << 16 |
           static_cast<uint32_t>(static_cast<unsigned char>(bytes[2])) << 8 |
           static_cast<uint32_t>(static_cast<unsigned char>(bytes[3]));
}

}  // namespace

bool Image::saveBitmap(int32_t x, int32_t y, int32_t w, int32_t h, const std::string& path) const
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (x % 32 != 0 || w % 32 != 0) {
        std::cout << "Image::saveBitmap(): x_off and w must be divisible by 32";
        return false;
    }
    if (!file.is_open()) {
        std::cout << "Can't open bmp file for writing";
        return false;
    }
    const uint32_t pixelBytes = static_cast<uint32_t>(w) * static_cast<uint32_t>(h) / 8;
    std::array<char, headerBytes> header{};
    header[0] = 'B';
    header[1] = 'M';
    putLittle(header, 2, pixelBytes + headerBytes, 4);
    putLittle(header, 6, static_cast<uint32_t>(x), 2);
    putLittle(header, 8, static_cast<uint32_t>(y), 2);
    putLittle(header, 10, headerBytes, 4);
    putLittle(header, 14, 40, 4);
    putLittle(header, 18, static_cast<uint32_t>(w), 4);
    putLittle(header, 22, static_cast<uint32_t>(h), 4);
    putLittle(header, 26, 1, 2);
    putLittle(header, 28, 1, 2);
    putLittle(header, 34, pixelBytes, 4);
    putLittle(header, 38, 12000, 4);
    putLittle(header, 42, 12000, 4);
    putLittle(header, 54, 0x00FFFFFF, 4);
    file.write(header.data(), header.size());

    // Rows are gathered into large blocks, so that a whole raster goes out in a few writes.
    const int32_t firstWord = x / 32, endWord = (x + w) / 32;
    const size_t rowBytes = static_cast<size_t>(std::max(endWord - firstWord, 0)) * 4;
    const size_t blockBytes =
        std::max(rowBytes, std::min(rowBytes * static_cast<size_t>(std::max(h, 0)), size_t{256 * 1024}));
    const auto block = std::make_unique_for_overwrite<char[]>(blockBytes);
    size_t filled = 0;
    for (int32_t r = y + h - 1; r >= y; --r) {
        if (filled + rowBytes > blockBytes) {
            file.write(block.get(), static_cast<std::streamsize>(filled));
            filled = 0;
        }
        packRow(r, firstWord, endWord, block.get() + filled);
        filled += rowBytes;
    }
    file.write(block.get(), static_cast<std::streamsize>(filled));
    return true;
}

// Writes the words of row r from firstWord up to endWord as bytes, top byte first. Rows outside the band
// of used rows are paper and aren't read; so are rows and words outside the raster (the blank trimmed save
// has one).
void Image::packRow(int32_t r, int32_t firstWord, int32_t endWord, char* out) const
{
    std::memset(out, 0, static_cast<size_t>(std::max(endWord - firstWord, 0)) * 4);
    if (r < firstUsedRow || r > lastUsedRow)
        return;
    const int32_t from = std::clamp(firstWord, 0, wordsPerRow()), to = std::clamp(endWord, from, wordsPerRow());
    for (int32_t c = from; c < to; ++c) {
        const uint32_t word = rows[r][c];
        const uint32_t bigEndian = std::endian::native == std::endian::little ? __builtin_bswap32(word) : word;
        std::memcpy(out + static_cast<ptrdiff_t>(c - firstWord) * 4, &bigEndian, 4);
    }
}

bool Image::saveTrimmed(const std::string& path) const
{
    std::ofstream keepOpen(path, std::ios::binary | std::ios::trunc);
    // Ink lies only within the band of used rows.
    int32_t left = -1, top = -1, right = -1, bottom = -1;
    const int32_t words = wordsPerRow();
    for (int32_t r = std::max(firstUsedRow, 0); r <= lastUsedRow; ++r) {
        const uint32_t* row = rows[r];
        int32_t first = 0;
        while (first < words && row[first] == 0)
            ++first;
        if (first == words)
            continue;
        int32_t last = words - 1;
        while (row[last] == 0)
            --last;
        left = left == -1 ? first * 32 : std::min(left, first * 32);
        right = std::max(right, last * 32);
        top = top == -1 ? r : top;
        bottom = r;
    }
    const int32_t x = left - left % 32;
    int32_t w = right - left + 1;
    const int32_t h = bottom - top + 1;
    if (w % 32 != 0)
        w = (w / 32 + 1) * 32;
    return saveBitmap(x, top, w, h, path);
}

bool Image::saveUsedRows(const std::string& path) const
{
    return saveBitmap(0, getFirstUsedRow(), width, getLastUsedRow() - getFirstUsedRow() + 1, path);
}

bool Image::loadBitmap(int32_t x, int32_t y, const std::string& path, bool useStoredOffset)
{
    std::ifstream file(path, std::ios::binary);
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        std::cout << "Image::loadBitmap(): Failed to obtain file size";
        return false;
    }
    if (!file.is_open()) {
        std::cout << "Image::loadBitmap(): Can't open bmp file for reading";
        rescanBand();
        return true;
    }
    if (file.get() != 'B' || file.get() != 'M') {
        std::cout << "Image::loadBitmap(): File is not a bitmap";
        return false;
    }
    const int32_t fileSays = static_cast<int32_t>(readLittle(file, 4));
    const int32_t fileSystemSays = static_cast<int32_t>(status.st_size);
    if (fileSays != fileSystemSays) {
        char message[128];
        std::snprintf(message, sizeof message,
                      "Image::loadBitmap(): File size doesn't match:\nfile says %i filesystem says %i", fileSays,
                      fileSystemSays);
        std::cout << message;
        return false;
    }
    // The stored offsets are signed, so that the row above the raster of a blank save comes back as -1.
    const int16_t storedX = static_cast<int16_t>(readLittle(file, 2));
    const int16_t storedY = static_cast<int16_t>(readLittle(file, 2));
    const uint32_t pixelOffset = readLittle(file, 4);
    if (readLittle(file, 4) != 40) {
        std::cout << "Image::loadBitmap(): Wrong bitmap type";
        return false;
    }
    const int32_t w = static_cast<int32_t>(readLittle(file, 4));
    const int32_t h = static_cast<int32_t>(readLittle(file, 4));
    if (w % 32 != 0) {
        std::cout << "Image::loadBitmap(): bitmap width not divisable by 32";
        return false;
    }
    file.ignore(2);
    if (file.get() != 1) {
        std::cout << "Image::loadBitmap(): wrong colour depth";
        return false;
    }
    file.ignore(1);
    const uint32_t compression = readLittle(file, 4);
    file.seekg(pixelOffset);
    if (useStoredOffset) {
        x += storedX;
        y += storedY;
    }
    // A compression value of 72 marks pixel data that is to be left alone. A header that promises
    // more rows than the file holds stops at the file's end; rows that hold no word read nothing at all.
    const int64_t firstWord = x / 32, endWord = (int64_t{x} + w) / 32;
    if (compression != 72 && firstWord < endWord) {
        for (int64_t r = int64_t{y} + h - 1; r >= y && file; --r) {
            for (int64_t c = firstWord; c < endWord && file; ++c) {
                const uint32_t word = readBigWord(file);
                if (file && r >= 0 && r < height && c >= 0 && c < wordsPerRow())
                    rows[r][c] = word;
            }
        }
    }
    rescanBand();
    return true;
}
