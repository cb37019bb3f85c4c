#include "core/GiSelection3D.h"

#include "core/GiBitRows.h"
#include "core/GiBusy.h"
#include "core/GiLabelTransfer.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McMorphology.h"

#include <algorithm>

namespace {

struct SliceWindow
{
    unsigned long width, height, offset, xStride, yStride;
};

SliceWindow windowOf(const unsigned long* dims, int orientation, int slice)
{
    const unsigned long nx = dims[0], ny = dims[1], nz = dims[2];
    const auto s = static_cast<unsigned long>(slice);
    switch (orientation) {
    case 1:
        return {nx, nz, s * nx, 1, nx * ny};
    case 2:
        return {nx, ny, s * nx * ny, 1, nx};
    default:
        return {ny, nz, s, nx, nx * ny};
    }
}

// A view without a selection box: computing one costs a scan of the slice.
GiSelection2D plainView(McBitfield& bits, const SliceWindow& w)
{
    GiSelection2D view;
    view.bits = &bits;
    view.width = w.width;
    view.height = w.height;
    view.offset = w.offset;
    view.xStride = w.xStride;
    view.yStride = w.yStride;
    return view;
}

} // namespace

GiSelection3D::GiSelection3D() = default;

GiSelection3D::~GiSelection3D() = default;

void GiSelection3D::resize(unsigned long nx, unsigned long ny, unsigned long nz)
{
    if (nx == dims[0] && ny == dims[1] && nz == dims[2]) return;
    const unsigned long sizes[3] = {nx, ny, nz};
    // The bits come first: if they cannot be had, the selection is empty as a whole.
    std::fill(dims, dims + 3, 0);
    bits.resize(0);
    bits.resize(nx * ny * nz);
    for (int o = 0; o < 3; ++o) {
        sliceFlags[o].resize(static_cast<int>(sizes[o]));
        std::fill(sliceFlags[o].begin(), sliceFlags[o].end(), 0u);
    }
    std::copy(sizes, sizes + 3, dims);
}

void GiSelection3D::getDims(int* sizes, int orientation) const
{
    sizes[0] = getWidth(orientation);
    sizes[1] = getHeight(orientation);
    sizes[2] = getNumSlices(orientation);
}

int GiSelection3D::getWidth(int orientation) const
{
    return static_cast<int>(orientation == 1 || orientation == 2 ? dims[0] : dims[1]);
}

int GiSelection3D::getHeight(int orientation) const
{
    return static_cast<int>(orientation == 2 ? dims[1] : dims[2]);
}

int GiSelection3D::getNumSlices(int orientation) const
{
    return static_cast<int>(orientation == 1 || orientation == 2 ? dims[orientation] : dims[0]);
}

bool GiSelection3D::isSet() const
{
    return bits.isAnyBitSet();
}

int GiSelection3D::isEmpty(int slice, int orientation) const
{
    const SliceWindow w = windowOf(dims, orientation, slice);
    for (unsigned long y = 0; y < w.height; ++y) {
        const unsigned long row = w.offset + y * w.yStride;
        if (w.xStride == 1) {
            const unsigned long end = row + w.width;
            if (giFindSet(bits.words(), row, end) < end) return 0;
            continue;
        }
        for (unsigned long x = 0; x < w.width; ++x)
            if (bits.isSet(row + x * w.xStride)) return 0;
    }
    return 1;
}

void GiSelection3D::clear()
{
    GiBusy busy;
    bits.unsetAll();
}

void GiSelection3D::invert()
{
    GiBusy busy;
    bits.toggleAll();
}

void GiSelection3D::copyFrom(const McBitfield& source)
{
    bits = source;
}

void GiSelection3D::copyTo(McBitfield& target) const
{
    target = bits;
}

void GiSelection3D::getSlice(GiSelection2D* target, int orientation, int slice)
{
    const SliceWindow w = windowOf(dims, orientation, slice);
    target->setBitfield(&bits, w.width, w.height, w.offset, w.xStride, w.yStride);
}

GiSelection2D GiSelection3D::getSlice(int slice, int orientation)
{
    GiSelection2D view;
    getSlice(&view, orientation, slice);
    return view;
}

void GiSelection3D::setSlice(const GiSelection2D* source, int orientation, int slice)
{
    const SliceWindow w = windowOf(dims, orientation, slice);
    const unsigned long width = std::min(w.width, source->width);
    const unsigned long height = std::min(w.height, source->height);
    for (unsigned long y = 0; y < height; ++y) {
        const unsigned long row = w.offset + y * w.yStride;
        const unsigned long from = source->offset + y * source->yStride;
        if (w.xStride == 1 && source->xStride == 1) {
            giOrBits(bits.words(), row, source->bits->words(), from, width);
            continue;
        }
        for (unsigned long x = 0; x < width; ++x)
            if (source->bits->isSet(from + x * source->xStride)) bits.set(row + x * w.xStride);
    }
}

void GiSelection3D::copy(int to, int from, int orientation)
{
    const int slices = getNumSlices(orientation);
    if (to < 0 || from < 0 || to >= slices || from >= slices || to == from) return;
    const GiSelection2D source = plainView(bits, windowOf(dims, orientation, from));
    plainView(bits, windowOf(dims, orientation, to)).copyData(source);
}

void GiSelection3D::setTissue(const unsigned char* labels, int tissue, SelectMode mode)
{
    GiBusy busy;
    giSelectTissue(bits, labels, bits.numBits(), tissue, mode, HxSettingsMgr::getInstance()->numThreads());
}

void GiSelection3D::fillHoles()
{
    if (bits.numBits() == 0) return;
    GiBusy busy;
    const int x = static_cast<int>(dims[0]) - 1, y = static_cast<int>(dims[1]) - 1,
              z = static_cast<int>(dims[2]) - 1;
    McDArray<McVec3i> corners;
    for (const int plane : {0, z}) {
        corners.append(McVec3i(0, 0, plane));
        corners.append(McVec3i(x, 0, plane));
        corners.append(McVec3i(x, y, plane));
        corners.append(McVec3i(0, y, plane));
    }
    const int sizes[3] = {x + 1, y + 1, z + 1};
    McMorphology::fillUnreached(bits, corners, sizes);
}
