#include "autocode/AC_VariableString.h"

#include <cstdlib>
#include <istream>
#include <memory>
#include <utility>

#include "autocode/AddressStream.h"
#include "autocode/StorageMode.h"
#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"
#include "persistence/SimpleFS.h"

namespace KT_AC {

namespace {

constexpr char unicodeEscape[] = "\\<UNIC(";
constexpr int64_t unicodeEscapeWeight = 14;

// Four characters that stop early before a line feed, read as atoi reads them.
uint16_t readMaximumLength(std::istream& stream)
{
    std::string digits;
    while (digits.size() < 4 && stream.peek() != '\n')
        digits.push_back(KT_FMT::readByte(stream));
    return static_cast<uint16_t>(std::strtol(digits.c_str(), nullptr, 10));
}

size_t countPieces(const std::string& data)
{
    size_t pieces = 0;
    bool inPiece = false;
    for (const char c : data) {
        if (c != KT_FMT::VT && !inPiece)
            ++pieces;
        inPiece = c != KT_FMT::VT;
    }
    return pieces;
}

}  // namespace

int64_t variableDisplayLength(const std::string& text)
{
    // Signed, so that a text of escapes alone is shorter than nothing rather than of a huge length.
    int64_t length = static_cast<int64_t>(text.size());
    for (size_t at = text.find(unicodeEscape); at != std::string::npos; at = text.find(unicodeEscape, at + 1))
        length -= unicodeEscapeWeight;
    return length;
}

AC_VariableString::AC_VariableString(std::string content, std::string prompt, std::string prefix,
                                     std::string suffix, Padding padding, uint16_t maxLength)
    : prompt(std::move(prompt)),
      prefix(std::move(prefix)),
      suffix(std::move(suffix)),
      padding(padding),
      maxLength(maxLength)
{
    text.content = std::move(content);
}

std::string AC_VariableString::readVariableRecord(std::istream& stream, KT_FMT::KT_Format& format,
                                                  uint32_t storageMode, bool isExternal, std::iostream* addressStream)
{
    using KT_FMT::readDelimited;
    using KT_FMT::VT;
    const std::string id = (isExternal ? "X" : "I") + readDelimited(stream, VT);
    std::string content = readDelimited(stream, VT);
    std::unique_ptr<AC_VariableString> variable;
    if (isExternal) {
        variable = std::make_unique<AC_VariableString>(std::move(content), "", "", "", Padding{}, 0);
    } else {
        std::string prompt = readDelimited(stream, VT);
        const Padding padding = KT_FMT::readPadding(stream);
        uint16_t maxLength = readMaximumLength(stream);
        // No limit given: the record's own content sets it, so the record itself always fits.
        if (maxLength == 0)
            maxLength = static_cast<uint16_t>(content.size());
        std::string prefix = readDelimited(stream, VT);
        std::string suffix = readDelimited(stream, VT);
        if (variableDisplayLength(content) > maxLength)
            throw KT_ERROR::bad_escape_sequence(
                KT_ERROR::text("V", id, " content length is greater than max. length ", maxLength));
        variable = std::make_unique<AC_VariableString>(std::move(content), std::move(prompt), std::move(prefix),
                                                       std::move(suffix), padding, maxLength);
    }
    if (storageMode == STORAGE_STORE) {
        if (addressStream == nullptr)
            throw KT_ERROR::kt_exception("sram address stream is NULL when storing a variable input");
        variable->createIn(*format.getFileSystem());
        writeAddress(*addressStream, variable->text.address);
    } else if (storageMode == STORAGE_RESTORE) {
        if (addressStream == nullptr)
            throw KT_ERROR::kt_exception("sram address stream is NULL when restoring a variable input");
        variable->restoreFrom(*format.getFileSystem(), readAddress(*addressStream));
    }
    format.getElements().addElement(id, std::move(variable));
    return id;
}

void AC_VariableString::createIn(SimpleFS& store)
{
    text.store = &store;
    text.address = store.create(reinterpret_cast<const uint8_t*>(text.content.data()),
                                static_cast<uint32_t>(text.content.size()));
    text.persistent = true;
}

// The content of the store stands for that of the record. It is read in pieces of 50 bytes until the file ends.
void AC_VariableString::restoreFrom(SimpleFS& store, uint32_t address)
{
    text.store = &store;
    text.address = address;
    text.persistent = true;
    text.content.clear();
    ReadState state{};
    uint8_t piece[50];
    for (bool first = true; first || state.phase != 2; first = false) {
        const uint32_t got = store.read(piece, sizeof piece, address, &state, !first);
        text.content.append(reinterpret_cast<const char*>(piece), got);
        // Read on past what the store can hold, the chain runs in a circle: measuring the file says so.
        if (text.content.size() > store.capacity())
            store.fileSize(address);
    }
}

std::string AC_VariableString::getResult() const
{
    // The content is text here, so a leading '-' is no sign.
    return prefix + padding.apply(text.content, false) + suffix;
}

void AC_VariableString::update(uint32_t event, uint32_t)
{
    if (event == EVENT_PAINTED)
        unchanged = true;
    if (event == EVENT_DELETE && text.persistent) {
        text.store->remove(text.address);
        text.persistent = false;
    }
}

bool AC_VariableString::isUnchanged() const { return unchanged; }

std::string AC_VariableString::getPrompt() const { return prompt; }

uint32_t AC_VariableString::getMinimumLength() const { return padding.width; }

uint16_t AC_VariableString::getMaximumLength() const { return maxLength; }

bool AC_VariableString::isTooLong(const std::string& value) const
{
    return maxLength != 0 && variableDisplayLength(value) > maxLength;
}

// With an alignment the fill makes up a short input, so only an unaligned variable has a minimum.
bool AC_VariableString::isTooShort(const std::string& value) const
{
    return padding.alignment == Padding::ALIGN_NONE && value.size() < padding.width;
}

void AC_VariableString::setContent(const std::string& value, const std::string& sourceId)
{
    // The limit is on what shows, but the message gives the length in bytes.
    if (isTooLong(value))
        throw KT_ERROR::illegal_content(KT_ERROR::text("new input '", value, "' to variable '", sourceId,
                                                       "' exceeds max length of variable (", value.size(), "/",
                                                       maxLength, ")"));
    if (isTooShort(value))
        throw KT_ERROR::illegal_content(KT_ERROR::text("new input to variable '", sourceId,
                                                       "' is too short, must be at least ", padding.width));
    text.content = value;
    if (text.persistent)
        text.store->write(reinterpret_cast<const uint8_t*>(value.data()), static_cast<uint32_t>(value.size()),
                          text.address);
    text.sourceId = sourceId;
    unchanged = false;
}

void AC_VariableString::setSerializationData(const std::string& data, bool add)
{
    if (isTooLong(data))
        throw KT_ERROR::illegal_content(
            KT_ERROR::text("setSerializationData: new input to variable exceeds max length of variable (",
                           data.size(), "/", maxLength, ")"));
    if (isTooShort(data))
        throw KT_ERROR::illegal_content(KT_ERROR::text(
            "setSerializationData: new input to variable is too short, must be at least ", padding.width));
    if (!add) {
        text.serializationData = data;
    } else {
        // This version has room for no serialization element at all.
        const size_t requested = countPieces(text.serializationData) + countPieces(data);
        if (requested > 0)
            throw KT_ERROR::illegal_content(KT_ERROR::text(
                "setSerializationData: Serialization elements overflow. Increase buffer with X67. Requested: ",
                requested));
        text.serializationData += KT_FMT::VT + data;
    }
    unchanged = false;
}

}  // namespace KT_AC
