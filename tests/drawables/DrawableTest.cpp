#include "drawables/Drawable.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <vector>

#include "drawables/DrawableList.h"
#include "errors/KT_Error.h"
#include "format/KT_Format.h"
#include "graphics/Image.h"
#include "tests/autocode/ProbeElement.h"
#include "tests/support/EscapeRecords.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/PixelCanvas.h"

using namespace KT_AC;

namespace {

// A drawable that writes down what the stages ask of it and inks one pixel when redrawn.
class ProbeDrawable : public Drawable {
public:
    ProbeDrawable(KT_FMT::KT_Format& format, std::vector<std::string>& journal, std::string id, bool isStatic,
                  bool paintedAtParse = false)
        : Drawable(format), journal(journal)
    {
        contentId = std::move(id);
        this->isStatic = isStatic;
        this->paintedAtParse = paintedAtParse;
    }
    void blank(Image& image) override
    {
        journal.push_back("blank " + contentId);
        Drawable::blank(image);
    }
    void redraw(Image&) override { journal.push_back("redraw " + contentId); }
    void setPaintedArea(Area area) { paintedArea = area; }
    using Drawable::readCommonFields;

    std::vector<std::string>& journal;
};

class DrawableTest : public testing::Test {
protected:
    ProbeDrawable& addProbe(const std::string& id, bool isStatic, bool paintedAtParse = false)
    {
        auto probe = std::make_unique<ProbeDrawable>(format, journal, id, isStatic, paintedAtParse);
        ProbeDrawable& link = *probe;
        format.getDrawables().add(std::move(probe));
        return link;
    }
    ProbeElement& addElement(const std::string& id)
    {
        auto element = std::make_unique<ProbeElement>("v", nullptr, id);
        ProbeElement& link = *element;
        format.getElements().addElement(id, std::move(element));
        return link;
    }

    std::vector<std::string> journal;
    Image image{64, 16};
    KT_FMT::KT_Format format{nullptr, &image, nullptr};
};

}  // namespace

TEST_F(DrawableTest, EachStageReachesTheDrawablesItIsFor)
{
    addProbe("static", true);
    addProbe("parsed", true, true);
    addProbe("Xvar", false);
    addElement("Xvar").unchanged = false;
    struct Case {
        int stage;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {STAGE_UPDATE, {"blank Xvar", "redraw Xvar"}},
        {STAGE_ALL_STATIC, {"redraw static", "redraw parsed"}},
        {STAGE_VARIABLE, {"redraw Xvar"}},
        {STAGE_STATIC, {"redraw static"}},
        {STAGE_PRELOAD, {}},
        {STAGE_FINISH, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.stage);
        journal.clear();
        format.getDrawables().paintAll(image, c.stage);
        EXPECT_EQ(journal, c.expected);
    }
}

TEST_F(DrawableTest, AnUpdateLeavesAnUnchangedElementAlone)
{
    addProbe("Xvar", false);
    addElement("Xvar").unchanged = true;
    format.getDrawables().paintAll(image, STAGE_UPDATE);
    EXPECT_TRUE(journal.empty());
}

TEST_F(DrawableTest, AnUpdateOfAnUnknownIdFails)
{
    addProbe("Xmissing", false);
    expectFailure<KT_ERROR::bad_escape_sequence>([&] { format.getDrawables().paintAll(image, STAGE_UPDATE); },
                                                 "Element id not found: Xmissing");
}

TEST_F(DrawableTest, BlankRestoresOnlyAnAreaOfMoreThanOneRow)
{
    ProbeDrawable& probe = addProbe("p", true);
    image.rectangle(0, 0, 64, 16, 1);
    probe.setPaintedArea({2, 5, 9, 5});
    probe.blank(image);
    EXPECT_EQ(image.getPixel(3, 5), 1);
    probe.setPaintedArea({2, 5, 9, 6});
    probe.blank(image);
    for (int32_t y = 0; y < 16; ++y)
        for (int32_t x = 0; x < 64; ++x)
            ASSERT_EQ(image.getPixel(x, y), (x >= 2 && x <= 9 && y >= 5 && y <= 6) ? 0 : 1) << x << "," << y;
}

