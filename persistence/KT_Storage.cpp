#include "persistence/KT_Storage.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "autocode/DateClock.h"
#include "drawables/Drawable.h"
#include "errors/KT_Error.h"
#include "format/TestFormats.h"
#include "graphics/Image.h"
#include "persistence/ForkingStreamBuf.h"
#include "persistence/PrintRegions.h"
#include "persistence/PropertyText.h"
#include "persistence/SimpleFS.h"

namespace KT_FMT {

namespace fs = std::filesystem;
using KT_ERROR::text;

namespace {

constexpr const char* noFormat = "No Format!";
constexpr const char* propertyFile = "property.txt";
constexpr const char* formatFile = "format.esc";

// The whole file, or nothing if it can't be opened; a directory of the name counts as no file.
bool readWhole(const std::string& path, std::string& out)
{
    std::ifstream in(path, std::ios::binary);
    if (!in.is_open() || fs::is_directory(path))
        return false;
    out.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

std::string readProperties(const std::string& path)
{
    std::string properties;
    if (!readWhole(path, properties))
        throw KT_ERROR::kt_exception(text("Error opening file ", path, " for reading \r\n"));
    return properties;
}

void writeProperties(const std::string& path, const std::string& properties)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out.is_open())
        throw KT_ERROR::kt_exception(text("Error opening file ", path, " for writing \r\n"));
    out << properties;
}

std::ofstream openFormatFile(const std::string& path)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file.is_open())
        throw KT_ERROR::internal_autocode_error(text("could not open file ", path, " for writing"));
    return file;
}

}  // namespace

KT_Storage::KT_Storage(std::string basePath, SimpleFS* simpleFs, uint32_t maxSlot, uint32_t currentSlot,
                       uint32_t formatLength, bool isVolatile, Image* image, Image* background)
    : basePath(std::move(basePath)),
      simpleFs(simpleFs),
      maxSlot(maxSlot),
      currentSlot(currentSlot),
      volatileMode(isVolatile),
      image(image),
      format(simpleFs, image, background)
{
    setFormatLength(formatLength);
    fs::create_directories(this->basePath);
    // A store made anew knows none of the blocks that old property files name.
    if (simpleFs != nullptr && simpleFs->isFreshlyFormatted())
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(this->basePath))
            if (entry.is_regular_file() && entry.path().filename() == propertyFile)
                fs::remove(entry.path());
}

std::string KT_Storage::buildPath(uint32_t slot, const std::string& name) const
{
    if (slot > maxSlot)
        throw KT_ERROR::internal_autocode_error(text("KT_Storage::buildPath: requested path for illegal slot: ", slot));
    char number[16];
    std::snprintf(number, sizeof number, "%03u", slot);
    return basePath + number + "/" + name;
}

void KT_Storage::setHysteresisScale(uint32_t value) { format.setHysteresisScale(value); }

uint32_t KT_Storage::getHysteresisScale() { return format.getHysteresisScale(); }

// The measured picture goes to the base directory, as the storage is the only place a host has given.
void KT_Storage::measurePaint(uint32_t mode, uint32_t count) { format.measurePaint(mode, count, basePath + "measure.bmp"); }

void KT_Storage::getFormatName(std::string& out) { out = format.getName(); }

uint32_t KT_Storage::getCurrentSlot() { return volatileMode ? 0 : currentSlot; }

uint32_t KT_Storage::getMaxSlot() { return volatileMode ? 0 : maxSlot; }

void KT_Storage::getSlotName(std::string& out, uint32_t slot)
{
    if (volatileMode) {
        out = slot == 0 ? format.getName() : noFormat;
        return;
    }
    if (slot > maxSlot || isSlotEmpty(slot)) {
        out = noFormat;
        return;
    }
    std::string properties;
    readWhole(buildPath(slot, propertyFile), properties);
    const std::string name = getPropertyValue(properties, "fmtName");
    out = name.empty() ? "DAMAGED   " : (name + std::string(10, ' ')).substr(0, 10);
}

void KT_Storage::clearFormat()
{
    PrintRegions::instance().clear();
    format.clear();
    formatLoaded = false;
}

void KT_Storage::eraseCurrent()
{
    clearFormat();
    if (testFormat) {
        testFormat = false;
        load(getCurrentSlot());
        return;
    }
    if (!volatileMode && !isSlotEmpty(currentSlot)) {
        freePersistentBlocks(currentSlot);
        fs::remove_all(buildPath(currentSlot, ""));
    }
}

