#pragma once
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "fonts/DefaultFontTable.h"
#include "fonts/Font.h"
#include "fonts/FontProvider.h"
#include "persistence/nullbuf.h"

namespace fonttest {

// The same symbols, each but the first written as a sequence, so that no two stand in one run.
inline std::string oneByOne(char symbol, uint32_t count)
{
    char code[16];
    std::snprintf(code, sizeof code, "\\<UNIC(%x)>", static_cast<unsigned char>(symbol));
    std::string text(1, symbol);
    for (uint32_t i = 1; i < count; ++i)
        text += code;
    return text;
}

// A fresh directory under the system's temporary directory, removed with everything in it.
class TempDir {
public:
    TempDir()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "ktr-fonts-XXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    ~TempDir() { std::filesystem::remove_all(path); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    // The directory as the provider stores it, with the separator behind.
    std::string withSeparator() const { return path + "/"; }
    std::string file(const std::string& name) const { return path + "/" + name; }

    std::string path;
};

// Collects what library code writes to the debug stream while it lives.
class DebugCapture {
public:
    DebugCapture() : previous(debugStream.rdbuf(captured.rdbuf())) {}
    ~DebugCapture() { debugStream.rdbuf(previous); }
    DebugCapture(const DebugCapture&) = delete;
    DebugCapture& operator=(const DebugCapture&) = delete;

    std::string text() const { return captured.str(); }

private:
    std::ostringstream captured;
    std::streambuf* previous;
};

// The directory into which the build links the default fonts.
inline std::string builtFontDirectory()
{
    return std::string(KTR_BUILD_DIR) + "\\TTF2";
}

inline void linkFont(const TempDir& dir, const std::string& builtName, const std::string& name)
{
    std::filesystem::create_symlink(std::filesystem::canonical(builtFontDirectory() + "/" + builtName),
                                    dir.file(name));
}

inline void linkDefaultFonts(const TempDir& dir)
{
    for (const DefaultFont& font : defaultFontTable)
        linkFont(dir, font.newFile, font.newFile);
}

inline void writeFile(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Installs a provider over the seven default fonts as the process's one, with an empty cache.
class FontFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        linkDefaultFonts(dir);
        fontProvider = std::make_unique<FontProvider>();
        fontProvider->init(dir.path);
        processFont.flushCache();
    }
    void TearDown() override
    {
        processFont.flushCache();
        fontProvider.reset();
    }

    TempDir dir;
};

}  // namespace fonttest
