#include "symbologies/ZintMatrixSymbol.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "errors/KT_Error.h"
#include "graphics/Image.h"
#include "symbologies/DMRectCode.h"
#include "symbologies/HanxinCode.h"
#include "symbologies/QrCode.h"
#include "tests/support/PixelCanvas.h"
#include "tests/symbologies/ZintTestSupport.h"

using zinttest::placed;

namespace {

// A library symbol whose matrix a test writes by hand.
ZintSymbolPointer handMade(const zinttest::Modules& modules)
{
    ZintSymbolPointer symbol(ZBarcode_Create());
    symbol->rows = static_cast<int>(modules.size());
    symbol->width = static_cast<int>(modules[0].size());
    for (size_t r = 0; r < modules.size(); ++r)
        for (size_t c = 0; c < modules[r].size(); ++c)
            if (modules[r][c] == '1')
                symbol->encoded_data[r][c >> 3] |= static_cast<unsigned char>(1 << (c & 7));
    return symbol;
}

zinttest::Modules readAll(const zint_symbol& symbol, int32_t rows, int32_t columns, int32_t rotation, int32_t size)
{
    zinttest::Modules out(static_cast<size_t>(rows), std::string(static_cast<size_t>(columns), '0'));
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t c = 0; c < columns; ++c)
            out[r][c] = ZintMatrixSymbol::moduleIsSet(symbol, r, c, rotation, size) ? '1' : '0';
    return out;
}

class ZintMatrixGS1 : public zinttest::GS1Fixture {};

const std::string gs1Content = "\\<FNC1>0101234567890128" "10ABC";

}  // namespace

TEST(ZintMatrixSymbol, RotationsTwoToFourTurnASquareMatrixClockwise)
{
    const zinttest::Modules square = {"110", "001", "000"};
    const ZintSymbolPointer symbol = handMade(square);
    for (int32_t rotation = 0; rotation <= 5; ++rotation) {
        SCOPED_TRACE(rotation);
        const int32_t turns = rotation >= 2 && rotation <= 4 ? rotation - 1 : 0;
        EXPECT_EQ(readAll(*symbol, 3, 3, rotation, 3), zinttest::turned(square, turns));
    }
}

TEST(ZintMatrixSymbol, AWiderThanHighMatrixDoesNotTurnProperly)
{
    // Two rows of four, read as four square and painted over two rows: a turned symbol loses most of its
    // modules, kept as it is.
    const ZintSymbolPointer symbol = handMade({"1100", "0111"});
    EXPECT_EQ(readAll(*symbol, 2, 4, 1, 4), (zinttest::Modules{"1100", "0111"}));
    EXPECT_EQ(readAll(*symbol, 2, 4, 2, 4), (zinttest::Modules{"0001", "0011"}));
    EXPECT_EQ(readAll(*symbol, 2, 4, 3, 4), (zinttest::Modules{"0000", "0000"}));
    EXPECT_EQ(readAll(*symbol, 2, 4, 4, 4), (zinttest::Modules{"0100", "0100"}));
}

TEST(ZintMatrixSymbol, ModulesAreSquaresOfTheModuleSizeAtTheOrigin)
{
    Image image(256, 128);
    QrCode symbol(1, 3, 1, 1);
    auto context = placed(image, 20, 30);
    symbol.paint("A", context);
    const zint_symbol& s = symbol.getSymbol();
    ASSERT_EQ(s.width, 21);
    PixelCanvas expected(256, 128);
    for (int32_t r = 0; r < s.rows; ++r)
        for (int32_t c = 0; c < s.width; ++c)
            if (zintModule(s, r, c))
                expected.fill(20 + 3 * c, 30 + 3 * r, 3, 3);
    EXPECT_TRUE(PixelCanvas::of(image) == expected);
}

TEST(ZintMatrixSymbol, ANewContentReplacesTheOldSymbolWhole)
{
    Image changed(256, 256), fresh(256, 256);
    QrCode symbol(0, 2, 1, 1), other(0, 2, 1, 1);
    auto context = placed(changed, 10, 10);
    symbol.paint("FIRST CONTENT", context);
    symbol.paint("2ND", context);
    auto freshContext = placed(fresh, 10, 10);
    other.paint("2ND", freshContext);
    EXPECT_TRUE(PixelCanvas::of(changed) == PixelCanvas::of(fresh));
}

