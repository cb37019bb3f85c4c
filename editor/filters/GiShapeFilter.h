#pragma once

#include "core/GiSelection2D.h"
#include "filters/GiFilter.h"
#include "mc/McHandle.h"
#include "mc/McVec.h"

class GiSelection3D;
class McProgressInterface;

/// Changes the shape of a selection without a look at the image: fits an ellipse to it, grows it, shrinks it.
///
/// The fit takes the angle from the second moments of the slice's selection, its radii from the box of the
/// selection turned by that angle, and then the best of six neighbouring pairs of radii. It writes the radii
/// and what they leave different to standard error.
///
/// Growing and shrinking are static. They go by direct neighbours: four in a slice, six in the volume. What
/// lies outside counts for nothing, so a border neither erodes nor grows. Selection boxes are left to the
/// caller, and all throw McMemoryException before anything has changed.
class GiShapeFilter : public GiFilter
{
public:
    explicit GiShapeFilter(Gi* owner);

    /// Replaces the current slice's selection by its ellipse, as one undo step. Does nothing without an image
    /// or viewer; an empty slice is left alone, but for its undo step.
    void applyEllipse();

    /// Pixels in which the ellipse of these radii differs from `selection`.
    int quality(int rx, int ry);
    /// Tries six pairs of radii around (rx, ry), whose quality is given. Returns the best quality and sets
    /// the best radii, which the caller has set to (rx, ry), if one is better.
    int optimize(int quality, int rx, int ry, int& bestRx, int& bestRy);
    /// Moment of order (p, q) of the set pixels inside `box` about `center`, in whole numbers as far as a
    /// float has them.
    float getCentralMoment(int p, int q, McBox2i box, GiSelection2D& pixels) const;
    /// Sets the pixels whose centres the ellipse holds; what is set stays, what lies outside is cut off.
    ///
    /// angle   of the first radius against the x axis, in radians
    /// middle  pixel coordinates, as are the radii
    static void drawFilledEllipse(GiSelection2D& target, float angle, McVec2f middle, McVec2f radii);

    static void erode2D(GiSelection2D& slice);
    static void dilate2D(GiSelection2D& slice);
    /// The progress is not used: these take milliseconds.
    static void erode3D(GiSelection3D& volume, McProgressInterface* progress);
    static void dilate3D(GiSelection3D& volume, McProgressInterface* progress);
    /// The 2D forms on each slice of an orientation by itself, in one walk through the volume. Stretches of
    /// it without a voxel cost no more than to be read.
    static void erodeSlices(GiSelection3D& volume, int orientation);
    static void dilateSlices(GiSelection3D& volume, int orientation);

    McHandle<GiSelection2D> selection; // what the ellipse is fitted to: the slice's pixels, copied
    McHandle<GiSelection2D> scratch;   // the ellipse that is tried
    int center[2] = {0, 0};
    int width = 0, height = 0;
    float phi = 0;

private:
    bool findCenter();
    void findAngle();
    bool findRadii(int& rx, int& ry) const;
};
