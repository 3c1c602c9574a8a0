#pragma once
#include <iosfwd>

#include "drawables/Drawable.h"

namespace KT_AC {

// A solid rectangle, or a frame of up to four bars.
class Drawable_Box : public Drawable {
public:
    explicit Drawable_Box(KT_FMT::KT_Format& format) : Drawable(format) { isStatic = true; }

    // Reads the body of an ESC L record and appends the box to the format.
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
    void redraw(Image& image) override;

private:
    int32_t width = 0;
    int32_t height = 0;
    int32_t verticalThickness = 0;    // height of the top and bottom bars
    int32_t horizontalThickness = 0;  // width of the left and right bars
};

}  // namespace KT_AC
