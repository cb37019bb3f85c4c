#pragma once

#include <cstdint>

/// Transposes 64 x 64 bits in place: bit j of word i changes places with bit i of word j. Inline, so that it
/// is compiled with the loops around it.
///
/// Swaps the off-diagonal quarters of ever smaller squares, as in Warren, "Hacker's Delight", 2nd edition,
/// Addison-Wesley, 2012, section 7-3.
inline void giTransposeBits(std::uint64_t* words)
{
    std::uint64_t mask = 0x00000000ffffffffu;
    for (int half = 32; half > 0; half /= 2, mask ^= mask << half) {
        for (int square = 0; square < 64; square += 2 * half) {
            for (int i = square; i < square + half; ++i) {
                const std::uint64_t swapped = (words[i] >> half ^ words[i + half]) & mask;
                words[i] ^= swapped << half;
                words[i + half] ^= swapped;
            }
        }
    }
}
