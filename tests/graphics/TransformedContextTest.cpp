#include "graphics/TransformedContext.h"

#include <gtest/gtest.h>

#include <typeinfo>
#include <vector>

#include "errors/KT_Error.h"
#include "graphics/GFX_Exception.h"
#include "graphics/Image.h"

namespace {

// Notes what reaches the target, so that the mapping can be read off.
class RecordingContext : public GraphicsContext {
public:
    struct Call {
        int32_t x, y, w, h, value;
        bool operator==(const Call&) const = default;
    };

    uint32_t getXOrigin() override { return 0; }
    uint32_t getYOrigin() override { return 0; }
    uint32_t getWidth() override { return 640; }
    uint32_t getHeight() override { return 608; }
    int getPixel(int32_t x, int32_t y) override
    {
        calls.push_back({x, y, 0, 0, -1});
        return 1;
    }
    void setPixel(int32_t x, int32_t y, int colour) override { calls.push_back({x, y, 0, 0, colour}); }
    using GraphicsContext::rectangle;
    void rectangle(int32_t x, int32_t y, int32_t w, int32_t h, int colour) override
    {
        calls.push_back({x, y, w, h, colour});
    }
    void drawText(int32_t x, int32_t y, int32_t, int32_t, std::string, int32_t orientation, Area*, int32_t,
                  int32_t, bool) override
    {
        calls.push_back({x, y, 0, 0, orientation});
    }

    std::vector<Call> calls;
};

}  // namespace

TEST(TransformedContext, MakeRotationGivesTheTurnMatrices)
{
    struct Row {
        int32_t orientation;
        Matrix expected;
    };
    const Row rows[] = {{0, {3, 0, 0, 3}}, {1, {0, -3, 3, 0}}, {2, {-3, 0, 0, -3}},
                        {3, {0, 3, -3, 0}}, {4, {0, 0, 0, 0}}, {-1, {0, 0, 0, 0}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.orientation);
        const Matrix m = makeRotation(row.orientation, 3);
        EXPECT_EQ(m.a, row.expected.a);
        EXPECT_EQ(m.b, row.expected.b);
        EXPECT_EQ(m.c, row.expected.c);
        EXPECT_EQ(m.d, row.expected.d);
    }
}

TEST(TransformedContext, AnOriginAtTheTargetWidthIsRefusedOneLessIsAccepted)
{
    Image image(640, 608);
    EXPECT_NO_THROW(TransformedContext(&image, Point{639, 0}, 0));
    EXPECT_NO_THROW(TransformedContext(&image, Point{0, 607}, Matrix{1, 0, 0, 1}));
    const Point refused[] = {{640, 0}, {-1, 0}, {0, 608}, {0, -1}};
    for (const Point& origin : refused) {
        SCOPED_TRACE(origin.x * 1000 + origin.y);
        try {
            TransformedContext view(&image, origin, 0);
            ADD_FAILURE() << "accepted";
        } catch (const std::exception& error) {
            EXPECT_TRUE(typeid(error) == typeid(GFX_OutsideContextException));
            EXPECT_STREQ(error.what(), "");
        }
    }
}

TEST(TransformedContext, ItsExceptionsStandOutsideTheFormatFamily)
{
    Image image(640, 608);
    bool caughtAsFormatError = false;
    try {
        try {
            TransformedContext view(&image, Point{700, 0}, 0);
        } catch (const KT_ERROR::kt_exception&) {
            caughtAsFormatError = true;
        }
    } catch (const GFX_Exception&) {
    }
    EXPECT_FALSE(caughtAsFormatError);
}

TEST(TransformedContext, ARectangleUnderATurnAndScaleReachesTheTargetAsACornerAndAVector)
{
    RecordingContext target;
    TransformedContext view(&target, Point{100, 100}, makeRotation(1, 4));
    view.rectangle(0, 0, 2, 1, 1);
    ASSERT_EQ(target.calls.size(), 1u);
    EXPECT_EQ(target.calls[0], (RecordingContext::Call{100, 100, -4, 8, 1}));
}

