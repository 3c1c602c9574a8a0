// Linear barcodes through the built ktr-render: every type at every quarter turn read back by two
// scanners, the record's failures, legacy records, and repaints after an assignment.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "graphics/Image.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/ScanSupport.h"

using namespace cli_test;

namespace {

const std::vector<std::string> kta1 = {"in=in.esc", "printer=KTA1", "trim=n"};

uint64_t fingerprint(const std::string& bytes)
{
    uint64_t hash = 1469598103934665603ull;
    for (char c : bytes)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    return hash;
}

struct LinearCase {
    const char* name;
    const char* zbarText;
    const char* zxingFormat;
    const char* zxingText;
};

const LinearCase linearCases[] = {
    {"ean8", "12345670", "EAN-8", "12345670"},
    {"ean13", "4006381333931", "EAN-13", "4006381333931"},
    {"code25", "12345670", "ITF", "12345670"},
    {"code39", "KTR-39 A", "Code39", "KTR-39 A"},
    {"code128", "Ktr-128 Abc12345678x", "Code128", "Ktr-128 Abc12345678x"},
    {"upca", "0036000291452", "UPC-A", "036000291452"},
    // zbar gives a UPC-E in its thirteen-digit expanded form.
    {"upce", "0012345000065", "UPC-E", "01234565"},
    {"itf14", "12345678901231", "ITF", "12345678901231"},
};

}  // namespace

TEST(BarcodeEndToEnd, EveryLinearTypeReadsBackAtEveryQuarterTurn)
{
    const Area cells[] = {{50, 50, 1250, 1250}, {1250, 50, 2450, 1250}, {50, 1250, 1250, 2450},
                          {1250, 1250, 2450, 2450}};
    for (const LinearCase& c : linearCases) {
        SCOPED_TRACE(c.name);
        RunResult run = runCase(std::string("linear_") + c.name + ".esc", "in.esc", {"in=in.esc"});
        ASSERT_EQ(run.exitCode, 0) << run.output;
        EXPECT_EQ(run.output, defaultRunOutput("in.esc"));
        auto raster = rasterOf(run, 2560, 6400);
        for (int turns = 0; turns < 4; ++turns) {
            SCOPED_TRACE(turns);
            EXPECT_EQ(scantest::scanInk(*raster, scantest::zbar, cells[turns]), c.zbarText);
            EXPECT_EQ(scantest::scanInk(
                          *raster, [&](const std::string& path) { return scantest::zxing(path, c.zxingFormat); },
                          cells[turns]),
                      c.zxingText);
        }
    }
}

TEST(BarcodeEndToEnd, TheBitmapsOfCode39AndEan13StayAsTheyWereLookedAt)
{
    const std::pair<const char*, uint64_t> pinned[] = {{"linear_code39.esc", 5278949953043565149ull},
                                                      {"linear_ean13.esc", 6700828655924872805ull}};
    for (const auto& [file, expected] : pinned) {
        SCOPED_TRACE(file);
        RunResult run = runCase(file, "in.esc", {"in=in.esc"});
        EXPECT_EQ(fingerprint(readFile(run.dir / "in.esc.bmp")), expected);
    }
}

TEST(BarcodeEndToEnd, ARecordOfType15FailsWithItsNumber)
{
    const RunResult run = runCase("barcode_type_15.esc", "in.esc", kta1);
    // The record is read up to its module width, where the group of fields depends on the type.
    EXPECT_EQ(run.output, kta1Header() + "\nWriting bitmap to in.esc.bmp\nundefined barcode type 15\nError at position: 43\n");
    EXPECT_EQ(run.exitCode, 1);
}

TEST(BarcodeEndToEnd, TypeCharactersThatAreLettersReadAsEan8)
{
    const RunResult letters = runCase("barcode_letter_type.esc", "in.esc", kta1);
    const RunResult ean8 = runCase("barcode_as_ean8.esc", "in.esc", kta1);
    EXPECT_EQ(letters.exitCode, 0);
    EXPECT_TRUE(readFile(letters.dir / "in.esc.bmp") == readFile(ean8.dir / "in.esc.bmp"));
    auto raster = rasterOf(letters, 640, 608);
    EXPECT_EQ(scantest::scanInk(*raster, scantest::zbar), "12345670");
}

TEST(BarcodeEndToEnd, ABarcodeThatLeavesTheRasterIsCutAndTheFormatStillRenders)
{
    const RunResult run = runCase("barcode_off_raster.esc", "in.esc", kta1);
    EXPECT_EQ(run.output, kta1Header() + "\nWriting bitmap to in.esc.bmp\n");
    EXPECT_EQ(run.exitCode, 0);
    const Bitmap bitmap = readBitmap(run.dir / "in.esc.bmp");
    EXPECT_EQ(bitmap.pixels[10][10], 1) << "the box after the barcode";
    // The first row is or-ed in up to the word that leaves the raster; the rows below it never are.
    EXPECT_EQ(bitmap.pixels[100][400], 1) << "the first bar of the cut symbol";
    EXPECT_EQ(bitmap.pixels[101][400], 0) << "the second row of the cut symbol";
}

