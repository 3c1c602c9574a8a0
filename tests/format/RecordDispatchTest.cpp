#include "format/RecordDispatch.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <type_traits>

#include "drawables/Drawable_Databar.h"
#include "drawables/Drawable_Datamatrix.h"
#include "drawables/Drawable_PDF417.h"
#include "drawables/Drawable_ZintMatrix.h"
#include "graphics/Image.h"
#include "tests/support/EscapeRecords.h"

using KT_FMT::KT_Format;

namespace {

class RecordDispatchTest : public testing::Test {
protected:
    // Dispatches `bytes`, which begin with the selector behind the ESC, on a stream that raises as the parser's does.
    void dispatch(const std::string& bytes)
    {
        in.str(bytes);
        in.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
        KT_FMT::ParseContext context{in, format, nullptr, 0};
        KT_FMT::dispatchRecord(context, KT_FMT::readByte(in));
    }

    std::istringstream in;
    Image image{64, 8};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(RecordDispatchTest, EachRecordIsReadToItsLastByteAndNoFurther)
{
    struct Case {
        std::string record;
        std::string element;  // the id it adds, if any
        uint32_t elements;    // with the anonymous operands of a formula
        uint32_t drawables;
    };
    const Case cases[] = {
        {"Dab", "", 0, 0},
        {"S160", "", 0, 0},
        {"X07050", "", 0, 0},
        {withControls("VCn|S000000003000000099000000001000000001000000000|L00004||"), "Cn", 1, 0},
        {withControls("VDd|17a\x03|F001000000"), "Dd", 1, 0},
        {withControls("VFsum|000000000F12|+F30||"), "Fsum", 4, 0},
        {withControls("VIa|ay|P|0 00000005||"), "Ia", 1, 0},
        {withControls("VXx|ex|"), "Xx", 1, 0},
        {"#I00000000020000100002", "", 0, 1},
        {"L000000000000008000040000000000", "", 0, 1},
        {withControls("#B07000100002030F123456|0401800820001"), "&0", 1, 1},
        {graphicRecord(0, 0, 1, 1, [](int32_t, int32_t) { return 0x80; }).substr(1), "", 0, 1},
        {withControls("#B07000000000000FDM|0200000020000"), "", 1, 1},
        {withControls("#B09000000000000FDB|002900100020005002"), "", 1, 1},
        {withControls("#B10000000000000FQR|010200000110"), "", 1, 1},
        {withControls("#B11000000000000FHX|010200000110"), "", 1, 1},
        {withControls("#B12000000000000FPDF|00550302000602"), "", 1, 1},
        {withControls("#B13000000000000FDM|010200000110"), "", 1, 1},
        {withControls("#B14000000000000FMQ|010200000110"), "", 1, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.record);
        format.getElements().clear();
        format.getDrawables().clear();
        dispatch(c.record + "\xff");
        EXPECT_EQ(in.peek(), 0xff);
        EXPECT_EQ(format.getElements().size(), c.elements);
        if (!c.element.empty()) {
            EXPECT_NO_THROW(format.getElements().getElement(c.element));
        }
        EXPECT_EQ(format.getDrawables().size(), c.drawables);
    }
}

TEST_F(RecordDispatchTest, EachMatrixTypeGetsItsOwnDrawable)
{
    struct Case {
        const char* record;
        std::function<bool(const KT_AC::Drawable&)> isOfClass;
    };
    const auto is = [](auto* probe) {
        return [probe](const KT_AC::Drawable& d) {
            return dynamic_cast<const std::remove_pointer_t<decltype(probe)>*>(&d) != nullptr;
        };
    };
    const Case cases[] = {
        {"#B07000000000000FDM|0200000020000", is(static_cast<KT_AC::Drawable_Datamatrix*>(nullptr))},
        {"#B09000000000000FDB|002900100020005002", is(static_cast<KT_AC::Drawable_Databar*>(nullptr))},
        {"#B10000000000000FQR|010200000110", is(static_cast<KT_AC::Drawable_QrCode*>(nullptr))},
        {"#B11000000000000FHX|010200000110", is(static_cast<KT_AC::Drawable_HanxinCode*>(nullptr))},
        {"#B12000000000000FPDF|00550302000602", is(static_cast<KT_AC::Drawable_PDF417*>(nullptr))},
        {"#B13000000000000FDM|010200000110", is(static_cast<KT_AC::Drawable_DMRectCode*>(nullptr))},
        {"#B14000000000000FMQ|010200000110", is(static_cast<KT_AC::Drawable_MicroQrCode*>(nullptr))},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.record);
        format.getDrawables().clear();
        dispatch(withControls(c.record) + "\xff");
        ASSERT_EQ(format.getDrawables().size(), 1u);
        EXPECT_TRUE(c.isOfClass(format.getDrawables()[0]));
    }
}

TEST_F(RecordDispatchTest, ATextRecordFindsItsElementWhileItIsRead)
{
    dispatch(withControls("VIt|WW|P|0 00000009||\xff"));
    dispatch(withControls("#T05000100006000VIt|08L000\xff"));
    EXPECT_EQ(in.peek(), 0xff);
    EXPECT_EQ(format.getDrawables().size(), 1u);
}

TEST_F(RecordDispatchTest, AnUnknownSelectorBehindHashOrVStopsBeforeTheNextEsc)
{
    // The selector byte is taken whatever it is, even an ESC.
    for (const char* record : {"#Qlost bytes\x1b", "VQ\xff lost\x1b", "#\x1b lost\x1b"}) {
        SCOPED_TRACE(record);
        dispatch(record);
        EXPECT_EQ(in.peek(), 0x1b);
    }
}

TEST_F(RecordDispatchTest, AGraphicsRecordPaintsWhileItIsRead)
{
    dispatch(graphicRecord(0, 1, 1, 1, [](int32_t, int32_t) { return 0xc0; }).substr(1));
    EXPECT_EQ(image.getPixel(0, 1), 1);
    EXPECT_EQ(image.getPixel(1, 1), 1);
    EXPECT_EQ(image.getPixel(2, 1), 0);
}

TEST_F(RecordDispatchTest, AnUnknownByteBehindEscReadsUntilTheEndOfInputRaises)
{
    for (const char* record : {"Q00000\xff\x1b" "D..\xff", "\"\xff", "Y\xff", "a\xff"}) {
        SCOPED_TRACE(record);
        EXPECT_THROW(dispatch(record), std::ios_base::failure);
        EXPECT_TRUE(in.eof());
    }
}
