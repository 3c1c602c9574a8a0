#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "format/KT_Format.h"
#include "persistence/StorageInterface.h"

class Image;
class SimpleFS;

namespace KT_FMT {

// The store of print formats: numbered slots on disk, each a directory with the escape file and its
// properties, and the one format that is loaded. Persistent counters and variables live in the SimpleFS.
class KT_Storage : public KT_INTERFACE::StorageInterface {
public:
    KT_Storage(std::string basePath, SimpleFS* simpleFs, uint32_t maxSlot, uint32_t currentSlot,
               uint32_t formatLength, bool isVolatile, Image* image, Image* background);

    void setHysteresisScale(uint32_t value) override;
    uint32_t getHysteresisScale() override;
    void measurePaint(uint32_t mode, uint32_t count) override;
    void getFormatName(std::string& out) override;
    uint32_t getCurrentSlot() override;
    uint32_t getMaxSlot() override;
    void getSlotName(std::string& out, uint32_t slot) override;
    void eraseCurrent() override;
    void eraseSlot(uint32_t slot) override;
    void eraseAll() override;
    void load(uint32_t slot) override;
    bool isSlotEmpty(uint32_t slot) override;
    bool hasFormat() override;
    void enterVolatile() override;
    void leaveVolatile() override;
    bool isVolatile() override;
    bool isTestFormat() override;
    KT_INTERFACE::FormatInterface& getFormat() override;
    void store(std::string& out, std::istream& stream) override;
    bool storeRaw(std::istream& stream, uint32_t slot, uint32_t length) override;
    uint32_t getFormatFileSize(uint32_t slot) override;
    uint32_t getPersistentSize(uint32_t slot) override;
    uint32_t getPersistentSizeCurrent() override;
    uint32_t getFormatFileSizeCurrent() override;
    void readFormatFile(std::string& out, uint32_t slot) override;
    void setFormatLength(uint32_t dots) override;
    int32_t getFirstPrintRow() override;
    void setSingleSlot(bool on) override;
    void getClock(int64_t& out) override;
    void setDate(uint32_t day, uint32_t month, uint32_t year) override;
    void setTime(uint32_t hour, uint32_t minute, uint32_t second) override;
    void setFirstWeekday(int32_t day) override;
    int32_t getFirstWeekday() override;
    void setDateLanguage(int32_t value) override;
    void setProperty(const std::string& key, const std::string& value, bool inSlot) override;
    void getProperty(std::string& out, const std::string& key, bool inSlot) override;
    void loadTestFormat(uint32_t number, const std::vector<std::string>& strings,
                        const std::vector<int32_t>& integers) override;
    uint32_t getHistogram(std::vector<uint16_t>& out, bool reversed) override;
    void getHysteresis(std::vector<int32_t>& out, bool reversed) override;
    bool setXOffset(int32_t offset) override;
    void getXOffset(std::string& out) override;
    ~KT_Storage() override = default;

    // The path of a slot's directory (empty name) or of a file in it.
    std::string buildPath(uint32_t slot, const std::string& name) const;
    KT_Format& getKTFormat() { return format; }

private:
    void clearFormat();
    void computePrevOffset();
    void readPrintRegions();
    void freePersistentBlocks(uint32_t slot);
    bool knows(uint32_t address);
    void parseOrClear(std::istream& stream, std::iostream* addresses, unsigned mode, std::string& out);
    std::vector<uint32_t> persistentAddresses(uint32_t slot);
    std::string propertyPath(bool inSlot) const;
    // The rows from the first print row to the last used one, as the hysteresis without regions takes them;
    // false if there are none.
    bool usedRange(bool reversed, int32_t& a, int32_t& b);

    std::string basePath;
    SimpleFS* simpleFs;
    uint32_t maxSlot;
    uint32_t currentSlot;
    int32_t prev_offset = -1;
    bool volatileMode;
    bool testFormat = false;
    Image* image;
    KT_Format format;
    bool formatLoaded = false;
    bool singleSlot = false;
};

}  // namespace KT_FMT
