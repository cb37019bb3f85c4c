#pragma once

#include <cstdint>

// Bits that spread along runs of set bits, 64 at a time: what a fill does in a row.

/// Spreads bits upwards along the runs of `open`: an addition carries each bit to the end of its
/// run. `carry` comes from the word below and goes to the word above.
inline std::uint64_t giSpreadUp(std::uint64_t open, std::uint64_t bits, std::uint64_t& carry)
{
    const std::uint64_t part = open + bits;
    const std::uint64_t sum = part + carry;
    carry = static_cast<std::uint64_t>(part < open) | static_cast<std::uint64_t>(sum < part);
    return (open & ~sum) | bits;
}

/// Spreads bits downwards along the runs of `open`, in steps that double.
inline std::uint64_t giSpreadDown(std::uint64_t open, std::uint64_t bits)
{
    for (int step = 1; step < 64; step *= 2) {
        bits |= open & (bits >> step);
        open &= open >> step;
    }
    return bits;
}
