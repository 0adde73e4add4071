// platform/bit_cast.h - the bits of one type as a value of another
#pragma once

// Like std::bit_cast, which older standard libraries lack. Both types have the same size and are trivially copyable.
template <typename To, typename From>
constexpr To bitCast(const From& from)
{
    static_assert(sizeof(To) == sizeof(From));
    return __builtin_bit_cast(To, from);
}
