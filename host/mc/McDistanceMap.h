#pragma once

#include "mc/McProgressInterface.h"

/// Distances by propagation of local steps through a volume.
///
/// A chamfer mask has 27 weights, x fastest: entry 13 is the centre, entry 13 + dx + 3 dy + 9 dz the step to
/// the neighbour (dx, dy, dz). Entries below 0 are not used. For a single slice only entries 9 to 17 matter.
class McDistanceMap
{
public:
    static constexpr int kMaskSize = 27;

    /// Lowers each value of a field to the smallest sum of steps and of a value from where they start, in
    /// place by two sweeps: upward in z, y, x with the first half of the mask, then downward with the second.
    ///
    /// field     dims[0] x dims[1] x dims[2] values, x fastest
    /// mask      null, or one byte per voxel: where it is 0 a value neither changes nor spreads
    /// progress  or null
    /// returns false if the user stopped it; the field is then partly done
    ///
    /// G. Borgefors, "Distance Transformations in Digital Images", Computer Vision, Graphics, and Image
    /// Processing 34, 1986.
    static bool propagateBSFieldChamferFast(float* field, const int* dims, const float* chamferMask,
                                            const unsigned char* mask, McProgressInterface* progress);

    /// The half of a mask that a sweep uses, the other half set to -1. The centre belongs to both.
    ///
    /// sweep  0 upward, 1 downward
    /// out    kMaskSize weights; may be the mask itself
    static void prepareChamferPropagationMask(const float* chamferMask, int sweep, float* out);

    /// A mask of one slice: `plane` holds nine weights, the neighbours above and below are not used.
    static void chamferMaskOfPlane(const float* plane, float* out);
};
