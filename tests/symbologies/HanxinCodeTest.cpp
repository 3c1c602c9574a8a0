#include "symbologies/HanxinCode.h"

#include <gtest/gtest.h>

#include <string>

#include "graphics/Image.h"
#include "tests/symbologies/ZintTestSupport.h"

using zinttest::placed;

// No installed scanner reads Han Xin: the symbol is held module for module against zint's command line.
TEST(HanxinCode, EveryOrientationIsZintsMatrixTurnedClockwise)
{
    struct Row {
        int32_t version;
        int32_t level;
        const char* data;
        const char* arguments;
        size_t width;
    };
    const Row rows[] = {
        {0, 0, "HAN XIN 123", "-b 116 -d 'HAN XIN 123'", 23},
        {3, 2, "Version 3", "-b 116 --vers=3 --secure=2 -d 'Version 3'", 27},
        {0, 4, "\xe6\xb1\x89\xe4\xbf\xa1\xe7\xa0\x81 Hanxin 0123456789",
         "-b 116 --secure=4 -d '\xe6\xb1\x89\xe4\xbf\xa1\xe7\xa0\x81 Hanxin 0123456789'", 31},
    };
    for (const Row& r : rows) {
        const zinttest::Modules dump = zinttest::zintDump(r.arguments, r.width);
        ASSERT_EQ(dump.size(), r.width) << r.arguments;
        for (int32_t turns = 0; turns < 4; ++turns) {
            SCOPED_TRACE(testing::Message() << r.arguments << " turns " << turns);
            Image image(256, 256);
            HanxinCode symbol(r.version, 3, r.level, 0);
            symbol.setRotation(turns);
            auto context = placed(image, 16, 16);
            symbol.paint(r.data, context);
            ASSERT_EQ(static_cast<size_t>(symbol.getSymbol().width), r.width);
            EXPECT_EQ(zinttest::readModules(image, 16, 16, static_cast<int32_t>(r.width),
                                            static_cast<int32_t>(r.width), 3),
                      zinttest::turned(dump, turns));
        }
    }
}

TEST(HanxinCode, ContentThatIsNotUTF8LeavesNothing)
{
    Image image(128, 128);
    HanxinCode symbol(0, 2, 1, 0);
    auto context = placed(image, 8, 8);
    EXPECT_NO_THROW(symbol.paint("\xff\xfe", context));
    EXPECT_EQ(zinttest::inkCount(image), 0);
}
