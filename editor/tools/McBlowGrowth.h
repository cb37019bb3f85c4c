#pragma once

#include "mc/McDArray.h"
#include "mc/McMemoryException.h"
#include "mc/McVec.h"
#include "modules/LicImage.h"
#include "tools/mcBlowCurve.h"
#include "tools/mcBlowSpeed.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <utility>

/// A closed curve that grows in a gray slice like a balloon: fast through flat places, and not across edges.
/// Its state after each step is kept, so going back costs nothing. What moves a point is a matter of Region,
/// which derives from this class:
///
///     float getMove(int i, const McVec2f& normal, float curvature, const McBlowCurve& curve) const;
///
/// gives the way of point i along its normal in one pass, in pixels.
template <class Region>
class McBlowGrowth
{
public:
    /// slice           gray values, at least one row and column; not read after this
    /// growAndShrinks  non-zero: the curve may also move inward. Holds for all engines of the class.
    /// smoothing       width of the blur of the slice in pixels; see LicImage::gaussBlur()
    /// throws McMemoryException
    McBlowGrowth(int sliceWidth, int sliceHeight, unsigned char* slice, int growAndShrinks, int smoothing);
    ~McBlowGrowth() { forget(); }
    McBlowGrowth(const McBlowGrowth&) = delete;
    McBlowGrowth& operator=(const McBlowGrowth&) = delete;

    /// Starts with a circle of ten points around a pixel, two pixels wide, that keeps off the border.
    void init(int x, int y);
    /// Starts with a given curve. Points outside the slice are brought to its border.
    void init(const McBlowCurve* start);
    /// Tries up to n further steps; ends at `maxSteps`. Whole steps stay if the memory runs out.
    /// throws McMemoryException, as do the other calls that make curves
    void growSteps(int n);
    /// The curve after t steps, limited to 0 to `maxSteps`. Steps that are not there yet are made. If the
    /// growth ends before, the last curve; each call then tries again.
    /// returns null before init(); the curve lives until the next init()
    const McBlowCurve* getTimeStep(int t);

    /// In hundredths of a speed: where the slice allows no more than that, a point moves on only as long as
    /// it gets slower, up to the crest of the edge. A curve that has come to rest counts it down.
    int tolerance = 15;
    unsigned char* image; // not owned
    int width, height;
    int gaussWidth;
    int maxSteps = 1000; // the last step; lowered when the growth has ended
    McDArray<McBlowCurve*> curves;
    McDArray<McVec2f> gradientOfSpeed;
    McDArray<float> speed, absGradient;

    static inline int growAndShrink = 0;

protected:
    static constexpr float kSharpest = 4; // the curvature from which on a point stays
    static constexpr double kLimitUnit = 0.01;

    /// What the shape of the curve does to a speed: convex parts get slower, concave ones faster.
    static float damped(float pointSpeed, float curvature) { return (1 - curvature * 0.25f) * pointSpeed; }
    /// Index of the pixel that a point lies in.
    long pixelOf(const McVec2f& p) const
    {
        const int x = std::clamp(static_cast<int>(p.x + 0.5f), 0, width - 1);
        const int y = std::clamp(static_cast<int>(p.y + 0.5f), 0, height - 1);
        return x + static_cast<long>(y) * width;
    }
    /// The same, and hands on the blurred slice that the speed was taken from.
    McBlowGrowth(int sliceWidth, int sliceHeight, unsigned char* slice, int growAndShrinks, int smoothing,
                 LicImage& blurred);
    /// Whether `p` lies between the centers of the outermost pixels.
    bool isInside(const McVec2f& p) const
    {
        return p.x >= 0 && p.x <= static_cast<float>(width - 1) && p.y >= 0 &&
               p.y <= static_cast<float>(height - 1);
    }

private:
    static constexpr int kPasses = 5;    // of moves in one step
    static constexpr double kFast = 0.6; // a faster point goes as far as its neighbors are away
    static constexpr double kLeastMove = 0.01;

    LicImage blurredSlice() const;
    void speedFunction(const LicImage& blurred);
    void forget();
    void append(McBlowCurve curve);
    void grow();
    bool movePoints(McBlowCurve& curve) const;
};

template <class Region>
McBlowGrowth<Region>::McBlowGrowth(int sliceWidth, int sliceHeight, unsigned char* slice, int growAndShrinks,
                                   int smoothing)
    : image(slice), width(sliceWidth), height(sliceHeight), gaussWidth(smoothing)
{
    growAndShrink = growAndShrinks;
    speedFunction(blurredSlice());
}

