// shell/natural_order.cpp - numbers by value, letters without case
#include "shell/natural_order.h"

#include "model/ascii.h"

// Takes a run of digits from a name and returns it without leading zeros. The value may have any number of digits.
static std::string takeNumber(const std::string& name, size_t* at)
{
    while (*at < name.size() && name[*at] == '0')
        ++*at;
    size_t first = *at;
    while (*at < name.size() && isDigit(name[*at]))
        ++*at;
    return name.substr(first, *at - first);
}

static int compareNumbers(const std::string& a, const std::string& b)
{
    return a.size() != b.size() ? (a.size() < b.size() ? -1 : 1) : a.compare(b);
}

int compareNaturally(const std::string& a, const std::string& b)
{
    size_t i = 0, k = 0;
    while (i < a.size() && k < b.size())
    {
        int order = 0;
        if (isDigit(a[i]) && isDigit(b[k]))
            order = compareNumbers(takeNumber(a, &i), takeNumber(b, &k));
        else
            order = static_cast<unsigned char>(asciiLower(a[i++])) - static_cast<unsigned char>(asciiLower(b[k++]));
        if (order != 0)
            return order;
    }
    if (i < a.size() || k < b.size())
        return i < a.size() ? 1 : -1;
    return a.compare(b);
}
