// The element access of a format: lists, reads, changes with their rollback, and the repaints they cause.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "autocode/CounterAttributes.h"
#include "drawables/Drawable.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/fonts/FontTestSupport.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

using KT_AC::CounterAttributes;
using KT_FMT::KT_Format;

namespace {

const std::string VT = "\v";
const std::string ESC = "\x1b";

// A bar of four dots per character of its element's result, four rows high; a poison result falls off.
class BarDrawable : public KT_AC::Drawable {
public:
    BarDrawable(KT_Format& format, std::string id, int32_t x, int32_t y, std::string poison = "")
        : Drawable(format), poison(std::move(poison))
    {
        contentId = std::move(id);
        this->x = x;
        this->y = y;
    }
    void redraw(Image& image) override
    {
        ++redraws;
        const std::string result = format->getElements().getElement(contentId).getResult();
        if (!poison.empty() && result == poison)
            throw KT_ERROR::drawable_off_format("bar off format");
        const auto width = static_cast<int32_t>(4 * result.size());
        image.rectangle(x, y, width, height, 1);
        paintedArea = {x, y, x + width - 1, y + height - 1};
    }

    static constexpr int32_t height = 4;
    int redraws = 0;

private:
    std::string poison;
};

std::string prompted(const std::string& name, const std::string& content, const std::string& prompt,
                     const std::string& padding, const std::string& maxLength, const std::string& prefix = "",
                     const std::string& suffix = "")
{
    return ESC + "VI" + name + VT + content + VT + prompt + VT + padding + maxLength + prefix + VT + suffix + VT;
}

std::string counter(const std::string& name, char trigger, const std::string& value, const std::string& padding,
                    const std::string& prefix)
{
    return ESC + "VC" + name + VT + trigger + value + "000000099" + "000000001" + "000000001" + "000000000" + VT +
           padding + prefix + VT + VT;
}

// Prompts a, b and s, the external x, the counters m and n, and a box over the top left corner.
const std::string testFormat = "ACCESS    " + prompted("b", "bee", "Prompt B", "0 0000", "0009", "<", ">") +
                               prompted("a", "ay", "Prompt A", "L*0005", "0009") +
                               prompted("s", "ab", "Prompt S", "0 0005", "0009") + ESC + "VXx" + VT + "ex" + VT +
                               counter("n", 'S', "000000003", "L00004", "#") +
                               counter("m", 'T', "000000007", "0 0000", "") + ESC + "L" +
                               "00000000000001600008" + "0000000000" + "\xff";

class FormatAccessTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::istringstream in(testFormat);
        format.parse(in, nullptr, 0);
        format.getElements().addElement("Dday", std::make_unique<ProbeElement>("Monday"));
        format.getElements().addElement("Fsum", std::make_unique<ProbeElement>("12"));
    }
    BarDrawable& addBar(const std::string& id, int32_t x, int32_t y, const std::string& poison = "")
    {
        auto bar = std::make_unique<BarDrawable>(format, id, x, y, poison);
        BarDrawable& link = *bar;
        format.getDrawables().add(std::move(bar));
        return link;
    }

    Image image{64, 32};
    KT_Format format{nullptr, &image, nullptr};
};

template <class Action>
void expectAccessFailure(Action&& action, const std::string& text)
{
    expectFailure<KT_ERROR::kt_exception>(std::forward<Action>(action), text);
}

}  // namespace

TEST_F(FormatAccessTest, ElementIdsComeByKindInIdOrder)
{
    using Ids = std::vector<std::string>;
    EXPECT_EQ(format.getElementIds(1), (Ids{"VIa", "VIb", "VIs"}));
    EXPECT_EQ(format.getElementIds(2), (Ids{"VXx"}));
    EXPECT_EQ(format.getElementIds(4), (Ids{"VCm", "VCn"}));
    EXPECT_EQ(format.getElementIds(8), (Ids{"VDday"}));
    EXPECT_EQ(format.getElementIds(16), (Ids{"VFsum"}));
    EXPECT_EQ(format.getElementIds(31), (Ids{"VIa", "VIb", "VIs", "VXx", "VCm", "VCn", "VFsum", "VDday"}));
    EXPECT_EQ(format.countElements(1), 3u);
    EXPECT_EQ(format.countElements(31), 8u);
}

