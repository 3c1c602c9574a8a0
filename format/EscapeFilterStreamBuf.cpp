#include "format/EscapeFilterStreamBuf.h"

#include <cstdlib>

#include "format/KT_Format.h"
#include "format/LegacyConversion.h"

namespace KT_FMT {

namespace {

// The header of a graphic record behind ESC G; its bytes 11 to 15 and 16 to 20 hold the bytes per
// row and the rows of the raster behind it.
constexpr uint32_t graphicsHeaderLength = 21;
constexpr uint32_t rowBytesStart = 10;
constexpr uint32_t rowsStart = 15;
constexpr uint32_t headerNumberLength = 5;

uint32_t headerNumber(const std::string& header, size_t start)
{
    const std::string field = start < header.size() ? header.substr(start, headerNumberLength) : std::string();
    return static_cast<uint32_t>(std::strtol(field.c_str(), nullptr, 10));
}

}  // namespace

EscapeFilterStreamBuf::int_type EscapeFilterStreamBuf::underflow()
{
    if (gptr() < egptr())
        return traits_type::to_int_type(*gptr());
    if (rawBytesLeft != 0)
        return takeRaw();
    const int_type c = source->sbumpc();
    if (traits_type::eq_int_type(c, traits_type::eof()) || traits_type::to_char_type(c) != ESC)
        return offer(c);
    return takeEscape();
}

EscapeFilterStreamBuf::int_type EscapeFilterStreamBuf::takeRaw()
{
    const int_type c = source->sbumpc();
    if (!traits_type::eq_int_type(c, traits_type::eof()))
        --rawBytesLeft;
    return offer(c);
}

// The byte behind the ESC is passed on with it and is never the start of a sequence itself.
EscapeFilterStreamBuf::int_type EscapeFilterStreamBuf::takeEscape()
{
    const int_type next = source->sbumpc();
    if (traits_type::eq_int_type(next, traits_type::eof()))
        return offer(traits_type::to_int_type(ESC));
    const char letter = traits_type::to_char_type(next);
    if (letter == 'B' || letter == 'T') {
        LegacyConversion conversion(*source, buffer.data(), capacity, replacementCounter, variableIds);
        return offerBytes(letter == 'B' ? conversion.convertBarcode() : conversion.convertText());
    }
    buffer[0] = ESC;
    buffer[1] = letter;
    return offerBytes(letter == 'G' ? 2 + takeGraphicsHeader() : 2);
}

// Copies the header behind ESC G into the get area and returns how many of its bytes the source had.
uint32_t EscapeFilterStreamBuf::takeGraphicsHeader()
{
    std::string header;
    for (uint32_t i = 0; i < graphicsHeaderLength; ++i) {
        const int_type c = source->sbumpc();
        if (traits_type::eq_int_type(c, traits_type::eof()))
            break;
        header.push_back(traits_type::to_char_type(c));
    }
    header.copy(buffer.data() + 2, header.size());
    rawBytesLeft = headerNumber(header, rowBytesStart) * headerNumber(header, rowsStart);
    return static_cast<uint32_t>(header.size());
}

EscapeFilterStreamBuf::int_type EscapeFilterStreamBuf::offer(int_type c)
{
    if (traits_type::eq_int_type(c, traits_type::eof())) {
        setg(buffer.data(), buffer.data(), buffer.data());
        return c;
    }
    buffer[0] = traits_type::to_char_type(c);
    return offerBytes(1);
}

EscapeFilterStreamBuf::int_type EscapeFilterStreamBuf::offerBytes(uint32_t length)
{
    setg(buffer.data(), buffer.data(), buffer.data() + length);
    // Unsigned, so that 0xFF is no end of file.
    return traits_type::to_int_type(buffer[0]);
}

}  // namespace KT_FMT
