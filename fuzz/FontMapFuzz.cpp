// fontmap.ini in both its forms, over a font directory that holds two of the default fonts.
#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "fonts/FontProvider.h"
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz::silenceOutput();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::filesystem::path dir = fuzz::scratch() / "fonts";
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    const std::filesystem::path built = std::string(KTR_BUILD_DIR) + "\\TTF2";
    for (const char* name : {"arial_2.ttf", "ocr-b_2.ttf"})
        std::filesystem::create_symlink(std::filesystem::canonical(built / name), dir / name);
    fuzz::writeScratch("fonts/fontmap.ini", data, size);
    FontProvider provider;
    try {
        provider.init(dir.string());
        provider.listFonts();
    } catch (...) {
    }
    return 0;
}
