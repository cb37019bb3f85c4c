#include "core/GiRowFill.h"

#include "core/GiBitRows.h"
#include "mc/McMemory.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <limits>
#include <utility>

namespace {

constexpr std::uint64_t kAll = ~std::uint64_t{0};
constexpr int kNoWord = std::numeric_limits<int>::max();

/// Spreads bits upwards along the runs of `open`: an addition carries each bit to the end of its
/// run. `carry` comes from the word below and goes to the word above.
std::uint64_t spreadUp(std::uint64_t open, std::uint64_t bits, std::uint64_t& carry)
{
    const std::uint64_t part = open + bits;
    const std::uint64_t sum = part + carry;
    carry = static_cast<std::uint64_t>(part < open) | static_cast<std::uint64_t>(sum < part);
    return (open & ~sum) | bits;
}

/// Spreads bits downwards along the runs of `open`, in steps that double.
std::uint64_t spreadDown(std::uint64_t open, std::uint64_t bits)
{
    for (int step = 1; step < 64; step *= 2) {
        bits |= open & (bits >> step);
        open &= open >> step;
    }
    return bits;
}

} // namespace

GiRowFill::GiRowFill(const unsigned long* dims, McBitfield& marks, AcceptRow accept)
    : nx(static_cast<long>(dims[0])),
      ny(static_cast<long>(dims[1])),
      nz(static_cast<long>(dims[2])),
      rowWords((dims[0] + 63) / 64),
      visited(marks),
      acceptRow(std::move(accept)),
      bounds{nx, ny, nz, -1, -1, -1}
{
    const unsigned long numRows = dims[1] * dims[2];
    rows.resize(static_cast<int>(numRows));
    for (Row& row : rows) row = Row{kNoWord, -1, false};
    listed.resize(numRows);
    emptyRow.resize(static_cast<int>(rowWords));
    scratch.resize(static_cast<int>(rowWords));
    words = static_cast<Word*>(mcAllocateZeroed(mcByteCount(numRows * rowWords, sizeof(Word))));
}

GiRowFill::~GiRowFill()
{
    std::free(words);
}

GiRowFill::Word* GiRowFill::builtRow(unsigned long row)
{
    Word* const built = wordsOf(row);
    Row& state = rows[static_cast<int>(row)];
    if (state.isBuilt) return built;
    acceptRow(row, scratch.data());
    for (unsigned long i = 0; i < rowWords; ++i)
        built[i].open =
            scratch[static_cast<int>(i)] & ~visited.load64(row * static_cast<unsigned long>(nx) + i * 64);
    state.isBuilt = true;
    return built;
}

bool GiRowFill::accepts(unsigned long x, unsigned long row)
{
    acceptRow(row, scratch.data());
    return scratch[static_cast<int>(x / 64)] >> (x % 64) & 1;
}

const GiRowFill::Word* GiRowFill::reachedIn(long y, long z) const
{
    if (y < 0 || y >= ny || z < 0 || z >= nz) return emptyRow.data();
    const long row = y + ny * z;
    return rows[static_cast<int>(row)].isBuilt ? words + static_cast<unsigned long>(row) * rowWords
                                               : emptyRow.data();
}

/// Puts a row on the list whose neighbour has grown in some words.
void GiRowFill::list(long y, long z, const Word* grown, int firstWord, int lastWord)
{
    if (y < 0 || y >= ny || z < 0 || z >= nz) return;
    const long number = y + ny * z;
    Row& row = rows[static_cast<int>(number)];
    if (row.isBuilt) {
        const Word* const own = wordsOf(static_cast<unsigned long>(number));
        std::uint64_t any = 0;
        for (int i = firstWord; i <= lastWord; ++i) any |= own[i].open & ~own[i].reached & grown[i].reached;
        if (!any) return;
    }
    row.firstWord = std::min(row.firstWord, firstWord);
    row.lastWord = std::max(row.lastWord, lastWord);
    listed.set(static_cast<unsigned long>(number));
}

void GiRowFill::addSeeds(unsigned long row, unsigned long i, std::uint64_t seeds)
{
    const Word& word = builtRow(row)[i];
    const int at = static_cast<int>(i);
    scratch[at] = seeds & word.open & ~word.reached;
    if (scratch[at]) spread(row, at, at);
}

