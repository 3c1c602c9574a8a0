#include "format/EscapeFilterStreamBuf.h"

#include <cstdlib>

#include "format/KT_Format.h"
#include "format/LegacyConversion.h"

namespace KT_FMT {

namespace {

// The letter G and the 21 header bytes of a graphic record.
constexpr uint32_t graphicsHeaderLength = 22;

uint32_t headerNumber(const std::string& header, size_t start)
{
    return static_cast<uint32_t>(std::strtol(header.substr(start, 5).c_str(), nullptr, 10));
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
    if (traits_type::eq_int_type(c, traits_type::eof()))
        return offer(c);
    --rawBytesLeft;
    if (headerBytesLeft != 0)
        noteGraphicsHeader(traits_type::to_char_type(c));
    return offer(c);
}

// The byte behind ESC is only looked at here; unless it starts a legacy record it stays in the source.
EscapeFilterStreamBuf::int_type EscapeFilterStreamBuf::takeEscape()
{
    const int_type next = source->sgetc();
    const char letter = traits_type::eq_int_type(next, traits_type::eof()) ? '\0' : traits_type::to_char_type(next);
    if (letter == 'B' || letter == 'T') {
        source->sbumpc();
        LegacyConversion conversion(*source, buffer.data(), capacity, replacementCounter, variableIds);
        return offerBytes(letter == 'B' ? conversion.convertBarcode() : conversion.convertText());
    }
    if (letter == 'G') {
        graphicsHeader.clear();
        headerBytesLeft = graphicsHeaderLength;
        rawBytesLeft = graphicsHeaderLength;
    } else {
        rawBytesLeft = 1;
    }
    return offer(traits_type::to_int_type(ESC));
}

void EscapeFilterStreamBuf::noteGraphicsHeader(char c)
{
    graphicsHeader.push_back(c);
    if (--headerBytesLeft == 0)
        rawBytesLeft = headerNumber(graphicsHeader, 11) * headerNumber(graphicsHeader, 16);
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
