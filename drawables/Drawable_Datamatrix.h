#pragma once
#include <iosfwd>
#include <memory>

#include "drawables/Drawable.h"

class Datamatrix;

namespace KT_AC {

// Record 07: a square or fixed-size ECC 200 symbol, turned about its top left corner.
class Drawable_Datamatrix : public Drawable {
public:
    explicit Drawable_Datamatrix(KT_FMT::KT_Format& format);
    ~Drawable_Datamatrix() override;

    // Reads the body of an ESC # B 07 record behind its type and appends the drawable to the format.
    // The symbol is made here, so that a bad parameter fails while the format is read.
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
    void redraw(Image& image) override;

    const Datamatrix& getSymbol() const { return *symbol; }
    int32_t getModule() const { return module; }
    int32_t getWidth() const { return width; }
    int32_t getHeight() const { return height; }
    int32_t getEcc() const { return ecc; }
    int32_t getReservedDigit() const { return reservedDigit; }
    bool getReservedFlag() const { return reservedFlag; }

private:
    int32_t module = 0;
    int32_t width = 0;
    int32_t height = 0;
    int32_t ecc = 0;
    int32_t reservedDigit = 0;
    bool reservedFlag = false;
    std::unique_ptr<Datamatrix> symbol;
};

}  // namespace KT_AC
