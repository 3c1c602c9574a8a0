#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>

#include "graphics/Area.h"

class Image;
namespace KT_FMT {
class KT_Format;
}

namespace KT_AC {

// Paint stages, the argument of `paint`.
inline constexpr int STAGE_UPDATE = 0;
inline constexpr int STAGE_ALL_STATIC = 1;
inline constexpr int STAGE_VARIABLE = 2;
inline constexpr int STAGE_STATIC = 3;
inline constexpr int STAGE_PRELOAD = 4;
inline constexpr int STAGE_FINISH = 5;

// Shifts every drawable read from now on across the head; set by the storage layer.
extern int32_t drawableXOffset;

// Everything that leaves marks on a format.
class Drawable {
public:
    explicit Drawable(KT_FMT::KT_Format& format) : format(&format) {}
    Drawable(const Drawable&) = delete;
    Drawable& operator=(const Drawable&) = delete;
    virtual ~Drawable() = default;

    virtual void paint(Image& image, int stage);
    // Puts back the background or paper where the last redraw painted.
    virtual void blank(Image& image);
    virtual void redraw(Image& image) = 0;

    // The fields that barcode and matrix records share: x, y, orientation, reversal, content.
    void readCommonFields(std::istream& stream);

    int32_t getX() const { return x; }
    int32_t getY() const { return y; }
    int32_t getOrientation() const { return orientation; }
    bool isReversed() const { return reversed; }
    const Area& getPaintedArea() const { return paintedArea; }
    const std::string& getContentId() const { return contentId; }
    bool getIsStatic() const { return isStatic; }
    bool getPaintedAtParse() const { return paintedAtParse; }

protected:
    int32_t x = 0;
    int32_t y = 0;
    KT_FMT::KT_Format* format;
    int32_t orientation = 0;
    bool reversed = false;
    Area paintedArea;
    std::string contentId;
    bool isStatic = false;
    bool paintedAtParse = false;
};

}  // namespace KT_AC
