#pragma once
#include <cstdint>
#include <vector>

// The strategy that turns content tokens into ECC 200 data codewords. A token is a byte (0 to 255),
// a control codeword as a negative number (-24 for 232), or codewords packed low byte first.
class DatamatrixEncoder {
public:
    virtual int32_t encode(const std::vector<int32_t>& tokens, std::vector<uint8_t>& codewords,
                           uint32_t capacity) = 0;
    virtual ~DatamatrixEncoder() = default;
};
