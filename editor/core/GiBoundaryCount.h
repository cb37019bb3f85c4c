#pragma once

#include "mc/McBitfield.h"

/// Counts by label.
struct GiLabelHistogram
{
    unsigned long counts[256] = {};

    void add(const GiLabelHistogram& other);
    /// The most frequent label other than `tissue`, the lowest on a tie; -1 if there is none.
    int mostFrequentBut(int tissue) const;
};

/// Counts the labels around a set of voxels: once for each pair of a set voxel and a face neighbour
/// outside the set. Works by rows and 64 voxels at a time, with AVX2 where the processor has it.
/// Counting from several threads at once is safe.
class GiBoundaryCount
{
public:
    /// Keeps references to the set and the volume.
    ///
    /// dims  X, Y, Z
    GiBoundaryCount(const McBitfield& set, const unsigned char* volume, const unsigned long* dims);

    /// Adds the counts for the voxels of the set in the rows [firstRow, endRow), numbered y + Y * z.
    void countRows(unsigned long firstRow, unsigned long endRow, GiLabelHistogram& histogram) const;

private:
    /// The two labels that were counted one by one last.
    struct Seen
    {
        unsigned char latest = 0, former = 1;
    };
    /// One direction: the voxels of the set whose neighbour counts, and the labels of all neighbours.
    struct Side
    {
        unsigned long voxels;
        const unsigned char* neighbours;
    };

    void countRow(unsigned long row, GiLabelHistogram& histogram, Seen& seen) const;
    static void countSides(const Side* sides, GiLabelHistogram& histogram);
    static void countSidesAvx2(const Side* sides, GiLabelHistogram& histogram, Seen& seen);

    const McBitfield& bits;
    const unsigned char* labels;
    const unsigned long nx, ny, nz, plane;
};
