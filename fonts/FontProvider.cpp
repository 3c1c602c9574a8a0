#include "fonts/FontProvider.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <istream>
#include <limits>

#include "errors/KT_Error.h"
#include "fonts/DefaultFontTable.h"
#include "persistence/nullbuf.h"

using KT_ERROR::text;

std::unique_ptr<FontProvider> fontProvider;

namespace {

constexpr char pathSeparator = '/';
constexpr const char* mapFileName = "fontmap.ini";
// Ends names and records in the old map form and in font lists.
constexpr char mark = '\xFF';
constexpr int markCode = 0xFF;

// Fills a slot with a name, cut to what the slot holds, and zeros behind it.
void copyName(char* slot, const std::string& name)
{
    std::memset(slot, 0, FontProvider::SLOT_SIZE);
    std::memcpy(slot, name.data(), std::min(name.size(), FontProvider::SLOT_SIZE - 1));
}

// Looks at the buffer itself, so that reaching the end here is a clean end and no fault.
void skipMarks(std::istream& in)
{
    while (in.rdbuf()->sgetc() == markCode)
        in.rdbuf()->sbumpc();
}

uint32_t readLittleEndian32(std::istream& in)
{
    uint32_t value = 0;
    for (int shift = 0; shift < 32; shift += 8)
        value |= static_cast<uint32_t>(static_cast<unsigned char>(in.get())) << shift;
    return value;
}

bool inRange(int32_t number)
{
    return number >= 0 && number < FontProvider::FONT_COUNT;
}

}  // namespace

void FontProvider::init(const std::string& path)
{
    std::string copy = path.substr(0, PATH_SIZE - 1);
    if (copy.empty() || copy.back() != pathSeparator)
        copy = copy.substr(0, PATH_SIZE - 2) + pathSeparator;
    clearSlots();
    std::memset(table.fontPath, 0, PATH_SIZE);
    std::memcpy(table.fontPath, copy.data(), copy.size());

    std::error_code error;
    if (!std::filesystem::is_directory(copy, error) && !std::filesystem::create_directory(copy, error))
        throw KT_ERROR::resource_error(text("could not create directory ", copy));

    // The files are checked after every read that opened the map, also one that failed halfway: what it read
    // so far is checked, and a missing font is removed from the map before the old form is tried on it.
    if (fileOpens(mapFileName)) {
        const bool read = readMap();
        checkFiles();
        if (read)
            return;
    }
    if (!convertOldMap()) {
        debugStream << "No font map file found, generating default file\r\n";
        setDefaults();
    }
    writeMap();
    checkFiles();
}

bool FontProvider::readMap()
{
    clearSlots();
    std::ifstream in(mapFile(), std::ios::binary);
    if (!in.is_open()) {
        debugStream << "Can't open font map file for reading fontmap.ini";
        return false;
    }
    while (in.peek() != std::char_traits<char>::eof()) {
        int32_t number = 0;
        in >> number;
        if (!inRange(number)) {
            debugStream << "fontmap.ini" << ", bad font number";
            return false;
        }
        char separator = 0;
        in >> separator;
        if (separator != ';') {
            debugStream << "fontmap.ini" << ", bad format";
            return false;
        }
        // A carriage return stays in the name on purpose: such a font is not found and dropped.
        std::string name;
        std::getline(in, name);
        copyName(slot(number), name);
    }
    return true;
}

void FontProvider::writeMap() const
{
    std::ofstream out(mapFile(), std::ios::binary | std::ios::trunc);
    if (!out.is_open()) {
        debugStream << "Can't open font map file for writing fontmap.ini";
        return;
    }
    for (int32_t number = 0; number < FONT_COUNT; ++number)
        if (isMapped(number))
            out << number << ';' << slot(number) << '\n';
}

void FontProvider::checkFiles()
{
    for (int32_t number = 0; number < FONT_COUNT; ++number) {
        if (!isMapped(number) || fileOpens(slot(number)))
            continue;
        debugStream << "Error: Font not found: " << slot(number) << "\r\n";
        damaged_fonts.push_back(number);
        removeFont(number);
    }
}

bool FontProvider::convertOldMap()
{
    std::ifstream in;
    in.exceptions(std::ios::eofbit);
    try {
        in.open(mapFile(), std::ios::binary);
        debugStream << "trying to convert old font map\r\n";
        if (!in.is_open())
            return false;
        debugStream << "Converting old c:\\ttf\\font.ini file:";
        clearSlots();
        readOldRecords(in);
    } catch (const std::ios_base::failure&) {
        debugStream << "Caught exception while parsing old file format...\r\n";
        return false;
    }
    return true;
}

