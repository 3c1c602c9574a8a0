#pragma once
#include <cstdint>
#include <string>

#include "symbologies/EanUpc.h"

// UPC-E: six digits behind an implied number system 0; the check digit is carried in the pattern sets only.
class UpcE final : public EanUpc {
public:
    UpcE(const std::string& content, int32_t x, int32_t y, int32_t module, int32_t height, int32_t quarterTurns,
         bool addCheckDigit, bool showText, int32_t reversed);

    int validate() override;
    void encode() override;
    void draw(Image& context, Area& rectangle) override;
    int32_t quietZone(int32_t side) override;
};
