#pragma once
#include <streambuf>

// A tap on an input: passes the source on to its reader and copies every character it hands out to the
// target, so the copy holds exactly what was consumed, plus the one character of lookahead.
class ForkingStreamBuf : public std::streambuf {
public:
    ForkingStreamBuf() = default;
    void setSource(std::streambuf* buffer) { source = buffer; }
    void setTarget(std::streambuf* buffer) { target = buffer; }

protected:
    int_type underflow() override;

private:
    char getBuffer = 0;
    std::streambuf* source = nullptr;
    std::streambuf* target = nullptr;
};
