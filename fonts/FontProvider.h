#pragma once
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

// Maps the font numbers of text records to font files in one directory, the font path, and keeps
// the mapping in the file fontmap.ini there.
class FontProvider {
public:
    static constexpr int32_t FONT_COUNT = 50;
    // A slot holds a name of at most 14 characters and its terminating zero.
    static constexpr size_t SLOT_SIZE = 15;
    static constexpr size_t PATH_SIZE = 256;

    // Reads, converts or generates the map of the directory `path`, creating the directory if need be.
    void init(const std::string& path);

    bool isMapped(int32_t number) const;
    std::string getFontFile(int32_t number) const;
    // The directory, always ending in the platform's path separator.
    std::string getFontPath() const;
    void addFont(int32_t number, const std::string& name);
    void removeFont(int32_t number);
    void resetFonts();
    void installFont(std::istream& stream);
    std::string listFonts() const;
    // The numbers that the last file checks dropped because their files could not be opened.
    const std::vector<int32_t>& getDamagedFonts() const { return damaged_fonts; }

private:
    bool readMap();
    void writeMap() const;
    void checkFiles();
    bool convertOldMap();
    void readOldRecords(std::istream& in);
    void setDefaults();
    void clearSlots();
    char* slot(int32_t number) { return reinterpret_cast<char*>(&table) + number * SLOT_SIZE; }
    const char* slot(int32_t number) const { return reinterpret_cast<const char*>(&table) + number * SLOT_SIZE; }
    std::string mapFile() const;
    bool fileOpens(const std::string& name) const;

    // The path lies directly behind the last slot: the old map conversion accepts number 50 and
    // writes that name over the start of the path.
    struct Table {
        char fontFiles[FONT_COUNT][SLOT_SIZE];
        char fontPath[PATH_SIZE];
    };
    static_assert(sizeof(Table) == FONT_COUNT * SLOT_SIZE + PATH_SIZE);
    Table table{};
    std::vector<int32_t> damaged_fonts;
};

// The one provider of the process; the driver installs it before any format is read.
extern std::unique_ptr<FontProvider> fontProvider;
