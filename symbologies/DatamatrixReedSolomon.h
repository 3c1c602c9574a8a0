#pragma once
#include <array>
#include <cstdint>
#include <vector>

// Reed-Solomon check words of ECC 200 over GF(256) with the field polynomial 0x12D. The tables are
// built once per process, on first use.
class DatamatrixReedSolomon {
public:
    static const DatamatrixReedSolomon& field();

    uint8_t multiply(uint8_t a, uint8_t b) const;
    // The `count` check words of `block` by the generator with the roots alpha^1 to alpha^count,
    // highest degree first.
    std::vector<uint8_t> checkWords(const std::vector<uint8_t>& block, uint32_t count) const;

private:
    DatamatrixReedSolomon();

    std::array<uint8_t, 256> antiLog{};
    std::array<uint8_t, 256> log{};
};
