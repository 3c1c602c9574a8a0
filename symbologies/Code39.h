#pragma once
#include "symbologies/Barcode.h"

class Code39 : public Barcode {
public:
    Code39(const std::string& content, int32_t x, int32_t y, int32_t narrow, int32_t height, int32_t quarterTurns,
           bool addCheckDigit, bool showText, int32_t reversed, int32_t wide);

    int validate() override;
    // The check character less 48; the caller adds 48 back.
    int checkDigit() override;
    void encode() override;
    void draw(Image& context, Area& rectangle) override;
    virtual int32_t quietZone(int32_t side);
};
