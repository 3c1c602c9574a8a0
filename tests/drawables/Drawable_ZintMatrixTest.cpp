#include "drawables/Drawable_ZintMatrix.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/GFX_Exception.h"
#include "graphics/Image.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"
#include "tests/symbologies/ZintTestSupport.h"

using KT_AC::Drawable_ZintMatrix;
using KT_FMT::KT_Format;

namespace {

using Reader = std::function<void(std::istream&, KT_Format&)>;

// The body of an ESC # B 10, 11, 13 or 14 record behind its type characters.
std::string matrixBody(int32_t x, int32_t y, char turns, char reversed, const std::string& content, int32_t size,
                       int32_t module, int32_t margin, char level, char inputMode, char flag)
{
    return numberField(x) + numberField(y) + turns + reversed + "F" + content + "\x0b" + numberField(size, 2) +
           numberField(module, 2) + numberField(margin) + level + inputMode + flag;
}

class ZintMatrixDrawable : public zinttest::GS1Fixture {
protected:
    void SetUp() override
    {
        GS1Fixture::SetUp();
        image = std::make_unique<Image>(320, 320);
        format = std::make_unique<KT_Format>(nullptr, image.get(), nullptr);
    }

    Drawable_ZintMatrix& read(const Reader& reader, const std::string& body)
    {
        std::istringstream in(body);
        reader(in, *format);
        return dynamic_cast<Drawable_ZintMatrix&>(format->getDrawables()[format->getDrawables().size() - 1]);
    }

    std::unique_ptr<Image> image;
    std::unique_ptr<KT_Format> format;
};

struct Kind {
    const char* name;
    Reader reader;
    int symbology;
};

const Kind kinds[] = {
    {"QrCode", KT_AC::Drawable_QrCode::read, BARCODE_QRCODE},
    {"HanxinCode", KT_AC::Drawable_HanxinCode::read, BARCODE_HANXIN},
    {"DMRectCode", KT_AC::Drawable_DMRectCode::read, BARCODE_DATAMATRIX},
    {"MicroQrCode", KT_AC::Drawable_MicroQrCode::read, BARCODE_MICROQR},
};

}  // namespace

TEST_F(ZintMatrixDrawable, EachKindReadsItsFieldsAndSetsUpItsSymbolWithThem)
{
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const Drawable_ZintMatrix& d =
            read(kind.reader, matrixBody(12, 34, '2', '1', "DATA", 3, 4, 12345, '2', '0', '1'));
        EXPECT_EQ(d.getX(), 12);
        EXPECT_EQ(d.getY(), 34);
        EXPECT_EQ(d.getOrientation(), 2);
        EXPECT_TRUE(d.isReversed());
        EXPECT_TRUE(d.getIsStatic());
        EXPECT_EQ(d.getSize(), 3);
        EXPECT_EQ(d.getModule(), 4);
        EXPECT_EQ(d.getMargin(), 12345);
        EXPECT_EQ(d.getLevel(), 2);
        EXPECT_EQ(d.getInputMode(), 0);
        EXPECT_TRUE(d.getFlag());
        const zint_symbol& s = d.getSymbol().getSymbol();
        EXPECT_EQ(s.symbology, kind.symbology);
        EXPECT_EQ(s.option_2, 3);
        EXPECT_EQ(s.option_1, kind.symbology == BARCODE_DATAMATRIX ? 0 : 2);
        EXPECT_EQ(s.input_mode, 1);
    }
}

TEST_F(ZintMatrixDrawable, FieldFaultsAreThoseOfTheRecordHeadAndTheFieldReaders)
{
    struct Row {
        std::string body;
        std::string text;
    };
    const Row rows[] = {
        {matrixBody(10, 20, '0', '2', "X", 0, 2, 0, '1', '1', '0'),
         "datamatrix,qrcode,databar: reversed option needs to be '0' or '1', got: 2 10 20"},
        {matrixBody(10, 20, '0', '0', "X", 0, 2, 0, '1', '1', '7'), "expected '0' or '1' but got: '7'"},
    };
    for (const Kind& kind : kinds)
        for (const Row& r : rows) {
            SCOPED_TRACE(testing::Message() << kind.name << " " << r.text);
            expectFailure<KT_ERROR::bad_escape_sequence>([&] { read(kind.reader, r.body); }, r.text);
        }
    EXPECT_EQ(format->getDrawables().size(), 0u);
}

