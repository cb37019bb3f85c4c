#pragma once

#include "mc/McBitfield.h"

class GiSelection2D;

/// Which voxels of a volume a projection takes: those that lie, seen along each axis, in the pixels chosen on
/// that axis's plane. A plane whose bit field is empty chooses all.
class McRestrictedProjectedVolume
{
public:
    /// No planes, and no voxels to choose from.
    McRestrictedProjectedVolume() = default;
    /// dims  voxels along x, y, z
    explicit McRestrictedProjectedVolume(const int* dims);

    /// Forgets all planes.
    void init(const int* newDims);
    /// Restricts the volume by the selected pixels of a slice of this orientation (0 YZ, 1 XZ, 2 XY). Pixel
    /// (x, y) is bit x + y * (width of the selection). Nothing happens for another plane.
    /// throws McMemoryException
    void setPlane(int plane, const GiSelection2D* selection);

    McBitfield planes[3];
    int dims[3] = {0, 0, 0};
};
