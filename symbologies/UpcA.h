#pragma once
#include <cstdint>
#include <string>

#include "symbologies/EanUpc.h"

// UPC-A: eleven digits of data and the check digit, all from set A, with quiet zones on both sides.
class UpcA final : public EanUpc {
public:
    UpcA(const std::string& content, int32_t x, int32_t y, int32_t module, int32_t height, int32_t quarterTurns,
         bool addCheckDigit, bool showText, int32_t reversed);

    int validate() override;
    void encode() override;
    void draw(Image& context, Area& rectangle) override;
    int32_t quietZone(int32_t side) override;
};
