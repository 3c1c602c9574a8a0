#include "symbologies/DatamatrixReedSolomon.h"

#include <gtest/gtest.h>

#include <vector>

using Words = std::vector<uint8_t>;

TEST(DatamatrixReedSolomon, TheCheckWordsOf123456AreThoseOfThePublishedExample)
{
    // "123456" in a 10 x 10 symbol: data 142 164 186, check words 114 25 5 88 102.
    EXPECT_EQ(DatamatrixReedSolomon::field().checkWords({142, 164, 186}, 5), (Words{114, 25, 5, 88, 102}));
}

TEST(DatamatrixReedSolomon, ABlockWithItsCheckWordsIsACodewordOfTheGenerator)
{
    // A valid block, read as a polynomial, vanishes at every root alpha^1 .. alpha^n.
    const DatamatrixReedSolomon& field = DatamatrixReedSolomon::field();
    for (uint32_t count : {5u, 7u, 10u, 18u, 28u, 62u, 68u}) {
        SCOPED_TRACE(count);
        Words block;
        for (uint32_t i = 0; i < 40; ++i)
            block.push_back(static_cast<uint8_t>(i * 37 + 11));
        const Words check = field.checkWords(block, count);
        ASSERT_EQ(check.size(), count);
        block.insert(block.end(), check.begin(), check.end());
        uint8_t alpha = 1;
        for (uint32_t root = 1; root <= count; ++root) {
            alpha = field.multiply(alpha, 2);
            uint8_t value = 0;
            for (const uint8_t word : block)
                value = field.multiply(value, alpha) ^ word;
            EXPECT_EQ(value, 0) << "root " << root;
        }
    }
}

TEST(DatamatrixReedSolomon, MultiplicationReducesBy0x12D)
{
    const DatamatrixReedSolomon& field = DatamatrixReedSolomon::field();
    EXPECT_EQ(field.multiply(2, 128), 0x2D);
    EXPECT_EQ(field.multiply(0, 77), 0);
    EXPECT_EQ(field.multiply(1, 77), 77);
    EXPECT_EQ(field.multiply(3, 7), 9);
    // alpha^255 is 1 again.
    uint8_t power = 1;
    for (int i = 0; i < 255; ++i)
        power = field.multiply(power, 2);
    EXPECT_EQ(power, 1);
}

TEST(DatamatrixReedSolomon, TheTablesAreBuiltOncePerProcess)
{
    EXPECT_EQ(&DatamatrixReedSolomon::field(), &DatamatrixReedSolomon::field());
}
