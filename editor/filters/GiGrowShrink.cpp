// Growing and shrinking of selections: GiShapeFilter's static half.

#include "core/GiOrientation.h"
#include "core/GiSelection3D.h"
#include "core/GiSelectionPixels.h"
#include "filters/GiShapeFilter.h"
#include "mc/McMorphology.h"

namespace {

using Step = void (*)(McBitfield&, const int*, int);

constexpr int kInPlane = McMorphology::kAlongX | McMorphology::kAlongY;

/// A slice is taken out of the volume, so that its rows lie side by side, and only what changed is put back.
void changeSlice(GiSelection2D& slice, Step step)
{
    if (!slice.bits || slice.width == 0 || slice.height == 0) return;
    const int dims[3] = {static_cast<int>(slice.width), static_cast<int>(slice.height), 1};
    if (slice.bits == &slice.localBits) {
        step(slice.localBits, dims, kInPlane);
        return;
    }
    GiSelection2D changed(slice);
    changed.makeLocal();
    if (slice.xStride == 1) {
        step(changed.localBits, dims, kInPlane);
        slice.copyData(changed);
        return;
    }
    // Each pixel has a word of its own here: touch no more of them than need be.
    const McBitfield before = changed.localBits;
    step(changed.localBits, dims, kInPlane);
    for (unsigned long i = 0; i < before.numWords64(); ++i)
        changed.localBits.words64()[i] ^= before.words64()[i];
    giForEachPixel(changed, [&](int x, int y) {
        if (slice.isSet(x, y))
            slice.unset(x, y);
        else
            slice.set(x, y);
    });
}

void changeVolume(GiSelection3D& volume, int axes, Step step)
{
    int dims[3];
    volume.getDims(dims, 2);
    step(volume.bits, dims, axes);
}

/// All axes but the one across the slices.
int axesOf(int orientation)
{
    return McMorphology::kAllAxes & ~(1 << giSliceAxis(orientation));
}

} // namespace

void GiShapeFilter::erode2D(GiSelection2D& slice)
{
    changeSlice(slice, McMorphology::erode);
}

void GiShapeFilter::dilate2D(GiSelection2D& slice)
{
    changeSlice(slice, McMorphology::dilate);
}

void GiShapeFilter::erode3D(GiSelection3D& volume, McProgressInterface*)
{
    changeVolume(volume, McMorphology::kAllAxes, McMorphology::erode);
}

void GiShapeFilter::dilate3D(GiSelection3D& volume, McProgressInterface*)
{
    changeVolume(volume, McMorphology::kAllAxes, McMorphology::dilate);
}

void GiShapeFilter::erodeSlices(GiSelection3D& volume, int orientation)
{
    changeVolume(volume, axesOf(orientation), McMorphology::erode);
}

void GiShapeFilter::dilateSlices(GiSelection3D& volume, int orientation)
{
    changeVolume(volume, axesOf(orientation), McMorphology::dilate);
}
