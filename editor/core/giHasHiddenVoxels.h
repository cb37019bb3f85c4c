#pragma once

#include "core/GiSelection3D.h"

#include <span>

/// A slice that somebody sees.
struct GiShownSlice
{
    int orientation;
    int slice;
};

/// Whether a selected voxel lies in none of the shown slices. Only reads, one word at a time, and stops at
/// the first such voxel; slices outside the volume show nothing.
bool giHasHiddenVoxels(const GiSelection3D& selection, std::span<const GiShownSlice> shown);
