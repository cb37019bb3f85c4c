#include "tools/McBlowRegion.h"

float McBlowRegion::getMove(int i, const McVec2f& normal, float curvature, const McBlowCurve& curve) const
{
    if (curvature > kSharpest) return 0;
    const McVec2f& p = curve[i];
    const long pixel = pixelOf(p);
    const float rise = gradientOfSpeed.data()[pixel].dot(normal);
    if (growAndShrink) {
        const float move = damped(getSpeed(p), curvature);
        return rise > 0 ? -move : move;
    }
    const bool isAtEdge = !(speed.data()[pixel] > tolerance * kLimitUnit);
    if (isAtEdge && !(rise < 0)) return 0;
    return damped(getSpeed(p), curvature);
}
