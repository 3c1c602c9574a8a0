#include "symbologies/QrCode.h"

#include <gtest/gtest.h>

#include <string>

#include "graphics/Image.h"
#include "tests/support/ScanSupport.h"
#include "tests/symbologies/ZintTestSupport.h"

using zinttest::placed;

TEST(QrCode, EveryOrientationReadsBackWithBothScanners)
{
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(320, 320);
        QrCode symbol(0, 4, 2, 0);
        symbol.setRotation(turns);
        auto context = placed(image, 40, 40);
        symbol.paint("ktr-render QR 0123456789", context);
        EXPECT_EQ(zinttest::zxingRead(image, "QRCode"), "ktr-render QR 0123456789");
        EXPECT_EQ(scantest::scanInk(image, scantest::zbar), "ktr-render QR 0123456789");
    }
}

TEST(QrCode, EveryOrientationTurnsZintsMatrixClockwise)
{
    const zinttest::Modules dump = zinttest::zintDump("-b 58 --secure=3 --vers=2 -d 'TURN ME'", 25);
    ASSERT_EQ(dump.size(), 25u);
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        Image image(128, 128);
        QrCode symbol(2, 3, 3, 1);
        symbol.setRotation(turns);
        auto context = placed(image, 10, 10);
        symbol.paint("TURN ME", context);
        EXPECT_EQ(zinttest::readModules(image, 10, 10, 25, 25, 3), zinttest::turned(dump, turns));
    }
}

class QrCodeGS1 : public zinttest::GS1Fixture {};

TEST_F(QrCodeGS1, AGS1ContentReadsBackAsItsElementString)
{
    Image image(320, 320);
    QrCode symbol(0, 4, 1, 0);
    auto context = placed(image, 40, 40);
    symbol.paint("\\<FNC1>0101234567890128" "10ABC\\<FNC1>21X", context);
    EXPECT_EQ(symbol.getSymbol().input_mode, 2);
    EXPECT_EQ(zinttest::zxingRead(image, "QRCode"), "0101234567890128" "10ABC\x1d" "21X");
}
