#include "drawables/Drawable_Text.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

using KT_AC::Drawable_Text;
using KT_FMT::KT_Format;

namespace {

class TextTest : public fonttest::FontFixture {
protected:
    void parse(const std::string& records)
    {
        std::istringstream in("TEXTS     " + records + "\xff");
        format.parse(in, nullptr, 0);
    }
    const Drawable_Text& text(size_t index = 0)
    {
        return dynamic_cast<const Drawable_Text&>(format.getDrawables()[index]);
    }
    // What the same call on the image itself paints.
    PixelCanvas direct(int32_t x, int32_t y, int32_t size, int32_t font, const std::string& value,
                       int32_t orientation, int32_t alignment, int32_t spacing, bool reversed)
    {
        Image reference(640, 200);
        Area area;
        reference.drawText(x, y, size, font, value, orientation, &area, alignment, spacing, reversed);
        return PixelCanvas::of(reference);
    }

    Image image{640, 200};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(TextTest, ARecordReadsEveryField)
{
    parse("\x1b#T05001230004510FHello\v12C005");
    const Drawable_Text& t = text();
    EXPECT_EQ(t.getFontNumber(), 5);
    EXPECT_EQ(t.getX(), 123);
    EXPECT_EQ(t.getY(), 45);
    EXPECT_EQ(t.getOrientation(), 1);
    EXPECT_FALSE(t.isReversed());
    EXPECT_EQ(t.getContentId(), "&0");
    EXPECT_EQ(t.getSize(), 12);
    EXPECT_EQ(t.getAlignment(), 1);
    EXPECT_EQ(t.getSpacing(), 5 * 65536);
    EXPECT_TRUE(t.getIsStatic());
}

TEST_F(TextTest, AnyDigitButZeroMeansReversed)
{
    parse("\x1b#T05000100005007FX\v10L000" "\x1b#T05000100005000FX\v10R000");
    EXPECT_TRUE(text(0).isReversed());
    EXPECT_FALSE(text(1).isReversed());
    EXPECT_EQ(text(0).getAlignment(), 0);
    EXPECT_EQ(text(1).getAlignment(), 2);
}

TEST_F(TextTest, OnlyUpperCaseAlignmentsAreKnown)
{
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { parse("\x1b#T05000100005000FX\v10l000"); },
                                                 "error extracting font alignment, expected C, L or R got: l");
    EXPECT_EQ(format.getDrawables().size(), 0u);
}

TEST_F(TextTest, EveryOtherFieldFailsWithTheTextOfItsReader)
{
    struct Case {
        const char* field;
        std::string record;
        bool numberField;
        std::string text;
    };
    const std::string badNumber = "non-digit or too many sign characters read while parsing number: ";
    const Case cases[] = {
        {"font number", "X5000100005000FX\v10L000", true, badNumber + "X"},
        {"x", "05000X00005000FX\v10L000", true, badNumber + "X"},
        {"orientation", "05000100005040FX\v10L000", false, "error parsing orientation, expected 0, 1, 2 or 3 got: 4"},
        {"reversed", "0500010000500XFX\v10L000", true, badNumber + "X"},
        {"content", "05000100005000ZX\v10L000", false, "expected content field starting with 'F' or 'V' got: 'Z'"},
        {"size", "05000100005000FX\v1XL000", true, badNumber + "X"},
        {"spacing", "05000100005000FX\v10L0X0", true, badNumber + "X"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field);
        std::istringstream record(c.record);
        if (c.numberField)
            expectFailure<KT_ERROR::parse_time_error>([&] { Drawable_Text::read(record, format); }, c.text);
        else
            expectFailure<KT_ERROR::bad_escape_sequence>([&] { Drawable_Text::read(record, format); }, c.text);
        EXPECT_EQ(format.getDrawables().size(), 0u);
    }
}

TEST_F(TextTest, TheNamedElementMustStandEarlier)
{
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { parse("\x1b#T05000100005000VXlater\v10L000"); },
                                                 "Element id not found: Xlater");
}

TEST_F(TextTest, ATextIsStaticExactlyIfItsElementIsNotVariable)
{
    auto variable = std::make_unique<ProbeElement>("v");
    auto fixed = std::make_unique<ProbeElement>("f");
    fixed->variable = false;
    format.getElements().addElement("Xv", std::move(variable));
    format.getElements().addElement("Xf", std::move(fixed));
    std::istringstream records("05000100005000VXv\v10L000" "05000100005000VXf\v10L000");
    Drawable_Text::read(records, format);
    Drawable_Text::read(records, format);
    EXPECT_FALSE(text(0).getIsStatic());
    EXPECT_TRUE(text(1).getIsStatic());
}

TEST_F(TextTest, RedrawIsTheImagesDrawTextWithTheRecordsValues)
{
    struct Case {
        std::string record;
        int32_t x, y, size, font, orientation, alignment, spacing;
        bool reversed;
    };
    const Case cases[] = {
        {"\x1b#T05000200008000FAgile 42\v14L000", 20, 80, 14, 5, 0, 0, 0, false},
        {"\x1b#T04003000010010FAgile 42\v10C003", 300, 100, 10, 4, 1, 1, 3 * 65536, false},
        {"\x1b#T00003000010021FAgile 42\v12R000", 300, 100, 12, 0, 2, 2, 0, true},
        {"\x1b#T06003000010030FAgile 42\v09L005", 300, 100, 9, 6, 3, 0, 5 * 65536, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.record);
        parse(c.record);
        EXPECT_TRUE(PixelCanvas::of(image) ==
                    direct(c.x, c.y, c.size, c.font, "Agile 42", c.orientation, c.alignment, c.spacing, c.reversed));
    }
}

