#pragma once
#include <cstdint>
#include <string>

#include "symbologies/EanUpc.h"

// EAN-13: twelve digits of data; the first one chooses the pattern sets of the left half and has no bars.
class Ean13 final : public EanUpc {
public:
    Ean13(const std::string& content, int32_t x, int32_t y, int32_t module, int32_t height, int32_t quarterTurns,
          bool addCheckDigit, bool showText, int32_t reversed);

    int validate() override;
    void encode() override;
    void draw(Image& context, Area& rectangle) override;
    int32_t quietZone(int32_t side) override;
};
