#include "symbologies/DatamatrixReedSolomon.h"

const DatamatrixReedSolomon& DatamatrixReedSolomon::field()
{
    static const DatamatrixReedSolomon tables;
    return tables;
}

DatamatrixReedSolomon::DatamatrixReedSolomon()
{
    uint32_t value = 1;
    for (uint32_t power = 0; power < 255; ++power) {
        antiLog[power] = static_cast<uint8_t>(value);
        log[value] = static_cast<uint8_t>(power);
        value <<= 1;
        if (value >= 256)
            value ^= 0x12D;
    }
}

uint8_t DatamatrixReedSolomon::multiply(uint8_t a, uint8_t b) const
{
    if (a == 0 || b == 0)
        return 0;
    return antiLog[(log[a] + log[b]) % 255];
}

std::vector<uint8_t> DatamatrixReedSolomon::checkWords(const std::vector<uint8_t>& block, uint32_t count) const
{
    // generator[i] is the coefficient of x^i; the leading 1 is implied.
    std::vector<uint8_t> generator(count + 1, 0);
    generator[0] = 1;
    for (uint32_t root = 1; root <= count; ++root) {
        const uint8_t alpha = antiLog[root % 255];
        for (uint32_t j = root; j > 0; --j)
            generator[j] = generator[j - 1] ^ multiply(generator[j], alpha);
        generator[0] = multiply(generator[0], alpha);
    }
    std::vector<uint8_t> remainder(count, 0);
    for (const uint8_t word : block) {
        const uint8_t feedback = word ^ remainder[count - 1];
        for (uint32_t j = count - 1; j > 0; --j)
            remainder[j] = remainder[j - 1] ^ multiply(feedback, generator[j]);
        remainder[0] = multiply(feedback, generator[0]);
    }
    return std::vector<uint8_t>(remainder.rbegin(), remainder.rend());
}