TEST_F(ZintMatrixDrawable, TheSymbolStandsAtXYAndTurnsWithinItsSquare)
{
    const zinttest::Modules dump = zinttest::zintDump("-b 58 --vers=1 --secure=1 -d TURN", 21);
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        image->clear();
        const char turn = static_cast<char>('0' + turns);
        Drawable_ZintMatrix& d =
            read(KT_AC::Drawable_QrCode::read, matrixBody(50, 60, turn, '0', "TURN", 1, 3, 0, '1', '1', '0'));
        d.redraw(*image);
        EXPECT_EQ(zinttest::readModules(*image, 50, 60, 21, 21, 3), zinttest::turned(dump, turns));
        const Area& area = d.getPaintedArea();
        EXPECT_EQ(area.right, 0) << "no painted area is kept";
        EXPECT_EQ(area.bottom, 0);
    }
}

TEST_F(ZintMatrixDrawable, AReversedCodePrintsExactlyLikeANormalOne)
{
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        Image normal(320, 320), reversed(320, 320);
        read(kind.reader, matrixBody(20, 20, '1', '0', "SAME", 0, 3, 0, '1', '0', '0')).redraw(normal);
        read(kind.reader, matrixBody(20, 20, '1', '1', "SAME", 0, 3, 0, '1', '0', '0')).redraw(reversed);
        EXPECT_GT(zinttest::inkCount(normal), 0);
        EXPECT_TRUE(PixelCanvas::of(normal) == PixelCanvas::of(reversed));
    }
}

TEST_F(ZintMatrixDrawable, EachKindReadsBackThroughTheDrawable)
{
    struct Row {
        const Kind& kind;
        const char* format;
    };
    for (const Row& r : {Row{kinds[0], "QRCode"}, Row{kinds[2], "DataMatrix"}, Row{kinds[3], "MicroQRCode"}})
        for (int32_t turns = 0; turns < 4; ++turns) {
            SCOPED_TRACE(testing::Message() << r.kind.name << " turns " << turns);
            // Size 5 keeps the Data Matrix square, so that it turns properly.
            const int32_t size = r.kind.symbology == BARCODE_DATAMATRIX ? 5 : 0;
            image->clear();
            const char turn = static_cast<char>('0' + turns);
            read(r.kind.reader, matrixBody(40, 40, turn, '0', "KTR 42", size, 4, 0, '1', '0', '0')).redraw(*image);
            EXPECT_EQ(zinttest::zxingRead(*image, r.format), "KTR 42");
        }
}

TEST_F(ZintMatrixDrawable, AGS1ContentWithFNC1ReadsBackAsItsElementString)
{
    const std::string content = "\\<FNC1>0101234567890128" "10ABC";
    read(KT_AC::Drawable_QrCode::read, matrixBody(40, 40, '0', '0', content, 0, 4, 0, '1', '0', '0')).redraw(*image);
    EXPECT_EQ(zinttest::zxingRead(*image, "QRCode"), "0101234567890128" "10ABC");
}

TEST_F(ZintMatrixDrawable, AnOriginOffTheRasterIsRefusedByTheView)
{
    Drawable_ZintMatrix& d =
        read(KT_AC::Drawable_QrCode::read, matrixBody(320, 10, '0', '0', "X", 0, 2, 0, '1', '1', '0'));
    EXPECT_THROW(d.redraw(*image), GFX_OutsideContextException);
}

TEST_F(ZintMatrixDrawable, ModulesOffTheRasterEndThePaint)
{
    Drawable_ZintMatrix& d =
        read(KT_AC::Drawable_QrCode::read, matrixBody(300, 300, '0', '0', "X", 0, 2, 0, '1', '1', '0'));
    EXPECT_THROW(d.redraw(*image), KT_ERROR::drawable_off_format);
}
