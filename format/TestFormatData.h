#pragma once
#include <array>

#include "format/TestFormatTables.h"

namespace KT_FMT {

// Generated at build time from format/data by format/data/make_test_format_data.py's files.
// The small logo, then the large one.
extern const std::array<unsigned char, smallLogoBytes + largeLogoBytes> testFormatLogos;
// The sample format of pattern 23, with its ten-byte prefix.
extern const std::array<unsigned char, sampleFormatBytes> testSampleFormat;

}  // namespace KT_FMT