TEST(BarcodeEndToEnd, BadContentFailsWithTheSymbologysMessage)
{
    const RunResult run = runCase("barcode_bad_content.esc", "in.esc", kta1);
    EXPECT_EQ(run.output, kta1Header() + "\nWriting bitmap to in.esc.bmp\nEAN-13: wrong data A\nError at position: 85\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(run.dir / "in.esc.bmp"));
}

TEST(BarcodeEndToEnd, AnyNonZeroTextFlagIsOnAndItf14KeepsItsCheckDigitWithTheCheckFlagOff)
{
    const RunResult flags = runCase("barcode_flags.esc", "in.esc", kta1);
    const RunResult plain = runCase("barcode_flags_plain.esc", "in.esc", kta1);
    EXPECT_EQ(flags.exitCode, 0);
    EXPECT_TRUE(readFile(flags.dir / "in.esc.bmp") == readFile(plain.dir / "in.esc.bmp"));
    auto raster = rasterOf(flags, 640, 608);
    EXPECT_EQ(scantest::scanInk(*raster, scantest::zbar), "12345678901231");
}

TEST(BarcodeEndToEnd, ALegacyBarcodeRecordPaintsWhatItsPresentDayRecordPaints)
{
    const RunResult legacy = runCase("legacy_barcode.esc", "in.esc", kta1);
    const RunResult present = runCase("legacy_barcode_new.esc", "in.esc", kta1);
    EXPECT_EQ(legacy.output, kta1Header() + "\nWriting bitmap to in.esc.bmp\n");
    EXPECT_EQ(legacy.exitCode, 0);
    EXPECT_TRUE(readFile(legacy.dir / "in.esc.bmp") == readFile(present.dir / "in.esc.bmp"));
    auto raster = rasterOf(legacy, 640, 608);
    EXPECT_EQ(scantest::scanInk(*raster, scantest::zbar), "KTR39");
}

TEST(BarcodeEndToEnd, AnAssignedCounterRepaintsTheBarcodeAndTheOldBarsAreGone)
{
    const RunResult assigned = runCase("barcode_counter.esc", "in.esc", {"in=in.esc", "printer=KTA1", "trim=n",
                                                                         "VCLot=42"});
    const RunResult direct = runCase("barcode_counter_0042.esc", "in.esc", kta1);
    EXPECT_EQ(assigned.exitCode, 0) << assigned.output;
    EXPECT_TRUE(readFile(assigned.dir / "in.esc.bmp") == readFile(direct.dir / "in.esc.bmp"));
    auto raster = rasterOf(assigned, 640, 608);
    EXPECT_EQ(scantest::scanInk(*raster, scantest::zbar), "0042");
}

TEST(BarcodeEndToEnd, ACounterSetFromAVariablesFileRepaintsTheBarcode)
{
    RunResult run = runCase("barcode_counter.esc", "in.esc", {});
    std::ofstream(run.dir / "vars.txt", std::ios::binary) << "VCLot=42\n";
    const std::string command = "cd '" + run.dir.string() + "' && '" + KTR_RENDER_BINARY +
                                "' in=in.esc loadvariables=vars.txt printer=KTA1 trim=n > out.txt";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const RunResult direct = runCase("barcode_counter_0042.esc", "in.esc", kta1);
    EXPECT_TRUE(readFile(run.dir / "in.esc.bmp") == readFile(direct.dir / "in.esc.bmp"));
}

TEST(BarcodeEndToEnd, TheBundledExampleCarriesEveryLinearSymbologyAndTheyReadBack)
{
    const RunResult run = runCase("../../../examples/demo.esc", "demo.esc", {"in=demo.esc", "showvariables=y"});
    ASSERT_EQ(run.exitCode, 0);
    // zbar reads every symbol but the reversed EAN-13, which is white on black, and the PDF417; the QR code and
    // the DataBar of the library symbols are among them.
    std::istringstream lines(scantest::zbar((run.dir / "demo.esc.bmp").string()));
    std::vector<std::string> read;
    for (std::string line; std::getline(lines, line);)
        read.push_back(line);
    std::sort(read.begin(), read.end());
    EXPECT_EQ(read, (std::vector<std::string>{"0012345000065", "0036000291452",
                                              "010123456789012810ABC123\x1d" "2112345", "01234567", "12345670",
                                              "12345678901231", "KTR-39", "L0005", "ktr-render QR 0123456789"}));
    // Inverted, the reversed EAN-13 reads too.
    auto raster = rasterOf(run, 2560, 6400, "demo.esc.bmp");
    const Area ean13{400, 1400, 738, 1639};
    for (int32_t yy = ean13.top; yy <= ean13.bottom; ++yy)
        for (int32_t xx = ean13.left; xx <= ean13.right; ++xx)
            raster->setPixel(xx, yy, 2);
    EXPECT_EQ(scantest::scanInk(*raster, scantest::zbar, ean13), "4006381333931");
}
