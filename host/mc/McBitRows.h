#pragma once

#include "mc/McBitfield.h"

/// Rows of bits that begin at any bit position of a field, moved to and from words that begin with the row.
/// Inline, so that loops over many rows are compiled as one.

/// Reads 64 * n bits from bit `at` on into n words, each xor-ed with `flip`. The last word may hold bits
/// behind the row; bit `at + 64 * (n - 1)` must lie within the field.
inline void mcLoadBitRow(const McBitfield::Word64* field, unsigned long at, long n, std::uint64_t flip,
                         std::uint64_t* row)
{
    const McBitfield::Word64* w = field + at / 64;
    const int shift = int(at % 64);
    for (long k = 0; k < n; k++) row[k] = (w[k] >> shift | w[k + 1] << 1 << (63 - shift)) ^ flip;
}

/// Adds a row of `bits` bits at bit `at` of a field; its bits behind the end must be 0.
inline void mcOrBitRow(McBitfield::Word64* field, unsigned long at, long bits, const std::uint64_t* row)
{
    McBitfield::Word64* w = field + at / 64;
    const int shift = int(at % 64);
    const long n = (bits + 63) / 64;
    w[0] |= row[0] << shift;
    for (long k = 1; k < n; k++) w[k] |= row[k] << shift | row[k - 1] >> 1 >> (63 - shift);
    if ((shift + bits + 63) / 64 > n) w[n] |= row[n - 1] >> 1 >> (63 - shift);
}

/// The used bits of the last word of a row.
inline std::uint64_t mcLastWordMask(long bits)
{
    return ~std::uint64_t(0) >> (63 - (bits - 1) % 64);
}

/// Rows 64 m to 64 m + 63 of a volume fill whole words, whatever the length of a row: blocks of so many rows
/// can be written by different threads.
inline constexpr long kMcRowsPerBlock = 64;
