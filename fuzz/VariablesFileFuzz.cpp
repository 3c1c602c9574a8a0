// A variables file read and assigned to a format with prompted variables and counters, then listed.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "cli/VariablesFile.h"
#include "format/KT_Format.h"
#include "fuzz/FuzzSupport.h"
#include "graphics/Image.h"

namespace {

// The format of the end-to-end variables case: prompted variables and counters of digits and of letters.
std::string format;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz::silenceOutput();
    fuzz::installFonts();
    std::ifstream file(std::string(KTR_SOURCE_DIR) + "/tests/cli/cases/variables.esc", std::ios::binary);
    format.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    format.erase(0, format.find("\x1b" "F") + 2);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = fuzz::writeScratch("vars.txt", data, size);
    Image image(640, 608);
    KT_FMT::KT_Format target(nullptr, &image, nullptr);
    std::istringstream in(format);
    try {
        target.parse(in, nullptr, 0);
        if (const auto pairs = loadVariablesFile(path))
            for (const auto& [key, value] : *pairs)
                assignVariable(true, target, key, value);
        listVariables(target, (fuzz::scratch() / "list.txt").string());
    } catch (...) {
    }
    return 0;
}
