#pragma once
#include <cstdint>
#include <iosfwd>

#include "drawables/Drawable.h"

namespace KT_AC {

// A linear barcode. The symbol is built anew at each paint, so a changed element shows at once.
class Drawable_Barcode_1D : public Drawable {
public:
    explicit Drawable_Barcode_1D(KT_FMT::KT_Format& format) : Drawable(format) {}

    // Reads the body of an ESC # B record of a linear type behind its two type characters
    // and appends the drawable to the format.
    static void create(std::istream& stream, KT_FMT::KT_Format& format, int32_t type);
    void redraw(Image& image) override;

private:
    void paintSymbol(Image& image, const std::string& content);

    uint16_t barHeight = 0;
    uint16_t moduleWidth = 0;
    uint16_t textFlag = 0;
    uint16_t checkFlag = 0;
    uint16_t wideWidth = 0;
    uint16_t encodingType = 0;
    uint32_t barcodeType = 0;
};

}  // namespace KT_AC
