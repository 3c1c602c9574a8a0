#include "autocode/AC_FixedString.h"

#include <gtest/gtest.h>

#include "errors/KT_Error.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

TEST(AC_FixedString, ResultIsTheTextWithItsEscapesLeftAlone)
{
    for (const char* text : {"", "plain", "a\\\\b", "\\<FNC1>01", "\\<broken"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(AC_FixedString(text).getResult(), text);
    }
}

TEST(AC_FixedString, IsFixedAndAlwaysUnchanged)
{
    AC_FixedString element("x");
    EXPECT_FALSE(element.isVariable());
    EXPECT_TRUE(element.isUnchanged());
    element.update(EVENT_PAINTED, 0);
    EXPECT_TRUE(element.isUnchanged());
}

TEST(AC_FixedString, KeepsTheBaseNumberAndDepth)
{
    EXPECT_DOUBLE_EQ(AC_FixedString("12,5").toNumber(), 12.5);
    EXPECT_DOUBLE_EQ(AC_FixedString("7").toNumber(), 0);
    expectFailure<KT_ERROR::not_a_number>([] { AC_FixedString("12a").toNumber(); },
                                          "could not convert to number: 12a");
    EXPECT_EQ(AC_FixedString("x").checkDepth(50), 51u);
}
