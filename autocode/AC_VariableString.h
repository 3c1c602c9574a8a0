#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>

#include "autocode/AC_Element.h"
#include "autocode/Padding.h"

class SimpleFS;
namespace KT_FMT {
class KT_Format;
}

namespace KT_AC {

// The part of a variable that a persistent format mirrors in its store.
struct PersistentVariableText {
    uint32_t address = 0;
    SimpleFS* store = nullptr;
    std::string content;
    std::string serializationData;  // inputs separated by VT
    std::string sourceId;
    bool persistent = false;
};

// Content from outside the format: prompted from the operator (ESC V I) or sent by a host (ESC V X).
class AC_VariableString : public AC_Element {
public:
    AC_VariableString(std::string content, std::string prompt, std::string prefix, std::string suffix,
                      Padding padding, uint16_t maxLength);

    // Reads the body of an ESC V I record, or with `isExternal` of an ESC V X record, adds the element
    // to the format and returns its id.
    static std::string readVariableRecord(std::istream& stream, KT_FMT::KT_Format& format, uint32_t storageMode,
                                          bool isExternal, std::iostream* addressStream);

    std::string getResult() const override;
    void update(uint32_t event, uint32_t argument) override;
    bool isUnchanged() const override;
    virtual std::string getPrompt() const;
    // The padding width is at the same time the shortest input an unaligned variable takes.
    virtual uint32_t getMinimumLength() const;
    virtual uint16_t getMaximumLength() const;

    const std::string& getContent() const { return text.content; }
    const std::string& getSourceId() const { return text.sourceId; }
    const std::string& getSerializationData() const { return text.serializationData; }
    bool isPersistent() const { return text.persistent; }
    uint32_t getAddress() const { return text.address; }
    const Padding& getPadding() const { return padding; }
    void setContent(const std::string& value, const std::string& sourceId);
    void setSerializationData(const std::string& data, bool add);

private:
    // Mirrors the content in a new file of the store, or takes it from the file at `address`.
    void createIn(SimpleFS& store);
    void restoreFrom(SimpleFS& store, uint32_t address);
    bool isTooLong(const std::string& value) const;
    bool isTooShort(const std::string& value) const;

    PersistentVariableText text;
    std::string prompt;
    std::string prefix;
    std::string suffix;
    Padding padding;
    uint16_t maxLength;
    bool unchanged = false;
};

// The length that counts against a maximum: bytes, less 14 for each "\<UNIC(" escape.
int64_t variableDisplayLength(const std::string& text);

}  // namespace KT_AC
