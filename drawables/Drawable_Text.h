#pragma once
#include <iosfwd>

#include "drawables/Drawable.h"

namespace KT_AC {

// One line of text showing the value of a content element, anchored on its baseline.
class Drawable_Text : public Drawable {
public:
    explicit Drawable_Text(KT_FMT::KT_Format& format) : Drawable(format) {}

    // Reads the body of an ESC # T record and appends the text to the format.
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
    void paint(Image& image, int stage) override;
    void redraw(Image& image) override;

    int32_t getFontNumber() const { return fontNumber; }
    int32_t getSize() const { return size; }
    int32_t getAlignment() const { return alignment; }
    int32_t getSpacing() const { return spacing; }

private:
    int32_t fontNumber = 0;
    int32_t size = 0;
    int32_t alignment = 0;  // 0 left, 1 centre, 2 right
    int32_t spacing = 0;    // 16.16 dots behind each character
};

}  // namespace KT_AC
