#pragma once
#include <cstdint>

namespace KT_AC {

// How a record reader binds a variable or counter: in memory only, or mirrored in the format's store.
// The values are the parse modes of the format.
inline constexpr uint32_t STORAGE_NONE = 0;
inline constexpr uint32_t STORAGE_STORE = 1;
inline constexpr uint32_t STORAGE_RESTORE = 2;

}  // namespace KT_AC
