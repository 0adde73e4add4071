// tests/import/runs.h - how long a search in a hash table with open addressing can take
#pragma once
#include <algorithm>
#include <cstddef>
#include <vector>

// The longest run of occupied places: no search looks at more.
inline size_t longestRun(const std::vector<bool>& taken)
{
    size_t longest = 0, run = 0;
    for (bool place : taken)
    {
        run = place ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    return longest;
}
