#include "include/KXRandom.h"
#include "tests/support/Host.h"

#include <climits>
#include <cstdlib>
#include <gmock/gmock.h>
#include <set>
#include <vector>

namespace {

TEST(KXRandom, IsTheRuntimesGeneratorCutToTheRange)
{
    std::srand(7);
    std::vector<int> expected;
    for (int i = 0; i < 50; ++i)
        expected.push_back(std::rand() % 11 - 5);
    std::srand(7);
    for (const int number : expected)
        EXPECT_EQ(CKXRandom::GetRandom(-5, 5), number);
}

TEST(KXRandom, StaysInTheRangeAndReachesItsEnds)
{
    std::set<int> seen;
    for (int i = 0; i < 500; ++i)
        seen.insert(CKXRandom::GetRandom(-1, 2));
    EXPECT_THAT(seen, testing::ElementsAre(-1, 0, 1, 2));
    for (const int only : {3, 0, INT_MIN, INT_MAX})
        EXPECT_EQ(CKXRandom::GetRandom(only, only), only);
}

TEST(KXRandom, WideRangesHaveBothHalves)
{
    int negative = 0, large = 0;
    for (int i = 0; i < 1000; ++i) {
        negative += CKXRandom::GetRandom(INT_MIN, INT_MAX) < 0;
        large += CKXRandom::GetRandom(-1, INT_MAX) > INT_MAX / 2;
    }
    EXPECT_NEAR(negative, 500, 150);
    EXPECT_NEAR(large, 500, 150);
}

TEST(KXRandom, ARangeTheWrongWayRoundIsHarmless)
{
    EXPECT_EQ(CKXRandom::GetRandom(4, 3), 4);
    for (int i = 0; i < 100; ++i) {
        CKXRandom::GetRandom(INT_MAX, INT_MIN);
        EXPECT_THAT(CKXRandom::GetRandom(5, 1), testing::AllOf(testing::Ge(5), testing::Le(7)));
    }
}

TEST(KXRandom, InitSeedsWithTheSecond)
{
    const test::VirtualClock clock(1234);
    CKXRandom::Init();
    const int first = std::rand();
    std::srand(1234);
    EXPECT_EQ(std::rand(), first);
}

} // namespace
