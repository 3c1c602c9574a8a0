#include "cli/RenderDriver.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <iostream>
#include <memory>

#include "cli/PrinterTable.h"
#include "cli/VariablesFile.h"
#include "errors/KT_Error.h"
#include "fonts/FontProvider.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"

namespace {

constexpr const char* defaultFontDirectory = "C:\\Program Files (x86)\\Velmora\\KTR-Render\\Fonts";

bool isOneOf(const std::string& argument, std::initializer_list<const char*> words)
{
    for (const char* word : words)
        if (argument == word)
            return true;
    return false;
}

// Stores a default for an absent key and says so, unless quiet.
void settleDefault(ArgumentMap& arguments, const std::string& key, const std::string& value, bool quiet)
{
    if (arguments.count(key) != 0)
        return;
    arguments[key] = value;
    if (!quiet)
        std::cout << "setting " << key << " to " << value << "\n";
}

// Skips to the byte behind ESC F. A lower-case e is taken for a sign of a broken file;
// the end of the file is not looked for, so a file without ESC F keeps the loop turning.
bool findFormatStart(std::istream& in)
{
    for (;;) {
        if (in.peek() == 'e') {
            std::cout << "\n\nSeems to be an error: if (escStream.peek() == 'e')\n";
            return false;
        }
        if (in.get() == 0x1B && in.get() == 'F')
            return true;
    }
}

}  // namespace

ArgumentMap parseArguments(int argc, char** argv)
{
    ArgumentMap arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const size_t equals = argument.find('=');
        if (equals == std::string::npos)
            continue;
        arguments[argument.substr(0, equals)] = argument.substr(equals + 1);
    }
    return arguments;
}

void printUsage()
{
    std::cout << "Usage:\n"
              << "ktr-render.exe -help\n"
              << "ktr-render.exe in=escape-file [out=bmp-file] [trim=y] [showvariables={y|{Path to variablesfile}}] "
                 "[printer={KTA1|KTA2|..KTD3}] [fontpath=C:\\TTF2] [width=640] [height=608] "
                 "[variablename=variablevalue] [loadvariables={Path to variablesfile}] \n"
              << "\n";
}

void printerDimensions(const std::string& name, int32_t& width, int32_t& height)
{
    for (const PrinterModel& model : printerTable) {
        if (model.name == name) {
            width = model.width;
            height = model.height;
        }
    }
}

bool directoryExists(const std::string& path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string executableDirectory()
{
    std::array<char, 4096> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
    const std::string path(buffer.data(), length > 0 ? static_cast<size_t>(length) : 0);
    const size_t cut = path.find_last_of("\\/");
    return cut == std::string::npos ? std::string() : path.substr(0, cut);
}

namespace {

// A lone -version or -help word answers by itself; with more arguments these words mean nothing.
bool answerLoneWord(int argc, char** argv)
{
    if (argc != 2)
        return false;
    const std::string argument = argv[1];
    if (isOneOf(argument, {"-version", "/version", "--version"})) {
        std::cout << "kt-render\n"
                  << "Build: " << __DATE__ << " - " << __TIME__ << "\n";
        return true;
    }
    if (isOneOf(argument, {"-help", "/help", "--help", "-?"})) {
        printUsage();
        return true;
    }
    return false;
}

// Writes the defaults of the absent reserved keys into the map, in the order the user sees them.
void settleDefaults(ArgumentMap& arguments, bool quiet)
{
    if (arguments.count("fontpath") == 0) {
        const std::string fontPath =
            directoryExists(defaultFontDirectory) ? defaultFontDirectory : executableDirectory() + "\\TTF2";
        settleDefault(arguments, "fontpath", fontPath, quiet);
    }
    if (arguments.count("loadvariables") != 0 && !quiet)
        std::cout << "setting loadvariables to " << 1 << "\n";
    settleDefault(arguments, "printer", "KTD2", quiet);
    settleDefault(arguments, "height", "608", quiet);
    settleDefault(arguments, "width", "640", quiet);
    settleDefault(arguments, "trim", "y", quiet);
}

}  // namespace

int runRenderer(int argc, char** argv)
{
    if (answerLoneWord(argc, argv))
        return 0;
    ArgumentMap arguments = parseArguments(argc, argv);
    if (arguments.count("in") == 0) {
        std::cout << "Error: missing required argument (in=...)\n";
        printUsage();
        return 1;
    }
    const std::string in = arguments["in"];
    const std::string out = arguments.count("out") != 0 ? arguments["out"] : in + ".bmp";
    const bool quiet = arguments.count("showvariables") != 0;
    settleDefaults(arguments, quiet);
    int32_t width = 2560, height = 1216;
    printerDimensions(arguments["printer"], width, height);

    // The provider lives to the end of the process; the map is settled even if the input fails.
    fontProvider = std::make_unique<FontProvider>();
    fontProvider->init(arguments["fontpath"]);

    std::ifstream escStream(in, std::ios::binary);
    // A directory opens here but yields no byte, and the scan would turn for ever; it can't be opened.
    if (!escStream.is_open() || directoryExists(in)) {
        std::cout << "Error: Failed to open file: " << in << "\n";
        return 1;
    }
    if (!quiet) {
        std::cout << "\nFound file: " << in << " (" << width << "x" << height << ")";
        std::cout << "\nFontpath: " << fontProvider->getFontPath();
    }

    Image image(width, height);
    auto format = std::make_shared<KT_FMT::KT_Format>(nullptr, &image, nullptr);
    try {
        if (!findFormatStart(escStream))
            return 1;
        if (!quiet)
            std::cout << "\n\nFound format start sequence...\n"
                      << "\nWriting bitmap to " << out << "\n";
        format->parse(escStream, nullptr, 0);
        if (!applyVariables(arguments, *format, quiet))
            return 1;
    } catch (const KT_ERROR::kt_exception& error) {
        std::cout << error.what() << "\n"
                  << "Error at position: " << static_cast<int64_t>(escStream.tellg()) << "\n";
        return 1;
    } catch (...) {
        std::cout << "Caught unknown exception\n";
        return 1;
    }

    if (arguments["trim"] == "y")
        image.saveTrimmed(out);
    else
        image.saveBitmap(0, 0, width, height, out);
    return 0;
}
