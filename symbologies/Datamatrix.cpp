#include "symbologies/Datamatrix.h"

#include <algorithm>
#include <cstdlib>

#include "errors/KT_Error.h"
#include "format/ContentEscapeReader.h"
#include "graphics/GraphicsContext.h"
#include "symbologies/DatamatrixReedSolomon.h"

namespace {

constexpr uint32_t largestSquareId = 24;

bool allDigits(const std::string& parm)
{
    return std::all_of(parm.begin(), parm.end(), [](char c) { return c >= '0' && c <= '9'; });
}

int32_t number(const std::string& parm, size_t from, size_t length)
{
    return std::atoi(parm.substr(from, length).c_str());
}

// The ECI codewords behind 241, packed low byte first; 32-bit two's complement throughout.
uint32_t eciToken(const std::string& parm)
{
    if (parm.size() != 6)
        throw KT_ERROR::bad_content_sequence(
            KT_ERROR::text("datamatrix: eci parameter must be 6 characters long: ", parm));
    if (!allDigits(parm))
        throw KT_ERROR::bad_content_sequence(KT_ERROR::text("datamatrix: eci parameter must be only digits: ", parm));
    const int32_t n = number(parm, 0, 6);
    uint32_t value;
    if (n < 127) {
        value = static_cast<uint32_t>(n + 1);
    } else if (n < 16383) {
        value = static_cast<uint32_t>((n - 127) % 254 + 1) << 8 | static_cast<uint32_t>((n - 127) / 254 + 128);
    } else {
        // Deliberately 16838, not the threshold 16383: the smallest three-byte numbers go negative.
        const int32_t m = n - 16838;
        const auto low = static_cast<uint32_t>(m % 254 + 1);
        const auto middle = static_cast<uint32_t>((m / 254) % 254 + 1);
        const auto high = static_cast<uint32_t>(m / 64516 + 192);
        value = ((low << 8 | middle) << 8) | high;
    }
    return value << 8 | 241;
}

uint32_t structuredAppendToken(const std::string& parm)
{
    if (parm.size() != 10)
        throw KT_ERROR::bad_content_sequence(
            KT_ERROR::text("datamatrix: structured append parameter must be 10 characters long: ", parm));
    if (!allDigits(parm))
        throw KT_ERROR::bad_content_sequence(
            KT_ERROR::text("datamatrix: structured append parameter must be only digits: ", parm));
    const int32_t position = number(parm, 0, 2), total = number(parm, 2, 2);
    const int32_t id1 = number(parm, 4, 3), id2 = number(parm, 7, 3);
    if (position < 1 || position > 16 || total < 2 || total > 16 || total < position)
        throw KT_ERROR::bad_content_sequence(KT_ERROR::text(
            "datamatrix: illegal sequence position/length in structured append: ", position, "/", total));
    if (id1 < 1 || id1 > 254 || id2 < 1 || id2 > 254)
        throw KT_ERROR::bad_content_sequence(
            KT_ERROR::text("datamatrix: illegal file code words in structured append: ", id1, "/", id2));
    const auto sequence = static_cast<uint32_t>((17 - total) << 4 | (position - 1));
    return 233 | sequence << 8 | static_cast<uint32_t>(id1) << 16 | static_cast<uint32_t>(id2) << 24;
}

}  // namespace

Datamatrix::Datamatrix() : size(&getSizeRecord(0))
{
    DatamatrixReedSolomon::field();
}

Datamatrix::Datamatrix(int32_t height, int32_t width, int32_t moduleSize, int32_t eccLevel) : Datamatrix()
{
    if (eccLevel != 200)
        throw KT_ERROR::drawable_illegal_parameter(
            KT_ERROR::text("datamatrix: only supporting ecc level 200, not ", eccLevel));
    if (moduleSize == 0)
        throw KT_ERROR::drawable_illegal_parameter("datamatrix: module size must be greater than zero ");
    this->moduleSize = static_cast<uint32_t>(moduleSize);
    if (height == 0 && width == 0)
        return;
    const auto fits = [&](const SizeRecord& row) {
        return row.width + 2 * (row.width / row.regionWidth) == width &&
               row.height + 2 * (row.height / row.regionHeight) == height;
    };
    const auto row = std::find_if(datamatrixSizes.begin(), datamatrixSizes.end(), fits);
    if (row == datamatrixSizes.end())
        throw KT_ERROR::drawable_illegal_parameter(
            KT_ERROR::text("datamatrix: illegal symbol size (", width, "/", height, ")"));
    sizeId = static_cast<uint32_t>(row->id);
    size = &getSizeRecord(sizeId);
}

const SizeRecord& Datamatrix::getSizeRecord(uint32_t id)
{
    if (id > datamatrixSizes.size())
        throw KT_ERROR::drawable_illegal_parameter("datamatrix: unkown size for getSizeRecord");
    return datamatrixSizes[id == 0 ? 0 : id - 1];
}

