#pragma once

#include "mc/McBitfield.h"
#include "mc/McDArray.h"

#include <cstdint>
#include <functional>

class McProgressInterface;

/// A 6-connected fill over a volume whose rows are given as bits.
///
/// Whole rows are the unit of work: what the four neighbouring rows have reached enters a row at
/// once, and spreads in it by word operations along the runs of accepted voxels. A row that gains
/// voxels puts its neighbours on the list of rows to be looked at, and the list is swept up and down
/// the volume, so that memory is read in order and a row takes in the growth of several neighbours
/// at once. Noise, with its many short runs, then costs little more than a solid region.
///
/// What is reached is kept in the marks alone. The accepted voxels of a row are asked for when the
/// fill gets there, and forgotten a few planes later: asking again is cheaper than keeping them for
/// the volume.
///
/// Use once: name the seeds, then call fill(). The marks must not change in between.
class GiRowFill
{
public:
    /// Writes the accepted voxels of a row, row number y + Y * z, into (X + 63) / 64 words, the
    /// lowest bit first, bits beyond X zero.
    using AcceptRow = std::function<void(unsigned long row, std::uint64_t* accepted)>;

    /// marks   X * Y * Z bits, all of them clear
    /// throws  McMemoryException
    GiRowFill(const unsigned long* dims, McBitfield& marks, AcceptRow acceptRow);
    GiRowFill(const GiRowFill&) = delete;
    GiRowFill& operator=(const GiRowFill&) = delete;

    /// Starts at those of the voxels 64 * i + k of a row, k by the bits of `seeds`, that are
    /// accepted.
    void addSeeds(unsigned long row, unsigned long i, std::uint64_t seeds);

    /// Fills from all seeds and marks what is reached.
    ///
    /// bounds    xmin, ymin, zmin, xmax, ymax, zmax, widened by what is filled
    /// progress  shows the share of the volume that is filled, which is a region's least share of the way;
    ///           once interrupted, the fill ends with what it has. Null: nobody watches
    /// returns   the number of voxels filled
    unsigned long fill(long* bounds, McProgressInterface* progress = nullptr);

private:
    struct Row
    {
        int firstWord, lastWord; // where neighbours have grown since the last look; none: last < first
    };

    unsigned long slotOf(long y, long z) const;
    const std::uint64_t* acceptedIn(long y, long z);
    void list(long y, long z, int firstWord, int lastWord);
    void lookAt(unsigned long row);
    bool isToStop(McProgressInterface& progress);
    void spread(long y, long z, const std::uint64_t* open, int firstWord, int lastWord);
    void mark(long y, long z, int firstWord, int lastWord);

    const long nx, ny, nz;
    const unsigned long rowWords;
    const unsigned long planesKept;
    McBitfield& reached;
    AcceptRow acceptRow;
    McDArray<Row> rows;
    McBitfield listed;                // by row
    McDArray<std::uint64_t> accepted; // of the rows asked for last, by slot
    McDArray<long> acceptedOf;        // the row in each slot; -1: none
    McDArray<std::uint64_t> scratch;  // one row: where a look found growth, then the growth itself
    unsigned long count = 0;
    unsigned long looks = 0;
    long bounds[6];
};
