// The whole renderer in this process: arguments, fonts, the scan for ESC F, the parse, the listing and the
// save. A file on which the renderer never ends, by design, is left out: one whose scan finds neither ESC F
// nor a lower-case e, and one whose old date format runs on past the end.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/PrinterTable.h"
#include "cli/RenderDriver.h"
#include "fuzz/FuzzSupport.h"

namespace {

// Whether the renderer ends on the file: its scan stops at a lower-case e or behind ESC F, and the parse
// that follows ESC F, on the printer's raster, doesn't read on past the end of the file. The raster counts:
// a record that fails on a small one can end the parse before the record that would run on.
bool rendererEnds(const uint8_t* data, size_t size, const PrinterModel& printer)
{
    for (size_t at = 0; at < size;) {
        if (data[at] == 'e')
            return true;
        if (data[at++] == 0x1B && at < size && data[at++] == 'F')
            return fuzz::parseFormat(data + at, size - at, printer);
    }
    return false;
}

}  // namespace

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
    // The first byte picks the printer (KTA1 or KTB1) and the kind of save.
    const PrinterModel& printer = printerTable[(data[0] & 1) != 0 ? 0 : 2];
    if (!rendererEnds(data + 1, size - 1, printer))
        return 0;
    const std::string in = fuzz::writeScratch("in.esc", data + 1, size - 1);
    const std::string dir = fuzz::scratch().string();
    std::vector<std::string> arguments = {"ktr-render", "in=" + in, "out=" + dir + "/out.bmp",
                                          "printer=" + std::string(printer.name),
                                          std::string("trim=") + ((data[0] & 2) != 0 ? "y" : "n"),
                                          "fontpath=" + std::string(KTR_BUILD_DIR) + "\\TTF2",
                                          "showvariables=" + dir + "/list.txt", "VCLot=12", "VIBatch=x"};
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    runRenderer(static_cast<int>(argv.size()), argv.data());
    return 0;
}
