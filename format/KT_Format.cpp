#include "format/KT_Format.h"

#include <iomanip>
#include <istream>
#include <sstream>

#include "errors/KT_Error.h"
#include "format/EscapeFilterStreamBuf.h"
#include "format/RecordDispatch.h"
#include "graphics/Image.h"

namespace KT_FMT {

KT_Format::KT_Format(SimpleFS* fileSystem, Image* image, Image* background)
    : image(image), background(background), fileSystem(fileSystem)
{
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
    elements.broadcast(KT_AC::EVENT_PAINTED, 0);
    return {};
}

void KT_Format::clear()
{
    if (empty)
        return;
    name = "No Format!";
    elements.clear();
    image->clear();
    if (background != nullptr)
        background->clear();
    empty = true;
}

void KT_Format::update()
{
    if (updatesHeld)
        return;
    elements.broadcast(KT_AC::EVENT_PAINTED, 0);
}

std::string KT_Format::nextGraphicsFileName()
{
    return KT_ERROR::text("gfx", graphicsCounter++, ".raw");
}

}  // namespace KT_FMT
