#pragma once

#include <algorithm>

/// A rectangle of pixels, both ends included. It is empty when a maximum lies below its minimum, whatever
/// the numbers; a new box is (1, 1, 0, 0).
class McBox2i
{
public:
    int xmin = 1, ymin = 1, xmax = 0, ymax = 0;

    McBox2i() = default;
    McBox2i(int x0, int y0, int x1, int y1) : xmin(x0), ymin(y0), xmax(x1), ymax(y1) {}

    bool isEmpty() const { return xmax < xmin || ymax < ymin; }
    int width() const { return isEmpty() ? 0 : xmax - xmin + 1; }
    int height() const { return isEmpty() ? 0 : ymax - ymin + 1; }
    bool contains(int x, int y) const { return x >= xmin && x <= xmax && y >= ymin && y <= ymax; }

    /// Grows to hold a pixel; an empty box becomes this pixel.
    void extendBy(int x, int y) { extendBy(McBox2i(x, y, x, y)); }
    /// Grows to hold another box; an empty one changes nothing.
    void extendBy(const McBox2i& b)
    {
        if (b.isEmpty()) return;
        *this = isEmpty() ? b
                          : McBox2i(std::min(xmin, b.xmin), std::min(ymin, b.ymin), std::max(xmax, b.xmax),
                                    std::max(ymax, b.ymax));
    }
    /// The common part; empty if there is none.
    McBox2i intersected(const McBox2i& b) const
    {
        if (isEmpty() || b.isEmpty()) return {};
        return {std::max(xmin, b.xmin), std::max(ymin, b.ymin), std::min(xmax, b.xmax),
                std::min(ymax, b.ymax)};
    }

    friend bool operator==(const McBox2i&, const McBox2i&) = default;
};

/// Shared form of the boxes in space: pairs of minimum and maximum per axis, both ends included.
template <class T>
class McBox3
{
public:
    T xmin = 1, xmax = 0, ymin = 1, ymax = 0, zmin = 1, zmax = 0;

    McBox3() = default;
    McBox3(T x0, T x1, T y0, T y1, T z0, T z1) : xmin(x0), xmax(x1), ymin(y0), ymax(y1), zmin(z0), zmax(z1) {}
    /// bounds  six numbers in the order of the members
    explicit McBox3(const T* bounds)
        : McBox3(bounds[0], bounds[1], bounds[2], bounds[3], bounds[4], bounds[5])
    {
    }

    bool isEmpty() const { return xmax < xmin || ymax < ymin || zmax < zmin; }
    bool contains(T x, T y, T z) const
    {
        return x >= xmin && x <= xmax && y >= ymin && y <= ymax && z >= zmin && z <= zmax;
    }

    /// Grows to hold a point; an empty box becomes this point.
    void extendBy(T x, T y, T z) { extendBy(McBox3(x, x, y, y, z, z)); }
    /// Grows to hold another box; an empty one changes nothing.
    void extendBy(const McBox3& b)
    {
        if (b.isEmpty()) return;
        *this = isEmpty() ? b
                          : McBox3(std::min(xmin, b.xmin), std::max(xmax, b.xmax), std::min(ymin, b.ymin),
                                   std::max(ymax, b.ymax), std::min(zmin, b.zmin), std::max(zmax, b.zmax));
    }
    /// The common part; empty if there is none.
    McBox3 intersected(const McBox3& b) const
    {
        if (isEmpty() || b.isEmpty()) return {};
        return {std::max(xmin, b.xmin), std::min(xmax, b.xmax), std::max(ymin, b.ymin),
                std::min(ymax, b.ymax), std::max(zmin, b.zmin), std::min(zmax, b.zmax)};
    }

    /// The six numbers in the order of the members.
    operator T*() { return reinterpret_cast<T*>(this); }
    operator const T*() const { return reinterpret_cast<const T*>(this); }

    friend bool operator==(const McBox3&, const McBox3&) = default;
};

/// A block of voxels: xmin, xmax, ymin, ymax, zmin, zmax.
using McBox3i = McBox3<int>;
/// A box in world units, through voxel centres, in the same order.
using McBox3f = McBox3<float>;

static_assert(sizeof(McBox3i) == 6 * sizeof(int) && sizeof(McBox3f) == 6 * sizeof(float));
