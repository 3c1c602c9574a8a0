#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "autocode/AC_ElementCollection.h"
#include "drawables/DrawableList.h"
#include "format/FormatInterface.h"

class Image;
class SimpleFS;
namespace KT_AC {
class AC_Counter;
class AC_VariableString;
}

namespace KT_FMT {

// Bytes of the escape format.
inline constexpr char ESC = 0x1B;
inline constexpr char VT = 0x0B;
inline constexpr unsigned char FORMAT_END = 0xFF;

// The addresses of persistent values, four bytes each, in record order.
using sram_address_stream = std::iostream;

class KT_Format : public KT_INTERFACE::FormatInterface {
public:
    KT_Format(SimpleFS* fileSystem, Image* image, Image* background);
    ~KT_Format() override = default;

    // Element access from outside; defined in KT_FormatAccess.cpp.
    void raisePrinted() override;
    void raiseTrigger() override;
    void clockTick() override;
    void holdUpdates() override;
    void releaseUpdates() override;
    uint32_t countElements(uint32_t mask) override;
    std::vector<std::string> getElementIds(uint32_t mask) override;
    std::string getPromptOfElement(std::string reference) override;
    std::string getResultOfElement(std::string reference) override;
    std::string getContentOfElement(std::string reference) override;
    KT_AC::CounterAttributes getCounterAttributes(std::string reference) override;
    void setCounterAttributes(std::string reference, KT_AC::CounterAttributes attributes) override;
    uint32_t getVariableMinimumLength(std::string reference) override;
    uint16_t getVariableMaximumLength(std::string reference) override;
    void setContentOfElement(std::string reference, std::string text) override;
    void addSerializationData(std::string reference, std::string text) override;
    void deleteSerializationData(std::string reference) override;
    uint32_t getPrintLength() override;
    // The ink profile of the rows for the print head: 255 for paper, sinking as ink fills a window of 150 rows.
    void hysteresisProfile(std::vector<int32_t>& out, int32_t startRow, int32_t endRow);

    // Reads a format from the byte behind ESC F and paints it; mode 0 is volatile, 1 and 2 persistent.
    std::string parse(std::istream& stream, sram_address_stream* addressStream, unsigned mode);
    void clear();
    void update();
    // Paints built-in pattern `number` (0 to 23) straight into the main image; defined in TestFormats.cpp.
    void buildTestFormat(uint32_t number, const std::vector<std::string>& strings, const std::vector<int32_t>& integers);
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
    // The ink count of each row of the main image from startRow to endRow; returns the largest.
    uint32_t histogram(std::vector<uint16_t>& out, int32_t startRow, int32_t endRow) const;
    // Names the next raw graphic file, "gfx" + counter + ".raw".
    std::string nextGraphicsFileName();

private:
    void paintParsed();
    void repaintPass();
    KT_AC::AC_VariableString& variableOf(const std::string& id, const char* closing);
    KT_AC::AC_Counter& counterOf(const std::string& id, const char* closing);
    KT_AC::AC_VariableString& promptedVariable(const std::string& reference, const char* operation);

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
