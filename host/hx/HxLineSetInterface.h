#pragma once

#include "mc/McInterface.h"
#include "mc/McTypeId.h"
#include "mc/McVec.h"

/// Read access to polylines in space.
class HxLineSetInterface : public McInterface
{
public:
    static McTypeId getClassTypeId();

    virtual int numLines() const = 0;
    /// Number of points of a line.
    virtual int lineLength(int line) const = 0;
    /// Index of the point at a place of a line.
    virtual int linePoint(int line, int place) const = 0;
    virtual McVec3f point(int i) const = 0;

    /// Mean length of a line's segments, 0 below two points.
    float getAveragePointSpacing(int line) const;
};
