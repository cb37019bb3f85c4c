#pragma once

#include "mc/McVec.h"

class GiSelection3D;

/// Moves the selected voxels of all slices but one within their slices, as they were moved in that one. What
/// is moved out of the volume is lost.
///
/// orientation  0 to 2; the slices are those stacked along its axis
/// slice        the one that keeps its pixels
/// offset       in pixels of a slice
///
/// Rows of voxels along X are moved as runs of bits, whatever the orientation, beginning at the end that the
/// move goes to, so that no second volume is needed.
void giMoveSelection(GiSelection3D& selection, int orientation, int slice, const McVec2i& offset);
