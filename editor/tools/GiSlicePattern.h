#pragma once

#include "core/GiSelection2D.h"
#include "mc/McBox.h"
#include "mc/McVec.h"

/// The selected pixels of a box in a slice, lifted out so that they can be put down at other places and
/// angles. It does not change, so that putting it down again and again wears nothing off.
class GiSlicePattern
{
public:
    GiSlicePattern() = default;
    /// Copies the pixels of a box that lies in the slice.
    GiSlicePattern(const GiSelection2D& slice, const McBox2i& box);

    /// Unselects the pixels of a box, as far as they lie in the slice.
    static void erase(GiSelection2D& slice, const McBox2i& box);

    /// Writes the pattern `offset` away from where it was taken, cut to the slice. Returns the written box.
    McBox2i putMoved(GiSelection2D& slice, const McVec2i& offset) const;
    /// Writes a square that holds the pattern, turned, and nothing else; cut to the slice.
    ///
    /// degrees  clockwise, if rows run downward
    /// about    the box whose middle stays where it is; the pattern's own, or one inside it
    /// returns  the written box
    /// throws   McMemoryException; nothing is written then
    ///
    /// Painted without smoothing by Qt: a pixel gets what the pattern has where its centre came from.
    McBox2i putRotated(GiSelection2D& slice, float degrees, const McBox2i& about) const;

private:
    GiSelection2D pixels; // private, of the size of the box
    McBox2i source;
};
