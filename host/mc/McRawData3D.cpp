#include "mc/McRawData3D.h"

#include <algorithm>

namespace {

// Axes of a slice's width and height, and the one that it moves along.
struct Axes
{
    int i, j, s;
};

Axes axesOf(int orientation)
{
    switch (orientation) {
    case 1:
        return {0, 2, 1};
    case 2:
        return {0, 1, 2};
    default:
        return {1, 2, 0};
    }
}

long stepAlong(const unsigned long* sides, int axis)
{
    return axis == 0 ? 1 : axis == 1 ? long(sides[0]) : long(sides[0] * sides[1]);
}

} // namespace

void McRawData3D::init(const unsigned long* dims, int elemSize, void* elements)
{
    if (dims)
        std::copy_n(dims, 3, sides);
    else
        std::fill_n(sides, 3, 0ul);
    size = elemSize;
    first = static_cast<unsigned char*>(elements);
}

void McRawData3D::getDims(int* out, int orientation) const
{
    const Axes axes = axesOf(orientation);
    out[0] = int(sides[axes.i]);
    out[1] = int(sides[axes.j]);
    out[2] = int(sides[axes.s]);
}

void McRawData3D::accessSlice(int orientation, int slice, unsigned char*& elements, long& xStride,
                              long& yStride) const
{
    const Axes axes = axesOf(orientation);
    elements = first + slice * stepAlong(sides, axes.s) * size;
    xStride = stepAlong(sides, axes.i) * size;
    yStride = stepAlong(sides, axes.j) * size;
}

void McRawData3D::accessSlice(int orientation, int slice, unsigned char*& elements, int& xStride,
                              int& yStride) const
{
    long dx = 0;
    long dy = 0;
    accessSlice(orientation, slice, elements, dx, dy);
    xStride = int(dx);
    yStride = int(dy);
}

long McRawData3D::getOffset(int x, int y, int slice, int orientation) const
{
    const Axes axes = axesOf(orientation);
    return x * stepAlong(sides, axes.i) + y * stepAlong(sides, axes.j) + slice * stepAlong(sides, axes.s);
}

void McRawData3D::getSlice(int orientation, int slice, McRawData2D& out, int copy) const
{
    int dims[3];
    getDims(dims, orientation);
    unsigned char* elements = nullptr;
    long dx = 0;
    long dy = 0;
    accessSlice(orientation, slice, elements, dx, dy);
    McRawData2D view;
    view.init(dims[0], dims[1], size, dx, dy, elements);
    if (copy == kMcViewSlice)
        out = view;
    else
        out.copyFrom(view);
}

void McRawData3D::putSlice(int orientation, int slice, const McRawData2D& in) const
{
    McRawData2D view;
    getSlice(orientation, slice, view, kMcViewSlice);
    view.copyFrom(in);
}
