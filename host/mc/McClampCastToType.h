#pragma once

#include <limits>
#include <type_traits>

/// Limits a value to the range of T, then casts it: whole numbers lose their fraction.
/// Not-a-number becomes 0 in a type that cannot hold it.
template <class T>
T McClampCastToType(double value)
{
    using Limits = std::numeric_limits<T>;
    static_assert(std::is_floating_point_v<T> || sizeof(T) <= 4, "The limits must be exact as double.");
    if constexpr (std::is_integral_v<T>)
        if (value != value) return 0;
    if (value <= double(Limits::lowest())) return Limits::lowest();
    if (value >= double(Limits::max())) return Limits::max();
    return static_cast<T>(value);
}
