#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace KT_INTERFACE {

class FormatInterface;

// What the store of print formats shows to a host that embeds the engine: numbered slots on disk, the one
// loaded format, a volatile mode without files, the built-in test formats, and the clock of the dates.
class StorageInterface {
public:
    virtual void setHysteresisScale(uint32_t value) = 0;
    virtual uint32_t getHysteresisScale() = 0;
    virtual void measurePaint(uint32_t mode, uint32_t count) = 0;
    virtual void getFormatName(std::string& out) = 0;
    virtual uint32_t getCurrentSlot() = 0;
    virtual uint32_t getMaxSlot() = 0;
    virtual void getSlotName(std::string& out, uint32_t slot) = 0;
    virtual void eraseCurrent() = 0;
    virtual void eraseSlot(uint32_t slot) = 0;
    virtual void eraseAll() = 0;
    virtual void load(uint32_t slot) = 0;
    virtual bool isSlotEmpty(uint32_t slot) = 0;
    virtual bool hasFormat() = 0;
    virtual void enterVolatile() = 0;
    virtual void leaveVolatile() = 0;
    virtual bool isVolatile() = 0;
    virtual bool isTestFormat() = 0;
    virtual FormatInterface& getFormat() = 0;
    virtual void store(std::string& out, std::istream& stream) = 0;
    virtual bool storeRaw(std::istream& stream, uint32_t slot, uint32_t length) = 0;
    virtual uint32_t getFormatFileSize(uint32_t slot) = 0;
    virtual uint32_t getPersistentSize(uint32_t slot) = 0;
    virtual uint32_t getPersistentSizeCurrent() = 0;
    virtual uint32_t getFormatFileSizeCurrent() = 0;
    virtual void readFormatFile(std::string& out, uint32_t slot) = 0;
    virtual void setFormatLength(uint32_t dots) = 0;
    virtual int32_t getFirstPrintRow() = 0;
    virtual void setSingleSlot(bool on) = 0;
    virtual void getClock(int64_t& out) = 0;
    virtual void setDate(uint32_t day, uint32_t month, uint32_t year) = 0;
    virtual void setTime(uint32_t hour, uint32_t minute, uint32_t second) = 0;
    virtual void setFirstWeekday(int32_t day) = 0;
    virtual int32_t getFirstWeekday() = 0;
    virtual void setDateLanguage(int32_t value) = 0;
    virtual void setProperty(const std::string& key, const std::string& value, bool inSlot) = 0;
    virtual void getProperty(std::string& out, const std::string& key, bool inSlot) = 0;
    virtual void loadTestFormat(uint32_t number, const std::vector<std::string>& strings,
                                const std::vector<int32_t>& integers) = 0;
    virtual uint32_t getHistogram(std::vector<uint16_t>& out, bool reversed) = 0;
    virtual void getHysteresis(std::vector<int32_t>& out, bool reversed) = 0;
    virtual bool setXOffset(int32_t offset) = 0;
    virtual void getXOffset(std::string& out) = 0;
    virtual ~StorageInterface() = default;
};

}  // namespace KT_INTERFACE