void KT_Storage::eraseSlot(uint32_t slot)
{
    if (volatileMode)
        return;
    if (slot == currentSlot) {
        eraseCurrent();
        return;
    }
    if (!isSlotEmpty(slot)) {
        freePersistentBlocks(slot);
        fs::remove_all(buildPath(slot, ""));
    }
}

void KT_Storage::eraseAll()
{
    formatLoaded = false;
    format.clear();
    fs::remove_all(basePath);
    fs::create_directories(basePath);
    if (simpleFs != nullptr)
        simpleFs->format();
}

void KT_Storage::load(uint32_t slot)
{
    if (volatileMode) {
        if (slot != 0)
            throw KT_ERROR::format_error(text("Tried to load a format in slot: ", slot,
                                              ". Only slot 0 is available in volatile mode."));
        return;
    }
    testFormat = false;
    currentSlot = slot;
    clearFormat();
    if (isSlotEmpty(slot))
        return;
    try {
        const std::string path = buildPath(slot, formatFile);
        std::ifstream file(path, std::ios::binary);
        if (!file.is_open())
            throw KT_ERROR::internal_error(text("could not open file ", path, " for reading"));
        const std::string propertyPath = buildPath(slot, propertyFile);
        std::string properties;
        const bool known = readWhole(propertyPath, properties);
        std::stringstream addresses;
        if (known) {
            addresses.str(getPropertyValue(properties, "sram Addr"));
            prev_offset = static_cast<int32_t>(std::strtol(getPropertyValue(properties, "1.Line").c_str(), nullptr, 10));
        }
        // The stored offset is not applied: the drawables stay where the last setXOffset put them.
        file.ignore(2);
        format.parse(file, &addresses, known ? 2 : 1);
        if (known) {
            readPrintRegions();
        } else {
            computePrevOffset();
            std::string fresh;
            setPropertyValue(fresh, "fmtName", format.getName());
            setPropertyValue(fresh, "sram Addr", addresses.str());
            setPropertyValue(fresh, "1.Line", std::to_string(prev_offset));
            setPropertyValue(fresh, "imgHorOffset", "0");
            setPropertyValue(fresh, "print coord", "");
            writeProperties(propertyPath, fresh);
        }
    } catch (...) {
        format.clear();
        throw;
    }
    formatLoaded = true;
}

// Pairs of numbers between semicolons, each pair with both above 0 a region. Regions outside the used rows
// are kept as they are: a check of them would change nothing.
void KT_Storage::readPrintRegions()
{
    PrintRegions& regions = PrintRegions::instance();
    regions.clear();
    std::string properties;
    readWhole(buildPath(currentSlot, propertyFile), properties);
    std::vector<uint32_t> numbers;
    std::istringstream coordinates(getPropertyValue(properties, "print coord"));
    for (std::string number; std::getline(coordinates, number, ';');)
        numbers.push_back(static_cast<uint32_t>(std::strtoul(number.c_str(), nullptr, 10)));
    for (size_t i = 0; i + 1 < numbers.size(); i += 2)
        if (numbers[i] > 0 && numbers[i + 1] > 0)
            regions.add(numbers[i], numbers[i + 1]);
}

bool KT_Storage::isSlotEmpty(uint32_t slot) { return !fs::exists(buildPath(slot, "")); }

bool KT_Storage::hasFormat() { return formatLoaded; }

void KT_Storage::enterVolatile()
{
    if (volatileMode)
        return;
    singleSlot = false;
    format.clear();
    formatLoaded = false;
    volatileMode = true;
    testFormat = false;
}

void KT_Storage::leaveVolatile()
{
    if (!volatileMode)
        return;
    volatileMode = false;
    testFormat = false;
    load(currentSlot);
}

bool KT_Storage::isVolatile() { return volatileMode; }

bool KT_Storage::isTestFormat() { return testFormat; }

KT_INTERFACE::FormatInterface& KT_Storage::getFormat() { return format; }

