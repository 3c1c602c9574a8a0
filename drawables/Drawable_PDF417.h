#pragma once
#include <cstdint>
#include <iosfwd>
#include <memory>

#include "drawables/Drawable.h"
#include "symbologies/PDF417.h"

namespace KT_AC {

// ESC # B 12: a PDF417 of the library. The symbol lives as long as the drawable and turns itself.
class Drawable_PDF417 : public Drawable {
public:
    explicit Drawable_PDF417(KT_FMT::KT_Format& format) : Drawable(format) {}

    // Reads the record behind its two type characters and appends the drawable to the format.
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
    void redraw(Image& image) override;

    int32_t getSymbology() const { return symbology; }
    int32_t getColumns() const { return columns; }
    int32_t getModule() const { return module; }
    int32_t getHeight() const { return height; }
    int32_t getLevel() const { return level; }

private:
    int32_t symbology = 0;
    int32_t columns = 0;
    int32_t module = 0;
    int32_t height = 0;
    int32_t level = 0;
    std::unique_ptr<PDF417> symbol;
};

}  // namespace KT_AC
