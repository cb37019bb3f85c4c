#pragma once

#include "mc/McBitfield.h"
#include "mc/McDArray.h"

#include <cstdint>
#include <functional>

/// A 4-connected fill over a slice whose rows are given as bits.
///
/// Each row begins with a word of its own, so that rows are compared word by word. The list of rows to be
/// looked at is swept up and down the slice; a look takes in what both neighbours have reached and spreads it
/// along the runs of accepted pixels. A look that finds nothing new, which most do, costs a few vector
/// operations. GiRowFill, which does the same in a volume, has no room for this layout.
///
/// Use once: name the seeds, then call fill().
class GiSliceFill
{
public:
    /// Writes the accepted pixels of a row into (width + 63) / 64 words, the lowest bit first, bits beyond
    /// the width zero. Asked for once, when the fill gets to the row.
    using AcceptRow = std::function<void(unsigned long row, std::uint64_t* accepted)>;

    /// throws  McMemoryException
    GiSliceFill(unsigned long width, unsigned long height, AcceptRow acceptRow);
    GiSliceFill(const GiSliceFill&) = delete;
    GiSliceFill& operator=(const GiSliceFill&) = delete;

    /// Starts at those of the pixels 64 * i + k of a row, k by the bits of `seeds`, that are accepted.
    void addSeeds(unsigned long row, unsigned long i, std::uint64_t seeds);
    /// Fills from all seeds.
    void fill();

    unsigned long count() const;
    /// Writes the reached pixels, bit y * width + x, into a field of that size.
    void copyTo(McBitfield& marks) const;
    /// box  xmin, ymin, xmax, ymax; unchanged if nothing is reached
    void bounds(int* box) const;
    /// Words of a row, as AcceptRow writes them.
    const std::uint64_t* reachedIn(unsigned long row) const { return reached.data() + row * rowWords; }

private:
    const std::uint64_t* openRow(unsigned long row);
    void lookAt(unsigned long row);
    void spread(unsigned long row, unsigned long firstWord);

    const unsigned long width, height, rowWords;
    AcceptRow acceptRow;
    McDArray<std::uint64_t> accepted, reached; // rowWords a row
    McDArray<std::uint64_t> grown;             // of the row that is looked at
    McDArray<unsigned char> isAccepted;        // by row: has been asked for
    McDArray<unsigned char> isListed;          // by row
    unsigned long firstListed, lastListed;     // none is listed outside
};
