#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "symbologies/DatamatrixAutoSelect.h"
#include "symbologies/DatamatrixSizes.h"

class GraphicsContext;
namespace KT_FMT {
struct ContentItem;
}

// The size of a symbol in dots.
struct DotSize {
    int32_t width;
    int32_t height;
};

// The ECC 200 symbol: size table, content tokens, padding, Reed-Solomon words, module placement and
// finder patterns, painted module by module on a context. It lives as long as its drawable and is
// encoded anew for each size question and each paint.
class Datamatrix {
public:
    // Automatic size.
    Datamatrix();
    // Height and width in modules with the finder patterns; both 0 choose the size automatically.
    Datamatrix(int32_t height, int32_t width, int32_t moduleSize, int32_t eccLevel);

    // Id 0 is the first row.
    static const SizeRecord& getSizeRecord(uint32_t id);
    // The hook that gives the content escapes of the symbol's controls their tokens.
    static void controlSequence(std::string id, std::string parm, KT_FMT::ContentItem& item);

    DotSize computeSize(const std::string& content);
    void paint(const std::string& content, GraphicsContext& context);

    const SizeRecord& getSize() const { return *size; }
    const std::vector<int32_t>& getTokens() const { return tokens; }
    const std::vector<uint8_t>& getCodewords() const { return codewords; }
    const std::vector<uint8_t>& getAllWords() const { return allWords; }

private:
    void encodeContent(const std::string& text);
    void addPadding();
    void addErrorCorrection();
    void placeModules();
    void placeCorners(int32_t row, int32_t col, int32_t& chr);
    void placeUtah(int32_t row, int32_t col, int32_t chr);
    void placeModule(int32_t row, int32_t col, int32_t chr, int32_t bit);
    void paintModule(int32_t x, int32_t y, bool set);
    void paintFinders();

    // Per mapping-matrix module: codeword number times 10 plus bit number; 0 while free.
    std::vector<uint16_t> placement;
    GraphicsContext* target = nullptr;
    DatamatrixAutoSelect encoder;
    uint32_t moduleSize = 1;
    const SizeRecord* size;
    uint32_t sizeId = 0;
    std::string content;
    std::vector<int32_t> tokens;
    std::vector<uint8_t> codewords;
    std::vector<uint8_t> allWords;
};
