#pragma once
#include <iosfwd>

#include "drawables/Drawable.h"

namespace KT_AC {

// A bitmap carried in the format. Its reader paints the rows straight into the raster;
// the object keeps only the geometry and takes no part in the paint stages.
class Drawable_Graphics : public Drawable {
public:
    explicit Drawable_Graphics(KT_FMT::KT_Format& format) : Drawable(format)
    {
        isStatic = true;
        paintedAtParse = true;
    }

    // Reads the body of an ESC G record, paints it into `target` and appends the drawable.
    static void read(std::istream& stream, KT_FMT::KT_Format& format, Image& target);
    void redraw(Image& image) override;

    int32_t getWidth() const { return width; }
    int32_t getHeight() const { return height; }

private:
    void paintRow(std::istream& stream, Image& target, int32_t row) const;

    int32_t width = 0;
    int32_t height = 0;
};

}  // namespace KT_AC
