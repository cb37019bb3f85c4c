#include "display/GiSelectionBlend.h"

#include "core/GiBitRows.h"
#include "core/GiSelection2D.h"
#include "mc/McSimd.h"

#include <algorithm>

namespace {

// A mark is -1 for a selected pixel, else 0. Marking and mixing are two passes, since in one the compiler
// makes no vectors of either.

int markOf(const unsigned int* words, unsigned long bit)
{
    return -static_cast<int>(words[bit / 32] >> (bit % 32) & 1);
}

MC_TARGET_CLONES
void markRun(const unsigned int* words, unsigned long first, int n, int* marks)
{
    int i = 0;
    for (; i + 32 <= n; i += 32) {
        const auto bits =
            static_cast<unsigned int>(giLoadBits(words, first + static_cast<unsigned long>(i), 32));
        for (int k = 0; k < 32; ++k) marks[i + k] = -static_cast<int>(bits >> k & 1);
    }
    for (; i < n; ++i) marks[i] = markOf(words, first + static_cast<unsigned long>(i));
}

MC_TARGET_CLONES
void mixMarked(unsigned int* pixels, const int* marks, int n, const GiSelectionBlend& given)
{
    const GiSelectionBlend blend = given; // which no store can change meanwhile
    for (int i = 0; i < n; ++i) {
        const auto mark = static_cast<unsigned int>(marks[i]);
        pixels[i] = (blend(pixels[i]) & mark) | (pixels[i] & ~mark);
    }
}

/// The part of a row of n pixels, from `first` on, in which selected ones can lie: the first and the one
/// behind the last, both relative to `first`. Where a row is a run of bits it is tight.
struct Reach
{
    Reach(const GiSelection2D& s, int first, int row, int n)
    {
        n = std::min(n, static_cast<int>(s.width) - first);
        if (n <= 0 || row < 0 || static_cast<unsigned long>(row) >= s.height) return;
        bit = static_cast<unsigned long>(row) * s.yStride + static_cast<unsigned long>(first) * s.xStride +
              s.offset;
        end = n;
        if (s.xStride != 1) return;
        const unsigned int* words = s.bits->words();
        const unsigned long behind = bit + static_cast<unsigned long>(n);
        const unsigned long found = giFindSet(words, bit, behind);
        begin = static_cast<int>(found - bit);
        if (found < behind) end = static_cast<int>(giFindLastSet(words, found, behind) - bit) + 1;
    }

    unsigned long bit = 0; // of the row's first pixel
    int begin = 0, end = 0;
};

} // namespace

GiSelectionBlend::GiSelectionBlend(unsigned int pixel, int alpha)
{
    const auto a = static_cast<unsigned int>(std::clamp(alpha, 0, 255));
    rest = 255 - a;
    outer = (pixel & 0xFF00FF) * a;
    middle = (pixel >> 8 & 0xFF) * a;
}

void GiSelectionBlend::mixRow(unsigned int* pixels, const GiSelection2D& s, int first, int row, int n,
                              int* marks) const
{
    const Reach reach(s, first, row, n);
    if (reach.begin >= reach.end) return;
    const int count = reach.end - reach.begin;
    if (s.xStride == 1)
        markRun(s.bits->words(), reach.bit + static_cast<unsigned long>(reach.begin), count, marks);
    else
        for (int i = 0; i < count; ++i)
            marks[i] = markOf(s.bits->words(), reach.bit + static_cast<unsigned long>(i) * s.xStride);
    mixMarked(pixels + reach.begin, marks, count, *this);
}

void GiSelectionBlend::mixPicked(unsigned int* pixels, const GiSelection2D& s, int first, int row,
                                 const int* columns, int n, int* marks) const
{
    if (n <= 0) return;
    const Reach reach(s, first, row, columns[n - 1] + 1);
    const int* const from = std::lower_bound(columns, columns + n, reach.begin);
    const int count = static_cast<int>(std::lower_bound(from, columns + n, reach.end) - from);
    const unsigned int* words = s.bits->words();
    const unsigned long stride = s.xStride;
    for (int i = 0; i < count; ++i)
        marks[i] = markOf(words, reach.bit + static_cast<unsigned long>(from[i]) * stride);
    mixMarked(pixels + (from - columns), marks, count, *this);
}
