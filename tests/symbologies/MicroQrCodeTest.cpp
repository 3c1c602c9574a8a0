#include "symbologies/MicroQrCode.h"

#include <gtest/gtest.h>

#include <string>

#include "graphics/Image.h"
#include "tests/symbologies/ZintTestSupport.h"

using zinttest::placed;

namespace {

class MicroQrCodeGS1 : public zinttest::GS1Fixture {};

}  // namespace

TEST(MicroQrCode, EveryOrientationReadsBack)
{
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(256, 256);
        MicroQrCode symbol(0, 5, 1, 0);
        symbol.setRotation(turns);
        auto context = placed(image, 40, 40);
        symbol.paint("MICRO 12345", context);
        EXPECT_EQ(zinttest::zxingRead(image, "MicroQRCode"), "MICRO 12345");
    }
}

TEST(MicroQrCode, VersionAndLevelAreZintsOwn)
{
    const zinttest::Modules dump = zinttest::zintDump("-b 97 --vers=3 --secure=2 -d 'M3 M'", 15);
    ASSERT_EQ(dump.size(), 15u);
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(128, 128);
        MicroQrCode symbol(3, 2, 2, 1);
        symbol.setRotation(turns);
        auto context = placed(image, 8, 8);
        symbol.paint("M3 M", context);
        EXPECT_EQ(symbol.getSymbol().width, 15);
        EXPECT_EQ(zinttest::readModules(image, 8, 8, 15, 15, 2), zinttest::turned(dump, turns));
    }
}

TEST_F(MicroQrCodeGS1, GS1IsRefusedByTheLibraryAndLeavesNothing)
{
    Image image(128, 128);
    MicroQrCode symbol(0, 2, 1, 0);
    auto context = placed(image, 8, 8);
    EXPECT_NO_THROW(symbol.paint("\\<FNC1>0101234567890128", context));
    EXPECT_EQ(zinttest::inkCount(image), 0);
}
