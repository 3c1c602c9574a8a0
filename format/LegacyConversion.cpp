#include "format/LegacyConversion.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "format/LegacyBarcodeLengths.h"

namespace KT_FMT {

namespace {

using traits = std::char_traits<char>;

// The legacy text drawable passes this in place of a barcode type.
constexpr int32_t textType = 15;

// A number field by the C library's rule: leading digits count, anything else gives 0.
int32_t decimalValue(const std::string& text) { return static_cast<int32_t>(std::strtol(text.c_str(), nullptr, 10)); }

std::string printNumber(const char* pattern, int32_t value)
{
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), pattern, value);
    return buffer.data();
}

char first(const std::string& field) { return field.empty() ? '\0' : field.front(); }

std::string slice(const std::string& field, size_t start, size_t count)
{
    return start < field.size() ? field.substr(start, count) : std::string();
}

int32_t smallestBarWidth(const std::string& widths)
{
    int32_t smallest = decimalValue(slice(widths, 0, 2));
    for (size_t i = 2; i < 8; i += 2)
        smallest = std::min(smallest, decimalValue(slice(widths, i, 2)));
    return smallest;
}

std::string barcodeParameters(int32_t type, const std::string& height, const std::string& widths, char textFlag)
{
    const std::string flagAndZero = std::string(1, textFlag) + '0';
    switch (type) {
    case 0:
    case 1:
    case 5:
    case 6: return height + printNumber("%02i", smallestBarWidth(widths)) + flagAndZero;
    case 2:
    case 3: return height + slice(widths, 0, 4) + flagAndZero;
    case 4: return height + printNumber("%02i", smallestBarWidth(widths)) + flagAndZero + "00";
    default: throw KT_ERROR::bad_escape_sequence(KT_ERROR::text("unknown barcode type: ", type));
    }
}

std::string barcodeLength(int32_t type)
{
    const bool listed = type >= 0 && type < static_cast<int32_t>(legacyBarcodeLengths.size());
    return listed ? legacyBarcodeLengths[static_cast<size_t>(type)] : "";
}

// '0' to '3' count days, '4' and '5' months, '6' years; the letters below '0' have no unit.
std::string offsetUnit(char letter)
{
    if (letter < '0')
        return "";
    return std::string(1, letter <= '3' ? '0' : letter <= '5' ? '1' : '2');
}

}  // namespace

LegacyConversion::LegacyConversion(std::streambuf& source, char* buffer, uint32_t capacity,
                                   uint32_t& replacementCounter, std::map<std::string, std::string>& variableIds)
    : source(source),
      buffer(buffer),
      capacity(capacity),
      replacementCounter(replacementCounter),
      variableIds(variableIds)
{
}

// Two digits at least, more as the counter grows.
std::string LegacyConversion::newId()
{
    std::string number = std::to_string(replacementCounter++);
    if (number.size() < 2)
        number.insert(0, "0");
    return "_rpl_old" + number;
}

std::string LegacyConversion::readFixed(uint32_t count)
{
    std::string field;
    for (uint32_t i = 0; i < count; ++i) {
        const traits::int_type c = source.sbumpc();
        if (traits::eq_int_type(c, traits::eof()))
            break;
        field.push_back(traits::to_char_type(c));
    }
    return field;
}

// Old texts know no escapes; a backslash is doubled so that it prints as itself.
std::string LegacyConversion::readText(bool escaped)
{
    std::string text;
    for (;;) {
        const traits::int_type c = source.sbumpc();
        if (traits::eq_int_type(c, traits::eof()))
            throw KT_ERROR::bad_escape_sequence("found end of stream while extracting string (missing 0x0B)");
        if (traits::to_char_type(c) == VT)
            return text;
        text.push_back(traits::to_char_type(c));
        if (escaped && text.back() == '\\')
            text.push_back('\\');
    }
}

// Deliberate: the date format has no test for the end of the source; the reading goes on until a VT arrives.
std::string LegacyConversion::readDateFormatText()
{
    std::string text;
    for (;;) {
        const traits::int_type c = source.sbumpc();
        if (traits::eq_int_type(c, traits::eof()))
            continue;
        if (traits::to_char_type(c) == VT)
            return text;
        text.push_back(traits::to_char_type(c));
    }
}

void LegacyConversion::put(char c)
{
    if (position >= capacity)
        throw KT_ERROR::parse_time_error("buffer overflow while converting old escape sequence");
    buffer[position++] = c;
}

void LegacyConversion::putLiteral(const char* literal)
{
    for (; *literal != '\0'; ++literal)
        put(*literal);
}

// A whole string must leave a byte to spare.
void LegacyConversion::putString(const std::string& text)
{
    if (position + text.size() >= capacity)
        throw KT_ERROR::parse_time_error("buffer overflow while converting old escape sequence");
    std::copy(text.begin(), text.end(), buffer + position);
    position += static_cast<uint32_t>(text.size());
}

