#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

// Runs of bits that begin at any position of a bit field, as rows of a slice do when the width is
// no multiple of the word size. Bit i lies in 32-bit word i / 32 at position i mod 32, least
// significant first. All operations touch only the words in which their bits lie, and work on
// whole words between the two ends.

/// `count` bits (1 to 64) from `first` on, the first one lowest, the rest 0.
inline std::uint64_t giLoadBits(const unsigned int* words, unsigned long first, unsigned long count)
{
    const unsigned int* w = words + first / 32;
    const unsigned long shift = first % 32;
    std::uint64_t bits = w[0] >> shift;
    if (shift + count > 32) bits |= static_cast<std::uint64_t>(w[1]) << (32 - shift);
    if (shift + count > 64) bits |= static_cast<std::uint64_t>(w[2]) << (64 - shift);
    return count < 64 ? bits & ((std::uint64_t{1} << count) - 1) : bits;
}

/// Calls change(word, mask) for each word that holds bits of the run [first, end).
template <class Change>
inline void giForEachWord(unsigned int* words, unsigned long first, unsigned long end, const Change& change)
{
    if (first >= end) return;
    unsigned long i = first / 32;
    const unsigned long last = (end - 1) / 32;
    const unsigned int head = ~0u << (first % 32);
    const unsigned int tail = ~0u >> (31 - (end - 1) % 32);
    if (i == last) {
        change(words[i], head & tail);
        return;
    }
    change(words[i++], head);
    while (i < last) change(words[i++], ~0u);
    change(words[i], tail);
}

inline void giSetBits(unsigned int* words, unsigned long first, unsigned long end)
{
    giForEachWord(words, first, end, [](unsigned int& word, unsigned int mask) { word |= mask; });
}

inline void giUnsetBits(unsigned int* words, unsigned long first, unsigned long end)
{
    giForEachWord(words, first, end, [](unsigned int& word, unsigned int mask) { word &= ~mask; });
}

inline void giToggleBits(unsigned int* words, unsigned long first, unsigned long end)
{
    giForEachWord(words, first, end, [](unsigned int& word, unsigned int mask) { word ^= mask; });
}

/// Calls change(word, bits, mask) for each word of the target run, `bits` being the source's bits
/// that fall under `mask`.
template <class Change>
inline void giCombineBits(unsigned int* target, unsigned long first, const unsigned int* source,
                          unsigned long sourceFirst, unsigned long count, const Change& change)
{
    unsigned long done = 0;
    while (done < count) {
        const unsigned long at = first + done;
        const unsigned long n = std::min(32 - at % 32, count - done);
        const auto bits = static_cast<unsigned int>(giLoadBits(source, sourceFirst + done, n));
        change(target[at / 32], bits << (at % 32), (~0u >> (32 - n)) << (at % 32));
        done += n;
    }
}

/// Copies `count` bits; the two runs must not overlap.
inline void giCopyBits(unsigned int* target, unsigned long first, const unsigned int* source,
                       unsigned long sourceFirst, unsigned long count)
{
    unsigned long done = 0;
    if (first % 32 == 0 && sourceFirst % 32 == 0) { // rows of common images lie so
        std::copy_n(source + sourceFirst / 32, count / 32, target + first / 32);
        done = count / 32 * 32;
    }
    giCombineBits(
        target, first + done, source, sourceFirst + done, count - done,
        [](unsigned int& word, unsigned int bits, unsigned int mask) { word = (word & ~mask) | bits; });
}

/// Adds `count` bits to those already set.
inline void giOrBits(unsigned int* target, unsigned long first, const unsigned int* source,
                     unsigned long sourceFirst, unsigned long count)
{
    giCombineBits(target, first, source, sourceFirst, count,
                  [](unsigned int& word, unsigned int bits, unsigned int) { word |= bits; });
}

/// The first set bit of [first, end), or `end`.
inline unsigned long giFindSet(const unsigned int* words, unsigned long first, unsigned long end)
{
    if (first >= end) return end;
    unsigned long i = first / 32;
    const unsigned long last = (end - 1) / 32;
    unsigned int word = words[i] & (~0u << (first % 32));
    while (word == 0 && i < last) word = words[++i];
    if (word == 0) return end;
    return std::min(end, i * 32 + static_cast<unsigned long>(std::countr_zero(word)));
}

/// The last set bit of [first, end), or `end` if there is none.
inline unsigned long giFindLastSet(const unsigned int* words, unsigned long first, unsigned long end)
{
    if (first >= end) return end;
    unsigned long i = (end - 1) / 32;
    const unsigned long begin = first / 32;
    unsigned int word = words[i] & (~0u >> (31 - (end - 1) % 32));
    while (word == 0 && i > begin) word = words[--i];
    if (word == 0) return end;
    const unsigned long found = i * 32 + 31 - static_cast<unsigned long>(std::countl_zero(word));
    return found >= first ? found : end;
}
