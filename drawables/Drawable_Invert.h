#pragma once
#include <iosfwd>

#include "drawables/Drawable.h"

namespace KT_AC {

// Flips every pixel of a rectangle. It paints with the variable drawables, so it acts on
// everything static and on the variable drawables before it in the file.
class Drawable_Invert : public Drawable {
public:
    explicit Drawable_Invert(KT_FMT::KT_Format& format) : Drawable(format) {}

    // Reads the body of an ESC # I record and appends the area to the format.
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
    void redraw(Image& image) override;

private:
    int32_t width = 0;
    int32_t height = 0;
};

}  // namespace KT_AC
