#include "drawables/Drawable_Databar.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"
#include "tests/support/ScanSupport.h"
#include "tests/symbologies/ZintTestSupport.h"

using KT_AC::Drawable_Databar;
using KT_FMT::KT_Format;

namespace {

// The body of an ESC # B 09 record behind its type characters.
std::string databarBody(int32_t x, int32_t y, char turns, char reversed, const std::string& content,
                        int32_t symbology, int32_t height, int32_t module, int32_t textHeight, int32_t option)
{
    return numberField(x) + numberField(y) + turns + reversed + "F" + content + "\x0b" + numberField(symbology, 4) +
           numberField(height) + numberField(module, 2) + numberField(textHeight) + numberField(option, 2);
}

// Formats fill the identifier table themselves.
class DatabarDrawable : public fonttest::FontFixture {
protected:
    void SetUp() override
    {
        FontFixture::SetUp();
        image = std::make_unique<Image>(640, 640);
        format = std::make_unique<KT_Format>(nullptr, image.get(), nullptr);
    }

    Drawable_Databar& read(const std::string& body)
    {
        std::istringstream in(body);
        Drawable_Databar::read(in, *format);
        return dynamic_cast<Drawable_Databar&>(format->getDrawables()[format->getDrawables().size() - 1]);
    }

    std::unique_ptr<Image> image;
    std::unique_ptr<KT_Format> format;
};

const std::string expanded = "0101234567890128" "10ABC123\\<FNC1>2112345";

}  // namespace

TEST_F(DatabarDrawable, TheRecordGivesSymbologyHeightModuleTextHeightAndOption)
{
    const Drawable_Databar& d = read(databarBody(10, 20, '1', '1', "DATA", 81, 12345, 3, 678, 4));
    EXPECT_EQ(d.getX(), 10);
    EXPECT_EQ(d.getY(), 20);
    EXPECT_EQ(d.getOrientation(), 1);
    EXPECT_EQ(d.getSymbology(), 81);
    EXPECT_EQ(d.getHeight(), 12345);
    EXPECT_EQ(d.getModule(), 3);
    EXPECT_EQ(d.getTextHeight(), 678);
    EXPECT_EQ(d.getOption(), 4);
}

TEST_F(DatabarDrawable, AGS1DataBarReadsBackWithItsElementStringAtEveryOrientation)
{
    for (int32_t turns = 0; turns < 4; ++turns) {
        SCOPED_TRACE(turns);
        image->clear();
        const char turn = static_cast<char>('0' + turns);
        read(databarBody(30, 40, turn, '0', expanded, 31, 120, 2, 60, 0)).redraw(*image);
        EXPECT_EQ(scantest::scanInk(*image, scantest::zbar), "0101234567890128" "10ABC123\x1d" "2112345");
        EXPECT_EQ(zinttest::zxingRead(*image, "DataBarExpanded"), "(01)01234567890128(10)ABC123(21)12345");
    }
}

TEST_F(DatabarDrawable, AReversedSymbolPrintsExactlyLikeANormalOne)
{
    Image normal(640, 640), reversed(640, 640);
    read(databarBody(30, 40, '2', '0', "0123456789012", 29, 100, 2, 60, 0)).redraw(normal);
    read(databarBody(30, 40, '2', '1', "0123456789012", 29, 100, 2, 60, 0)).redraw(reversed);
    EXPECT_TRUE(PixelCanvas::of(normal) == PixelCanvas::of(reversed));
}

TEST_F(DatabarDrawable, AnExpandedContentWithoutAKnownIdentifierRaisesFromTheRedraw)
{
    Drawable_Databar& d = read(databarBody(30, 40, '0', '0', "7712345", 31, 100, 2, 0, 0));
    expectFailure<KT_ERROR::format_error>([&] { d.redraw(*image); },
                                          "ERROR in Databar EXPANDED ai_number_replace: no more AI-Found");
}