void KT_Storage::store(std::string& out, std::istream& stream)
{
    clearFormat();
    if (volatileMode) {
        parseOrClear(stream, nullptr, 0, out);
        computePrevOffset();
        formatLoaded = true;
        return;
    }
    if (singleSlot && currentSlot != 0)
        currentSlot = 0;
    else
        eraseCurrent();
    testFormat = false;
    fs::create_directories(buildPath(currentSlot, ""));
    std::ofstream file = openFormatFile(buildPath(currentSlot, formatFile));
    file << "\x1b" "F";
    // Everything the parser reads goes into the slot's file as well.
    ForkingStreamBuf fork;
    fork.setSource(stream.rdbuf());
    fork.setTarget(file.rdbuf());
    std::istream forked(&fork);
    std::stringstream addresses;
    parseOrClear(forked, &addresses, 1, out);
    computePrevOffset();
    std::string properties;
    setPropertyValue(properties, "fmtName", format.getName());
    setPropertyValue(properties, "1.Line", std::to_string(prev_offset));
    setPropertyValue(properties, "sram Addr", addresses.str());
    writeProperties(buildPath(currentSlot, propertyFile), properties);
    formatLoaded = true;
}

// A parse that fails leaves no half-read format behind.
void KT_Storage::parseOrClear(std::istream& stream, std::iostream* addresses, unsigned mode, std::string& out)
{
    try {
        out = format.parse(stream, addresses, mode);
    } catch (...) {
        format.clear();
        throw;
    }
}

bool KT_Storage::storeRaw(std::istream& stream, uint32_t slot, uint32_t length)
{
    if (volatileMode)
        return false;
    if (singleSlot)
        slot = 0;
    eraseSlot(slot);
    fs::create_directories(buildPath(slot, ""));
    std::ofstream file = openFormatFile(buildPath(slot, formatFile));
    std::copy_n(std::istreambuf_iterator<char>(stream), length, std::ostreambuf_iterator<char>(file));
    return true;
}

uint32_t KT_Storage::getFormatFileSize(uint32_t slot)
{
    std::error_code error;
    const auto size = isSlotEmpty(slot) ? 0 : fs::file_size(buildPath(slot, formatFile), error);
    return error ? 0 : static_cast<uint32_t>(size);
}

// The addresses that a slot's property file names, four bytes each; none without the file.
std::vector<uint32_t> KT_Storage::persistentAddresses(uint32_t slot)
{
    std::string properties;
    if (isSlotEmpty(slot) || !readWhole(buildPath(slot, propertyFile), properties))
        return {};
    const std::string bytes = getPropertyValue(properties, "sram Addr");
    std::vector<uint32_t> addresses(bytes.size() / 4);
    std::copy_n(bytes.data(), addresses.size() * 4, reinterpret_cast<char*>(addresses.data()));
    return addresses;
}

// A damaged property file may name addresses that the store doesn't know at all.
bool KT_Storage::knows(uint32_t address)
{
    try {
        return simpleFs->isRoot(address);
    } catch (const KT_ERROR::SFS_Exception&) {
        return false;
    }
}

uint32_t KT_Storage::getPersistentSize(uint32_t slot)
{
    uint32_t size = 0;
    for (const uint32_t address : persistentAddresses(slot))
        if (knows(address))
            size += simpleFs->fileSize(address);
    return size;
}

uint32_t KT_Storage::getPersistentSizeCurrent()
{
    return volatileMode || testFormat ? 0 : getPersistentSize(currentSlot);
}

uint32_t KT_Storage::getFormatFileSizeCurrent()
{
    return volatileMode || testFormat ? 0 : getFormatFileSize(currentSlot);
}

void KT_Storage::freePersistentBlocks(uint32_t slot)
{
    for (const uint32_t address : persistentAddresses(slot))
        if (knows(address))
            simpleFs->remove(address);
}

void KT_Storage::readFormatFile(std::string& out, uint32_t slot)
{
    if (isSlotEmpty(slot))
        return;
    const std::string path = buildPath(slot, formatFile);
    if (!readWhole(path, out))
        throw KT_ERROR::kt_exception(text("error opening file ", path));
}

void KT_Storage::computePrevOffset()
{
    prev_offset = image->getLastUsedRow() == 0 ? -1 : std::max(image->getFirstUsedRow() - 3, 0);
}

int32_t KT_Storage::getFirstPrintRow()
{
    if (prev_offset >= 0)
        return format.isEmpty() ? 0 : prev_offset;
    return std::max(image->getFirstUsedRow() - 3, 0);
}

