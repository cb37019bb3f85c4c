#pragma once

#include "mc/McBox.h"

class GiFrameBuffer;

/// How the pixels of a region look in a slice.
enum GiDrawStyle
{
    kStyleHidden = 0,
    kStyleOutline = 1,
    kStyleHatched = 2,   // outline and diagonal lines
    kStyleDotted = 3,    // outline and every second pixel
    kStyleLightDots = 4, // outline and every eighth pixel
    kNumStyles = 5
};

/// A slice of byte values that is read row by row.
class GiByteRows
{
public:
    virtual ~GiByteRows() = default;
    /// The values of row y in columns x0 to x1, the one of x0 first: a pointer into the slice, or `buffer`
    /// filled with x1 - x0 + 1 values.
    virtual const unsigned char* read(int y, int x0, int x1, unsigned char* buffer) const = 0;
    /// Number of columns and rows.
    int width = 0, height = 0;
};

/// How the values of a slice are drawn.
struct GiRegionLook
{
    const unsigned char* styles;      // GiDrawStyle by value
    const unsigned char (*colors)[3]; // red, green, blue by value
};

/// Draws each connected set of equal values with an outline along all pixels of another value and along the
/// border of the slice, and with the fill pattern of its style.
///
/// range  data pixels to draw, inside the slice
///
/// Patterns follow zoomed coordinates, so they stand still while a slice zooms. Works on runs of equal
/// values: what lies inside a region costs next to nothing.
void giDrawRegions(GiFrameBuffer& frameBuffer, const GiByteRows& rows, const McBox2i& range,
                   const GiRegionLook& look);