void Datamatrix::controlSequence(std::string id, std::string parm, KT_FMT::ContentItem& item)
{
    int32_t token;
    if (id == "FNC1" || id == "DMX_FNC1")
        token = -24;
    else if (id == "RP" || id == "DMX_RP")
        token = -22;
    else if (id == "DMX_MCR05")
        token = -20;
    else if (id == "DMX_MCR06")
        token = -19;
    else if (id == "ECI" || id == "DMX_ECI")
        token = static_cast<int32_t>(eciToken(parm));
    else if (id == "DMX_SA")
        token = static_cast<int32_t>(structuredAppendToken(parm));
    else
        return;
    item = KT_FMT::ContentItem{KT_FMT::ITEM_DATAMATRIX, static_cast<uint32_t>(token)};
}

DotSize Datamatrix::computeSize(const std::string& text)
{
    encodeContent(text);
    const auto module = static_cast<int32_t>(moduleSize);
    return DotSize{(size->width + 2 * (size->width / size->regionWidth)) * module,
                   (size->height + 2 * (size->height / size->regionHeight)) * module};
}

void Datamatrix::paint(const std::string& text, GraphicsContext& context)
{
    encodeContent(text);
    addPadding();
    addErrorCorrection();
    target = &context;
    try {
        placeModules();
        paintFinders();
    } catch (...) {
        target = nullptr;
        throw;
    }
    target = nullptr;
}

// The size question and the paint both come here. Automatic size doesn't start over from the first
// row: a row chosen once is the capacity the encoder is given next time.
void Datamatrix::encodeContent(const std::string& text)
{
    content = text;
    KT_FMT::ContentEscapeReader reader(&Datamatrix::controlSequence);
    reader.setContent(content);
    tokens.clear();
    while (reader.hasNext())
        tokens.push_back(static_cast<int32_t>(reader.next().value));
    encoder.encode(tokens, codewords, static_cast<uint32_t>(size->dataWords));
    const auto count = static_cast<int32_t>(codewords.size());
    if (count <= size->dataWords)
        return;
    if (sizeId != 0)
        throw KT_ERROR::render_time_error("datamatrix: content doesn't fit into selected symbol size");
    const auto squares = datamatrixSizes.begin() + datamatrixSquareRows;
    const auto row = std::find_if(datamatrixSizes.begin(), squares,
                                  [&](const SizeRecord& record) { return record.dataWords >= count; });
    size = row != squares ? &*row : &getSizeRecord(largestSquareId);
}

void Datamatrix::addPadding()
{
    const auto dataWords = static_cast<size_t>(size->dataWords);
    if (codewords.size() > dataWords)
        throw KT_ERROR::internal_autocode_error("datamatrix: can't pad, symbol already full");
    if (codewords.size() < dataWords)
        codewords.push_back(129);
    while (codewords.size() < dataWords) {
        const auto position = static_cast<uint32_t>(codewords.size() + 1);
        uint32_t pad = 129 + (149 * position) % 253 + 1;
        if (pad > 254)
            pad -= 254;
        codewords.push_back(static_cast<uint8_t>(pad));
    }
}

// Every block takes every b-th data word; its check words go to the same stride behind the data. The
// 144 x 144 symbol has ten blocks of two lengths, and its check words start with block 8.
void Datamatrix::addErrorCorrection()
{
    const auto dataWords = static_cast<size_t>(size->dataWords);
    if (codewords.size() != dataWords)
        throw KT_ERROR::internal_autocode_error("datamatrix: encoded data not long enough for ecc algorithm");
    const bool largest = size->id == static_cast<int32_t>(largestSquareId);
    const size_t blocks = largest ? 10 : static_cast<size_t>(size->blocks);
    const auto eccPerBlock = static_cast<uint32_t>(static_cast<size_t>(size->eccWords) / blocks);
    allWords = codewords;
    allWords.resize(dataWords + static_cast<size_t>(size->eccWords));
    std::vector<uint8_t> block;
    for (size_t i = 0; i < blocks; ++i) {
        block.clear();
        for (size_t at = i; at < dataWords; at += blocks)
            block.push_back(codewords[at]);
        const std::vector<uint8_t> check = DatamatrixReedSolomon::field().checkWords(block, eccPerBlock);
        const size_t first = largest ? (i < 8 ? i + 2 : i - 8) : i;
        for (size_t j = 0; j < check.size(); ++j)
            allWords[dataWords + first + blocks * j] = check[j];
    }
}

