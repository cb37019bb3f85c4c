#pragma once

#include "core/GiSelection3D.h"

#include <functional>

/// Closes the holes of each slice of an orientation by itself; selection boxes are the caller's matter.
///
/// goOn    asked after each slice, in order, with its number; false ends the fill. Slices up to that one are
///         filled then, and no other
/// throws  McMemoryException; what is filled by then stays
void giFillSlices(GiSelection3D& selection, int orientation, const std::function<bool(int slice)>& goOn);
