#pragma once

#include <limits>
#include <type_traits>

/// The elements of one type whose value lies in a window of floats, as a range of that type, so that a loop
/// compares elements as they are.
///
/// A value is compared as a float, as the window is one; a double is compared as it is. So of whole numbers
/// that a float cannot tell apart all are in or none.
template <class T>
struct GiValueWindow
{
    /// window  minimum and maximum, both included; a NaN leaves nothing in
    explicit GiValueWindow(const float* window)
    {
        if constexpr (std::is_floating_point_v<T>) {
            min = window[0];
            max = window[1];
            isEmpty = !(min <= max);
        } else {
            constexpr long long kLeast = std::numeric_limits<T>::min(), kMost = std::numeric_limits<T>::max();
            const auto valueOf = [](long long i) { return static_cast<float>(static_cast<T>(i)); };
            const long long first = firstOf(kLeast, kMost, [&](auto i) { return valueOf(i) >= window[0]; });
            const long long end = firstOf(kLeast, kMost, [&](auto i) { return !(valueOf(i) <= window[1]); });
            isEmpty = first >= end;
            if (isEmpty) return;
            min = static_cast<T>(first);
            max = static_cast<T>(end - 1);
        }
    }

    T min = 1, max = 0; // both included
    bool isEmpty;

private:
    /// The first number for which a test holds that holds for all after it; most + 1 if there is none.
    template <class Test>
    static long long firstOf(long long least, long long most, const Test& test)
    {
        long long end = most + 1;
        while (least < end) {
            const long long middle = least + (end - least) / 2;
            if (test(middle))
                end = middle;
            else
                least = middle + 1;
        }
        return end;
    }
};
