#pragma once
#include <cstddef>
#include <memory>
#include <vector>

#include "drawables/Drawable.h"

namespace KT_AC {

// The format's drawables in file order; the list owns them.
class DrawableList {
public:
    void add(std::unique_ptr<Drawable> drawable) { drawables.push_back(std::move(drawable)); }
    // Paints in list order; an exception ends the loop and what was painted stays.
    void paintAll(Image& image, int stage);
    // Deletes the drawables one by one in list order, then empties the list.
    void clear();
    size_t size() const { return drawables.size(); }
    Drawable& operator[](size_t index) const { return *drawables[index]; }

private:
    std::vector<std::unique_ptr<Drawable>> drawables;
};

}  // namespace KT_AC
