#pragma once

#include "tools/McBlowGrowth.h"

/// The engine of the blow tool: a curve whose points move along their normals with a speed that is the
/// smaller the steeper the slice is at them. With `growAndShrink` a point beyond the crest of an edge moves
/// back.
class McBlowRegion : public McBlowGrowth<McBlowRegion>
{
public:
    using McBlowGrowth::McBlowGrowth;

    /// The speed at a place, interpolated; from 1 in flat places down to 1/256.
    float getSpeed(const McVec2f& p) const { return mcInterpolated(speed.data(), width, height, p); }

    float getMove(int i, const McVec2f& normal, float curvature, const McBlowCurve& curve) const;
};