TEST_F(FormatAccessTest, AnonymousElementsAreNeverListed)
{
    format.getElements().addElement(format.getElements().generateId(), std::make_unique<ProbeElement>("c"));
    EXPECT_EQ(format.countElements(31), 8u);
}

TEST_F(FormatAccessTest, CombinedMasksFail)
{
    expectFailure<KT_ERROR::internal_autocode_error>([&] { format.getElementIds(3); },
                                                     "elementTypeToPrefix() called with illegal parameter 3");
    expectFailure<KT_ERROR::internal_autocode_error>([&] { format.countElements(0); },
                                                     "elementTypeToPrefix() called with illegal parameter 0");
}

TEST_F(FormatAccessTest, ReadsGiveResultsContentsPromptsAndLengths)
{
    EXPECT_EQ(format.getResultOfElement("VIb"), "<bee>");
    EXPECT_EQ(format.getResultOfElement("VCn"), "#0003");
    EXPECT_EQ(format.getResultOfElement("VDday"), "Monday");
    EXPECT_EQ(format.getContentOfElement("VIb"), "bee");
    EXPECT_EQ(format.getContentOfElement("VIa"), "ay");
    EXPECT_EQ(format.getContentOfElement("VXx"), "ex");
    EXPECT_EQ(format.getContentOfElement("VCn"), "3");
    EXPECT_EQ(format.getPromptOfElement("VIb"), "Prompt B");
    EXPECT_EQ(format.getVariableMinimumLength("VIa"), 5u);
    EXPECT_EQ(format.getVariableMaximumLength("VIa"), 9u);
    EXPECT_EQ(format.getCounterAttributes("VCn"), (CounterAttributes{3, 99, 1, 0, 1}));
}

TEST_F(FormatAccessTest, ThePromptOperationsDoNotLookAtTheFirstByte)
{
    EXPECT_EQ(format.getPromptOfElement("xIb"), "Prompt B");
    EXPECT_EQ(format.getVariableMinimumLength("?Is"), 5u);
    EXPECT_EQ(format.getVariableMaximumLength("IIb"), 9u);
}

