// The gradient image, which is made once and kept, and who may serve as one.

#include "core/Gi.h"

#include "core/GiBusy.h"
#include "core/GiGradient.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxRegScalarField3.h"
#include "mc/McMemory.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

constexpr float kLargest = 255;
constexpr float kLargest16 = 32765; // fits both kinds of 16 bits

using Memory = std::unique_ptr<void, decltype(&std::free)>;

/// Per axis one over the voxel size, 0 where there is one voxel. kept: the extent is divided by the number of
/// voxels and not of steps. All axes are scaled alike by the maximum afterwards, and kept results must agree.
void axisWeights(const HxLattice3& lattice, const unsigned long* dims, float* weight)
{
    const float* box = lattice.coords()->boundingBox();
    for (int axis = 0; axis < 3; ++axis) {
        const float extent = box[2 * axis + 1] - box[2 * axis];
        weight[axis] = dims[axis] > 1 ? 1 / (extent / static_cast<float>(dims[axis])) : 0;
    }
}

} // namespace

void Gi::generateGradientImage()
{
    const GiBusy busy("Compute gradient image");
    switch (primType) {
    case 1:
        return generateGradientShortImage();
    case 2:
        return generateGradientUnsignedShortImage();
    case 3:
        return generateGradientIntImage();
    case 4:
        return generateGradientUnsignedIntImage();
    case 5:
        return generateGradientFloatImage();
    case 6:
        return;
    default:
        return generateGradientByteImage();
    }
}

// kept: the lack of memory for bytes is the caller's to report. It is the smallest of all requests: where it
// fails, no other work can go on either.
void Gi::generateGradientByteImage()
{
    makeGradientImage<unsigned char>(kLargest);
}

void Gi::generateGradientShortImage()
{
    tryGradientImage<short>(kLargest16);
}

void Gi::generateGradientUnsignedShortImage()
{
    tryGradientImage<unsigned short>(kLargest16);
}

void Gi::generateGradientIntImage()
{
    tryGradientImage<int>(kLargest);
}

void Gi::generateGradientUnsignedIntImage()
{
    tryGradientImage<unsigned int>(kLargest);
}

void Gi::generateGradientFloatImage()
{
    tryGradientImage<float>(kLargest);
}

template <class T>
void Gi::tryGradientImage(float largest)
{
    try {
        makeGradientImage<T>(largest);
    } catch (const McMemoryException&) {
        HxMessage::getTheMsg()->printf("Could not allocate memory!\n ");
    }
}

template <class T>
void Gi::makeGradientImage(float largest)
{
    if (!labelLattice || !imageSlices.data()) return;
    const unsigned long* dims = imageSlices.dims();
    Memory memory(mcAllocate(mcVolumeBytes(dims, sizeof(T))), &std::free);
    float weight[3];
    axisWeights(imageLattice ? *imageLattice : *labelLattice, dims, weight);
    giGradientMagnitude(static_cast<const T*>(imageSlices.data()), dims, weight, largest,
                        static_cast<T*>(memory.get()));
    keepGradientImage(memory.release(), mcElementCode<T>());
}

/// Takes the memory over. The field lies where the image lies, so that it can be shown over it.
void Gi::keepGradientImage(void* data, int hostType)
{
    const HxLatticeCoords* coords = (imageLattice ? imageLattice : labelLattice)->coords();
    const unsigned long* dims = imageSlices.dims();
    auto* field = new HxRegScalarField3(dims, hostType, coords->kind(), data);
    gradientImage.init(dims, McTypedPointer(data, hostType));
    field->coords()->setBoundingBox(coords->boundingBox());
    if (coords->zPositions()) field->coords()->setZPositions(coords->zPositions());
    field->setLabel("Default-GradientImage");
    // Stored and hidden first: who hears of the newcomer must know it for the editor's own.
    gradientField = field;
    field->hideIcon();
    HxObjectPool::getThePool()->addObject(field);
}

McTypedData3D* Gi::getGradientImage3D()
{
    if (!gradientImage.data()) generateGradientImage();
    return &gradientImage;
}

void Gi::removeGradientField()
{
    if (!gradientField) return;
    const McHandle<HxRegScalarField3> leaving = gradientField;
    if (gradientImage.data() == leaving->lattice()->dataPtr()) {
        const unsigned long none[3] = {0, 0, 0};
        gradientImage.init(none, McTypedPointer());
    }
    gradientField = nullptr;
    HxObjectPool::getThePool()->removeObject(leaving);
}

void Gi::findImageDataSets(const unsigned long* dims, McDArray<HxData*>& result) const
{
    result.clear();
    const HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i) {
        auto* data = dynamic_cast<HxData*>(pool->object(i));
        const auto* lattice = mcinterface_cast<HxLattice3>(data);
        if (lattice && mcIsElementCode(lattice->primType()) && lattice->numDataVars() == 1 &&
            std::equal(dims, dims + 3, lattice->dims()))
            result.append(data);
    }
}