template <class Region>
McBlowGrowth<Region>::McBlowGrowth(int sliceWidth, int sliceHeight, unsigned char* slice, int growAndShrinks,
                                   int smoothing, LicImage& blurred)
    : image(slice), width(sliceWidth), height(sliceHeight), gaussWidth(smoothing)
{
    growAndShrink = growAndShrinks;
    blurred = blurredSlice();
    speedFunction(blurred);
}

template <class Region>
LicImage McBlowGrowth<Region>::blurredSlice() const
{
    LicImage result;
    if (!LicImage(width, height, image).gaussBlur(gaussWidth, &result))
        throw McMemoryException(static_cast<unsigned long>(width) * static_cast<unsigned long>(height));
    return result;
}

template <class Region>
void McBlowGrowth<Region>::speedFunction(const LicImage& blurred)
{
    const long n = static_cast<long>(width) * height;
    if (n > std::numeric_limits<int>::max()) throw McMemoryException(static_cast<unsigned long>(n));
    absGradient.resize(static_cast<int>(n));
    speed.resize(static_cast<int>(n));
    gradientOfSpeed.resize(static_cast<int>(n));
    mcAbsOfGradient(blurred.data, width, height, absGradient.data());
    mcSpeedOfGradient(absGradient.data(), n, speed.data());
    mcGradientOf(speed.data(), width, height, gradientOfSpeed.data());
}

template <class Region>
void McBlowGrowth<Region>::forget()
{
    for (const McBlowCurve* curve : curves) delete curve;
    curves.clear();
}

template <class Region>
void McBlowGrowth<Region>::append(McBlowCurve curve)
{
    std::unique_ptr<McBlowCurve> kept(new (std::nothrow) McBlowCurve(std::move(curve)));
    if (!kept) throw McMemoryException(sizeof(McBlowCurve));
    curves.append(kept.get());
    kept.release();
}

template <class Region>
void McBlowGrowth<Region>::init(int x, int y)
{
    constexpr int kPoints = 10, kRadius = 2;
    const float cx = static_cast<float>(std::max(std::min(x, width - 3), kRadius));
    const float cy = static_cast<float>(std::max(std::min(y, height - 3), kRadius));
    McBlowCurve circle;
    for (int i = 0; i < kPoints; ++i) {
        const float angle = static_cast<float>(i * M_PI / 5);
        circle.append(McVec2f(cx + kRadius * std::cos(angle), cy + kRadius * std::sin(angle)));
    }
    forget();
    append(std::move(circle));
}

template <class Region>
void McBlowGrowth<Region>::init(const McBlowCurve* start)
{
    McBlowCurve inside;
    for (const McVec2f& p : *start) {
        // Written so that what is no number becomes 0.
        const float x = p.x > 0 ? std::min(p.x, static_cast<float>(width - 1)) : 0;
        const float y = p.y > 0 ? std::min(p.y, static_cast<float>(height - 1)) : 0;
        inside.append(McVec2f(x, y));
    }
    forget();
    append(std::move(inside));
}

template <class Region>
void McBlowGrowth<Region>::growSteps(int n)
{
    for (int i = 0; i < n && !curves.isEmpty() && curves.size() <= maxSteps; ++i) grow();
}

template <class Region>
const McBlowCurve* McBlowGrowth<Region>::getTimeStep(int t)
{
    if (curves.isEmpty()) return nullptr;
    t = std::clamp(t, 0, std::max(maxSteps, 0));
    if (t < curves.size()) return curves[t];
    growSteps(t + 1 - curves.size());
    return curves.last();
}

template <class Region>
void McBlowGrowth<Region>::grow()
{
    McBlowCurve curve(*curves.last());
    bool moved = false;
    for (int pass = 0; pass < kPasses; ++pass) {
        if (movePoints(curve)) moved = true;
        mcInsertPoints(curve);
        mcDeletePoints(curve);
    }
    if (moved) {
        mcDeleteIntersections(curve);
        append(std::move(curve));
    } else if (growAndShrink || tolerance < 1) {
        maxSteps = curves.size() - 1;
    } else {
        --tolerance;
    }
}

/// Each point in turn, so that a point sees where the one before it has gone.
template <class Region>
bool McBlowGrowth<Region>::movePoints(McBlowCurve& curve) const
{
    bool moved = false;
    for (int i = 0; i < curve.size(); ++i) {
        const McCurveEdges edges(curve, i);
        const McVec2f normal = edges.normal();
        float move = static_cast<const Region*>(this)->getMove(i, normal, edges.curvature(), curve);
        // kept: a fast point moves outward, also one that was on its way inward.
        if (std::abs(move) > kFast) move = (edges.forwardLength + edges.backwardLength) * 0.5f;
        const McVec2f target = edges.point + normal * move;
        if (!isInside(target)) continue;
        curve[i] = target;
        if (std::abs(move) > kLeastMove) moved = true;
    }
    return moved;
}
