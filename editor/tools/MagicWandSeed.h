#pragma once

#include "mc/McDArray.h"
#include "mc/McVec.h"

#include <cstdint>

/// A place from which the magic wand has grown a region, with all that the region follows from.
struct MagicWandSeed
{
    /// Along an axis of the volume.
    int coordinate(int axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
    McVec3i voxel() const { return McVec3i(x, y, z); }
    void setVoxel(const McVec3i& v)
    {
        x = v.x;
        y = v.y;
        z = v.z;
    }

    float min = 0, max = 0; // the tools' window
    int orientation = 0;    // of the viewer that was clicked
    int x = 0, y = 0, z = 0;
    std::uint16_t is3D : 1 = 0; // grown through all slices
    std::uint16_t sameMaterial : 1 = 0;
    std::uint16_t fillInterior : 1 = 0;
    std::uint16_t material : 8 = 0; // 0: none
};

/// A line drawn over a slice that no region in this slice crosses.
struct MagicWandLimit
{
    int id = 0;
    int slice = 0;
    int orientation = 0;
    McDArray<McVec2f> points; // image coordinates of the slice
};
