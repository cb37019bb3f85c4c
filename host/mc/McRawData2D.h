#pragma once

/// A slice of elements of any type: a strided view, or a private contiguous copy.
///
/// Copying one takes the view: the copy points at the same memory and never owns it.
class McRawData2D
{
public:
    McRawData2D() = default;
    McRawData2D(const McRawData2D& other);
    McRawData2D& operator=(const McRawData2D& other);
    ~McRawData2D();

    /// Makes this a view. Strides are in bytes.
    void init(int w, int h, int elemSize, long xStep, long yStep, void* elements);

    int width() const { return nx; }
    int height() const { return ny; }
    /// Bytes of one element.
    int elementSize() const { return size; }
    long xStride() const { return xBytes; }
    long yStride() const { return yBytes; }
    void* data() const { return first; }
    void* element(int x, int y) const { return first + x * xBytes + y * yBytes; }

    /// Copies the pixels into memory of its own, rows of `width` elements, and becomes a view of that.
    /// throws  McMemoryException; the view is then as before
    void makeLocal();

    /// Copies the pixels of another slice of the same width, height and element size.
    void copyFrom(const McRawData2D& source) const;

private:
    int nx = 0;
    int ny = 0;
    int size = 0;
    long xBytes = 0;
    long yBytes = 0;
    unsigned char* first = nullptr;
    unsigned char* own = nullptr;

    void takeView(const McRawData2D& other);
};
