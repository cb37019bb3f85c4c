#pragma once

#include "tools/McBlowGrowth.h"

/// A variant of McBlowRegion whose speed depends on the direction of travel: only edges that rise ahead of a
/// point hold it. It knows no `growAndShrink`.
class McBlowRegionExt : public McBlowGrowth<McBlowRegionExt>
{
public:
    static constexpr int kPlanes = 9; // eight directions, and the first one again

    /// As of McBlowGrowth.
    McBlowRegionExt(int sliceWidth, int sliceHeight, unsigned char* slice, int growAndShrinks, int smoothing);

    /// Where a direction lies between those of the planes, which follow each other by 45 degrees from along a
    /// row on, by way of lower rows: between `plane` and the next one, whose weights are `weight` and the
    /// rest of 1.
    static void normal2direction(const McVec2f& normal, int& plane, float& weight);
    /// The speed at a place, interpolated there and between two planes.
    float getSpeed(const McVec2f& p, int plane, float weight) const;

    float getMove(int i, const McVec2f& normal, float curvature, const McBlowCurve& curve) const;

    McDArray<float> directedSpeed[kPlanes];

private:
    McBlowRegionExt(int sliceWidth, int sliceHeight, unsigned char* slice, int growAndShrinks, int smoothing,
                    LicImage&& blurred);
    void computeGradient(const LicImage& picture);
};
