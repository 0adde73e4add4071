// tests/shell/natural_order_test.cpp - names as people sort them
#include "shell/natural_order.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <vector>

static const std::vector<std::string> sorted = {
    "",
    ".obj",
    "0.obj",
    "00.obj",
    "01.obj",
    "1.obj",
    "2.obj",
    "10.obj",
    "a.obj",
    "B.obj",
    "c.obj",
    "part.obj",
    "part1.obj",
    "Part2.obj",
    "part2.obj",
    "part2a.obj",
    "part010.obj",
    "part10.obj",
    "part99999999999999999999.obj",
    "part100000000000000000000.obj",
    "z",
    "\xC3\xBC.obj",
};

TEST(NaturalOrder, NumbersCountByTheirValueAndLettersWithoutTheirCase)
{
    for (size_t i = 0; i < sorted.size(); ++i)
        for (size_t k = 0; k < sorted.size(); ++k)
        {
            int order = compareNaturally(sorted[i], sorted[k]);
            EXPECT_EQ(order < 0, i < k) << sorted[i] << " " << sorted[k];
            EXPECT_EQ(order > 0, i > k) << sorted[i] << " " << sorted[k];
        }
}

TEST(NaturalOrder, EveryOrderOfTheNamesIsSortedIntoTheSame)
{
    std::mt19937 random(1);
    for (int run = 0; run < 100; ++run)
    {
        std::vector<std::string> names = sorted;
        std::shuffle(names.begin(), names.end(), random);
        std::sort(names.begin(), names.end(),
                  [](const std::string& a, const std::string& b) { return compareNaturally(a, b) < 0; });
        EXPECT_EQ(names, sorted);
    }
}

// A comparison that is not transitive would make a sort read past its end.
TEST(NaturalOrder, AnyBytesHaveOneOrder)
{
    std::mt19937 random(2);
    const std::string alphabet = "0019aAbZ.-\xFF\x80";
    auto name = [&]
    {
        std::string made;
        for (auto i = random() % 6; i > 0; --i)
            made += alphabet[random() % alphabet.size()];
        return made;
    };
    auto sign = [](int value) { return (value > 0) - (value < 0); };
    for (int i = 0; i < 200000; ++i)
    {
        std::string a = name(), b = name(), c = name();
        ASSERT_EQ(sign(compareNaturally(a, b)), -sign(compareNaturally(b, a))) << a << " " << b;
        ASSERT_EQ(compareNaturally(a, b) == 0, a == b);
        if (compareNaturally(a, b) < 0 && compareNaturally(b, c) < 0)
        {
            ASSERT_LT(compareNaturally(a, c), 0) << a << " " << b << " " << c;
        }
    }
}
