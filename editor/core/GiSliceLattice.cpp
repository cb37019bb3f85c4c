// One slice as an image of its own, for methods that work on a lattice and a mask.

#include "core/Gi.h"

#include "hx/HxLabelLattice3.h"
#include "hx/HxMessage.h"
#include "mc/McMemory.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

using Memory = std::unique_ptr<void, decltype(&std::free)>;

Memory allocate(int width, int height, int elementSize)
{
    const unsigned long dims[3] = {static_cast<unsigned long>(width), static_cast<unsigned long>(height), 1};
    return Memory(mcAllocate(mcVolumeBytes(dims, static_cast<unsigned long>(elementSize))), &std::free);
}

/// A slice along Z of stacked data has no positions left that could differ.
HxLatticeCoords* sliceCoords(const HxLatticeCoords& volume, int axis)
{
    constexpr int kZ = 2;
    unsigned long dims[3];
    float box[6];
    std::copy_n(volume.dims(), 3, dims);
    std::copy_n(volume.boundingBox(), 6, box);
    dims[axis] = 1;
    box[2 * axis] = 0;
    box[2 * axis + 1] = 1;
    auto* coords = new HxLatticeCoords(axis == kZ ? HxLatticeCoords::kUniform : volume.kind(), dims);
    coords->setBoundingBox(box);
    if (axis != kZ && volume.zPositions()) coords->setZPositions(volume.zPositions());
    return coords;
}

} // namespace

void Gi::getSliceLattice(HxLattice3*& lattice, unsigned char*& mask, int useGradient)
{
    lattice = labelLattice;
    mask = nullptr;
    if (!selection) {
        HxMessage::getTheMsg()->printf(" no selection exists \n");
        return;
    }
    const McTypedData3D& source = useGradient ? *getGradientImage3D() : imageSlices;
    if (!labelLattice || !source.data()) return;
    const int slice = getCurrentSlice();
    const int orientation = getCurrentOrientation();
    const int width = selection->getWidth(orientation), height = selection->getHeight(orientation);
    const int elementSize = source.elementSize();
    Memory pixels = allocate(width, height, elementSize);
    Memory selected = allocate(width, height, 1);

    McRawData2D target;
    target.init(width, height, elementSize, elementSize, static_cast<long>(width) * elementSize,
                pixels.get());
    source.getSlice(orientation, slice, target, kMcCopySlice);
    auto* byte = static_cast<unsigned char*>(selected.get());
    const GiSelection2D pixelBits = selection->getSlice(slice, orientation);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) *byte++ = pixelBits.isSet(x, y) ? 255 : 0;

    lattice = new HxLattice3(sliceCoords(*labelLattice->coords(), orientation), 1, source.type(),
                             pixels.get(), true);
    static_cast<void>(pixels.release()); // the lattice's from here on
    mask = static_cast<unsigned char*>(selected.release());
}

// kept: the mask does not reach the selection. Whoever works on the slice shows the front while it moves, and
// so has brought every change into the selection before; written again, the mask would undo what was cut
// since.
void Gi::updateSliceLattice(HxLattice3*&, unsigned char*&) {}
