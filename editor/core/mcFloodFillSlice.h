#pragma once

#include "mc/McData2D.h"

class McBitfield;

/// What a fill over a slice of numbers may enter: values from `min` to `max`, both included, and, if `labels`
/// has memory, pixels of one label only.
///
/// T is one of the seven image element types. NaN is never entered.
template <class T>
struct McFillSlice
{
    McData2D<const T> values;
    T min, max;
    McData2D<const unsigned char> labels; // of the same size, or without memory
    int label = 0;
};

/// Marks the 4-connected region of accepted pixels around (x, y): same region, count and box as mcFloodFill2D
/// with a checker for the window, but many times faster.
///
/// marks    bit y * width + x; all earlier content goes
/// box      four ints for xmin, ymin, xmax, ymax
/// returns  the number of pixels marked; 0 if the seed lies outside or is refused, and then the box holds the
///          seed's coordinates only
/// throws   McMemoryException
///
/// Rows are tested as a whole and filled by word operations, see GiSliceFill.
template <class T>
int mcFloodFillSlice(const McFillSlice<T>& slice, int x, int y, McBitfield& marks, int* box);

/// Adds to a region what it surrounds: each clear pixel of the box from which no 4-connected way of clear
/// pixels leads to the box's border.
///
/// bits    bit y * width + x
/// box     xmin, ymin, xmax, ymax inside the slice; holds all set pixels
/// throws  McMemoryException
void mcFillInterior(McBitfield& bits, int width, const int* box);
