// The format storage over a slot whose property file and escape file come from the input: the first byte
// tells how many of the following bytes are the property file, the rest is the escape file. The slot is
// loaded, named, measured and erased, over a store that the run formats anew. A format whose old date format
// runs on past the end of the file is left out: it never ends, by design.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "errors/KT_Error.h"
#include "fuzz/FuzzSupport.h"
#include "graphics/Image.h"
#include "persistence/FileArray.h"
#include "persistence/KT_Storage.h"
#include "persistence/SimpleFS.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz::silenceOutput();
    fuzz::installFonts();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const size_t propertyBytes = std::min<size_t>(data[0], size - 1);
    // The slot's file is read behind its first two bytes; a format that reads on past its end never ends.
    const uint8_t* escape = data + 1 + propertyBytes;
    const size_t escapeBytes = size - 1 - propertyBytes;
    if (escapeBytes >= 2 && !fuzz::parseFormat(escape + 2, escapeBytes - 2))
        return 0;
    const std::filesystem::path slots = fuzz::scratch() / "slots";
    std::filesystem::remove_all(slots);
    std::filesystem::create_directories(slots / "000");
    fuzz::writeScratch("slots/000/property.txt", data + 1, propertyBytes);
    fuzz::writeScratch("slots/000/format.esc", escape, escapeBytes);
    SRAM::FileArray array(2048);
    SimpleFS store(array, 0, 2048, true);
    Image image(640, 608);
    try {
        KT_FMT::KT_Storage storage(slots.string() + "/", &store, 3, 0, 100, false, &image, nullptr);
        std::string name;
        storage.getSlotName(name, 0);
        fuzz::writeScratch("slots/000/property.txt", data + 1, propertyBytes);
        storage.load(0);
        storage.getPersistentSize(0);
        std::vector<int32_t> hysteresis;
        storage.getHysteresis(hysteresis, (data[0] & 1) != 0);
        storage.eraseCurrent();
    } catch (...) {
    }
    return 0;
}
