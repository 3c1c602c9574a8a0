#include "format/FormatInterface.h"

#include <gtest/gtest.h>

#include "errors/KT_Error.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_INTERFACE;

TEST(FormatInterface, EachSingleMaskHasItsPrefix)
{
    const std::pair<uint32_t, char> cases[] = {
        {ELEMENT_PROMPTED, 'I'}, {ELEMENT_EXTERNAL, 'X'}, {ELEMENT_COUNTER, 'C'},
        {ELEMENT_DATE, 'D'},     {ELEMENT_FORMULA, 'F'},
    };
    for (const auto& [mask, prefix] : cases) {
        SCOPED_TRACE(mask);
        EXPECT_EQ(elementTypeToPrefix(mask), prefix);
    }
}

TEST(FormatInterface, MasksDoNotCombine)
{
    for (const uint32_t mask : {0u, 3u, 5u, 31u, 32u, 4294967295u}) {
        SCOPED_TRACE(mask);
        expectFailure<KT_ERROR::internal_autocode_error>(
            [&] { elementTypeToPrefix(mask); },
            "elementTypeToPrefix() called with illegal parameter " + std::to_string(mask));
    }
}
