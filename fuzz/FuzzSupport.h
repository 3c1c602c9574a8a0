#pragma once
// What every fuzz target shares: the fonts of the build, a private scratch directory, and quiet output.
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <streambuf>
#include <string>

#include "cli/PrinterTable.h"
#include "fonts/FontProvider.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "persistence/nullbuf.h"

namespace fuzz {

// A directory of this process's own, made once and left for the system's temporary area to clean.
inline const std::filesystem::path& scratch()
{
    static const std::filesystem::path dir = [] {
        auto path = std::filesystem::temp_directory_path() / ("ktr_fuzz_" + std::to_string(::getpid()));
        std::filesystem::create_directories(path);
        return path;
    }();
    return dir;
}

inline std::string writeScratch(const std::string& name, const uint8_t* data, size_t size)
{
    const std::string path = (scratch() / name).string();
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data),
                                                                 static_cast<std::streamsize>(size));
    return path;
}

// The process-wide font provider over the fonts the build links beside itself, as the renderer has it.
inline void installFonts()
{
    if (fontProvider)
        return;
    fontProvider = std::make_unique<FontProvider>();
    fontProvider->init(std::string(KTR_BUILD_DIR) + "\\TTF2");
}

// Standard output carries the tool's messages; a fuzz run has no use for them.
inline void silenceOutput()
{
    static nullbuf sink;
    std::cout.rdbuf(&sink);
}

// An input stream over the fuzz data. The read of an old date format does not stop at the end of its input,
// by design; after many reads past the end the stream throws, so that such an input ends, and says so.
class GuardedInput : public std::streambuf {
public:
    GuardedInput(const uint8_t* data, size_t size)
    {
        char* begin = const_cast<char*>(reinterpret_cast<const char*>(data));
        setg(begin, begin, begin + size);
    }
    bool ranOn() const { return endReads > limit; }

protected:
    int_type underflow() override
    {
        if (++endReads > limit)
            throw std::runtime_error("the input was read on past its end");
        return traits_type::eof();
    }

private:
    static constexpr size_t limit = 100000;
    size_t endReads = 0;
};

// Parses the bytes behind ESC F as the renderer does, on the raster of KTA1 unless told, and saves the result
// trimmed. Returns false for an input whose read runs on past its end.
inline bool parseFormat(const uint8_t* data, size_t size, const PrinterModel& printer = printerTable[0])
{
    GuardedInput buffer(data, size);
    std::istream in(&buffer);
    Image image(printer.width, printer.height);
    KT_FMT::KT_Format format(nullptr, &image, nullptr);
    try {
        format.parse(in, nullptr, 0);
        image.saveTrimmed((scratch() / "format.bmp").string());
    } catch (...) {
    }
    return !buffer.ranOn();
}

}  // namespace fuzz