TEST(ZintMatrixSymbol, ARefusedContentLeavesAnEmptySymbolWithoutAMessage)
{
    Image image(256, 256);
    QrCode symbol(1, 2, 1, 1);
    auto context = placed(image, 10, 10);
    symbol.paint("FITS", context);
    EXPECT_GT(zinttest::inkCount(image), 0);
    // Version 1 holds at most 25 letters.
    EXPECT_NO_THROW(symbol.paint(std::string(40, 'A'), context));
    EXPECT_EQ(zinttest::inkCount(image), 0);
    EXPECT_EQ(symbol.getSymbol().rows, 0);
}

TEST(ZintMatrixSymbol, OptionsOutOfRangeAreNotReported)
{
    // The library falls back to the automatic version and its own level for these, without a word.
    struct Row {
        int32_t size;
        int32_t level;
    };
    for (const Row& r : {Row{41, 1}, Row{99, 9}, Row{0, 7}}) {
        SCOPED_TRACE(testing::Message() << r.size << " " << r.level);
        Image image(256, 256);
        QrCode symbol(r.size, 2, r.level, 1);
        auto context = placed(image, 10, 10);
        EXPECT_NO_THROW(symbol.paint("OPTIONS", context));
        EXPECT_EQ(zinttest::zxingRead(image, "QRCode"), "OPTIONS");
    }
}

TEST(ZintMatrixSymbol, AModuleOffTheRasterEndsThePaintAsTheRasterSays)
{
    Image image(64, 64);
    QrCode symbol(1, 2, 1, 1);
    auto context = placed(image, 30, 30);
    EXPECT_THROW(symbol.paint("OFF", context), KT_ERROR::drawable_off_format);
}

TEST_F(ZintMatrixGS1, AContentOpeningWithFNC1TurnsGS1AtTheFirstPaint)
{
    Image image(256, 256);
    QrCode symbol(0, 2, 1, 0);
    auto context = placed(image, 10, 10);
    symbol.paint(gs1Content, context);
    EXPECT_EQ(symbol.getSymbol().input_mode, GS1_MODE);
    EXPECT_EQ(zinttest::zxingRead(image, "QRCode"), "0101234567890128" "10ABC");
}

TEST_F(ZintMatrixGS1, FNC1OnlyAtALaterPaintLeavesTheModeAlone)
{
    Image image(256, 256);
    QrCode symbol(0, 2, 1, 0);
    auto context = placed(image, 10, 10);
    symbol.paint("PLAIN", context);
    symbol.paint(gs1Content, context);
    EXPECT_EQ(symbol.getSymbol().input_mode, UNICODE_MODE);
    EXPECT_EQ(zinttest::zxingRead(image, "QRCode"), gs1Content);
}

TEST_F(ZintMatrixGS1, AWrongIdentifierInGS1LeavesTheSymbolEmptyWithoutAMessage)
{
    Image image(256, 256);
    QrCode symbol(0, 2, 1, 0);
    auto context = placed(image, 10, 10);
    EXPECT_NO_THROW(symbol.paint("\\<FNC1>7712345", context));
    EXPECT_EQ(symbol.getSymbol().input_mode, GS1_MODE);
    EXPECT_EQ(zinttest::inkCount(image), 0);
}

TEST_F(ZintMatrixGS1, InputModeTwoOfTheRecordIsGS1WithoutFNC1)
{
    Image image(256, 256);
    QrCode symbol(0, 2, 1, 2);
    auto context = placed(image, 10, 10);
    symbol.paint("0101234567890128" "10ABC", context);
    EXPECT_EQ(zinttest::zxingRead(image, "QRCode"), "0101234567890128" "10ABC");
}

TEST_F(ZintMatrixGS1, ASeparatorWithoutItsBackslashAtTheStartFailsInTheStringLibrary)
{
    // The rewrite takes the byte before each separator along; at the start there is none.
    Image image(256, 256);
    HanxinCode symbol(0, 1, 1, 2);
    auto context = placed(image, 10, 10);
    EXPECT_THROW(symbol.paint("<FNC1>56!\b10ABC123", context), std::out_of_range);
    EXPECT_EQ(zinttest::inkCount(image), 0);
}