// The placement of the published standard: codewords walk the mapping matrix in diagonal strokes,
// with four special shapes at the corners.
void Datamatrix::placeModules()
{
    const int32_t rows = size->height, cols = size->width;
    placement.assign(static_cast<size_t>(rows * cols), 0);
    const auto isFree = [&](int32_t r, int32_t c) { return placement[static_cast<size_t>(r * cols + c)] == 0; };
    int32_t chr = 1, row = 4, col = 0;
    do {
        placeCorners(row, col, chr);
        do {
            if (row < rows && col >= 0 && isFree(row, col))
                placeUtah(row, col, chr++);
            row -= 2;
            col += 2;
        } while (row >= 0 && col < cols);
        row += 1;
        col += 3;
        do {
            if (row >= 0 && col < cols && isFree(row, col))
                placeUtah(row, col, chr++);
            row += 2;
            col -= 2;
        } while (row < rows && col >= 0);
        row += 3;
        col += 1;
    } while (row < rows || col < cols);
    // The fixed corner pattern: codeword 0 is set at bit 1 only.
    if (isFree(rows - 1, cols - 1)) {
        placeModule(rows - 1, cols - 1, 0, 1);
        placeModule(rows - 2, cols - 2, 0, 1);
        placeModule(rows - 1, cols - 2, 0, 2);
        placeModule(rows - 2, cols - 1, 0, 2);
    }
}

void Datamatrix::placeCorners(int32_t row, int32_t col, int32_t& chr)
{
    const int32_t rows = size->height, cols = size->width;
    // Each shape lists its eight modules as row, column pairs, bit 1 first.
    const auto shape = [&](const int32_t (&modules)[16]) {
        for (int32_t bit = 0; bit < 8; ++bit)
            placeModule(modules[2 * bit], modules[2 * bit + 1], chr, bit + 1);
        ++chr;
    };
    if (row == rows && col == 0)
        shape({rows - 1, 0, rows - 1, 1, rows - 1, 2, 0, cols - 2, 0, cols - 1, 1, cols - 1, 2, cols - 1, 3, cols - 1});
    if (row == rows - 2 && col == 0 && cols % 4 != 0)
        shape({rows - 3, 0, rows - 2, 0, rows - 1, 0, 0, cols - 4, 0, cols - 3, 0, cols - 2, 0, cols - 1, 1, cols - 1});
    if (row == rows - 2 && col == 0 && cols % 8 == 4)
        shape({rows - 3, 0, rows - 2, 0, rows - 1, 0, 0, cols - 2, 0, cols - 1, 1, cols - 1, 2, cols - 1, 3, cols - 1});
    if (row == rows + 4 && col == 2 && cols % 8 == 0)
        shape({rows - 1, 0, rows - 1, cols - 1, 0, cols - 3, 0, cols - 2, 0, cols - 1, 1, cols - 3, 1, cols - 2, 1, cols - 1});
}

void Datamatrix::placeUtah(int32_t row, int32_t col, int32_t chr)
{
    placeModule(row - 2, col - 2, chr, 1);
    placeModule(row - 2, col - 1, chr, 2);
    placeModule(row - 1, col - 2, chr, 3);
    placeModule(row - 1, col - 1, chr, 4);
    placeModule(row - 1, col, chr, 5);
    placeModule(row, col - 2, chr, 6);
    placeModule(row, col - 1, chr, 7);
    placeModule(row, col, chr, 8);
}

// Places one module, wrapping round the matrix edges as the standard does, and paints it at once.
void Datamatrix::placeModule(int32_t row, int32_t col, int32_t chr, int32_t bit)
{
    const int32_t rows = size->height, cols = size->width;
    if (row < 0) {
        row += rows;
        col += 4 - ((rows + 4) % 8);
    }
    if (col < 0) {
        col += cols;
        row += 4 - ((cols + 4) % 8);
    }
    placement[static_cast<size_t>(row * cols + col)] = static_cast<uint16_t>(10 * chr + bit);
    const bool set = chr == 0 ? bit == 1 : ((allWords[static_cast<size_t>(chr - 1)] >> (8 - bit)) & 1) != 0;
    paintModule(col + 1 + 2 * (col / size->regionWidth), row + 1 + 2 * (row / size->regionHeight), set);
}

void Datamatrix::paintModule(int32_t x, int32_t y, bool set)
{
    const auto module = static_cast<int32_t>(moduleSize);
    target->rectangle(x * module, y * module, module, module, set ? 1 : 0);
}

// Each region: solid bottom row and left column, a clock track along the top and the right.
void Datamatrix::paintFinders()
{
    const int32_t outerWidth = size->regionWidth + 2, outerHeight = size->regionHeight + 2;
    for (int32_t top = 0; top < size->height / size->regionHeight * outerHeight; top += outerHeight)
        for (int32_t left = 0; left < size->width / size->regionWidth * outerWidth; left += outerWidth) {
            for (int32_t x = 0; x < outerWidth; ++x) {
                paintModule(left + x, top + outerHeight - 1, true);
                paintModule(left + x, top, x % 2 == 0);
            }
            for (int32_t y = 0; y < outerHeight; ++y) {
                paintModule(left, top + y, true);
                paintModule(left + outerWidth - 1, top + y, y % 2 == 1);
            }
        }
}
