#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <streambuf>
#include <string>

namespace KT_FMT {

// Stands between an escape file and the parser: legacy ESC B and ESC T records are rewritten into
// present-day records, and the raster bytes of ESC G pass without being taken for sequences. An ESC
// is passed on together with the byte behind it, and ESC G with its whole header.
class EscapeFilterStreamBuf : public std::streambuf {
public:
    explicit EscapeFilterStreamBuf(std::streambuf* source) : source(source) {}

protected:
    int_type underflow() override;

private:
    int_type takeRaw();
    int_type takeEscape();
    uint32_t takeGraphicsHeader();
    int_type offer(int_type c);
    int_type offerBytes(uint32_t length);

    uint32_t replacementCounter = 0;
    std::array<char, 1024> buffer{};
    std::streambuf* source;
    uint32_t capacity = 1024;
    // A legacy variable's prompt and the reference made up for it.
    std::map<std::string, std::string> variableIds;
    uint32_t rawBytesLeft = 0;
};

}  // namespace KT_FMT
