#pragma once
#include <istream>

#include "format/KT_Format.h"

namespace KT_FMT {

// What every record reader is handed.
struct ParseContext {
    std::istream& in;
    KT_Format& format;
    sram_address_stream* addressStream;
    unsigned mode;
};

// Reads one byte; the parser's stream raises on the end of input.
char readByte(std::istream& in);

// Reads the record whose ESC has been consumed and whose first selector byte is `selector`.
void dispatchRecord(ParseContext& context, char selector);

}  // namespace KT_FMT
