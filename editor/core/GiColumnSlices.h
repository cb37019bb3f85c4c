#pragma once

#include "core/GiSelection3D.h"

#include <span>
#include <vector>

/// Some YZ slices of a selection, taken out together.
///
/// The pixels of such a slice lie a row apart, so that one slice costs as many cache lines as the volume has
/// rows. In one walk through the volume 64 voxels of 64 rows are transposed at a time, and each row is read
/// once for all slices.
class GiColumnSlices
{
public:
    /// columns  the slices' numbers, ascending and inside the volume; each takes ny * nz bits
    /// throws   McMemoryException
    GiColumnSlices(GiSelection3D& selection, std::span<const int> columns);

    /// A private selection, ny x nz.
    GiSelection2D& slice(std::size_t i) { return slices[i]; }
    /// Adds what is set in the slices to the volume.
    void putBack();

private:
    /// Slices whose voxels share words: those from column `first` to first + 63.
    struct Block
    {
        unsigned long first;
        std::size_t begin, end; // in `slices`
    };

    template <class Change>
    void forEachSquare(const Change& change);
    void take(const Block& block, unsigned long y, unsigned long z);
    void put(const Block& block, unsigned long y, unsigned long z);

    GiSelection3D& volume;
    const unsigned long nx, ny, nz;
    std::vector<int> numbers;
    std::vector<GiSelection2D> slices;
    std::vector<Block> blocks;
};