// Records of the old form: number + '0', the name, 0xFF, the font name, 0xFF, more 0xFF.
// The end of the file within a record raises, through the stream's exception mask.
void FontProvider::readOldRecords(std::istream& in)
{
    while (in.rdbuf()->sgetc() != std::char_traits<char>::eof()) {
        char code = 0;
        in >> code;
        const auto number = static_cast<uint8_t>(code - '0');
        skipMarks(in);
        // 50 passes on purpose and lands on the start of the path behind the table.
        if (number > FONT_COUNT)
            return;
        char* target = slot(number);
        for (size_t i = 0; i < SLOT_SIZE; ++i) {
            char c = 0;
            in >> c;
            if (c == mark) {
                target[i] = 0;
                break;
            }
            target[i] = c;
        }
        if (target[0] != 0) {
            debugStream << "  " << static_cast<char>(number) << " " << std::string(target, strnlen(target, SLOT_SIZE));
            target[SLOT_SIZE - 1] = 0;
        }
        in.ignore(std::numeric_limits<std::streamsize>::max(), markCode);
        skipMarks(in);
    }
}

void FontProvider::setDefaults()
{
    const bool allNew = std::all_of(defaultFontTable.begin(), defaultFontTable.end(),
                                    [this](const DefaultFont& font) { return fileOpens(font.newFile); });
    debugStream << (allNew ? "resetting to new font files\r\n" : "resetting to old font files\r\n");
    for (size_t number = 0; number < defaultFontTable.size(); ++number) {
        const char* name = allNew ? defaultFontTable[number].newFile : defaultFontTable[number].oldFile;
        if (name != nullptr)
            copyName(slot(static_cast<int32_t>(number)), name);
    }
}

void FontProvider::resetFonts()
{
    clearSlots();
    setDefaults();
    writeMap();
    checkFiles();
}

bool FontProvider::isMapped(int32_t number) const
{
    if (!inRange(number)) {
        debugStream << "FontProvider::isMapped(): bad font number: " << number;
        return false;
    }
    return slot(number)[0] != 0;
}

std::string FontProvider::getFontFile(int32_t number) const
{
    if (!inRange(number))
        throw KT_ERROR::format_error(text("font not installed: ", number));
    return slot(number);
}

std::string FontProvider::getFontPath() const
{
    return table.fontPath;
}

void FontProvider::addFont(int32_t number, const std::string& name)
{
    if (!inRange(number)) {
        debugStream << "FontProvider::addFont(): bad font number: " << number;
        return;
    }
    if (name.size() >= SLOT_SIZE) {
        debugStream << "FontProvider::addFont(): bad file name: " << name;
        return;
    }
    copyName(slot(number), name);
    writeMap();
}

void FontProvider::removeFont(int32_t number)
{
    if (!inRange(number)) {
        debugStream << "FontProvider::removeFont(): bad font number: " << number;
        return;
    }
    if (slot(number)[0] == 0) {
        debugStream << "FontProvider::removeFont(): mapping already empty; number " << number;
        return;
    }
    std::remove((getFontPath() + slot(number)).c_str());
    copyName(slot(number), "");
    writeMap();
}

void FontProvider::installFont(std::istream& stream)
{
    const int32_t number = stream.get() - '0';
    std::string fileName;
    std::string fontName;
    std::getline(stream, fileName, mark);
    std::getline(stream, fontName, mark);
    uint32_t remaining = readLittleEndian32(stream);
    readLittleEndian32(stream);

    if (isMapped(number))
        removeFont(number);
    std::ofstream out(getFontPath() + fileName, std::ios::binary | std::ios::trunc);
    if (!out.is_open())
        throw KT_ERROR::internal_autocode_error(text("could not open font file ", fileName, " for writing"));
    std::array<char, 4096> buffer;
    while (remaining > 0) {
        stream.read(buffer.data(), std::min<std::streamsize>(remaining, buffer.size()));
        const std::streamsize got = stream.gcount();
        if (got == 0)
            break;
        out.write(buffer.data(), got);
        remaining -= static_cast<uint32_t>(got);
    }
    out.close();
    addFont(number, fileName);
}

std::string FontProvider::listFonts() const
{
    std::string list;
    for (int32_t number = 0; number < FONT_COUNT; ++number) {
        if (!isMapped(number))
            continue;
        const std::string name = slot(number);
        list += static_cast<char>(number + '0');
        list += name;
        list += mark;
        list += name.substr(0, name.size() >= 4 ? name.size() - 4 : 0);
        list += mark;
    }
    list += mark;
    return list;
}

void FontProvider::clearSlots()
{
    std::memset(table.fontFiles, 0, sizeof table.fontFiles);
}

std::string FontProvider::mapFile() const
{
    return getFontPath() + mapFileName;
}

bool FontProvider::fileOpens(const std::string& name) const
{
    return std::ifstream(getFontPath() + name, std::ios::binary).is_open();
}
