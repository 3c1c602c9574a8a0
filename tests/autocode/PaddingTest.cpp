#include "autocode/Padding.h"

#include <gtest/gtest.h>

#include "errors/KT_Error.h"
#include "tests/support/ExpectFailure.h"

using namespace KT_AC;

TEST(Padding, DefaultIsBlankZeroNone)
{
    const Padding padding;
    EXPECT_EQ(padding.padCharacter, ' ');
    EXPECT_EQ(padding.width, 0u);
    EXPECT_EQ(padding.alignment, Padding::ALIGN_NONE);
    EXPECT_EQ(Padding::ALIGN_NONE, 0);
    EXPECT_EQ(Padding::ALIGN_LEFT, 1);
    EXPECT_EQ(Padding::ALIGN_RIGHT, 2);
}

TEST(Padding, ApplyFitsTheTextToTheWidth)
{
    const struct {
        Padding::Alignment alignment;
        char fill;
        uint32_t width;
        const char* text;
        bool negative;
        const char* expected;
    } cases[] = {
        {Padding::ALIGN_LEFT, '0', 5, "12", false, "00012"},     // 'L' fills on the left
        {Padding::ALIGN_RIGHT, '*', 5, "12", false, "12***"},
        {Padding::ALIGN_LEFT, '0', 5, "5", true, "-0005"},       // the sign stands before the fill
        {Padding::ALIGN_LEFT, ' ', 5, "5", true, "-   5"},
        {Padding::ALIGN_RIGHT, '0', 3, "5", true, "-50"},
        {Padding::ALIGN_LEFT, '0', 1, "5", true, "-5"},          // a text as long as the width gets no fill
        {Padding::ALIGN_RIGHT, '0', 1, "5", true, "-5"},
        {Padding::ALIGN_LEFT, '0', 2, "5", true, "-5"},          // the sign takes the only place of fill
        {Padding::ALIGN_NONE, '0', 10, "abc", false, "abc"},
        {Padding::ALIGN_NONE, '0', 10, "abc", true, "-abc"},
        {Padding::ALIGN_LEFT, '0', 3, "abcdef", false, "abcdef"},  // nothing is cut
        {Padding::ALIGN_RIGHT, '0', 3, "abcdef", true, "-abcdef"},
        {Padding::ALIGN_LEFT, '0', 3, "abc", false, "abc"},
        {Padding::ALIGN_LEFT, '0', 0, "", false, ""},
        {Padding::ALIGN_LEFT, '#', 4, "", false, "####"},
        {Padding::ALIGN_LEFT, ' ', 3, "\\<FNC1>", false, "  \\<FNC1>"},  // an escape shows as one
        {Padding::ALIGN_RIGHT, '0', 4, "\\\\", false, "\\\\000"},         // so does a doubled backslash
        {Padding::ALIGN_LEFT, '0', 3, "\\<UNIC(20ac)>1", false, "0\\<UNIC(20ac)>1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.alignment) << " '" << c.fill << "' " << c.width << " \"" << c.text
                                        << "\" " << c.negative);
        Padding padding;
        padding.alignment = c.alignment;
        padding.padCharacter = c.fill;
        padding.width = c.width;
        EXPECT_EQ(padding.apply(c.text, c.negative), c.expected);
    }
}

TEST(Padding, NulFillIsKeptAsAByte)
{
    Padding padding;
    padding.alignment = Padding::ALIGN_LEFT;
    padding.padCharacter = '\0';
    padding.width = 3;
    EXPECT_EQ(padding.apply("a", false), std::string("\0\0a", 3));
}

TEST(Padding, MeasuringABrokenEscapeFails)
{
    Padding padding;
    padding.alignment = Padding::ALIGN_RIGHT;
    padding.width = 5;
    expectFailure<KT_ERROR::bad_content_sequence>(
        [&] { padding.apply("a\\b", false); }, "illegal content escape sequence, expected '\\' or '<' but got 'b'");
}

TEST(Padding, WithoutAlignmentTheTextIsNotMeasured)
{
    Padding padding;
    padding.width = 5;
    EXPECT_EQ(padding.apply("a\\b", false), "a\\b");
}
