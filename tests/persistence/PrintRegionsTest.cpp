#include "persistence/PrintRegions.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "errors/KT_Error.h"
#include "tests/support/ExpectFailure.h"

namespace {

// The list is the process's own; every test starts it empty.
class PrintRegionsTest : public testing::Test {
protected:
    void SetUp() override { regions.clear(); }
    void TearDown() override { regions.clear(); }

    PrintRegions& regions = PrintRegions::instance();
};

}  // namespace

TEST_F(PrintRegionsTest, ThereIsOneListForTheProcess)
{
    regions.add(1, 2);
    EXPECT_EQ(&PrintRegions::instance(), &regions);
    EXPECT_EQ(PrintRegions::instance().count(), 2u);
}

TEST_F(PrintRegionsTest, AddAppendsLowAndHighAndReturnsTheLength)
{
    EXPECT_TRUE(regions.isEmpty());
    EXPECT_EQ(regions.add(10, 17), 7u);
    EXPECT_EQ(regions.add(100, 140), 40u);
    EXPECT_EQ(regions.add(200, 210), 10u);
    EXPECT_FALSE(regions.isEmpty());
    EXPECT_EQ(regions.count(), 6u);
    const uint32_t limits[] = {10, 17, 100, 140, 200, 210};
    for (uint32_t i = 0; i < 6; ++i)
        EXPECT_EQ(regions.getLimit(i), limits[i]);
    EXPECT_EQ(regions.getLength(1), 40u);
    EXPECT_EQ(regions.getMaxLength(), 40u);
}

TEST_F(PrintRegionsTest, ARegionWithLowNotBelowHighEmptiesTheListAndFails)
{
    regions.add(10, 17);
    regions.add(20, 60);
    for (const auto& [low, high] : {std::pair<uint32_t, uint32_t>{5, 5}, {9, 3}}) {
        SCOPED_TRACE(low);
        expectFailure<KT_ERROR::internal_error>(
            [&] { regions.add(low, high); },
            "Invalid print region: low:" + std::to_string(low) + ", high" + std::to_string(high));
        EXPECT_TRUE(regions.isEmpty());
        EXPECT_EQ(regions.getMaxLength(), 0u);
    }
}

TEST_F(PrintRegionsTest, IndexesBeyondTheListFailWithTheirCounts)
{
    regions.add(10, 17);
    regions.add(20, 30);
    EXPECT_EQ(regions.getLimit(3), 30u);
    expectFailure<KT_ERROR::internal_error>([&] { regions.getLimit(4); },
                                            "Invalid print region index[]: 4 Regions: 4");
    EXPECT_EQ(regions.getLength(1), 10u);
    expectFailure<KT_ERROR::internal_error>([&] { regions.getLength(2); },
                                            "Invalid print region index: 2 Regions: 2");
}

TEST_F(PrintRegionsTest, NextTellsWhenAPassThroughAllRegionsIsComplete)
{
    EXPECT_TRUE(regions.next()) << "no regions";
    regions.add(10, 17);
    regions.add(20, 30);
    EXPECT_FALSE(regions.next());
    EXPECT_TRUE(regions.next());
    EXPECT_FALSE(regions.next()) << "the next pass starts again at the first";
    EXPECT_TRUE(regions.next());
}

TEST_F(PrintRegionsTest, ClearingStartsAFreshPass)
{
    regions.add(10, 17);
    regions.add(20, 30);
    regions.add(40, 50);
    regions.next();
    regions.clear();
    regions.add(1, 2);
    regions.add(3, 4);
    EXPECT_FALSE(regions.next());
    EXPECT_TRUE(regions.next());
}
