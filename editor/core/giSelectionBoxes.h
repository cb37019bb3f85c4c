#pragma once

#include "mc/McBox.h"

#include <vector>

class GiSelection3D;

/// The tight box of the selected pixels of each slice of an orientation, in slice pixels; an empty one where
/// nothing is selected. One pass over the words of the volume.
std::vector<McBox2i> giSelectionBoxes(const GiSelection3D& selection, int orientation);
