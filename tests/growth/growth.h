// tests/growth/growth.h - four times the input takes hardly more than four times the work
#pragma once
#include <gtest/gtest.h>

#include <stdint.h>
#include <string>

// Arrays grow by half, and a size may lie just before or after such a step. These sizes span one step.
constexpr int growthSizes[] = { 8000, 9700, 11800 };

// workFor gives the work for an input of so many parts.
template <typename WorkFor>
void expectProportionalWork(WorkFor workFor)
{
    uint64_t once = 0, fourTimes = 0;
    for (int size : growthSizes)
    {
        once += workFor(size);
        fourTimes += workFor(4 * size);
    }
    EXPECT_GT(once, 0u);
    EXPECT_LE(2 * fourTimes, 9 * once);
}

std::string repeat(int count, const std::string& text);

// The file of a test, in a folder of this process. The name without extension is "growth".
std::string growthFile(const std::string& extension);
void putGrowthFile(const std::string& path, const std::string& bytes);
