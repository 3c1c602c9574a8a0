#include "drawables/DrawableList.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "format/KT_Format.h"
#include "graphics/Image.h"

using namespace KT_AC;

namespace {

class CountedDrawable : public Drawable {
public:
    CountedDrawable(KT_FMT::KT_Format& format, std::vector<int>& log, int number)
        : Drawable(format), log(log), number(number)
    {
        isStatic = true;
    }
    ~CountedDrawable() override { log.push_back(-number); }
    void redraw(Image&) override { log.push_back(number); }

private:
    std::vector<int>& log;
    int number;
};

}  // namespace

TEST(DrawableList, PaintsInOrderAndFreesInOrder)
{
    std::vector<int> log;
    Image image(32, 4);
    KT_FMT::KT_Format format(nullptr, &image, nullptr);
    DrawableList list;
    for (int n = 1; n <= 3; ++n)
        list.add(std::make_unique<CountedDrawable>(format, log, n));
    EXPECT_EQ(list.size(), 3u);
    list.paintAll(image, STAGE_STATIC);
    list.paintAll(image, STAGE_FINISH);
    list.clear();
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(log, (std::vector<int>{1, 2, 3, -1, -2, -3}));
}
