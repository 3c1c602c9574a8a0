#include "format/FieldReaders.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "autocode/AC_ElementCollection.h"
#include "autocode/AC_FixedString.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"

namespace KT_FMT {

namespace {

constexpr uint32_t longestNumber = 100;

bool isSign(char c) { return c == '-' || c == '+'; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

void checkNumberBytes(const char* bytes, uint32_t width, bool signAllowed)
{
    uint32_t signs = 0;
    for (uint32_t i = 0; i < width; ++i) {
        if (isDigit(bytes[i]))
            continue;
        if (isSign(bytes[i]))
            ++signs;
        if (!signAllowed || signs != 1)
            throw KT_ERROR::parse_time_error(
                KT_ERROR::text("non-digit or too many sign characters read while parsing number: ", bytes[i]));
    }
}

KT_AC::Padding::Alignment readAlignment(std::istream& stream)
{
    const char c = readByte(stream);
    switch (c) {
    case '0':
        return KT_AC::Padding::ALIGN_NONE;
    case 'L':
        return KT_AC::Padding::ALIGN_LEFT;
    case 'R':
        return KT_AC::Padding::ALIGN_RIGHT;
    default:
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text(
            "malformed alignment while parsing padding; expected '0', 'L' or 'R' but got '", c, "'"));
    }
}

}  // namespace

int32_t readNumber(std::istream& stream, uint32_t width, bool signAllowed)
{
    if (width > longestNumber)
        throw KT_ERROR::kt_exception("can't parse that long of a number");
    std::array<char, longestNumber + 1> bytes{};
    stream.read(bytes.data(), width);
    if (!stream || stream.gcount() != static_cast<std::streamsize>(width))
        throw KT_ERROR::bad_escape_sequence("I/O error while parsing number");
    checkNumberBytes(bytes.data(), width, signAllowed);
    const char* digits = bytes.data();
    while (*digits == '0')
        ++digits;
    // Truncated to 32 bits as the C library's integer conversion does.
    return static_cast<int32_t>(std::strtol(digits, nullptr, 10));
}

bool readFlag(std::istream& stream)
{
    const char c = readByte(stream);
    if (c != '0' && c != '1')
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("expected '0' or '1' but got: '", c, "'"));
    return c == '1';
}

int32_t readOrientation(std::istream& stream)
{
    const char c = readByte(stream);
    if (c < '0' || c > '3')
        throw KT_ERROR::bad_escape_sequence(
            KT_ERROR::text("error parsing orientation, expected 0, 1, 2 or 3 got: ", c));
    return c - '0';
}

std::string readDelimited(std::istream& stream, char delimiter)
{
    std::string text;
    char c = 0;
    while (stream.get(c) && c != delimiter)
        text.push_back(c);
    if (stream.eof() || stream.bad())
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("found end of input while parsing ", text));
    // A stream that had failed before gets going again, at the price of one byte and an empty text.
    if (stream.fail()) {
        stream.clear();
        stream.ignore();
        return {};
    }
    return text;
}

std::string readContentField(std::istream& stream, KT_Format& format)
{
    const char kind = readByte(stream);
    if (kind == 'V')
        return readDelimited(stream, VT);
    if (kind != 'F')
        throw KT_ERROR::bad_escape_sequence(
            KT_ERROR::text("expected content field starting with 'F' or 'V' got: '", kind, "'"));
    auto element = std::make_unique<KT_AC::AC_FixedString>(readDelimited(stream, VT));
    KT_AC::AC_ElementCollection& elements = format.getElements();
    std::string id = elements.generateId();
    elements.addElement(id, std::move(element));
    return id;
}

KT_AC::Padding readPadding(std::istream& stream)
{
    KT_AC::Padding padding;
    padding.alignment = readAlignment(stream);
    padding.padCharacter = readByte(stream);
    // A negative width would ask for a fill of four thousand million bytes; it pads nothing instead.
    const int32_t width = readNumber(stream, 4, true);
    padding.width = width < 0 ? 0 : static_cast<uint32_t>(width);
    return padding;
}

float textToFloat(const std::string& text)
{
    const double value = std::strtod(text.c_str(), nullptr);
    // Also true for NaN, which is returned as it is.
    if (value != 0)
        return static_cast<float>(value);
    bool point = false;
    for (const char c : text) {
        if (c == '0')
            continue;
        if (c != '.' || point)
            throw KT_ERROR::internal_autocode_error(KT_ERROR::text("converting ", text, " into float failed"));
        point = true;
    }
    return 0;
}

std::string floatToText(float value)
{
    // The largest float prints as 39 digits, a point and six decimals.
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%f", static_cast<double>(value));
    return buffer.data();
}

}  // namespace KT_FMT
