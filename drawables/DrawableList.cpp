#include "drawables/DrawableList.h"

namespace KT_AC {

void DrawableList::paintAll(Image& image, int stage)
{
    for (const auto& drawable : drawables)
        drawable->paint(image, stage);
}

void DrawableList::clear()
{
    for (auto& drawable : drawables)
        drawable.reset();
    drawables.clear();
}

}  // namespace KT_AC
