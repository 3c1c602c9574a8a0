#pragma once
#include <zint.h>

// The entry points of libzint. The library is opened at the first symbol that needs it, so that a label
// without such symbols doesn't pay for loading it and the libraries it needs at every start.
struct ZintLibrary {
    zint_symbol* (*create)();
    void (*clear)(zint_symbol* symbol);
    void (*destroy)(zint_symbol* symbol);
    int (*encode)(zint_symbol* symbol, const unsigned char* source, int length);
};

// The library that the build compiled against, opened on the first call and kept to the end of the process.
const ZintLibrary& zintLibrary();

// Opens the library of that soname and binds its entry points; throws `kt_exception` if it can't be opened or
// lacks one of them, and then leaves nothing open.
ZintLibrary openZintLibrary(const char* soname);
