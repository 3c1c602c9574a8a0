#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace KT_FMT {

// Kinds of decoded content.
inline constexpr uint32_t ITEM_BYTE = 0;
inline constexpr uint32_t ITEM_NONE = 1;
inline constexpr uint32_t ITEM_UNICODE = 2;
inline constexpr uint32_t ITEM_CODE128 = 3;
inline constexpr uint32_t ITEM_DATAMATRIX = 4;

struct ContentItem {
    uint32_t type = ITEM_NONE;
    uint32_t value = 0;

    bool operator==(const ContentItem&) const = default;
};

// Turns a content string with its backslash escapes into items. Each consumer brings its own
// vocabulary through the hooks, so the reader itself knows only the three byte sequences.
class ContentEscapeReader {
public:
    // Gets a sequence the reader does not know, with the item preset to ITEM_NONE; leaving it so drops it.
    using SequenceHook = std::function<void(std::string id, std::string parm, ContentItem& item)>;
    // May rewrite every finished item, the same way each time for the same item.
    using ItemFilter = std::function<void(ContentItem& item)>;

    explicit ContentEscapeReader(SequenceHook sequenceHook, ItemFilter itemFilter = nullptr);

    void setContent(std::string text);
    const std::string& getContent() const { return content; }
    bool hasNext() const { return current.type != ITEM_NONE; }
    ContentItem next();
    // The item that next() gives.
    const ContentItem& peek() const { return current; }
    // Takes the next item and the repeats of its byte that follow it directly, which are the same item;
    // gives how many items were taken. An item from an escape sequence is taken alone.
    uint32_t takeRun();

private:
    ContentItem advance();
    ContentItem readSequence();
    ContentItem decide(const std::string& id, const std::string& parm);
    std::string scan(char firstStop, char secondStop, uint32_t units, const char* overrun);
    char at(uint32_t index) const;

    std::string content;
    // One item of look-ahead keeps hasNext a field test.
    ContentItem current;
    bool currentIsByte = false;
    uint32_t position = 0;
    ItemFilter itemFilter;
    SequenceHook sequenceHook;
};

// The number of characters a text shows: each escape and each doubled backslash counts as one.
uint32_t displayLength(const std::string& text);

// Drains the reader into bytes, unpacking values above 255 high byte first.
std::string toBytes(ContentEscapeReader& reader);

std::vector<ContentItem> toTokens(ContentEscapeReader& reader);

}  // namespace KT_FMT