TEST_F(FormatAccessTest, EachOperationTestsTheReferenceItsOwnWay)
{
    struct Case {
        std::function<void()> action;
        std::string text;
    };
    KT_Format& f = format;
    const Case cases[] = {
        {[&] { f.getResultOfElement("Ib"); }, "KT_Format::getResultOfElement(): id must start with 'V'"},
        {[&] { f.getContentOfElement(""); }, "KT_Format::getContentOfElement(): id must start with 'V'"},
        {[&] { f.getContentOfElement("VDday"); },
         "element content not available for this type or unknown element type: VDday"},
        {[&] { f.getContentOfElement("VFsum"); },
         "element content not available for this type or unknown element type: VFsum"},
        {[&] { f.getContentOfElement("V"); }, "element content not available for this type or unknown element type: V"},
        {[&] { f.getPromptOfElement("VXx"); }, "KT_Format::getPromptOfElement(): id must start with VI: "},
        {[&] { f.getPromptOfElement("I"); }, "KT_Format::getPromptOfElement(): id must start with VI: "},
        {[&] { f.getVariableMaximumLength("VCn"); }, "KT_Format::getPromptOfElement(): id must start with VI: "},
        {[&] { f.getVariableMinimumLength("V"); }, "KT_Format::getVariableMinimumLength(): id must start with VI: "},
        {[&] { f.getCounterAttributes("VIa"); }, "KT_Format::getCounterAttributes(): id must start with VC"},
        {[&] { f.getCounterAttributes("xCn"); }, "KT_Format::getCounterAttributes(): id must start with VC"},
        {[&] { f.setCounterAttributes("Cn", {}); }, "KT_Format::setCounterAttributes(): id must start with VC"},
        {[&] { f.setContentOfElement("Ib", "1"); }, "KT_Format::setContentOfElement(): id must start with 'V'"},
        {[&] { f.setContentOfElement("VDday", "1"); }, "KT_Format::setContentOfElement() unknown element type: Dday"},
        {[&] { f.addSerializationData("x", ""); }, "KT_Format::addSerializationData(): id must start with 'V'"},
        {[&] { f.addSerializationData("VCn", "a"); }, "KT_Format::addSerializationData() unknown element type: Cn"},
        {[&] { f.deleteSerializationData("Xx"); }, "KT_Format::deleteSerializationData(): id must start with 'V'"},
        {[&] { f.deleteSerializationData("VDday"); },
         "KT_Format::deleteSerializationData() unknown element type: Dday"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        expectAccessFailure(c.action, c.text);
    }
}

TEST_F(FormatAccessTest, AnUnknownIdFailsInTheLookupWithoutItsV)
{
    KT_Format& f = format;
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[&] { f.getResultOfElement("VInope"); }, "Element id not found: Inope"},
        {[&] { f.getContentOfElement("VXnope"); }, "Element id not found: Xnope"},
        {[&] { f.getPromptOfElement("xInope"); }, "Element id not found: Inope"},
        {[&] { f.getCounterAttributes("VCnope"); }, "Element id not found: Cnope"},
        {[&] { f.setContentOfElement("VCnope", "1"); }, "Element id not found: Cnope"},
        {[&] { f.addSerializationData("VInope", "1"); }, "Element id not found: Inope"},
    };
    for (const auto& [action, text] : cases) {
        SCOPED_TRACE(text);
        expectFailure<KT_ERROR::bad_escape_sequence>(action, text);
    }
}

TEST_F(FormatAccessTest, AnElementOfTheWrongClassIsNamedWithOrWithoutABracket)
{
    format.getElements().addElement("Iodd", std::make_unique<ProbeElement>("i"));
    format.getElements().addElement("Codd", std::make_unique<ProbeElement>("c"));
    KT_Format& f = format;
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[&] { f.getContentOfElement("VIodd"); }, "tried to retrieve a variable (VIodd), but found something else"},
        {[&] { f.getContentOfElement("VCodd"); }, "tried to retrieve a counter (VCodd), but found something else"},
        {[&] { f.getCounterAttributes("VCodd"); }, "tried to retrieve a counter (VCodd, but found something else"},
        {[&] { f.setCounterAttributes("VCodd", {}); }, "tried to retrieve a counter (VCodd, but found something else"},
        {[&] { f.setContentOfElement("VCodd", "1"); }, "tried to retrieve a counter (VCodd, but found something else"},
        {[&] { f.setContentOfElement("VIodd", "1"); }, "tried to retrieve a variable (VIodd, but found something else"},
        {[&] { f.addSerializationData("VIodd", ""); },
         "tried to retrieve a variable (VIodd, but found something else"},
        {[&] { f.deleteSerializationData("VIodd"); },
         "tried to retrieve a variable (VIodd, but found something else"},
        {[&] { f.getPromptOfElement("VIodd"); }, "tried to retrieve a variable (VIodd, but found something else"},
    };
    for (const auto& [action, text] : cases) {
        SCOPED_TRACE(text);
        expectFailure<KT_ERROR::internal_autocode_error>(action, text);
    }
}

