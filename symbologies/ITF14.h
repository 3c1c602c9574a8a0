#pragma once
#include "symbologies/Barcode.h"

// Interleaved 2 of 5 of fourteen digits, with its check digit, quiet zones and bearer frame.
class ITF14 : public Barcode {
public:
    ITF14(const std::string& content, int32_t x, int32_t y, int32_t narrow, int32_t height, int32_t quarterTurns,
          bool addCheckDigit, bool showText, int32_t reversed, int32_t wide);

    int validate() override;
    void encode() override;
    void draw(Image& context, Area& rectangle) override;
    // The quiet zone takes the width of the frame's upright bars as well.
    int32_t quietZone(int32_t side) const;

private:
    void drawBearers(Image& context, int32_t barHeight);
};
