// Matrix codes of the library through the built ktr-render: every type at every quarter turn read back by the
// scanners (Han Xin held against zint's own matrix), GS1 contents, repaints after an assignment, and the
// record's and the symbols' failures.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "graphics/Image.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/ScanSupport.h"
#include "tests/symbologies/ZintTestSupport.h"

using namespace cli_test;

namespace {

const std::vector<std::string> kta1 = {"in=in.esc", "printer=KTA1", "trim=n"};

struct MatrixCase {
    const char* name;
    const char* zxingFormat;
    const char* zxingText;
    // Empty where zbar does not read the symbology.
    const char* zbarText;
};

const MatrixCase matrixCases[] = {
    {"qr", "QRCode", "KTR QR 42", "KTR QR 42"},
    {"microqr", "MicroQRCode", "KTR MQ 42", ""},
    {"dmrect", "DataMatrix", "KTR DM 42", ""},
    {"pdf417", "PDF417", "KTR PDF417 42", ""},
    {"databar", "DataBarExpanded", "(01)01234567890128(10)ABC123(21)12345",
     "0101234567890128" "10ABC123\x1d" "2112345"},
    {"databar14", "DataBar", "01234567890128", "0101234567890128"},
};

const Area cells[] = {{50, 50, 1250, 1250}, {1250, 50, 2450, 1250}, {50, 1250, 1250, 2450}, {1250, 1250, 2450, 2450}};

}  // namespace

TEST(MatrixEndToEnd, EveryLibraryTypeReadsBackAtEveryQuarterTurn)
{
    for (const MatrixCase& c : matrixCases) {
        SCOPED_TRACE(c.name);
        RunResult run = runCase(std::string("matrix_") + c.name + ".esc", "in.esc", {"in=in.esc"});
        ASSERT_EQ(run.exitCode, 0) << run.output;
        EXPECT_EQ(run.output, defaultRunOutput("in.esc"));
        auto raster = rasterOf(run, 2560, 6400);
        for (int turns = 0; turns < 4; ++turns) {
            SCOPED_TRACE(turns);
            EXPECT_EQ(scantest::scanInk(
                          *raster, [&](const std::string& path) { return scantest::zxing(path, c.zxingFormat); },
                          cells[turns]),
                      c.zxingText);
            if (*c.zbarText != '\0') {
                EXPECT_EQ(scantest::scanInk(*raster, scantest::zbar, cells[turns]), c.zbarText);
            }
        }
    }
}

TEST(MatrixEndToEnd, HanXinIsZintsMatrixAtEveryQuarterTurn)
{
    RunResult run = runCase("matrix_hanxin.esc", "in.esc", {"in=in.esc"});
    ASSERT_EQ(run.exitCode, 0) << run.output;
    auto raster = rasterOf(run, 2560, 6400);
    const zinttest::Modules dump = zinttest::zintDump("-b 116 --secure=2 -d 'KTR HX 42'", 23);
    ASSERT_EQ(dump.size(), 23u);
    for (int turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        const int32_t x = cells[turns].left + 50, y = cells[turns].top + 50;
        EXPECT_EQ(zinttest::readModules(*raster, x, y, 23, 23, 6), zinttest::turned(dump, turns));
    }
}

TEST(MatrixEndToEnd, AGS1QrCodeReadsBackAsItsElementString)
{
    RunResult run = runCase("matrix_qr_gs1.esc", "in.esc", kta1);
    ASSERT_EQ(run.exitCode, 0) << run.output;
    auto raster = rasterOf(run, 640, 608);
    EXPECT_EQ(zinttest::zxingRead(*raster, "QRCode"), "0101234567890128" "10ABC");
}

TEST(MatrixEndToEnd, AnAssignedCounterRepaintsTheQrCodeAndTheOldModulesAreGone)
{
    const RunResult assigned = runCase("matrix_qr_counter.esc", "in.esc", {"in=in.esc", "printer=KTA1", "trim=n",
                                                                           "VCLot=42"});
    const RunResult direct = runCase("matrix_qr_0042.esc", "in.esc", kta1);
    EXPECT_EQ(assigned.exitCode, 0) << assigned.output;
    EXPECT_TRUE(readFile(assigned.dir / "in.esc.bmp") == readFile(direct.dir / "in.esc.bmp"));
    auto raster = rasterOf(assigned, 640, 608);
    EXPECT_EQ(scantest::scanInk(*raster, scantest::zbar), "0042");
}

TEST(MatrixEndToEnd, ARefusedQrContentLeavesNothingAndTheRestRenders)
{
    const RunResult run = runCase("matrix_qr_refused.esc", "in.esc", kta1);
    EXPECT_EQ(run.output, kta1Header() + "\nWriting bitmap to in.esc.bmp\n");
    EXPECT_EQ(run.exitCode, 0);
    auto raster = rasterOf(run, 640, 608);
    EXPECT_EQ(zinttest::inkCount(*raster), 20 * 20);
}

TEST(MatrixEndToEnd, PDF417AndDataBarRefusalsEndTheRunWithTheirText)
{
    struct Row {
        const char* file;
        const char* text;
    };
    const Row rows[] = {
        {"matrix_pdf417_empty.esc", "ERROR in PDF_417  - ERROR_INVALID_DATA \nError at position: 46\n"},
        {"matrix_databar_no_ai.esc",
         "ERROR in Databar EXPANDED ai_number_replace: no more AI-Found\nError at position: 57\n"},
        {"matrix_reversed_2.esc",
         "datamatrix,qrcode,databar: reversed option needs to be '0' or '1', got: 2 100 200\nError at position: 29\n"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.file);
        const RunResult run = runCase(r.file, "in.esc", kta1);
        EXPECT_EQ(run.output, kta1Header() + "\nWriting bitmap to in.esc.bmp\n" + r.text);
        EXPECT_EQ(run.exitCode, 1);
    }
}

TEST(MatrixEndToEnd, TheBundledExampleCarriesAPDF417AndADataMatrixThatReadBack)
{
    const RunResult run = runCase("../../../examples/demo.esc", "demo.esc", {"in=demo.esc"});
    ASSERT_EQ(run.exitCode, 0);
    EXPECT_EQ(scantest::zxing((run.dir / "demo.esc.bmp").string(), "PDF417"), "ktr-render PDF417");
    EXPECT_EQ(scantest::dmtx((run.dir / "demo.esc.bmp").string()), "ktr-render Data Matrix");
}

// The loader's own account of the files it maps shows when zint comes in: not at start, only for a symbol.
TEST(MatrixEndToEnd, OnlyALabelWithALibrarySymbolOpensTheBarcodeLibrary)
{
    const RunResult plain = runCase("minimal.esc", "in.esc", {"in=in.esc"}, 20, "LD_DEBUG=files");
    ASSERT_EQ(plain.exitCode, 0) << plain.output;
    EXPECT_NE(plain.errors.find("file=libc.so"), std::string::npos) << plain.errors;
    EXPECT_EQ(plain.errors.find("libzint"), std::string::npos) << plain.errors;
    const RunResult qr = runCase("matrix_qr.esc", "in.esc", {"in=in.esc"}, 20, "LD_DEBUG=files");
    ASSERT_EQ(qr.exitCode, 0) << qr.output;
    EXPECT_NE(qr.errors.find("file=libzint.so"), std::string::npos) << qr.errors;
    EXPECT_NE(qr.errors.find("dynamically loaded"), std::string::npos) << qr.errors;
}
