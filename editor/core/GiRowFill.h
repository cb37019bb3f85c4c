#pragma once

#include "mc/McBitfield.h"
#include "mc/McDArray.h"

#include <cstdint>
#include <functional>

/// A 6-connected fill over a volume whose rows are given as bits.
///
/// Whole rows are the unit of work: what the four neighbouring rows have reached enters a row at
/// once, and spreads in it by word operations along the runs of accepted voxels. A row that gains
/// voxels puts its neighbours on the list of rows to be looked at, and the list is swept up and down
/// the volume, so that memory is read in order and a row takes in the growth of several neighbours
/// at once. Noise, with its many short runs, then costs little more than a solid region. A row is
/// asked for when the fill first gets there.
///
/// Use once: name the seeds, then call fill(). `visited` must not change in between.
class GiRowFill
{
public:
    /// Writes the accepted voxels of a row, row number y + Y * z, into (X + 63) / 64 words, the
    /// lowest bit first, bits beyond X zero.
    using AcceptRow = std::function<void(unsigned long row, std::uint64_t* accepted)>;

    /// visited  X * Y * Z bits; voxels marked there are not entered. A run of accepted voxels along
    ///          x must be marked as a whole or not at all, as earlier fills leave it.
    /// throws   McMemoryException
    GiRowFill(const unsigned long* dims, McBitfield& visited, AcceptRow acceptRow);
    ~GiRowFill();
    GiRowFill(const GiRowFill&) = delete;
    GiRowFill& operator=(const GiRowFill&) = delete;

    /// Whether a voxel inside the volume is accepted, marked or not.
    bool accepts(unsigned long x, unsigned long row);

    /// Starts at those of the voxels 64 * i + k of a row, k by the bits of `seeds`, that are
    /// accepted and not marked.
    void addSeeds(unsigned long row, unsigned long i, std::uint64_t seeds);

    /// Fills from all seeds and marks what is reached in `visited`.
    ///
    /// bounds   xmin, ymin, zmin, xmax, ymax, zmax, widened by what is filled
    /// returns  the number of voxels filled
    unsigned long fill(long* bounds);

private:
    struct Word
    {
        std::uint64_t open; // accepted, and not marked before
        std::uint64_t reached;
    };
    struct Row
    {
        int firstWord, lastWord; // where neighbours have grown since the last look; none: last < first
        bool isBuilt;
    };

    Word* wordsOf(unsigned long row) { return words + row * rowWords; }
    Word* builtRow(unsigned long row);
    const Word* reachedIn(long y, long z) const;
    void list(long y, long z, const Word* grown, int firstWord, int lastWord);
    void lookAt(unsigned long row);
    void spread(unsigned long row, int firstWord, int lastWord);
    void markVisited();

    const long nx, ny, nz;
    const unsigned long rowWords;
    McBitfield& visited;
    AcceptRow acceptRow;
    Word* words; // rowWords per row, zeroed until built
    McDArray<Row> rows;
    McDArray<Word> emptyRow;         // stands for rows outside, and for those not reached yet
    McDArray<std::uint64_t> scratch; // one row
    McBitfield listed;               // by row
    unsigned long count = 0;
    long bounds[6];
};
