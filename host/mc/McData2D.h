#pragma once

/// A strided view of a slice of elements of type T. Indices are not checked.
template <class T>
class McData2D
{
public:
    McData2D() = default;
    /// Steps are in elements.
    McData2D(T* elements, int width, int height, long xStep, long yStep)
        : first(elements), nx(width), ny(height), dx(xStep), dy(yStep)
    {
    }
    /// Rows of `width` elements, one after the other.
    McData2D(T* elements, int width, int height) : McData2D(elements, width, height, 1, width) {}

    int width() const { return nx; }
    int height() const { return ny; }
    long xStride() const { return dx; }
    long yStride() const { return dy; }
    T* data() const { return first; }

    T& operator()(int x, int y) const { return first[x * dx + y * dy]; }

private:
    T* first = nullptr;
    int nx = 0;
    int ny = 0;
    long dx = 1;
    long dy = 0;
};
