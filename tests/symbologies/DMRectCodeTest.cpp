#include "symbologies/DMRectCode.h"

#include <gtest/gtest.h>

#include <string>

#include "graphics/Image.h"
#include "tests/support/ScanSupport.h"
#include "tests/symbologies/ZintTestSupport.h"

using zinttest::placed;

namespace {

class DMRectCodeGS1 : public zinttest::GS1Fixture {};

}  // namespace

TEST(DMRectCode, ARectangleReadsBackUpright)
{
    Image image(256, 128);
    DMRectCode symbol(25, 4, 1);
    auto context = placed(image, 20, 20);
    symbol.paint("8x18", context);
    EXPECT_EQ(symbol.getSymbol().rows, 8);
    EXPECT_EQ(symbol.getSymbol().width, 18);
    EXPECT_EQ(zinttest::zxingRead(image, "DataMatrix"), "8x18");
    EXPECT_EQ(scantest::scanInk(image, scantest::dmtx), "8x18");
}

TEST(DMRectCode, ATurnedRectangleIsReadAsASquareOfItsWidth)
{
    const zinttest::Modules dump = zinttest::zintDump("-b 71 --vers=25 -d RECT", 18);
    ASSERT_EQ(dump.size(), 8u);
    // The upright matrix padded to 18 square, turned, and cut back to the 8 rows that are painted.
    zinttest::Modules square = dump;
    square.resize(18, std::string(18, '0'));
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(256, 128);
        DMRectCode symbol(25, 2, 1);
        symbol.setRotation(turns);
        auto context = placed(image, 10, 10);
        symbol.paint("RECT", context);
        zinttest::Modules expected = zinttest::turned(square, turns);
        expected.resize(8);
        EXPECT_EQ(zinttest::readModules(image, 10, 10, 8, 18, 2), expected);
    }
}

TEST(DMRectCode, ASquareSizeReadsBackAtEveryOrientation)
{
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(256, 256);
        DMRectCode symbol(5, 4, 1);
        symbol.setRotation(turns);
        auto context = placed(image, 20, 20);
        symbol.paint("SQUARE 0123", context);
        EXPECT_EQ(symbol.getSymbol().rows, 18);
        EXPECT_EQ(symbol.getSymbol().width, 18);
        EXPECT_EQ(zinttest::zxingRead(image, "DataMatrix"), "SQUARE 0123");
        EXPECT_EQ(scantest::scanInk(image, scantest::dmtx), "SQUARE 0123");
    }
}

TEST(DMRectCode, TheAutomaticSizeMayBeARectangle)
{
    Image image(256, 128);
    DMRectCode symbol(0, 2, 1);
    auto context = placed(image, 10, 10);
    symbol.paint("SQUARE 0123", context);
    EXPECT_EQ(symbol.getSymbol().rows, 8);
    EXPECT_EQ(symbol.getSymbol().width, 32);
    EXPECT_EQ(zinttest::zxingRead(image, "DataMatrix"), "SQUARE 0123");
}

TEST(DMRectCode, TheLevelIsIgnoredAndTheSizesAbove24AreHeldSquareInTheAutomaticChoice)
{
    EXPECT_EQ(DMRectCode(24, 1, 1).getSymbol().option_3, 1);
    EXPECT_EQ(DMRectCode(25, 1, 1).getSymbol().option_3, DM_SQUARE);
    EXPECT_EQ(DMRectCode(25, 1, 1).getSymbol().option_1, 0);
}

TEST(DMRectCode, TooMuchForTheChosenSizeLeavesNothing)
{
    Image image(256, 128);
    DMRectCode symbol(25, 2, 1);
    auto context = placed(image, 10, 10);
    EXPECT_NO_THROW(symbol.paint("MUCH TOO LONG FOR EIGHT BY EIGHTEEN", context));
    EXPECT_EQ(zinttest::inkCount(image), 0);
}

TEST_F(DMRectCodeGS1, AGS1ContentReadsBackAsItsElementString)
{
    Image image(256, 256);
    DMRectCode symbol(0, 4, 0);
    auto context = placed(image, 20, 20);
    symbol.paint("\\<FNC1>0101234567890128" "10ABC\\<FNC1>21X", context);
    EXPECT_EQ(zinttest::zxingRead(image, "DataMatrix"), "0101234567890128" "10ABC\x1d" "21X");
}
