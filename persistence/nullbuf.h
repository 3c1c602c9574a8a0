#pragma once
#include <ostream>
#include <streambuf>

// Swallows everything written to it; the stream over it never fails.
class nullbuf : public std::streambuf {
protected:
    int_type overflow(int_type c) override { return c; }
};

// Progress and soft errors of library code go here and vanish.
extern std::ostream debugStream;
