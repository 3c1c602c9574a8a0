#pragma once
#include <cstdint>

namespace KT_AC {

// The five numbers of a counter, as an operator reads and sets them.
struct CounterAttributes {
    int32_t value = 0;
    int32_t stop = 0;
    int32_t step = 0;
    int32_t reset = 0;
    uint32_t duration = 0;  // print events per step

    bool operator==(const CounterAttributes&) const = default;
};

}  // namespace KT_AC
