#include "core/mcFloodFillWindow.h"

#include "core/GiAcceptRow.h"
#include "core/GiRowFill.h"
#include "core/mcFloodFill.h"
#include "mc/McBitfield.h"
#include "mc/McDArray.h"

#include <type_traits>

namespace {

bool isInside(const unsigned long* dims, long x, long y, long z)
{
    return x >= 0 && y >= 0 && z >= 0 && x < static_cast<long>(dims[0]) && y < static_cast<long>(dims[1]) &&
           z < static_cast<long>(dims[2]);
}

template <class T>
GiRowFill::AcceptRow rowTest(const McFillWindow<T>& window, unsigned long nx)
{
    McDArray<unsigned char> bytes;
    const unsigned long words = (nx + 63) / 64;
    bytes.resize(static_cast<int>(words * 64)); // beyond the row: refused
    return [window, nx, words, bytes](unsigned long row, std::uint64_t* accepted) mutable {
        if constexpr (std::is_same_v<T, float>) {
            if (!window.labels || window.label < 0) {
                giAcceptWindowBits(window.values + row * nx, nx, window.min, window.max, accepted);
                return;
            }
        }
        giAcceptWindow(window.values + row * nx, nx, window.min, window.max, bytes.data());
        if (window.labels && window.label >= 0)
            giRefuseOtherLabels(window.labels + row * nx, nx, static_cast<unsigned char>(window.label),
                                bytes.data());
        giPackAccepted(bytes.data(), words, accepted);
    };
}

/// The same without the voxels that are marked.
GiRowFill::AcceptRow unmarkedRowTest(const GiRowFill::AcceptRow& test, const McBitfield& marks,
                                     unsigned long nx)
{
    return [&test, &marks, nx](unsigned long row, std::uint64_t* accepted) {
        test(row, accepted);
        for (unsigned long i = 0; i < (nx + 63) / 64; ++i) accepted[i] &= ~marks.load64(row * nx + i * 64);
    };
}

bool accepts(const GiRowFill::AcceptRow& test, unsigned long nx, unsigned long x, unsigned long row)
{
    McDArray<std::uint64_t> accepted(static_cast<int>((nx + 63) / 64));
    test(row, accepted.data());
    return accepted[static_cast<int>(x / 64)] >> (x % 64) & 1;
}

} // namespace

template <class T>
unsigned long mcFloodFillWindow(const McFillWindow<T>& window, const unsigned long* dims, int x, int y, int z,
                                McBitfield& visited, int* box, McProgressInterface* progress)
{
    mcSizeVisited(visited, dims[0] * dims[1] * dims[2]);

    long bounds[6] = {x, y, z, x, y, z};
    unsigned long count = 0;
    const bool canMatch = !window.labels || window.label < 256;
    if (canMatch && isInside(dims, x, y, z)) {
        const GiRowFill::AcceptRow test = rowTest(window, dims[0]);
        const auto column = static_cast<unsigned long>(x);
        const auto rowOf = [&](long j, long k) {
            return static_cast<unsigned long>(j) + dims[1] * static_cast<unsigned long>(k);
        };
        if (accepts(test, dims[0], column, rowOf(y, z))) {
            // The fill starts on clear bits. Marks of earlier ones are hidden from it.
            const bool hasMarks = visited.isAnyBitSet();
            McBitfield ownRegion(hasMarks ? visited.numBits() : 0);
            McBitfield& region = hasMarks ? ownRegion : visited;
            GiRowFill fill(dims, region, hasMarks ? unmarkedRowTest(test, visited, dims[0]) : test);
            // As in the plain fill the neighbouring rows start too, which makes a difference if the
            // seed itself is marked already.
            const int starts[5][2] = {{y, z}, {y - 1, z}, {y + 1, z}, {y, z - 1}, {y, z + 1}};
            for (const auto& [j, k] : starts)
                if (isInside(dims, x, j, k))
                    fill.addSeeds(rowOf(j, k), column / 64, std::uint64_t{1} << (column % 64));
            count = fill.fill(bounds, progress);
            for (unsigned long i = 0; i < ownRegion.numWords(); ++i)
                visited.words()[i] |= ownRegion.words()[i];
        }
    }
    // kept: in a volume of a single row the box stays at the seed. The plain fill widens the box
    // when it goes on to a neighbouring row, and there is none.
    if (dims[1] == 1 && dims[2] == 1) bounds[0] = bounds[3] = x;
    if (box) {
        for (int axis = 0; axis < 3; ++axis) {
            box[2 * axis] = static_cast<int>(bounds[axis]);
            box[2 * axis + 1] = static_cast<int>(bounds[axis + 3]);
        }
    }
    return count;
}

template unsigned long mcFloodFillWindow(const McFillWindow<unsigned char>&, const unsigned long*, int, int,
                                         int, McBitfield&, int*, McProgressInterface*);
template unsigned long mcFloodFillWindow(const McFillWindow<short>&, const unsigned long*, int, int, int,
                                         McBitfield&, int*, McProgressInterface*);
template unsigned long mcFloodFillWindow(const McFillWindow<unsigned short>&, const unsigned long*, int, int,
                                         int, McBitfield&, int*, McProgressInterface*);
template unsigned long mcFloodFillWindow(const McFillWindow<int>&, const unsigned long*, int, int, int,
                                         McBitfield&, int*, McProgressInterface*);
template unsigned long mcFloodFillWindow(const McFillWindow<unsigned int>&, const unsigned long*, int, int,
                                         int, McBitfield&, int*, McProgressInterface*);
template unsigned long mcFloodFillWindow(const McFillWindow<float>&, const unsigned long*, int, int, int,
                                         McBitfield&, int*, McProgressInterface*);
template unsigned long mcFloodFillWindow(const McFillWindow<double>&, const unsigned long*, int, int, int,
                                         McBitfield&, int*, McProgressInterface*);
