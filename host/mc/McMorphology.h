#pragma once

#include "mc/McBitfield.h"
#include "mc/McDArray.h"
#include "mc/McVec.h"

/// Morphology of a volume of bits, dims[0] x dims[1] x dims[2] voxels, x fastest, over the six face
/// neighbours. The fields hold one bit per voxel.
///
/// All throw McMemoryException; a field that was to change is then as it was. `result` is a field other than
/// the source; the calls size it themselves.
class McMorphology
{
public:
    /// Axes along which neighbours count, to be combined.
    enum Axes : int
    {
        kAlongX = 1,
        kAlongY = 2,
        kAlongZ = 4,
        kAllAxes = kAlongX | kAlongY | kAlongZ
    };

    /// Sets the voxels that are connected to a seed through voxels of `source` that equal `value`.
    /// A seed of the other value, or outside the volume, marks nothing.
    static void floodfill(const McBitfield& source, McBitfield& result, const McDArray<McVec3i>& seeds,
                          bool value, const int* dims);

    /// Sets every voxel that no seed reaches through unset voxels, in place. What a flood from outside does
    /// not reach are holes; to fill them costs two bits of scratch per voxel.
    static void fillUnreached(McBitfield& bits, const McDArray<McVec3i>& seeds, const int* dims);

    /// Sets the voxels that are set in `bits` together with all their neighbours, `width` times over.
    /// Voxels outside the volume do not count: its border does not erode. Width 0 copies.
    static void erosion3D(const McBitfield& bits, McBitfield& result, const int* dims, int width);

    /// Sets the voxels that are set in `bits` or have a neighbour there, `width` times over.
    static void dilation3D(const McBitfield& bits, McBitfield& result, const int* dims, int width);

    /// One such step in place, among the neighbours along the given axes alone: without the axis across the
    /// slices, each slice is treated by itself. Takes a few slices of scratch for each thread; strips of
    /// some rows that nothing set is near cost no more than to be read.
    static void erode(McBitfield& bits, const int* dims, int axes = kAllAxes);
    static void dilate(McBitfield& bits, const int* dims, int axes = kAllAxes);
};