void KT_Storage::setFormatLength(uint32_t dots) { testFormatLength = dots; }

void KT_Storage::loadTestFormat(uint32_t number, const std::vector<std::string>& strings,
                                const std::vector<int32_t>& integers)
{
    clearFormat();
    testFormat = false;
    prev_offset = 0;
    format.buildTestFormat(number, strings, integers);
    testFormat = true;
    formatLoaded = true;
}

void KT_Storage::setSingleSlot(bool on)
{
    singleSlot = on;
    load(currentSlot);
}

void KT_Storage::getClock(int64_t& out) { out = KT_AC::now; }

void KT_Storage::setDate(uint32_t day, uint32_t month, uint32_t year) { KT_AC::setDate(day, month, year); }

void KT_Storage::setTime(uint32_t hour, uint32_t minute, uint32_t second) { KT_AC::setTime(hour, minute, second); }

void KT_Storage::setFirstWeekday(int32_t day) { KT_AC::setFirstWeekday(day); }

int32_t KT_Storage::getFirstWeekday() { return KT_AC::getFirstWeekday(); }

void KT_Storage::setDateLanguage(int32_t value) { KT_AC::setLanguage(value); }

std::string KT_Storage::propertyPath(bool inSlot) const
{
    return inSlot ? buildPath(currentSlot, propertyFile) : "user.txt";
}

void KT_Storage::setProperty(const std::string& key, const std::string& value, bool inSlot)
{
    const std::string path = propertyPath(inSlot);
    std::string properties = readProperties(path);
    setPropertyValue(properties, key, value);
    writeProperties(path, properties);
}

void KT_Storage::getProperty(std::string& out, const std::string& key, bool inSlot)
{
    out = getPropertyValue(readProperties(propertyPath(inSlot)), key);
}

bool KT_Storage::usedRange(bool reversed, int32_t& a, int32_t& b)
{
    const int32_t first = getFirstPrintRow(), last = image->getLastUsedRow();
    if (last < first)
        return false;
    a = first;
    b = last;
    if (reversed) {
        a = std::min(static_cast<int32_t>(image->getHeight()) - 1, last + (testFormat ? 0 : 3));
        b = image->getFirstUsedRow();
    }
    return true;
}

uint32_t KT_Storage::getHistogram(std::vector<uint16_t>& out, bool reversed)
{
    int32_t a = 0, b = 0;
    return usedRange(reversed, a, b) ? format.histogram(out, a, b) : 0;
}

void KT_Storage::getHysteresis(std::vector<int32_t>& out, bool reversed)
{
    hysteresisData.clear();
    // Every fourth value of a band's profile, which must give one value for each of its rows.
    const auto appendBand = [&](int32_t a, int32_t b) {
        hysteresisData.push_back(static_cast<uint32_t>(out.size()));
        std::vector<int32_t> values;
        format.hysteresisProfile(values, a, b);
        if (values.size() != static_cast<size_t>(std::abs(b - a)) + 1)
            throw KT_ERROR::kt_exception("hysteresis length doesn´t match the format length!");
        for (size_t i = 0; i < values.size(); i += 4)
            out.push_back(values[i]);
    };
    PrintRegions& regions = PrintRegions::instance();
    if (!regions.isEmpty()) {
        const uint32_t count = regions.count() / 2;
        for (uint32_t k = 0; k < count; ++k) {
            const uint32_t region = reversed ? count - 1 - k : k;
            const auto low = static_cast<int32_t>(regions.getLimit(2 * region));
            const auto high = static_cast<int32_t>(regions.getLimit(2 * region + 1));
            reversed ? appendBand(high, low) : appendBand(low, high);
        }
        return;
    }
    int32_t a = 0, b = 0;
    if (usedRange(reversed, a, b))
        appendBand(a, b);
}

bool KT_Storage::setXOffset(int32_t offset)
{
    if (testFormat || !formatLoaded)
        return false;
    if (volatileMode)
        currentSlot = 0;
    KT_AC::drawableXOffset = offset;
    load(currentSlot);
    setProperty("imgHorOffset", std::to_string(offset), true);
    return formatLoaded;
}

void KT_Storage::getXOffset(std::string& out)
{
    if (testFormat || !formatLoaded) {
        out = "0";
        return;
    }
    getProperty(out, "imgHorOffset", true);
}

}  // namespace KT_FMT
