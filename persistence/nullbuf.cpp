#include "persistence/nullbuf.h"

namespace {
nullbuf debugSink;
}

std::ostream debugStream(&debugSink);
