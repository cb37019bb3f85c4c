#pragma once

#include "mc/McMemory.h"

#include <algorithm>
#include <cstdlib>
#include <type_traits>
#include <utility>

/// A contiguous volume of elements of type T, x fastest: a view of foreign memory, or memory of its own.
/// Indices are not checked.
template <class T>
class McData3D
{
    static_assert(std::is_trivially_copyable_v<T>);

public:
    McData3D() = default;
    /// A view; the memory stays the caller's.
    McData3D(T* elements, int width, int height, int depth)
        : first(elements), sides{width, height, depth}, owned(false)
    {
    }
    /// Memory of its own, all bytes 0.
    /// throws  McMemoryException
    McData3D(int width, int height, int depth) { resize(width, height, depth); }
    McData3D(const McData3D&) = delete;
    McData3D& operator=(const McData3D&) = delete;
    McData3D(McData3D&& other) noexcept { swap(other); }
    McData3D& operator=(McData3D&& other) noexcept
    {
        swap(other);
        return *this;
    }
    ~McData3D()
    {
        if (owned) std::free(first);
    }

    /// Takes memory of its own, all bytes 0; a view is given up.
    /// throws  McMemoryException; the volume is then as before
    void resize(int width, int height, int depth)
    {
        const unsigned long dims[3] = {static_cast<unsigned long>(width), static_cast<unsigned long>(height),
                                       static_cast<unsigned long>(depth)};
        McData3D fresh(static_cast<T*>(mcAllocateZeroed(mcVolumeBytes(dims, sizeof(T)))), width, height,
                       depth);
        fresh.owned = true;
        swap(fresh);
    }

    int nx() const { return sides[0]; }
    int ny() const { return sides[1]; }
    int nz() const { return sides[2]; }
    const int* dims() const { return sides; }
    unsigned long numElements() const { return 1ul * sides[0] * sides[1] * sides[2]; }
    T* data() { return first; }
    const T* data() const { return first; }

    T& operator()(int x, int y, int z) { return first[index(x, y, z)]; }
    const T& operator()(int x, int y, int z) const { return first[index(x, y, z)]; }

    void fill(T value) { std::fill_n(first, numElements(), value); }

private:
    T* first = nullptr;
    int sides[3] = {0, 0, 0};
    bool owned = false;

    long index(int x, int y, int z) const { return x + long(sides[0]) * (y + long(sides[1]) * z); }

    void swap(McData3D& other) noexcept
    {
        std::swap(first, other.first);
        std::swap(sides, other.sides);
        std::swap(owned, other.owned);
    }
};
