#pragma once

#include "mc/McRawData2D.h"

/// Strided access to the slices of a volume, x fastest. A view; it never owns.
///
/// Orientation 0: slices YZ stacked along X; 1: XZ along Y; 2: XY along Z. Any other number counts as 0.
/// With X, Y, Z the volume's sides, pixel (i, j) of slice s is the voxel (s, i, j), (i, s, j) or (i, j, s).
/// Indices are not checked. Safe for use from many threads at once.
class McRawData3D
{
public:
    /// Empty: all sides 0.
    McRawData3D() = default;
    /// dims  three sides, copied; a null pointer empties the view
    void init(const unsigned long* dims, int elemSize, void* elements);

    const unsigned long* dims() const { return sides; }
    unsigned long numElements() const { return sides[0] * sides[1] * sides[2]; }
    /// Bytes of one element.
    int elementSize() const { return size; }
    void* data() const { return first; }

    /// out  width, height and number of slices
    void getDims(int* out, int orientation) const;

    /// First element of a slice, and the steps between its pixels in bytes.
    void accessSlice(int orientation, int slice, unsigned char*& elements, long& xStride,
                     long& yStride) const;
    /// The same for volumes whose slices are smaller than 2 GiB.
    void accessSlice(int orientation, int slice, unsigned char*& elements, int& xStride, int& yStride) const;

    /// Offset of pixel (x, y) of a slice from the volume's start, in elements.
    long getOffset(int x, int y, int slice, int orientation) const;

    /// copy  kMcViewSlice points `out` at the slice; kMcCopySlice copies the slice into the memory that `out`
    ///       describes, which must have the slice's width, height and element size
    void getSlice(int orientation, int slice, McRawData2D& out, int copy) const;

    /// Copies the pixels of `in` into the volume; same sizes required.
    void putSlice(int orientation, int slice, const McRawData2D& in) const;

private:
    unsigned long sides[3] = {0, 0, 0};
    int size = 0;
    unsigned char* first = nullptr;
};

inline constexpr int kMcViewSlice = 0;
inline constexpr int kMcCopySlice = 1;
