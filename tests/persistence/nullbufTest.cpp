#include "persistence/nullbuf.h"

#include <gtest/gtest.h>

#include <string>

TEST(nullbuf, AcceptsAnyAmountOfOutputAndTheStreamStaysGood)
{
    nullbuf sink;
    std::ostream out(&sink);
    const std::string megabyte(1 << 20, 'x');
    for (int i = 0; i < 8; ++i)
        out << megabyte << i << '\n' << 3.25 << std::endl;
    out.write(megabyte.data(), static_cast<std::streamsize>(megabyte.size()));
    EXPECT_TRUE(out.good());
}

TEST(nullbuf, OverflowGivesBackTheCharacterItWasGiven)
{
    nullbuf sink;
    for (int c : {0, int{'a'}, 0x7F, 0xFF}) {
        SCOPED_TRACE(c);
        EXPECT_EQ(sink.sputc(static_cast<char>(c)), c);
    }
}

TEST(nullbuf, TheDebugStreamSwallowsEverythingAndStaysGood)
{
    debugStream << std::string(100000, 'd') << 42 << std::endl;
    EXPECT_TRUE(debugStream.good());
}
