#pragma once
#include <cstdint>
#include <iosfwd>
#include <memory>

#include "drawables/Drawable.h"
#include "symbologies/Databar.h"

namespace KT_AC {

// ESC # B 09: a GS1 DataBar of the library. The symbol lives as long as the drawable and turns itself.
class Drawable_Databar : public Drawable {
public:
    explicit Drawable_Databar(KT_FMT::KT_Format& format) : Drawable(format) {}

    // Reads the record behind its two type characters and appends the drawable to the format.
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
    void redraw(Image& image) override;

    int32_t getSymbology() const { return symbology; }
    int32_t getHeight() const { return height; }
    int32_t getModule() const { return module; }
    int32_t getTextHeight() const { return textHeight; }
    int32_t getOption() const { return option; }

private:
    int32_t symbology = 0;
    int32_t height = 0;
    int32_t module = 0;
    int32_t textHeight = 0;
    int32_t option = 0;
    std::unique_ptr<Databar> symbol;
};

}  // namespace KT_AC