unsigned long GiRowFill::fill(long* filled)
{
    const auto numRows = static_cast<unsigned long>(rows.size());
    bool isDone = false;
    while (!isDone) {
        isDone = true;
        for (unsigned long row = giFindSet(listed.words(), 0, numRows); row < numRows;
             row = giFindSet(listed.words(), row + 1, numRows)) {
            lookAt(row);
            isDone = false;
        }
        for (unsigned long end = numRows, row; end > 0; end = row) {
            row = giFindLastSet(listed.words(), 0, end);
            if (row == end) break;
            lookAt(row);
            isDone = false;
        }
    }
    markVisited();
    for (int axis = 0; axis < 3; ++axis) {
        filled[axis] = std::min(filled[axis], bounds[axis]);
        filled[axis + 3] = std::max(filled[axis + 3], bounds[axis + 3]);
    }
    return count;
}

/// Takes in what the neighbours of a row have reached.
void GiRowFill::lookAt(unsigned long row)
{
    Row& state = rows[static_cast<int>(row)];
    const int first = state.firstWord, last = state.lastWord;
    state.firstWord = kNoWord;
    state.lastWord = -1;
    listed.unset(row);

    const Word* const own = builtRow(row);
    const long y = static_cast<long>(row) % ny, z = static_cast<long>(row) / ny;
    const Word* const above = reachedIn(y, z - 1);
    const Word* const below = reachedIn(y, z + 1);
    const Word* const before = reachedIn(y - 1, z);
    const Word* const behind = reachedIn(y + 1, z);
    std::uint64_t any = 0;
    for (int i = first; i <= last; ++i) {
        scratch[i] = (above[i].reached | below[i].reached | before[i].reached | behind[i].reached) &
                     own[i].open & ~own[i].reached;
        any |= scratch[i];
    }
    if (any) spread(row, first, last);
}

/// Spreads the bits of `scratch`, words firstWord to lastWord, along the open runs of a row.
void GiRowFill::spread(unsigned long row, int firstWord, int lastWord)
{
    Word* const own = wordsOf(row);
    const int end = static_cast<int>(rowWords);
    std::uint64_t carry = 0;
    int top = firstWord;
    for (; top < end && (top <= lastWord || carry); ++top) {
        if (top > lastWord) scratch[top] = 0;
        if (scratch[top] | carry) scratch[top] = spreadUp(own[top].open, scratch[top], carry);
    }

    int low = kNoWord, high = -1;
    std::uint64_t enters = 0; // from the word above
    for (int i = top - 1; i >= 0 && (i >= firstWord || enters); --i) {
        std::uint64_t bits = (i >= firstWord ? scratch[i] : 0) | (enters & own[i].open);
        if (bits && bits != own[i].open) bits = spreadDown(own[i].open, bits);
        enters = bits << 63;
        if (!bits) continue;
        own[i].reached |= bits;
        count += static_cast<unsigned long>(std::popcount(bits));
        low = i;
        high = std::max(high, i);
    }

    const long y = static_cast<long>(row) % ny, z = static_cast<long>(row) / ny;
    const long lowest[3] = {low * 64l + std::countr_zero(own[low].reached), y, z};
    const long highest[3] = {high * 64l + 63 - std::countl_zero(own[high].reached), y, z};
    for (int axis = 0; axis < 3; ++axis) {
        bounds[axis] = std::min(bounds[axis], lowest[axis]);
        bounds[axis + 3] = std::max(bounds[axis + 3], highest[axis]);
    }
    list(y, z - 1, own, low, high);
    list(y, z + 1, own, low, high);
    list(y - 1, z, own, low, high);
    list(y + 1, z, own, low, high);
}

void GiRowFill::markVisited()
{
    for (int number = 0; number < rows.size(); ++number) {
        if (!rows[number].isBuilt) continue;
        const auto row = static_cast<unsigned long>(number);
        const Word* const own = wordsOf(row);
        for (unsigned long i = 0; i < rowWords; ++i) {
            const std::uint64_t bits = own[i].reached;
            if (!bits) continue;
            // The field may be written beyond its last bit here, with zeros.
            const unsigned long at = row * static_cast<unsigned long>(nx) + i * 64;
            McBitfield::Word64* const target = visited.words64() + at / 64;
            target[0] |= bits << (at % 64);
            target[1] |= bits >> 1 >> (63 - at % 64);
        }
    }
}
