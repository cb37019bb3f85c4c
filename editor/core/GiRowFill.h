#pragma once

#include "mc/McBitfield.h"
#include "mc/McDArray.h"

#include <cstdint>
#include <functional>

/// A 6-connected span fill over a volume whose rows are given as bits.
///
/// A row is asked for when the fill first reaches it. Several fills may follow each other; what is
/// marked stays in the caller's bit field, which must not change otherwise meanwhile.
class GiRowFill
{
public:
    /// Writes the accepted voxels of a row, row number y + Y * z, into (X + 63) / 64 words, the
    /// lowest bit first, bits beyond X zero.
    using AcceptRow = std::function<void(unsigned long row, std::uint64_t* accepted)>;

    /// visited  X * Y * Z bits; runs marked there already are not entered again
    /// throws   McMemoryException
    GiRowFill(const unsigned long* dims, McBitfield& visited, AcceptRow acceptRow);
    ~GiRowFill();
    GiRowFill(const GiRowFill&) = delete;
    GiRowFill& operator=(const GiRowFill&) = delete;

    /// Fills around a voxel inside the volume.
    ///
    /// bounds   xmin, ymin, zmin, xmax, ymax, zmax, widened by what is filled
    /// returns  the number of voxels filled; 0 if the voxel is not accepted
    /// throws   McMemoryException
    unsigned long fill(long x, long y, long z, long* bounds);

    /// The voxels of the i-th word of a row that are accepted and not marked yet.
    std::uint64_t openVoxels(unsigned long row, unsigned long i) { return wordsOf(row)[i].open; }

    unsigned long wordsPerRow() const { return rowWords; }

private:
    // Both are looked at together: where a run may start, and how far it reaches.
    struct Word
    {
        std::uint64_t accepted;
        std::uint64_t open; // accepted and not visited
    };
    struct Span
    {
        int z, y, left, right;
    };

    Word* wordsOf(unsigned long row)
    {
        if (!isBuilt[row]) buildRow(row);
        return words + row * rowWords;
    }
    void buildRow(unsigned long row);
    bool hasOpen(long y, long z, int left, int right);
    void push(long z, long y, int left, int right);
    void fillSpan(const Span& span, long* bounds);
    void markRun(Word* row, const Span& span, int left, int end, long* bounds);

    const long nx, ny, nz;
    const unsigned long rowWords;
    McBitfield& visited;
    AcceptRow acceptRow;
    Word* words;            // rowWords per row, zeroed until built
    unsigned char* isBuilt; // by row
    McDArray<std::uint64_t> acceptedRow;
    McDArray<Span> pending;
    unsigned long count = 0;
};
