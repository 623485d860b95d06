#include "include/KXNum.h"

#include <climits>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

std::vector<int> Apart(const char* pszText)
{
    std::vector<int> numbers;
    const int count = CKXNum::ApartNums(pszText, numbers);
    EXPECT_EQ(count, static_cast<int>(numbers.size()));
    return numbers;
}

TEST(KXNum, ApartNumsFindsEachRunOfDigits)
{
    EXPECT_THAT(Apart("RGB(12,34,56)"), ElementsAre(12, 34, 56));
    EXPECT_THAT(Apart("IP(192.168.0.1"), ElementsAre(192, 168, 0, 1));
    EXPECT_THAT(Apart("1.5"), ElementsAre(1, 5));
    EXPECT_THAT(Apart("-7 +8"), ElementsAre(7, 8));
    EXPECT_THAT(Apart("007"), ElementsAre(7));
    EXPECT_THAT(Apart("0"), ElementsAre(0));
    EXPECT_THAT(Apart("\xC8\xFD"
                      "1\xB0\xB0"
                      "2"),
                ElementsAre(1, 2));
    EXPECT_THAT(Apart("none"), ElementsAre());
    EXPECT_THAT(Apart(""), ElementsAre());
    EXPECT_THAT(Apart(nullptr), ElementsAre());
}

TEST(KXNum, ApartNumsWrapsIn32Bits)
{
    EXPECT_THAT(Apart("2147483647 2147483648 4294967295 4294967296"), ElementsAre(INT_MAX, INT_MIN, -1, 0));
    EXPECT_THAT(Apart("99999999999999999999"), ElementsAre(1661992959));
}

TEST(KXNum, ApartNumsAppends)
{
    std::vector<int> numbers{9};
    EXPECT_EQ(CKXNum::ApartNums("1,2", numbers), 3);
    EXPECT_THAT(numbers, ElementsAre(9, 1, 2));
}

TEST(KXNum, CalcFactorialMultipliesTheRange)
{
    const struct
    {
        int high, low, product;
    } cases[] = {
        {5, 1, 120},
        {5, 3, 60},
        {4, 4, 4},
        {3, 4, 1},
        {3, -3, 0},
        {-1, -3, -6},
        {-2, -3, 6},
        {INT_MIN, INT_MAX, 1},
        {13, 1, 1932053504},
        {33, 1, INT_MIN},
        {34, 1, 0},
        {INT_MAX, INT_MAX, INT_MAX},
        {INT_MIN, INT_MIN, INT_MIN},
        {INT_MAX, INT_MAX - 1, -2147483646},
        {INT_MAX, 1, 0},
        {INT_MAX, INT_MIN, 0}, // at once: a range of four billion
    };
    for (const auto& c : cases)
        EXPECT_EQ(CKXNum::CalcFactorial(c.high, c.low), c.product) << c.low << " to " << c.high;
}

TEST(KXNum, IntersectRectCountsTouching)
{
    const RECT middle{10, 10, 20, 20};
    const struct
    {
        RECT other;
        bool meets;
    } cases[] = {
        {{12, 12, 15, 15}, true},  {{0, 0, 30, 30}, true},   {{20, 10, 30, 20}, true},
        {{0, 10, 10, 20}, true},   {{20, 20, 30, 30}, true}, {{10, 0, 20, 10}, true},
        {{21, 10, 30, 20}, false}, {{0, 10, 9, 20}, false},  {{10, 0, 20, 9}, false},
        {{10, 21, 20, 30}, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CKXNum::IntersectRect(middle, c.other), c.meets) << c.other.left << ',' << c.other.top;
        EXPECT_EQ(CKXNum::IntersectRect(c.other, middle), c.meets) << c.other.left << ',' << c.other.top;
    }
}

} // namespace
