#pragma once

#include "mc/McDArray.h"
#include "mc/McVec.h"

// What a growing curve does with its own points. A curve is a closed polygon in pixel coordinates; the last
// point is followed by the first.
using McBlowCurve = McDArray<McVec2f>;

/// The two edges at a point.
struct McCurveEdges
{
    McCurveEdges(const McBlowCurve& curve, int i);
    /// Mean of the normals of both edges, of length 1. For points in the order of the angle it points
    /// outward. Not a number where an edge has no length, or both lie on each other.
    McVec2f normal() const;
    /// Of the curve through the point and its neighbors, moved to a distance of 1.5 pixels; positive where
    /// the curve is convex. 100 where that cannot be told.
    float curvature() const;

    McVec2f point, forward, backward; // to the next point, and from the one before
    float forwardLength, backwardLength;
};

/// Halves each edge of more than 3 pixels, and the second half as long as it is longer.
void mcInsertPoints(McBlowCurve& curve);

/// Joins the ends of each edge of less than 1 pixel in its middle. A curve that shrinks to a point vanishes.
void mcDeletePoints(McBlowCurve& curve);

/// Cuts off a loop wherever two edges of the curve cross, the one with fewer points. Edges are looked at in
/// their order, those after a cut again from the second one on.
///
/// kept: the edge from the first point is therefore not looked at again once there was a cut. Its crossings
/// last until the next step of the growth, and curves would come out differently.
///
/// throws McMemoryException, and leaves the curve as it was
void mcDeleteIntersections(McBlowCurve& curve);