TEST_F(TextTest, AnEmptyValuePaintsNothingAndLeavesAnEmptyArea)
{
    parse("\x1b#T05000200008000F\v14L000");
    const Area& area = text().getPaintedArea();
    EXPECT_EQ(area.right, -1);
    EXPECT_EQ(area.bottom, -1);
    EXPECT_EQ(area.top, 200);
    EXPECT_TRUE(PixelCanvas::of(image) == PixelCanvas(640, 200));
}

TEST_F(TextTest, AnUpdateRemovesTheWholeBoxOfTheLastReversedPaint)
{
    auto element = std::make_unique<ProbeElement>("WIDE TEXT");
    ProbeElement& value = *element;
    format.getElements().addElement("Xv", std::move(element));
    std::istringstream record("05" "00020" "00100" "0" "1" "VXv\v" "14" "L" "000");
    Drawable_Text::read(record, format);
    format.getDrawables()[0].paint(image, KT_AC::STAGE_VARIABLE);
    const PixelCanvas wide = direct(20, 100, 14, 5, "WIDE TEXT", 0, 0, 0, true);
    ASSERT_TRUE(PixelCanvas::of(image) == wide);
    value.text = "ab";
    value.unchanged = false;
    format.update();
    const PixelCanvas narrow = direct(20, 100, 14, 5, "ab", 0, 0, 0, true);
    EXPECT_FALSE(narrow == wide);
    EXPECT_TRUE(PixelCanvas::of(image) == narrow);
}

TEST_F(TextTest, Spacing005WidensEveryGapInTheBaselineDirection)
{
    const std::string value = "ABCDE";
    parse("\x1b#T05000200008000F" + value + "\v14L000");
    const Area plain = text().getPaintedArea();
    parse("\x1b#T05000200008000F" + value + "\v14L005");
    const Area spaced = text().getPaintedArea();
    EXPECT_EQ(spaced.right - spaced.left, plain.right - plain.left + 5 * 4);

    parse("\x1b#T05003000001010F" + value + "\v14L000");
    const Area down = text().getPaintedArea();
    parse("\x1b#T05003000001010F" + value + "\v14L005");
    const Area downSpaced = text().getPaintedArea();
    EXPECT_EQ(downSpaced.bottom - downSpaced.top, down.bottom - down.top + 5 * 4);
    EXPECT_EQ(downSpaced.right - downSpaced.left, down.right - down.left);
}

TEST_F(TextTest, RightAlignmentUpsideDownRunsToTheRightOfTheAnchor)
{
    parse("\x1b#T05003000010020FWIDE TEXT\v14R000");
    const Area area = text().getPaintedArea();
    EXPECT_GE(area.left, 299);
    EXPECT_GT(area.right, 350);
    int inkBelowBaseline = 0, inkLeftOfAnchor = 0;
    for (int32_t y = 0; y < 200; ++y)
        for (int32_t x = 0; x < 640; ++x)
            if (image.getPixel(x, y)) {
                inkBelowBaseline += y > 100;
                inkLeftOfAnchor += x < 299;
            }
    EXPECT_GT(inkBelowBaseline, 100) << "upside down, the letters hang below the baseline";
    EXPECT_EQ(inkLeftOfAnchor, 0);
}

TEST_F(TextTest, AnUnmappedFontFailsInThePreloadWithItsOwnText)
{
    std::istringstream record("42000100005000FY\v10L000");
    Drawable_Text::read(record, format);
    try {
        format.getDrawables()[0].paint(image, KT_AC::STAGE_PRELOAD);
        ADD_FAILURE() << "no exception";
    } catch (const KT_ERROR::kt_exception& error) {
        EXPECT_EQ(std::string(error.what()).rfind("Font::drawText() error acquiring size: ", 0), 0u) << error.what();
    }
}

TEST_F(TextTest, AStaticTextOfAnUnmappedFontFailsInTheStaticStageBeforeThePreload)
{
    try {
        parse("\x1b#T42000100005000FX\v10L000");
        ADD_FAILURE() << "no exception";
    } catch (const KT_ERROR::kt_exception& error) {
        EXPECT_EQ(std::string(error.what()).rfind("Font::drawText() error acquiring size 42: ", 0), 0u)
            << error.what();
    }
}

TEST_F(TextTest, TheTextOfAnUnmappedFontFailsWhenRedrawn)
{
    std::istringstream record("42000100005000FY\v10L000");
    Drawable_Text::read(record, format);
    try {
        format.getDrawables()[0].redraw(image);
        ADD_FAILURE() << "no exception";
    } catch (const KT_ERROR::kt_exception& error) {
        EXPECT_EQ(std::string(error.what()).rfind("Font::drawText() error acquiring size 42: ", 0), 0u)
            << error.what();
    }
}
