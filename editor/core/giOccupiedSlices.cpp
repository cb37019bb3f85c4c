#include "core/giOccupiedSlices.h"

#include "core/GiOrientation.h"
#include "mc/McBitRows.h"
#include "mc/McSimd.h"

namespace {

/// Adds all rows of nx bits to one; its bits behind the end are of no use.
MC_TARGET_CLONES
void uniteRows(const McBitfield::Word64* field, unsigned long nx, unsigned long rows, std::uint64_t* united)
{
    const unsigned long n = (nx + 63) / 64;
    for (unsigned long r = 0; r < rows; ++r) {
        const McBitfield::Word64* w = field + r * nx / 64;
        const auto shift = static_cast<int>(r * nx % 64);
        for (unsigned long k = 0; k < n; ++k) united[k] |= w[k] >> shift | w[k + 1] << 1 << (63 - shift);
    }
}

std::vector<unsigned char> occupiedColumns(const GiSelection3D& selection)
{
    const unsigned long nx = selection.dims[0], rows = selection.dims[1] * selection.dims[2];
    std::vector<unsigned char> occupied(nx);
    std::vector<std::uint64_t> united((nx + 63) / 64);
    if (selection.bits.numBits() > 0) uniteRows(selection.bits.words64(), nx, rows, united.data());
    for (unsigned long x = 0; x < nx; ++x) occupied[x] = united[x / 64] >> (x % 64) & 1;
    return occupied;
}

} // namespace

std::vector<unsigned char> giOccupiedSlices(const GiSelection3D& selection, int orientation)
{
    if (giSliceAxis(orientation) == 0) return occupiedColumns(selection);
    std::vector<unsigned char> occupied(static_cast<std::size_t>(selection.getNumSlices(orientation)));
    for (std::size_t i = 0; i < occupied.size(); ++i)
        occupied[i] = !selection.isEmpty(static_cast<int>(i), orientation);
    return occupied;
}
