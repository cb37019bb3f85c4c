#include "core/GiRowFill.h"

#include "core/GiBitRows.h"
#include "core/GiRunSpread.h"
#include "mc/McProgressInterface.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

namespace {

constexpr int kNoWord = std::numeric_limits<int>::max();
constexpr unsigned long kLooksBetweenPolls = 1024; // about a millisecond in rows of 512 voxels
constexpr unsigned long kPlanesKept = 4;           // a look reaches into both neighbouring planes

} // namespace

GiRowFill::GiRowFill(const unsigned long* dims, McBitfield& marks, AcceptRow accept)
    : nx(static_cast<long>(dims[0])),
      ny(static_cast<long>(dims[1])),
      nz(static_cast<long>(dims[2])),
      rowWords((dims[0] + 63) / 64),
      planesKept(std::clamp(dims[2], 1ul, kPlanesKept)),
      reached(marks),
      acceptRow(std::move(accept)),
      bounds{nx, ny, nz, -1, -1, -1}
{
    const unsigned long numRows = dims[1] * dims[2];
    rows.resize(static_cast<int>(numRows));
    for (Row& row : rows) row = Row{kNoWord, -1};
    listed.resize(numRows);
    const unsigned long slots = planesKept * dims[1];
    accepted.resize(static_cast<int>(slots * rowWords));
    acceptedOf.resize(static_cast<int>(slots));
    for (long& row : acceptedOf) row = -1;
    scratch.resize(static_cast<int>(rowWords));
}

unsigned long GiRowFill::slotOf(long y, long z) const
{
    return static_cast<unsigned long>(z) % planesKept * static_cast<unsigned long>(ny) +
           static_cast<unsigned long>(y);
}

const std::uint64_t* GiRowFill::acceptedIn(long y, long z)
{
    const long row = y + ny * z;
    const unsigned long slot = slotOf(y, z);
    std::uint64_t* const words = accepted.data() + slot * rowWords;
    long& owner = acceptedOf[static_cast<int>(slot)];
    if (owner != row) {
        acceptRow(static_cast<unsigned long>(row), words);
        owner = row;
    }
    return words;
}

/// Puts a row on the list whose neighbour has grown by the words of `scratch`.
void GiRowFill::list(long y, long z, int firstWord, int lastWord)
{
    if (y < 0 || y >= ny || z < 0 || z >= nz) return;
    const long number = y + ny * z;
    const auto row = static_cast<unsigned long>(number);
    // Most rows need no look: they are reached already, or do not accept what is new.
    const unsigned long slot = slotOf(y, z);
    const bool isKept = acceptedOf[static_cast<int>(slot)] == number;
    const std::uint64_t* const open = accepted.data() + slot * rowWords;
    std::uint64_t any = 0;
    for (int i = firstWord; i <= lastWord; ++i) {
        const std::uint64_t grown = isKept ? scratch[i] & open[i] : scratch[i];
        any |= grown &
               ~reached.load64(row * static_cast<unsigned long>(nx) + static_cast<unsigned long>(i) * 64);
    }
    if (!any) return;
    Row& state = rows[static_cast<int>(number)];
    state.firstWord = std::min(state.firstWord, firstWord);
    state.lastWord = std::max(state.lastWord, lastWord);
    listed.set(row);
}

void GiRowFill::addSeeds(unsigned long row, unsigned long i, std::uint64_t seeds)
{
    const long y = static_cast<long>(row) % ny, z = static_cast<long>(row) / ny;
    const std::uint64_t* const open = acceptedIn(y, z);
    const int at = static_cast<int>(i);
    scratch[at] = seeds & open[i] & ~reached.load64(row * static_cast<unsigned long>(nx) + i * 64);
    if (scratch[at]) spread(y, z, open, at, at);
}

bool GiRowFill::isToStop(McProgressInterface& progress)
{
    if (++looks % kLooksBetweenPolls) return false;
    progress.setProgress(static_cast<double>(count) / static_cast<double>(reached.numBits()));
    return progress.interrupted();
}

