#pragma once

#include "core/GiSelection3D.h"

#include <vector>

/// Which slices of an orientation hold selected voxels, one flag per slice. One walk through the selection,
/// also where the slices lie across its words.
std::vector<unsigned char> giOccupiedSlices(const GiSelection3D& selection, int orientation);
