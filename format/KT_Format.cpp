#include "format/KT_Format.h"

#include <iomanip>
#include <istream>
#include <sstream>

#include "autocode/DateClock.h"
#include "errors/KT_Error.h"
#include "format/EscapeFilterStreamBuf.h"
#include "format/gs1/AiNumberReplace.h"
#include "format/RecordDispatch.h"
#include "graphics/Image.h"

namespace KT_FMT {

KT_Format::KT_Format(SimpleFS* fileSystem, Image* image, Image* background)
    : image(image), background(background), fileSystem(fileSystem)
{
    fillGS1Table();
}

std::string KT_Format::parse(std::istream& stream, sram_address_stream* addressStream, unsigned mode)
{
    if ((mode == 1 || mode == 2) && fileSystem == nullptr)
        throw KT_ERROR::resource_error("can't create a persistent format without sram file system");
    clear();
    empty = false;

    EscapeFilterStreamBuf filter(stream.rdbuf());
    std::istream in(&filter);
    in.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);

    name.clear();
    for (int i = 0; i < 10; ++i)
        name.push_back(readByte(in));

    ParseContext context{in, *this, addressStream, mode};
    char c = readByte(in);
    while (c == ESC) {
        dispatchRecord(context, readByte(in));
        c = readByte(in);
    }
    if (static_cast<unsigned char>(c) != FORMAT_END) {
        std::ostringstream message;
        message << "no termination character found for format end, but ASCII 0x" << std::hex << std::setw(2)
                << std::setfill('0') << static_cast<int>(static_cast<unsigned char>(c)) << " (" << c << ")";
        throw KT_ERROR::parse_time_error(message.str());
    }
    paintParsed();
    return {};
}

// Static drawables first (into the background, if there is one), then the variable ones.
void KT_Format::paintParsed()
{
    using namespace KT_AC;
    if (background != nullptr) {
        drawables.paintAll(*background, STAGE_STATIC);
        drawables.paintAll(*background, STAGE_FINISH);
        image->setBackground(background);
        image->restoreArea({0, 0, static_cast<int32_t>(image->getWidth()), static_cast<int32_t>(image->getHeight())});
    } else {
        drawables.paintAll(*image, STAGE_STATIC);
    }
    // One reading of the clock for the whole paint, so that all dates agree.
    refreshNow();
    drawables.paintAll(*image, STAGE_PRELOAD);
    drawables.paintAll(*image, STAGE_VARIABLE);
    drawables.paintAll(*image, STAGE_FINISH);
    elements.broadcast(EVENT_PAINTED, 0);
}

void KT_Format::clear()
{
    if (empty)
        return;
    name = "No Format!";
    elements.clear();
    drawables.clear();
    image->clear();
    if (background != nullptr)
        background->clear();
    empty = true;
}

void KT_Format::update()
{
    if (updatesHeld)
        return;
    drawables.paintAll(*image, KT_AC::STAGE_UPDATE);
    drawables.paintAll(*image, KT_AC::STAGE_FINISH);
    elements.broadcast(KT_AC::EVENT_PAINTED, 0);
}

void KT_Format::repaintPass()
{
    using namespace KT_AC;
    refreshNow();
    drawables.paintAll(*image, STAGE_PRELOAD);
    drawables.paintAll(*image, STAGE_STATIC);
    drawables.paintAll(*image, STAGE_VARIABLE);
    elements.broadcast(EVENT_PAINTED, 0);
    elements.broadcast(EVENT_PRINTED, 0);
}

void KT_Format::measurePaint(uint32_t mode, uint32_t count, const std::string& path)
{
    using namespace KT_AC;
    constexpr int32_t measuredWidth = 3200, measuredHeight = 1000;
    if (mode == 1) {
        for (int pass = 0; pass < 100; ++pass) {
            image->rectangle(0, 0, measuredWidth, measuredHeight, 0);
            elements.broadcast(EVENT_PRINTED, 0);
            drawables.paintAll(*image, STAGE_VARIABLE);
        }
        image->saveBitmap(0, 0, measuredWidth, measuredHeight, path);
    } else if (mode == 2) {
        // count - 1 passes over the raster as it is, and a last one over a cleared raster.
        for (uint32_t pass = 1; pass < count; ++pass)
            repaintPass();
        image->clear();
        repaintPass();
        if (!path.empty())
            image->saveBitmap(0, 0, measuredWidth, measuredHeight, path);
    }
}

uint32_t KT_Format::histogram(std::vector<uint16_t>& out, int32_t startRow, int32_t endRow) const
{
    return image->histogram(out, startRow, endRow);
}

std::string KT_Format::nextGraphicsFileName()
{
    return KT_ERROR::text("gfx", graphicsCounter++, ".raw");
}

}  // namespace KT_FMT