uint32_t LegacyConversion::convertBarcode()
{
    const std::string type = readFixed(2);
    const std::string place = readFixed(10);
    const std::string height = readFixed(5);
    const std::string orientation = readFixed(1);
    if (readFixed(2) != "UD")
        throw KT_ERROR::bad_escape_sequence("user defined parameters not found");
    const std::string widths = readFixed(8);
    readFixed(8);
    const char textFlag = first(readFixed(1));
    const std::string contentType = readFixed(1);

    const int32_t typeNumber = decimalValue(type);
    const std::string reference = convertContent(first(contentType), newId(), typeNumber);
    const std::string parameters = barcodeParameters(typeNumber, height, widths, textFlag);
    put(ESC);
    putLiteral("#B");
    putString(type);
    putString(place);
    putString(orientation);
    put('0');
    putString(reference);
    put(VT);
    putString(parameters);
    return position;
}

uint32_t LegacyConversion::convertText()
{
    const std::string fontAndPlace = readFixed(12);
    const std::string size = readFixed(2);
    const std::string orientation = readFixed(2);
    const std::string kind = readFixed(1);
    const std::string id = newId();
    std::string reference;
    if (kind == "0")
        reference = convertContent(first(readFixed(1)), id, textType);
    else if (kind == "3")
        reference = convertDate(id);
    else
        throw KT_ERROR::bad_escape_sequence("0 or 3 missing in the esc. T  seq.");
    put(ESC);
    putLiteral("#T");
    putString(fontAndPlace);
    putString(orientation);
    putString(reference);
    put(VT);
    putString(size);
    putLiteral("L000");
    return position;
}

std::string LegacyConversion::convertContent(char type, const std::string& id, int32_t barcodeType)
{
    switch (type) {
    case 'F': return convertFixedText(id);
    case 'R':
    case 'S':
    case 'T': return convertCounter(type, id, barcodeType == textType);
    case 'V': return convertVariable(id, barcodeType);
    default:
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text(
            "error parsing old text escape sequence, type must be 'F', 'V', 'S', 'T' or 'R', got: '", type, "'"));
    }
}

// A formula of precision 0, without padding, over the one fixed text.
std::string LegacyConversion::convertFixedText(const std::string& id)
{
    const std::string text = readText(true);
    const std::string reference = "VF" + id;
    put(ESC);
    putString(reference);
    put(VT);
    putLiteral("000000000F");
    putString(text);
    put(VT);
    put(VT);
    return reference;
}

std::string LegacyConversion::convertCounter(char type, const std::string& id, bool insideText)
{
    const std::string numbers = readFixed(35);
    const char pad = first(readFixed(1));
    const std::string prefix = readText(true);
    const std::string suffix = readText(true);
    readFixed(insideText ? 3 : 2);

    const std::string reference = "VC" + id;
    put(ESC);
    putString(reference);
    put(VT);
    put(type);
    int32_t largest = 0;
    for (size_t i = 0; i < 35; i += 7) {
        const std::string number = slice(numbers, i, 7);
        putLiteral("00");
        putString(number);
        largest = std::max(largest, decimalValue(number));
    }
    put(VT);
    put(pad != '\0' ? 'L' : '0');
    put(pad);
    putString(printNumber("%04i", static_cast<int32_t>(std::to_string(largest).size())));
    putString(prefix);
    put(VT);
    putString(suffix);
    put(VT);
    return reference;
}

// Equal prompts make one variable.
std::string LegacyConversion::convertVariable(const std::string& id, int32_t barcodeType)
{
    const std::string prompt = readText(false);
    const std::string content = readText(true);
    const auto known = variableIds.find(prompt);
    if (known != variableIds.end())
        return known->second;
    const std::string reference = "VI" + id;
    variableIds.emplace(prompt, reference);
    put(ESC);
    putString(reference);
    put(VT);
    putString(content);
    put(VT);
    putString(prompt);
    put(VT);
    if (barcodeType == textType) {
        putLiteral("0000000000");
    } else {
        // The barcode's length is both the padding width and the maximum.
        const std::string length = barcodeLength(barcodeType);
        putLiteral("00");
        putString(length);
        putString(length);
    }
    put(VT);
    put(VT);
    return reference;
}

std::string LegacyConversion::convertDate(std::string id)
{
    const std::string dateFormat = readDateFormatText();
    const char letter = first(readFixed(1));
    std::string days;
    if (letter == '9')
        days = readFixed(9);
    else if (letter >= '*' && letter <= '6')
        days = std::to_string(decimalValue(readFixed(3)) + decimalValue(readFixed(3)));
    else
        throw KT_ERROR::bad_escape_sequence("wrong offset in the esc. T  seq.");
    readFixed(2);

    std::string offset;
    if (letter == '9') {
        offset = "F" + days;
    } else {
        // The offset comes from a formula over the number. Deliberate: a week count (letter 3) is
        // written unmultiplied, as days.
        const std::string formula = "VF" + id;
        put(ESC);
        putString(formula);
        put(VT);
        putLiteral("00.000000F");
        putString(days);
        put(VT);
        put(VT);
        offset = formula + VT + offsetUnit(letter);
        id = newId();
    }
    const std::string reference = "VD" + id;
    put(ESC);
    putString(reference);
    put(VT);
    putString(dateFormat);
    put(VT);
    putString(offset);
    return reference;
}

}  // namespace KT_FMT
