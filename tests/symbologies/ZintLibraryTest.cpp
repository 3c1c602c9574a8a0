#include "symbologies/ZintLibrary.h"

#include <gtest/gtest.h>

#include <string>

#include "errors/KT_Error.h"
#include "tests/support/ExpectFailure.h"

TEST(ZintLibrary, IsOpenedOnceForTheWholeProcess)
{
    EXPECT_EQ(&zintLibrary(), &zintLibrary());
}

TEST(ZintLibrary, EncodesClearsAndDeletesASymbolThroughItsEntryPoints)
{
    const ZintLibrary& library = zintLibrary();
    zint_symbol* symbol = library.create();
    ASSERT_NE(symbol, nullptr);
    symbol->symbology = BARCODE_QRCODE;
    const unsigned char data[] = "KTR";
    EXPECT_EQ(library.encode(symbol, data, 3), 0);
    EXPECT_EQ(symbol->rows, 21);
    library.clear(symbol);
    EXPECT_EQ(symbol->rows, 0);
    library.destroy(symbol);
}

TEST(ZintLibrary, AMissingLibraryFailsWithTheLoadersReason)
{
    expectFailure<KT_ERROR::kt_exception>([] { openZintLibrary("libktr-absent.so.1"); },
                                          "error loading the barcode library: libktr-absent.so.1: cannot open shared "
                                          "object file: No such file or directory");
}

TEST(ZintLibrary, ALibraryWithoutTheEntryPointsFailsAtTheFirstOneMissing)
{
    const std::string text = throwsText([] { openZintLibrary("libm.so.6"); });
    EXPECT_EQ(text.rfind("error loading the barcode library: ", 0), 0u) << text;
    EXPECT_NE(text.find("libm.so.6: undefined symbol: ZBarcode_Create"), std::string::npos) << text;
}
