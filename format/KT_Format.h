#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>

#include "autocode/AC_ElementCollection.h"
#include "drawables/DrawableList.h"

class Image;
class SimpleFS;

namespace KT_FMT {

// Bytes of the escape format.
inline constexpr char ESC = 0x1B;
inline constexpr char VT = 0x0B;
inline constexpr unsigned char FORMAT_END = 0xFF;

// The addresses of persistent values, four bytes each, in record order.
using sram_address_stream = std::iostream;

class KT_Format {
public:
    KT_Format(SimpleFS* fileSystem, Image* image, Image* background);
    virtual ~KT_Format() = default;

    // Reads a format from the byte behind ESC F and paints it; mode 0 is volatile, 1 and 2 persistent.
    std::string parse(std::istream& stream, sram_address_stream* addressStream, unsigned mode);
    void clear();
    void update();
    // Repeated painting for measuring: mode 1 repaints the variable drawables 100 times and saves the
    // rectangle 0, 0, 3200, 1000 to `path`; mode 2 repaints everything `count` times, the last time on a
    // cleared raster, and saves the same rectangle if a path is given.
    void measurePaint(uint32_t mode, uint32_t count, const std::string& path);

    KT_AC::AC_ElementCollection& getElements() { return elements; }
    const KT_AC::AC_ElementCollection& getElements() const { return elements; }
    KT_AC::DrawableList& getDrawables() { return drawables; }
    const std::string& getName() const { return name; }
    bool isEmpty() const { return empty; }
    Image* getImage() const { return image; }
    Image* getBackground() const { return background; }
    SimpleFS* getFileSystem() const { return fileSystem; }
    uint32_t getHysteresisScale() const { return hysteresisScale; }
    void setHysteresisScale(uint32_t scale) { hysteresisScale = scale; }
    // Names the next raw graphic file, "gfx" + counter + ".raw".
    std::string nextGraphicsFileName();

private:
    void paintParsed();
    void repaintPass();

    bool updatesHeld = false;
    bool empty = true;
    KT_AC::AC_ElementCollection elements;
    KT_AC::DrawableList drawables;
    std::string name = "No Format!";
    uint32_t graphicsCounter = 0;
    uint32_t hysteresisScale = 0;
    Image* image;
    Image* background;
    SimpleFS* fileSystem;
};

}  // namespace KT_FMT
