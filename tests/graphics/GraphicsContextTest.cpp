#include "graphics/GraphicsContext.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

// A drawing target that only writes down the rectangles it is asked for.
class RecordingContext : public GraphicsContext {
public:
    uint32_t getXOrigin() override { return 0; }
    uint32_t getYOrigin() override { return 0; }
    uint32_t getWidth() override { return 96; }
    uint32_t getHeight() override { return 40; }
    int getPixel(int32_t, int32_t) override { return 0; }
    void setPixel(int32_t, int32_t, int) override {}
    using GraphicsContext::rectangle;
    void rectangle(int32_t x, int32_t y, int32_t w, int32_t h, int colour) override
    {
        std::ostringstream call;
        call << "rectangle " << x << " " << y << " " << w << " " << h << " " << colour;
        calls.push_back(call.str());
    }
    void rectangleCorners(int32_t x0, int32_t y0, int32_t x1, int32_t y1, int colour) override
    {
        std::ostringstream call;
        call << "corners " << x0 << " " << y0 << " " << x1 << " " << y1 << " " << colour;
        calls.push_back(call.str());
        GraphicsContext::rectangleCorners(x0, y0, x1, y1, colour);
    }
    void drawText(int32_t, int32_t, int32_t, int32_t, std::string, int32_t, Area*, int32_t, int32_t, bool) override {}

    std::vector<std::string> calls;
};

}  // namespace

TEST(GraphicsContext, ThePointFormGoesThroughTheCornersToTheSizedRectangle)
{
    RecordingContext context;
    context.rectangle(Point{3, 4}, Point{10, 4}, 2);
    EXPECT_EQ(context.calls, (std::vector<std::string>{"corners 3 4 10 4 2", "rectangle 3 4 8 1 2"}));
}

TEST(GraphicsContext, CornersAreInclusiveAndReversedCornersGiveNegativeSizes)
{
    struct Case {
        int32_t x0, y0, x1, y1;
        std::string expected;
    };
    const Case cases[] = {
        {0, 0, 0, 0, "rectangle 0 0 1 1 1"},
        {5, 6, 36, 7, "rectangle 5 6 32 2 1"},
        {10, 10, 8, 9, "rectangle 10 10 -1 0 1"},
        {-3, 2, 4, -1, "rectangle -3 2 8 -2 1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected);
        RecordingContext context;
        context.rectangleCorners(c.x0, c.y0, c.x1, c.y1, 1);
        ASSERT_EQ(context.calls.size(), 2u);
        EXPECT_EQ(context.calls[1], c.expected);
    }
}

TEST(GraphicsContext, ClearErasesTheWholeTargetByItsOwnSize)
{
    RecordingContext context;
    context.clear();
    EXPECT_EQ(context.calls, (std::vector<std::string>{"rectangle 0 0 96 40 0"}));
}
