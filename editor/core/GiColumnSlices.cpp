#include "core/GiColumnSlices.h"

#include "core/giTransposeBits.h"
#include "mc/McSimd.h"

#include <algorithm>

namespace {

constexpr unsigned long kSide = 64; // of the squares that are transposed

/// Transposes a square of the volume: bit k of word i of `square` becomes voxel `at` + i of row k.
MC_TARGET_CLONES
void loadSquare(const McBitfield::Word64* field, unsigned long at, unsigned long rowBits, unsigned long rows,
                std::uint64_t* square)
{
    for (unsigned long k = 0; k < rows; ++k) {
        const unsigned long bit = at + k * rowBits;
        const McBitfield::Word64* w = field + bit / 64;
        square[k] = w[0] >> (bit % 64) | w[1] << 1 << (63 - bit % 64);
    }
    std::fill(square + rows, square + kSide, 0u);
    giTransposeBits(square);
}

/// The way back: adds the bits, and leaves alone the words that have them.
MC_TARGET_CLONES
void addSquare(McBitfield::Word64* field, unsigned long at, unsigned long rowBits, unsigned long rows,
               std::uint64_t* square)
{
    giTransposeBits(square);
    for (unsigned long k = 0; k < rows; ++k) {
        const unsigned long bit = at + k * rowBits;
        McBitfield::Word64* w = field + bit / 64;
        const std::uint64_t low = square[k] << (bit % 64), high = square[k] >> 1 >> (63 - bit % 64);
        if (low & ~w[0]) w[0] |= low;
        if (high & ~w[1]) w[1] |= high;
    }
}

} // namespace

GiColumnSlices::GiColumnSlices(GiSelection3D& selection, std::span<const int> columns)
    : volume(selection),
      nx(selection.dims[0]),
      ny(selection.dims[1]),
      nz(selection.dims[2]),
      numbers(columns.begin(), columns.end()),
      slices(columns.size())
{
    for (std::size_t i = 0; i < slices.size(); ++i) {
        slices[i].resize(static_cast<int>(ny), static_cast<int>(nz));
        const auto column = static_cast<unsigned long>(numbers[i]);
        if (blocks.empty() || column >= blocks.back().first + kSide) blocks.push_back({column, i, i});
        blocks.back().end = i + 1;
    }
    forEachSquare([this](const Block& block, unsigned long y, unsigned long z) { take(block, y, z); });
}

void GiColumnSlices::putBack()
{
    forEachSquare([this](const Block& block, unsigned long y, unsigned long z) { put(block, y, z); });
}

/// The blocks in turn at one place: their words lie in the same cache lines.
template <class Change>
void GiColumnSlices::forEachSquare(const Change& change)
{
    for (unsigned long z = 0; z < nz; ++z)
        for (unsigned long y = 0; y < ny; y += kSide)
            for (const Block& block : blocks) change(block, y, z);
}

/// Rows y to y + 63 of slice z into the block's slices.
void GiColumnSlices::take(const Block& block, unsigned long y, unsigned long z)
{
    std::uint64_t square[kSide];
    loadSquare(volume.bits.words64(), block.first + nx * (y + ny * z), nx, std::min(kSide, ny - y), square);
    const unsigned long bit = y + ny * z;
    for (std::size_t i = block.begin; i < block.end; ++i) {
        const std::uint64_t pixels = square[static_cast<unsigned long>(numbers[i]) - block.first];
        McBitfield::Word64* w = slices[i].localBits.words64() + bit / 64;
        w[0] |= pixels << (bit % 64);
        if (bit % 64 != 0) w[1] |= pixels >> (64 - bit % 64);
    }
}

void GiColumnSlices::put(const Block& block, unsigned long y, unsigned long z)
{
    std::uint64_t square[kSide] = {};
    const unsigned long rows = std::min(kSide, ny - y);
    for (std::size_t i = block.begin; i < block.end; ++i)
        square[static_cast<unsigned long>(numbers[i]) - block.first] =
            slices[i].localBits.load64(y + ny * z) & ~std::uint64_t{0} >> (kSide - rows);
    if (std::any_of(square, square + kSide, [](std::uint64_t word) { return word != 0; }))
        addSquare(volume.bits.words64(), block.first + nx * (y + ny * z), nx, rows, square);
}
