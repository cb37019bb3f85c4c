#include "core/GiSliceFill.h"

#include "core/GiBitRows.h"
#include "core/GiRunSpread.h"
#include "mc/McSimd.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

/// What two neighbours have reached of a row that has not; whether there is any.
MC_TARGET_CLONES
bool growth(const std::uint64_t* above, const std::uint64_t* below, const std::uint64_t* open,
            const std::uint64_t* reached, std::uint64_t* __restrict grown, unsigned long n)
{
    std::uint64_t any = 0;
    for (unsigned long i = 0; i < n; ++i) {
        grown[i] = (above[i] | below[i]) & open[i] & ~reached[i];
        any |= grown[i];
    }
    return any != 0;
}

MC_TARGET_CLONES
unsigned long countBits(const std::uint64_t* words, unsigned long n)
{
    unsigned long count = 0;
    for (unsigned long i = 0; i < n; ++i) count += static_cast<unsigned long>(std::popcount(words[i]));
    return count;
}

} // namespace

GiSliceFill::GiSliceFill(unsigned long w, unsigned long h, AcceptRow accept)
    : width(w),
      height(h),
      rowWords((w + 63) / 64),
      acceptRow(std::move(accept)),
      accepted(static_cast<int>(rowWords * h)),
      reached(static_cast<int>(rowWords * h)),
      grown(static_cast<int>(rowWords)),
      isAccepted(static_cast<int>(h)),
      isListed(static_cast<int>(h)),
      firstListed(h),
      lastListed(0)
{
}

const std::uint64_t* GiSliceFill::openRow(unsigned long row)
{
    std::uint64_t* words = accepted.data() + row * rowWords;
    if (!std::exchange(isAccepted[static_cast<int>(row)], static_cast<unsigned char>(1)))
        acceptRow(row, words);
    return words;
}

void GiSliceFill::addSeeds(unsigned long row, unsigned long i, std::uint64_t seeds)
{
    std::fill(grown.begin(), grown.end(), 0u);
    grown[static_cast<int>(i)] = seeds & openRow(row)[i] & ~reachedIn(row)[i];
    if (grown[static_cast<int>(i)]) spread(row, i);
}

void GiSliceFill::fill()
{
    while (firstListed <= lastListed) {
        for (unsigned long row = firstListed; row <= lastListed; ++row) lookAt(row);
        // The way down has listed rows that were behind it, and only those.
        for (unsigned long row = lastListed + 1; row-- > firstListed;) lookAt(row);
        while (firstListed <= lastListed && !isListed[static_cast<int>(firstListed)]) ++firstListed;
        while (lastListed > firstListed && !isListed[static_cast<int>(lastListed)]) --lastListed;
    }
}

/// Takes in what the neighbours of a row have reached, if it is listed.
void GiSliceFill::lookAt(unsigned long row)
{
    if (!std::exchange(isListed[static_cast<int>(row)], static_cast<unsigned char>(0))) return;
    // A row without a neighbour on one side stands for it itself: it adds nothing.
    const std::uint64_t* own = reachedIn(row);
    const std::uint64_t* above = row > 0 ? own - rowWords : own;
    const std::uint64_t* below = row + 1 < height ? own + rowWords : own;
    if (!growth(above, below, openRow(row), own, grown.data(), rowWords)) return;
    unsigned long first = 0;
    while (!grown[static_cast<int>(first)]) ++first;
    spread(row, first);
}

/// Spreads the bits of `grown`, which begin with firstWord, along the open runs of a row, enters them and
/// lists the row's neighbours. Runs are reached as a whole or not at all.
void GiSliceFill::spread(unsigned long row, unsigned long firstWord)
{
    const std::uint64_t* open = openRow(row);
    std::uint64_t* own = reached.data() + row * rowWords;
    std::uint64_t* bits = grown.data();
    std::uint64_t carry = 0;
    for (unsigned long i = firstWord; i < rowWords; ++i)
        if (bits[i] | carry) bits[i] = giSpreadUp(open[i], bits[i], carry);
    std::uint64_t enters = 0; // from the word above
    for (unsigned long i = rowWords; i-- > 0;) {
        if (i < firstWord && !enters) break;
        bits[i] |= enters & open[i];
        if (bits[i] && bits[i] != open[i]) bits[i] = giSpreadDown(open[i], bits[i]);
        enters = bits[i] << 63;
        own[i] |= bits[i];
    }
    for (const unsigned long next : {row - 1, row + 1}) {
        if (next >= height) continue; // also the one before the first
        isListed[static_cast<int>(next)] = 1;
        firstListed = std::min(firstListed, next);
        lastListed = std::max(lastListed, next);
    }
}

unsigned long GiSliceFill::count() const
{
    return countBits(reached.data(), height * rowWords);
}

void GiSliceFill::copyTo(McBitfield& marks) const
{
    if (width % 64 == 0) {
        std::copy(reached.begin(), reached.end(), marks.words64());
        return;
    }
    const std::uint64_t* words = reached.data();
    for (unsigned long row = 0; row < height; ++row)
        for (unsigned long x = 0; x < width; x += 64, ++words) {
            // The field may be written beyond its last bit here, with zeros.
            const unsigned long at = row * width + x;
            McBitfield::Word64* const target = marks.words64() + at / 64;
            target[0] |= *words << (at % 64);
            target[1] |= *words >> 1 >> (63 - at % 64);
        }
}

void GiSliceFill::bounds(int* box) const
{
    for (unsigned long row = 0; row < height; ++row) {
        const std::uint64_t* words = reachedIn(row);
        unsigned long first = 0, last = rowWords;
        while (first < rowWords && !words[first]) ++first;
        if (first == rowWords) continue;
        while (!words[last - 1]) --last;
        const int left = static_cast<int>(first) * 64 + std::countr_zero(words[first]);
        const int right = static_cast<int>(last) * 64 - 1 - std::countl_zero(words[last - 1]);
        const int y = static_cast<int>(row);
        box[0] = std::min(box[0], left);
        box[1] = std::min(box[1], y);
        box[2] = std::max(box[2], right);
        box[3] = std::max(box[3], y);
    }
}