TEST_F(FormatAccessTest, ACounterTakesTheLeadingNumberOfItsText)
{
    const std::pair<std::string, std::string> cases[] = {
        {"abc", "0"}, {"12abc", "12"}, {"-4", "-4"}, {" 7", "7"}, {"", "0"}, {"+0015", "15"}, {"4294967297", "1"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        format.setContentOfElement("VCn", text);
        EXPECT_EQ(format.getContentOfElement("VCn"), expected);
    }
}

TEST_F(FormatAccessTest, AVariableOverItsMaximumKeepsItsContent)
{
    expectFailure<KT_ERROR::illegal_content>(
        [&] { format.setContentOfElement("VIb", "0123456789"); },
        "new input '0123456789' to variable 'Ib' exceeds max length of variable (10/9)");
    EXPECT_EQ(format.getContentOfElement("VIb"), "bee");
    format.setContentOfElement("VXx", std::string(500, 'z'));
    EXPECT_EQ(format.getContentOfElement("VXx").size(), 500u);
}

TEST_F(FormatAccessTest, AFailedRepaintRollsTheVariableBack)
{
    BarDrawable& bar = addBar("Ib", 0, 20, "<boom>");
    expectFailure<KT_ERROR::drawable_off_format>([&] { format.setContentOfElement("VIb", "boom"); },
                                                 "bar off format");
    EXPECT_EQ(format.getContentOfElement("VIb"), "bee");
    EXPECT_EQ(bar.redraws, 1) << "the old value goes back without a further update";
}

TEST_F(FormatAccessTest, AFailedRepaintRollsTheCounterBack)
{
    BarDrawable& bar = addBar("Cn", 0, 20, "#0013");
    expectFailure<KT_ERROR::drawable_off_format>([&] { format.setContentOfElement("VCn", "13"); },
                                                 "bar off format");
    EXPECT_EQ(format.getCounterAttributes("VCn"), (CounterAttributes{3, 99, 1, 0, 1}));
    EXPECT_EQ(bar.redraws, 1);
}

TEST_F(FormatAccessTest, AnOldContentBelowTheMinimumCannotGoBack)
{
    // The record put "ab" under a minimum of 5; the failure of the repaint is the one reported.
    addBar("Is", 0, 20, "abcdef");
    expectFailure<KT_ERROR::drawable_off_format>([&] { format.setContentOfElement("VIs", "abcdef"); },
                                                 "bar off format");
    EXPECT_EQ(format.getContentOfElement("VIs"), "abcdef");
}

TEST_F(FormatAccessTest, AChangeRepaintsOnlyWhatChangedAndTheOverlapLosesTheBlank)
{
    // The bar of "Ib" straddles the bottom edge of the static box (0..15 x 0..7).
    BarDrawable& changing = addBar("Ib", 0, 6);
    BarDrawable& other = addBar("Ia", 40, 20);
    format.setContentOfElement("VIb", "abcdefg");
    EXPECT_EQ(changing.redraws, 1);
    EXPECT_EQ(other.redraws, 0);
    PixelCanvas expected(64, 32);
    expected.fill(0, 0, 16, 8);     // the box
    expected.fill(0, 6, 4 * 9, 4);  // "<abcdefg>"
    EXPECT_TRUE(PixelCanvas::of(image) == expected);

    format.setContentOfElement("VIb", "");
    EXPECT_EQ(changing.redraws, 2);
    EXPECT_EQ(other.redraws, 0);
    PixelCanvas shorter(64, 32);
    shorter.fill(0, 0, 16, 6);      // the box above the bar; its rows under the old bar went with the blank
    shorter.fill(0, 6, 4 * 2, 4);   // "<>"
    EXPECT_TRUE(PixelCanvas::of(image) == shorter);
}

TEST_F(FormatAccessTest, HeldUpdatesStoreWithoutRepaintingUntilReleased)
{
    BarDrawable& bar = addBar("Ib", 0, 20);
    format.holdUpdates();
    format.setContentOfElement("VIb", "held");
    EXPECT_EQ(format.getContentOfElement("VIb"), "held");
    EXPECT_EQ(bar.redraws, 0);
    format.releaseUpdates();
    EXPECT_EQ(bar.redraws, 1);
    format.releaseUpdates();
    EXPECT_EQ(bar.redraws, 1) << "nothing changed since";
}

TEST_F(FormatAccessTest, AClockTickRepaintsWhileHeldAndKeepsTheHold)
{
    BarDrawable& bar = addBar("Ib", 0, 20);
    format.holdUpdates();
    format.setContentOfElement("VIb", "one");
    format.clockTick();
    EXPECT_EQ(bar.redraws, 1);
    format.setContentOfElement("VIb", "two");
    EXPECT_EQ(bar.redraws, 1) << "still held";
    format.releaseUpdates();
    EXPECT_EQ(format.getContentOfElement("VIb"), "two");
    format.clockTick();
    format.setContentOfElement("VIb", "three");
    EXPECT_EQ(bar.redraws, 3) << "not held after the tick either";
}

TEST_F(FormatAccessTest, PrintsAndTriggersStepTheirCountersAndRepaint)
{
    BarDrawable& printed = addBar("Cn", 0, 20);
    BarDrawable& triggered = addBar("Cm", 32, 20);
    format.raisePrinted();
    EXPECT_EQ(format.getContentOfElement("VCn"), "4");
    EXPECT_EQ(format.getContentOfElement("VCm"), "7");
    EXPECT_EQ(printed.redraws, 1);
    EXPECT_EQ(triggered.redraws, 0);
    format.raiseTrigger();
    EXPECT_EQ(format.getContentOfElement("VCn"), "4");
    EXPECT_EQ(format.getContentOfElement("VCm"), "8");
    EXPECT_EQ(printed.redraws, 1);
    EXPECT_EQ(triggered.redraws, 1);
}

TEST_F(FormatAccessTest, SettingCounterAttributesRepaints)
{
    BarDrawable& bar = addBar("Cn", 0, 20);
    format.setCounterAttributes("VCn", {5, 50, 2, 1, 3});
    EXPECT_EQ(format.getCounterAttributes("VCn"), (CounterAttributes{5, 50, 2, 1, 3}));
    EXPECT_EQ(format.getResultOfElement("VCn"), "#0005");
    EXPECT_EQ(bar.redraws, 1);
    expectFailure<KT_ERROR::illegal_content>([&] { format.setCounterAttributes("VCn", {5, 0, 2, 1, 3}); },
                                             "counter: stop value(0) less than reset value(1) with positive counting");
    EXPECT_EQ(bar.redraws, 1) << "a refused change ends before the update";
}

TEST_F(FormatAccessTest, SerializationDataGoesToTheVariable)
{
    format.addSerializationData("VXx", "\v");
    expectFailure<KT_ERROR::illegal_content>(
        [&] { format.addSerializationData("VIb", "a"); },
        "setSerializationData: Serialization elements overflow. Increase buffer with X67. Requested: 1");
    format.deleteSerializationData("VIb");
}

TEST_F(FormatAccessTest, DeletingSerializationDataOfAnUnalignedVariableWithAMinimumFails)
{
    expectFailure<KT_ERROR::illegal_content>(
        [&] { format.deleteSerializationData("VIs"); },
        "setSerializationData: new input to variable is too short, must be at least 5");
}

TEST_F(FormatAccessTest, ThePrintLengthSpansTheUsedRows)
{
    EXPECT_EQ(format.getPrintLength(), 8u);
    image.rectangle(0, 20, 4, 2, 1);
    EXPECT_EQ(format.getPrintLength(), 22u);
    image.clear();
    EXPECT_EQ(format.getPrintLength(), 1u);
}

TEST(FormatAccess, AnEmptyImageHasAPrintLengthOfOne)
{
    Image image(32, 4);
    KT_Format format(nullptr, &image, nullptr);
    EXPECT_EQ(format.getPrintLength(), 1u);
}

TEST(FormatAccess, AHysteresisProfileOfPaperIsAll255)
{
    Image image(32, 10);
    KT_Format format(nullptr, &image, nullptr);
    for (const uint32_t scale : {0u, 1u, 1000u, 4294967295u}) {
        SCOPED_TRACE(scale);
        format.setHysteresisScale(scale);
        std::vector<int32_t> out{7};
        format.hysteresisProfile(out, 8, 2);
        EXPECT_EQ(out, (std::vector<int32_t>{7, 255, 255, 255, 255, 255, 255, 255}));
    }
}

TEST(FormatAccess, AShortProfileDividesByItsOwnRows)
{
    Image image(32, 10);
    KT_Format format(nullptr, &image, nullptr);
    image.rectangle(0, 2, 8, 1, 1);
    image.rectangle(0, 5, 4, 1, 1);
    format.setHysteresisScale(100);
    std::vector<int32_t> out;
    format.hysteresisProfile(out, 0, 9);
    // Peak 8 over 10 rows: an area of 80.
    EXPECT_EQ(out, (std::vector<int32_t>{255, 255, 245, 245, 245, 240, 240, 240, 240, 240}));
}

TEST(FormatAccess, ALongProfileSlidesAWindowOf150Rows)
{
    Image image(32, 200);
    KT_Format format(nullptr, &image, nullptr);
    image.rectangle(0, 0, 10, 1, 1);
    image.rectangle(0, 160, 5, 1, 1);
    format.setHysteresisScale(300);  // peak 10 over 150 rows: an area of 1500
    std::vector<int32_t> forward;
    format.hysteresisProfile(forward, 0, 199);
    std::vector<int32_t> expected(150, 253);
    expected.insert(expected.end(), 10, 255);
    expected.insert(expected.end(), 40, 254);
    EXPECT_EQ(forward, expected);

    std::vector<int32_t> backward;
    format.hysteresisProfile(backward, 199, 0);
    // Rows 199 down to 161 are paper; row 160 stays in the window for 150 rows.
    std::vector<int32_t> reversed(39, 255);
    reversed.insert(reversed.end(), 150, 254);
    reversed.insert(reversed.end(), 10, 255);
    reversed.push_back(253);
    EXPECT_EQ(backward, reversed);
}

namespace {

class TextRepaintTest : public fonttest::FontFixture {
protected:
    Image image{320, 100};
    KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(TextRepaintTest, ATextBoundToAVariableBlanksItsOldAreaOverTheBoxAndDrawsTheNewValue)
{
    // The box runs through the text's line, above the baseline.
    std::istringstream in("TEXTREPAIN" + prompted("t", "WWWWWW", "P", "0 0000", "0009") + boxRecord(0, 50, 320, 8, 0, 0) +
                          ESC + "#T05000100006000VIt" + VT + "08L000" + "\xff");
    format.parse(in, nullptr, 0);

    Image reference(320, 100);
    reference.rectangle(0, 50, 320, 8, 1);
    Area old;
    reference.drawText(10, 60, 8, 5, "WWWWWW", 0, &old, 0, 0, false);
    EXPECT_TRUE(PixelCanvas::of(image) == PixelCanvas::of(reference)) << "the parse paints the box, then the text";

    format.setContentOfElement("VIt", "I");
    reference.restoreArea(old);
    Area fresh;
    reference.drawText(10, 60, 8, 5, "I", 0, &fresh, 0, 0, false);
    EXPECT_TRUE(PixelCanvas::of(image) == PixelCanvas::of(reference));
    // Where the old text stood the box is gone, behind the new one; outside the old area it stands.
    EXPECT_EQ(image.getPixel(old.right - 1, 53), 0);
    EXPECT_EQ(image.getPixel(old.right + 2, 53), 1);
    EXPECT_LT(fresh.right, old.right - 1);
}
