#include "symbologies/ZintSymbol.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/symbologies/ZintTestSupport.h"

TEST(ZintSymbol, EachAdapterSetsUpItsSymbolAsItsRowSays)
{
    struct Row {
        const char* adapter;
        const ZintSetup& setup;
        int symbology;
        float height;
        int whitespace;
        int option1;
        int option3;
        int showHrt;
        int inputMode;
        int width;
    };
    // The record: symbology 55, height 300, level 3, option 7, input mode 4, module 5.
    const ZintRecordValues record{55, 300, 3, 7, 4, 5};
    const Row rows[] = {
        {"DMRectCode", dmRectSetup, 71, 0, 0, 0, 1, -1, 4, 0},
        {"QrCode", qrCodeSetup, 58, 0, 0, 3, -1, -1, 4, 0},
        {"MicroQrCode", microQrCodeSetup, 97, 0, 0, 3, -1, -1, 4, 0},
        {"HanxinCode", hanxinCodeSetup, 116, 0, 0, 3, -1, -1, 4, 0},
        {"PDF417", pdf417Setup, 55, 300, 8, 3, 0, 0, 0, 0},
        {"Databar", databarSetup, 55, 300, 8, 1, 928, 0, 0, 5},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.adapter);
        const ZintSymbolPointer symbol = makeZintSymbol(r.setup, record);
        EXPECT_EQ(symbol->symbology, r.symbology);
        EXPECT_EQ(symbol->height, r.height);
        EXPECT_EQ(symbol->whitespace_width, r.whitespace);
        EXPECT_EQ(symbol->border_width, 0);
        EXPECT_EQ(symbol->output_options, 0);
        EXPECT_EQ(std::string(symbol->fgcolour), "000000");
        EXPECT_EQ(std::string(symbol->bgcolour), "ffffff");
        EXPECT_EQ(std::string(symbol->outfile), "");
        EXPECT_EQ(std::string(symbol->primary), "");
        EXPECT_EQ(symbol->scale, 1.0f);
        EXPECT_EQ(symbol->option_1, r.option1);
        EXPECT_EQ(symbol->option_2, 7);
        EXPECT_EQ(symbol->option_3, r.option3);
        EXPECT_EQ(symbol->show_hrt, r.showHrt);
        EXPECT_EQ(symbol->input_mode, r.inputMode);
        EXPECT_EQ(symbol->rows, 0);
        EXPECT_EQ(symbol->width, r.width);
    }
}

TEST(ZintSymbol, InputModeZeroOfARecordBecomesOne)
{
    for (int mode : {0, 1, 2, 3}) {
        SCOPED_TRACE(mode);
        ZintRecordValues record{};
        record.inputMode = mode;
        EXPECT_EQ(makeZintSymbol(qrCodeSetup, record)->input_mode, mode == 0 ? 1 : mode);
    }
}

TEST(ZintSymbol, AModuleIsReadAsZintItselfPrintsIt)
{
    ZintSymbolPointer symbol = makeZintSymbol(hanxinCodeSetup, ZintRecordValues{});
    ASSERT_EQ(ZBarcode_Encode(symbol.get(), reinterpret_cast<const unsigned char*>("MODULES"), 7), 0);
    const zinttest::Modules dump = zinttest::zintDump("-b 116 -d MODULES", static_cast<size_t>(symbol->width));
    ASSERT_EQ(dump.size(), static_cast<size_t>(symbol->rows));
    for (int32_t r = 0; r < symbol->rows; ++r)
        for (int32_t c = 0; c < symbol->width; ++c)
            ASSERT_EQ(zintModule(*symbol, r, c), dump[r][c] == '1') << r << ", " << c;
}
