#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "symbologies/ZintRowSymbol.h"

class Image;

// The GS1 DataBar family of the library, painted row by row in runs, with a human-readable line under
// the symbols that have one.
class Databar : public ZintRowSymbol {
public:
    // `height` in dots is shared between the rows as the symbology wants it; `textHeight` is the band of the
    // human-readable line, 0 for none; `option` is the library's option_2.
    Databar(int32_t symbology, int32_t height, int32_t module, int32_t textHeight, int32_t option);

    // Clears the previous rows, encodes the content (an expanded symbol's after the GS1 rewrite) and paints
    // it at the context's origin; the human-readable line goes on `target` itself. A refused content raises
    // a format error.
    void paint(Image& target, const std::string& content, GraphicsContext& context);

    const std::vector<int32_t>& getRowHeights() const { return rowHeights; }

private:
    void rebuildRowHeights();
    void paintRows(int colour);
    void paintRun(int32_t end, int32_t length, int32_t offset, int32_t rowHeight, int colour);
    void paintText(Image& image, GraphicsContext& context);

    int32_t textHeight;
    std::vector<int32_t> rowHeights;
    int32_t rows = 0;
    int32_t separatorHeight;
};
