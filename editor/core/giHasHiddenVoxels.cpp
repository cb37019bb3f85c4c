#include "core/giHasHiddenVoxels.h"

#include "core/GiOrientation.h"
#include "mc/McSimd.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <vector>

namespace {

constexpr unsigned long kBlock = 64; // words, 8 cache lines

/// Which planes of each axis are shown.
using Planes = std::array<std::vector<unsigned char>, 3>;

Planes markPlanes(const GiSelection3D& selection, std::span<const GiShownSlice> shown)
{
    Planes planes;
    for (std::size_t axis = 0; axis < 3; ++axis) planes[axis].assign(selection.dims[axis], 0);
    for (const GiShownSlice& s : shown) {
        auto& marks = planes[static_cast<std::size_t>(giSliceAxis(s.orientation))];
        if (s.slice >= 0 && static_cast<std::size_t>(s.slice) < marks.size())
            marks[static_cast<std::size_t>(s.slice)] = 1;
    }
    return planes;
}

/// The first word from `from` on that is not 0; n if there is none. Most are 0 as a rule, so blocks are
/// looked at in wide registers.
MC_TARGET_CLONES
unsigned long findWord(const McBitfield::Word64* words, unsigned long from, unsigned long n)
{
    for (; from < n && from % kBlock != 0; ++from)
        if (words[from]) return from;
    for (; from + kBlock <= n; from += kBlock) {
        std::uint64_t any = 0;
        for (unsigned long i = 0; i < kBlock; ++i) any |= words[from + i];
        if (any) break;
    }
    while (from < n && !words[from]) ++from;
    return from;
}

} // namespace

bool giHasHiddenVoxels(const GiSelection3D& selection, std::span<const GiShownSlice> shown)
{
    const unsigned long nx = selection.dims[0], ny = selection.dims[1];
    if (nx == 0 || ny == 0 || selection.dims[2] == 0) return false;
    const Planes planes = markPlanes(selection, shown);
    const McBitfield::Word64* words = selection.bits.words64();
    const unsigned long n = selection.bits.numWords64();
    for (unsigned long w = findWord(words, 0, n); w < n; w = findWord(words, w + 1, n)) {
        std::uint64_t rest = words[w];
        while (rest) {
            const auto bit = static_cast<unsigned long>(std::countr_zero(rest));
            const unsigned long i = 64 * w + bit;
            const unsigned long x = i % nx, row = i / nx, y = row % ny, z = row / ny;
            // What is shown as a whole slice or row is passed over at once.
            unsigned long next = i + 1;
            if (planes[2][z])
                next = (z + 1) * nx * ny;
            else if (planes[1][y])
                next = (row + 1) * nx;
            else if (!planes[0][x])
                return true;
            const unsigned long nextWord = std::min(next / 64, n);
            if (nextWord > w) {
                w = nextWord;
                rest = w < n ? words[w] : 0;
            }
            if (next % 64 != 0 && rest) rest &= ~std::uint64_t{0} << (next % 64);
        }
    }
    return false;
}