TEST(TransformedContext, ATurnedRectangleCoversThePixelsBackFromItsCorner)
{
    Image image(640, 608);
    TransformedContext view(&image, Point{100, 100}, makeRotation(1, 4));
    view.rectangle(0, 0, 2, 1, 1);
    for (int32_t y = 95; y < 112; ++y)
        for (int32_t x = 92; x < 106; ++x) {
            SCOPED_TRACE(x * 1000 + y);
            EXPECT_EQ(image.getPixel(x, y), x >= 97 && x <= 100 && y >= 100 && y <= 107 ? 1 : 0);
        }
}

TEST(TransformedContext, PixelsAndOriginsMapThroughTheMatrix)
{
    RecordingContext target;
    TransformedContext view(&target, Point{50, 60}, Matrix{1, 2, 3, 4});
    view.setPixel(5, 7, 1);
    EXPECT_EQ(view.getPixel(1, 1), 1);
    EXPECT_EQ(view.getXOrigin(), 50u);
    EXPECT_EQ(view.getYOrigin(), 60u);
    ASSERT_EQ(target.calls.size(), 2u);
    EXPECT_EQ(target.calls[0], (RecordingContext::Call{50 + 5 + 14, 60 + 15 + 28, 0, 0, 1}));
    EXPECT_EQ(target.calls[1], (RecordingContext::Call{53, 67, 0, 0, -1}));
}

TEST(TransformedContext, TextTurnsWithTheMatrixButKeepsItsAnchorMapped)
{
    struct Row {
        Matrix matrix;
        int32_t given;
        int32_t expected;
    };
    const Row rows[] = {
        {makeRotation(0, 2), 3, 3},    {makeRotation(1, 2), 0, 1}, {makeRotation(1, 2), 3, 0},
        {makeRotation(2, 2), 3, 1},    {makeRotation(2, 2), 0, 2}, {makeRotation(3, 2), 0, 3},
        {makeRotation(3, 2), 2, 1},    {Matrix{0, 0, 0, 0}, 2, 2}, {Matrix{1, 2, 3, 4}, 1, 1},
        {Matrix{-1, 0, 0, 1}, 1, 1},   {Matrix{0, 0, 0, 0}, 7, 0}, {makeRotation(1, 1), -1, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.given);
        RecordingContext target;
        TransformedContext view(&target, Point{10, 20}, row.matrix);
        view.drawText(1, 1, 12, 0, "A", row.given, nullptr, 1, 0, false);
        ASSERT_EQ(target.calls.size(), 1u);
        const int32_t mappedX = 10 + row.matrix.a + row.matrix.b, mappedY = 20 + row.matrix.c + row.matrix.d;
        EXPECT_EQ(target.calls[0], (RecordingContext::Call{mappedX, mappedY, 0, 0, row.expected}));
    }
}

TEST(TransformedContext, ScaleZeroDrawsNothing)
{
    Image image(640, 608);
    TransformedContext view(&image, Point{100, 100}, makeRotation(0, 0));
    view.rectangle(0, 0, 5, 5, 1);
    EXPECT_EQ(image.getPixel(100, 100), 0);
    EXPECT_EQ(image.getLastUsedRow(), 0);
}

TEST(TransformedContext, ARectangleOffTheTargetIsTheTargetsOffFormatErrorWithTheMappedNumbers)
{
    Image image(640, 608);
    TransformedContext view(&image, Point{630, 10}, makeRotation(0, 4));
    try {
        view.rectangle(1, 0, 3, 1, 1);
        ADD_FAILURE() << "drawn";
    } catch (const KT_ERROR::drawable_off_format& error) {
        EXPECT_STREQ(error.what(), "rectangle off image(x/y/w/h): (634/10/12/4)");
    }
}

TEST(TransformedContext, TheSizeOfAViewReadsAsEmpty)
{
    Image image(640, 608);
    TransformedContext view(&image, Point{0, 0}, 0);
    EXPECT_EQ(view.getWidth(), 0u);
    EXPECT_EQ(view.getHeight(), 0u);
}