TEST_F(DrawableTest, ANewDrawableHasNothingPainted)
{
    ProbeDrawable& probe = addProbe("p", true);
    EXPECT_EQ(probe.getPaintedArea().left, 0);
    EXPECT_EQ(probe.getPaintedArea().top, 0);
    EXPECT_EQ(probe.getPaintedArea().right, 0);
    EXPECT_EQ(probe.getPaintedArea().bottom, 0);
    EXPECT_EQ(probe.getOrientation(), 0);
    EXPECT_FALSE(probe.isReversed());
}

TEST_F(DrawableTest, CommonFieldsReadPositionOrientationReversalAndContent)
{
    ProbeDrawable& probe = addProbe("", false);
    std::istringstream in("00012000342" "1" "FABC\v" "\x1b");
    probe.readCommonFields(in);
    EXPECT_EQ(probe.getX(), 12);
    EXPECT_EQ(probe.getY(), 34);
    EXPECT_EQ(probe.getOrientation(), 2);
    EXPECT_TRUE(probe.isReversed());
    EXPECT_EQ(probe.getContentId(), "&0");
    EXPECT_TRUE(probe.getIsStatic());
    EXPECT_EQ(in.peek(), 0x1b);

    std::istringstream variable("00000000000" "0" "VXname\v");
    probe.readCommonFields(variable);
    EXPECT_EQ(probe.getContentId(), "Xname");
    EXPECT_FALSE(probe.getIsStatic());
    EXPECT_FALSE(probe.isReversed());
}

TEST_F(DrawableTest, CommonFieldsRefuseAReversalOtherThanZeroOrOne)
{
    ProbeDrawable& probe = addProbe("", false);
    std::istringstream in("00012000340" "2" "FABC\v");
    expectFailure<KT_ERROR::bad_escape_sequence>(
        [&] { probe.readCommonFields(in); },
        "datamatrix,qrcode,databar: reversed option needs to be '0' or '1', got: 2 12 34");
}

TEST_F(DrawableTest, TheProcessWideOffsetShiftsXWhileReading)
{
    ProbeDrawable& probe = addProbe("", false);
    drawableXOffset = 32;
    std::istringstream in("00000000050" "0" "FA\v");
    probe.readCommonFields(in);
    drawableXOffset = 0;
    EXPECT_EQ(probe.getX(), 32);
    EXPECT_EQ(probe.getY(), 5);
}

TEST_F(DrawableTest, PaintAllStopsAtTheFirstFailureAndKeepsWhatWasPainted)
{
    addProbe("Xa", false);
    addProbe("Xmissing", false);
    addProbe("Xc", false);
    addElement("Xa").unchanged = false;
    addElement("Xc").unchanged = false;
    EXPECT_THROW(format.getDrawables().paintAll(image, STAGE_UPDATE), KT_ERROR::bad_escape_sequence);
    EXPECT_EQ(journal, (std::vector<std::string>{"blank Xa", "redraw Xa"}));
}

TEST_F(DrawableTest, TheFinishAndPreloadStagesLeaveEveryKindOfDrawableAlone)
{
    std::istringstream in("KINDS     " + boxRecord(0, 0, 8, 4, 0, 0) + "\x1b#I00000000000000100002" +
                          graphicRecord(32, 8, 1, 1, [](int32_t, int32_t) { return 0xFF; }) + "\xff");
    format.parse(in, nullptr, 0);
    ASSERT_EQ(format.getDrawables().size(), 3u);
    image.clear();
    format.getDrawables().paintAll(image, STAGE_FINISH);
    format.getDrawables().paintAll(image, STAGE_PRELOAD);
    EXPECT_TRUE(PixelCanvas::of(image) == PixelCanvas(64, 16));
}
