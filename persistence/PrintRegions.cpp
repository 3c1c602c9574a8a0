#include "persistence/PrintRegions.h"

#include "errors/KT_Error.h"

using KT_ERROR::internal_error;
using KT_ERROR::text;

std::vector<uint32_t> hysteresisData;

PrintRegions& PrintRegions::instance()
{
    static PrintRegions* const regions = new PrintRegions;
    return *regions;
}

void PrintRegions::clear()
{
    limits.clear();
    current = 0;
    maxLength = 0;
}

uint32_t PrintRegions::add(uint32_t low, uint32_t high)
{
    if (low >= high) {
        clear();
        throw internal_error(text("Invalid print region: low:", low, ", high", high));
    }
    limits.push_back(low);
    limits.push_back(high);
    if (high - low > maxLength)
        maxLength = high - low;
    return high - low;
}

uint32_t PrintRegions::getLimit(uint32_t index) const
{
    if (index >= limits.size())
        throw internal_error(text("Invalid print region index[]: ", index, " Regions: ", limits.size()));
    return limits[index];
}

uint32_t PrintRegions::getLength(uint32_t region) const
{
    if (region >= limits.size() / 2)
        throw internal_error(text("Invalid print region index: ", region, " Regions: ", limits.size() / 2));
    return limits[2 * region + 1] - limits[2 * region];
}

bool PrintRegions::next()
{
    if (limits.empty())
        return true;
    if (++current == limits.size() / 2) {
        current = 0;
        return true;
    }
    return false;
}
