#include "graphics/GFX_Exception.h"

#include <gtest/gtest.h>

#include "errors/KT_Error.h"

TEST(GFX_Exception, KeepsItsTextAndStandsOutsideTheFormatFamily)
{
    bool seenAsFormatFailure = false;
    try {
        try {
            throw GFX_OutsideContextException("point outside of context");
        } catch (const KT_ERROR::kt_exception&) {
            seenAsFormatFailure = true;
        }
    } catch (const GFX_Exception& error) {
        EXPECT_STREQ(error.what(), "point outside of context");
    }
    EXPECT_FALSE(seenAsFormatFailure);
}
