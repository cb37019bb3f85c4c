#include "core/giMoveSelection.h"

#include "core/GiBitRows.h"
#include "core/GiOrientation.h"
#include "core/GiSelection3D.h"

#include <algorithm>
#include <vector>

namespace {

/// Rows along X of the volume's bits, by y and z.
class RowMove
{
public:
    RowMove(GiSelection3D& selection, int orientation, int slice, const McVec2i& offset)
        : words(selection.bits.words()),
          nx(static_cast<long>(selection.dims[0])),
          ny(static_cast<long>(selection.dims[1])),
          nz(static_cast<long>(selection.dims[2])),
          keptAxis(giSliceAxis(orientation)),
          keptSlice(slice)
    {
        move[giWidthAxis(orientation)] = offset.x;
        move[giHeightAxis(orientation)] = offset.y;
    }

    void run()
    {
        long first = 0, last = 0;
        if (!findRows(first, last)) return;
        const long step = move[1] + ny * move[2]; // rows between source and target
        const long begin = std::max(0l, std::min(first, first + step));
        const long end = std::min(ny * nz - 1, std::max(last, last + step));
        // A row is read before it is written.
        if (step > 0)
            for (long row = end; row >= begin; --row) moveInto(row, step);
        else
            for (long row = begin; row <= end; ++row) moveInto(row, step);
    }

private:
    unsigned long bitOf(long row) const { return static_cast<unsigned long>(row * nx); }

    /// The first and the last row with a selected voxel.
    bool findRows(long& first, long& last) const
    {
        const auto end = static_cast<unsigned long>(nx * ny * nz);
        const unsigned long bit = giFindSet(words, 0, end);
        if (bit == end) return false;
        first = static_cast<long>(bit) / nx;
        last = static_cast<long>(giFindLastSet(words, 0, end)) / nx;
        return true;
    }

    void moveInto(long row, long step)
    {
        const long y = row % ny, z = row / ny;
        if ((keptAxis == 1 && y == keptSlice) || (keptAxis == 2 && z == keptSlice)) return;
        const unsigned long target = bitOf(row), end = target + static_cast<unsigned long>(nx);
        const unsigned long kept = target + static_cast<unsigned long>(keptSlice);
        const bool keptBit = keptAxis == 0 && isSet(kept);
        const long sourceY = y - move[1], sourceZ = z - move[2];
        const bool hasSource = sourceY >= 0 && sourceY < ny && sourceZ >= 0 && sourceZ < nz;
        if (!hasSource)
            giUnsetBits(words, target, end);
        else if (step == 0)
            shiftRow(target);
        else
            copyRow(target, bitOf(row - step));
        if (keptAxis == 0) assign(kept, keptBit);
    }

    void copyRow(unsigned long target, unsigned long source)
    {
        const long left = std::max(0l, move[0]), right = std::min(nx, nx + move[0]); // of what arrives
        const auto at = [target](long x) { return target + static_cast<unsigned long>(x); };
        giUnsetBits(words, target, at(left));
        giUnsetBits(words, at(right), at(nx));
        giCopyBits(words, at(left), words, source + static_cast<unsigned long>(left - move[0]),
                   static_cast<unsigned long>(right - left));
    }

    /// Within the row itself, by way of a copy.
    void shiftRow(unsigned long target)
    {
        const auto n = static_cast<unsigned long>(nx);
        if (giFindSet(words, target, target + n) == target + n) return;
        scratch.assign((n + 31) / 32, 0);
        giCopyBits(scratch.data(), 0, words, target, n);
        const long left = std::max(0l, move[0]), right = std::min(nx, nx + move[0]);
        giUnsetBits(words, target, target + n);
        giCopyBits(words, target + static_cast<unsigned long>(left), scratch.data(),
                   static_cast<unsigned long>(left - move[0]), static_cast<unsigned long>(right - left));
    }

    bool isSet(unsigned long bit) const { return words[bit / 32] >> (bit % 32) & 1; }
    void assign(unsigned long bit, bool set)
    {
        if (set)
            giSetBits(words, bit, bit + 1);
        else
            giUnsetBits(words, bit, bit + 1);
    }

    unsigned int* const words;
    const long nx, ny, nz;
    const int keptAxis, keptSlice;
    long move[3] = {0, 0, 0};
    std::vector<unsigned int> scratch; // one row
};

} // namespace

void giMoveSelection(GiSelection3D& selection, int orientation, int slice, const McVec2i& offset)
{
    if (offset == McVec2i() || selection.numBits() == 0) return;
    RowMove(selection, orientation, slice, offset).run();
}
