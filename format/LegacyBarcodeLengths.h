#pragma once
#include <array>

namespace KT_FMT {

// Padding width and maximum of the variable that a legacy barcode record makes, by barcode type 0 to 8;
// the other types get an empty field.
inline constexpr std::array<const char*, 9> legacyBarcodeLengths = {"0007", "0012", "0000", "0000", "0000",
                                                                    "0011", "0007", "0000", "0013"};

}  // namespace KT_FMT
