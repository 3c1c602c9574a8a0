#pragma once
#include <streambuf>

namespace KT_FMT {

// Stands between an escape file and the parser. It takes one byte at a time from its source,
// so that the source's position always tells how far the parser has read.
class EscapeFilterStreamBuf : public std::streambuf {
public:
    explicit EscapeFilterStreamBuf(std::streambuf* source) : source(source) {}

protected:
    int_type underflow() override;

private:
    std::streambuf* source;
    char getBuffer = 0;
};

}  // namespace KT_FMT
