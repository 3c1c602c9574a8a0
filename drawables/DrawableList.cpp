#include "drawables/DrawableList.h"

namespace KT_AC {

void DrawableList::paintAll(Image& image, int stage)
{
    for (const auto& drawable : drawables)
        drawable->paint(image, stage);
}

}  // namespace KT_AC
