#include "mc/McRawData2D.h"

#include "mc/McMemory.h"

#include <cassert>
#include <cstdlib>
#include <cstring>

namespace {

// One move per element, of a size that the compiler knows.
template <int Size>
void copyRow(unsigned char* out, long outStep, const unsigned char* in, long inStep, int n)
{
    for (int i = 0; i < n; i++) std::memcpy(out + i * outStep, in + i * inStep, Size);
}

void copyRowOfAnySize(unsigned char* out, long outStep, const unsigned char* in, long inStep, int n, int size)
{
    if (outStep == size && inStep == size) {
        std::memcpy(out, in, std::size_t(n) * size);
        return;
    }
    switch (size) {
    case 1:
        copyRow<1>(out, outStep, in, inStep, n);
        return;
    case 2:
        copyRow<2>(out, outStep, in, inStep, n);
        return;
    case 4:
        copyRow<4>(out, outStep, in, inStep, n);
        return;
    case 8:
        copyRow<8>(out, outStep, in, inStep, n);
        return;
    default:
        for (int i = 0; i < n; i++) std::memcpy(out + i * outStep, in + i * inStep, size);
    }
}

} // namespace

McRawData2D::McRawData2D(const McRawData2D& other)
{
    takeView(other);
}

McRawData2D& McRawData2D::operator=(const McRawData2D& other)
{
    // A view of our own memory must not lose it.
    if (this == &other || (own && other.first == own)) return *this;
    std::free(own);
    own = nullptr;
    takeView(other);
    return *this;
}

McRawData2D::~McRawData2D()
{
    std::free(own);
}

void McRawData2D::init(int w, int h, int elemSize, long xStep, long yStep, void* elements)
{
    std::free(own);
    own = nullptr;
    nx = w;
    ny = h;
    size = elemSize;
    xBytes = xStep;
    yBytes = yStep;
    first = static_cast<unsigned char*>(elements);
}

void McRawData2D::makeLocal()
{
    const unsigned long dims[3] = {static_cast<unsigned long>(nx), static_cast<unsigned long>(ny), 1};
    auto* local = static_cast<unsigned char*>(mcAllocate(mcVolumeBytes(dims, size)));
    McRawData2D target;
    target.init(nx, ny, size, size, long(nx) * size, local);
    target.copyFrom(*this);
    init(nx, ny, size, size, long(nx) * size, local);
    own = local;
}

void McRawData2D::copyFrom(const McRawData2D& source) const
{
    assert(nx == source.nx && ny == source.ny && size == source.size);
    for (int y = 0; y < ny; y++)
        copyRowOfAnySize(first + y * yBytes, xBytes, source.first + y * source.yBytes, source.xBytes, nx,
                         size);
}

void McRawData2D::takeView(const McRawData2D& other)
{
    nx = other.nx;
    ny = other.ny;
    size = other.size;
    xBytes = other.xBytes;
    yBytes = other.yBytes;
    first = other.first;
}