unsigned long GiRowFill::fill(long* filled, McProgressInterface* progress)
{
    const auto numRows = static_cast<unsigned long>(rows.size());
    bool isDone = false;
    while (!isDone) {
        isDone = true;
        for (unsigned long row = giFindSet(listed.words(), 0, numRows); row < numRows;
             row = giFindSet(listed.words(), row + 1, numRows)) {
            if (progress && isToStop(*progress)) return count;
            lookAt(row);
            isDone = false;
        }
        for (unsigned long end = numRows, row; end > 0; end = row) {
            row = giFindLastSet(listed.words(), 0, end);
            if (row == end) break;
            if (progress && isToStop(*progress)) return count;
            lookAt(row);
            isDone = false;
        }
    }
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

    const long y = static_cast<long>(row) % ny, z = static_cast<long>(row) / ny;
    const std::uint64_t* const open = acceptedIn(y, z);
    const auto width = static_cast<unsigned long>(nx), plane = static_cast<unsigned long>(nx * ny);
    // A row without a neighbour on one side stands for it itself: it adds nothing.
    const unsigned long at = row * width;
    const unsigned long above = z > 0 ? at - plane : at;
    const unsigned long below = z + 1 < nz ? at + plane : at;
    const unsigned long before = y > 0 ? at - width : at;
    const unsigned long behind = y + 1 < ny ? at + width : at;
    std::uint64_t any = 0;
    for (int i = first; i <= last; ++i) {
        const unsigned long x = static_cast<unsigned long>(i) * 64;
        scratch[i] = (reached.load64(above + x) | reached.load64(below + x) | reached.load64(before + x) |
                      reached.load64(behind + x)) &
                     open[i] & ~reached.load64(at + x);
        any |= scratch[i];
    }
    if (any) spread(y, z, open, first, last);
}

/// Spreads the bits of `scratch`, words firstWord to lastWord, along the open runs of a row, which
/// are reached as a whole or not at all.
void GiRowFill::spread(long y, long z, const std::uint64_t* open, int firstWord, int lastWord)
{
    const int end = static_cast<int>(rowWords);
    std::uint64_t carry = 0;
    int top = firstWord;
    for (; top < end && (top <= lastWord || carry); ++top) {
        if (top > lastWord) scratch[top] = 0;
        if (scratch[top] | carry) scratch[top] = giSpreadUp(open[top], scratch[top], carry);
    }

    int low = top, high = -1;
    std::uint64_t enters = 0; // from the word above
    for (int i = top - 1; i >= 0 && (i >= firstWord || enters); --i) {
        std::uint64_t bits = (i >= firstWord ? scratch[i] : 0) | (enters & open[i]);
        if (bits && bits != open[i]) bits = giSpreadDown(open[i], bits);
        enters = bits << 63;
        scratch[i] = bits;
        low = i;
        if (bits) high = std::max(high, i);
    }
    while (!scratch[low]) ++low;
    mark(y, z, low, high);

    list(y, z - 1, low, high);
    list(y, z + 1, low, high);
    list(y - 1, z, low, high);
    list(y + 1, z, low, high);
}

/// Enters the growth of a row, which lies in the words firstWord to lastWord of `scratch`.
void GiRowFill::mark(long y, long z, int firstWord, int lastWord)
{
    const auto first = static_cast<unsigned long>((y + ny * z) * nx);
    for (int i = firstWord; i <= lastWord; ++i) {
        const std::uint64_t bits = scratch[i];
        // The field may be written beyond its last bit here, with zeros.
        const unsigned long at = first + static_cast<unsigned long>(i) * 64;
        McBitfield::Word64* const target = reached.words64() + at / 64;
        target[0] |= bits << (at % 64);
        target[1] |= bits >> 1 >> (63 - at % 64);
        count += static_cast<unsigned long>(std::popcount(bits));
    }
    const long lowest[3] = {firstWord * 64l + std::countr_zero(scratch[firstWord]), y, z};
    const long highest[3] = {lastWord * 64l + 63 - std::countl_zero(scratch[lastWord]), y, z};
    for (int axis = 0; axis < 3; ++axis) {
        bounds[axis] = std::min(bounds[axis], lowest[axis]);
        bounds[axis + 3] = std::max(bounds[axis + 3], highest[axis]);
    }
}
