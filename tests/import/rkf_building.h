// tests/import/rkf_building.h - words of RKF files for the tests of the reader and the writer
#pragma once
#include "import/rkf.h"
#include "tests/import/loading.h"

#include <string.h>

namespace rkf
{

class RkfReader : public CleanTest
{
};

inline std::string words(std::initializer_list<uint32_t> values)
{
    std::string bytes;
    for (uint32_t value : values)
    {
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

inline uint32_t bitsOf(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return bits;
}

inline uint32_t coord(uint32_t u, uint32_t v)
{
    return u << 16 | v;
}

inline const std::string fourPositions = words({ 0, 0, 0, bitsOf(1), 0, 0, bitsOf(1), bitsOf(1), 0, 0, bitsOf(2), 0 });
inline const std::string noCoords = words({ 0, 0, 0, 0 });

} // namespace rkf
