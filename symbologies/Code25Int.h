#pragma once
#include <string>

#include "symbologies/Barcode.h"

// Interleaved 2 of 5.
class Code25Int : public Barcode {
public:
    Code25Int(const std::string& content, int32_t x, int32_t y, int32_t narrow, int32_t height,
              int32_t quarterTurns, bool addCheckDigit, bool showText, int32_t reversed, int32_t wide);

    int validate() override;
    void encode() override;
    void draw(Image& context, Area& rectangle) override;
    virtual int32_t quietZone(int32_t side);

    // Start, the digit pairs with bars from the first digit and spaces from the second, stop.
    static std::string interleave(const std::string& digits);
};
