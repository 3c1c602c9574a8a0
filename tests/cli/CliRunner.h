#pragma once
// Runs the built ktr-render on an escape file of tests/cli/cases in a fresh directory,
// and reads back what it printed, returned and wrote.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "graphics/Image.h"

#include "tests/support/PixelCanvas.h"

namespace cli_test {

struct RunResult {
    std::string output;
    std::string errors;
    int exitCode = -1;
    std::filesystem::path dir;
};

// The header fields and the pixels of a one-bit bitmap, top row first.
struct Bitmap {
    uint32_t fileSize = 0;
    int16_t x = 0, y = 0;
    int32_t width = 0, height = 0;
    std::vector<std::vector<int>> pixels;

    int inkCount() const
    {
        int ink = 0;
        for (const auto& row : pixels)
            for (int p : row)
                ink += p;
        return ink;
    }
};

inline std::string readFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline uint32_t little(const std::string& bytes, size_t at, int count)
{
    uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes.at(at + i))) << (8 * i);
    return value;
}

inline Bitmap readBitmap(const std::filesystem::path& path)
{
    const std::string bytes = readFile(path);
    Bitmap bitmap;
    bitmap.fileSize = little(bytes, 2, 4);
    bitmap.x = static_cast<int16_t>(little(bytes, 6, 2));
    bitmap.y = static_cast<int16_t>(little(bytes, 8, 2));
    bitmap.width = static_cast<int32_t>(little(bytes, 18, 4));
    bitmap.height = static_cast<int32_t>(little(bytes, 22, 4));
    const size_t rowBytes = static_cast<size_t>(bitmap.width) / 8;
    bitmap.pixels.assign(static_cast<size_t>(bitmap.height), std::vector<int>(static_cast<size_t>(bitmap.width)));
    for (int32_t r = 0; r < bitmap.height; ++r) {
        const size_t rowStart = 62 + static_cast<size_t>(bitmap.height - 1 - r) * rowBytes;
        for (int32_t x = 0; x < bitmap.width; ++x) {
            const auto byte = static_cast<unsigned char>(bytes.at(rowStart + static_cast<size_t>(x) / 8));
            bitmap.pixels[r][x] = (byte >> (7 - x % 8)) & 1;
        }
    }
    return bitmap;
}

inline PixelCanvas canvasOf(const Bitmap& bitmap)
{
    PixelCanvas canvas(bitmap.width, bitmap.height);
    for (int32_t y = 0; y < bitmap.height; ++y)
        for (int32_t x = 0; x < bitmap.width; ++x)
            canvas.at(x, y) = bitmap.pixels[y][x];
    return canvas;
}

inline std::string shellQuote(const std::string& word)
{
    std::string quoted = "'";
    for (char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// Copies the case file (if any) under `inName` into a new directory and runs the tool there, with the
// variables of `environment` ("NAME=value ...") added to its own.
inline RunResult runCase(const std::string& caseFile, const std::string& inName, const std::vector<std::string>& args,
                         int timeoutSeconds = 20, const std::string& environment = "")
{
    static int serial = 0;
    RunResult result;
    result.dir = std::filesystem::temp_directory_path() /
                 ("ktr_cli_" + std::to_string(::getpid()) + "_" + std::to_string(serial++));
    std::filesystem::remove_all(result.dir);
    std::filesystem::create_directories(result.dir);
    if (!caseFile.empty())
        std::filesystem::copy_file(std::filesystem::path(KTR_CLI_CASES) / caseFile, result.dir / inName);
    std::string command = "cd " + shellQuote(result.dir.string()) + " && " + environment + " timeout " +
                          std::to_string(timeoutSeconds) + " " + shellQuote(KTR_RENDER_BINARY);
    for (const std::string& arg : args)
        command += " " + shellQuote(arg);
    command += " > stdout.txt 2> stderr.txt";
    const int status = std::system(command.c_str());
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.output = readFile(result.dir / "stdout.txt");
    result.errors = readFile(result.dir / "stderr.txt");
    return result;
}

inline std::string executableDirectory()
{
    return std::filesystem::path(KTR_RENDER_BINARY).parent_path().string();
}

// What a normal run prints before parsing when every reserved key but `in` takes its default.
inline std::string defaultRunOutput(const std::string& in, const std::string& size = "2560x6400")
{
    const std::string fontPath = executableDirectory() + "\\TTF2";
    return "setting fontpath to " + fontPath +
           "\n"
           "setting printer to KTD2\n"
           "setting height to 608\n"
           "setting width to 640\n"
           "setting trim to y\n"
           "\nFound file: " +
           in + " (" + size + ")" + "\nFontpath: " + fontPath + "/" +
           "\n\nFound format start sequence...\n"
           "\nWriting bitmap to " +
           in + ".bmp\n";
}

// What a run on KTA1 with the default fonts prints before its "Writing bitmap" line.
inline std::string kta1Header()
{
    const std::string fontPath = executableDirectory() + "\\TTF2";
    return "setting fontpath to " + fontPath + "\nsetting height to 608\nsetting width to 640\n\nFound file: in.esc " +
           "(640x608)\nFontpath: " + fontPath + "/\n\nFound format start sequence...\n";
}

// The saved bitmap back at its place on a raster of the printer's size.
inline std::unique_ptr<Image> rasterOf(const RunResult& run, int32_t width, int32_t height,
                                       const std::string& bitmap = "in.esc.bmp")
{
    auto image = std::make_unique<Image>(width, height);
    image->loadBitmap(0, 0, (run.dir / bitmap).string(), true);
    return image;
}

}  // namespace cli_test
