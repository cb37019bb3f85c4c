#include "hx/HxLattice3.h"

#include "mc/McElementType.h"
#include "mc/McException.h"
#include "mc/McMemory.h"

#include <algorithm>
#include <cstdlib>
#include <type_traits>

namespace {

/// Bytes of a component; the reserved codes take 8, so that a lattice can report them.
unsigned long bytesOfElement(int type)
{
    if (type == 5 || type == 6) return 8;
    return static_cast<unsigned long>(mcElementSize(type));
}

/// Casts to float inside its range; beyond it the ends stand in.
float toFloat(double value)
{
    constexpr double kMax = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -kMax, kMax));
}

} // namespace

McTypeId HxLattice::getClassTypeId()
{
    return McTypeId::declare<HxLattice, McInterface>("HxLattice");
}

McTypeId HxLattice3::getClassTypeId()
{
    return hxClassType<HxLattice3, HxLattice>("HxLattice3");
}

HxLattice3::HxLattice3(const unsigned long* dims, int numDataVars, int elementType, int coordKind,
                       void* block, bool takeOver)
    : HxLattice3(new HxLatticeCoords(coordKind, dims), numDataVars, elementType, block, takeOver)
{
}

HxLattice3::HxLattice3(HxLatticeCoords* coords, int numDataVars, int elementType, void* block, bool takeOver)
    : coordsObject(coords),
      components(numDataVars),
      type(elementType),
      data(block),
      ownsData(takeOver || !block)
{
    if (bytesOfElement(type) == 0 || components < 1)
        throw McException("This type of voxel is not supported.");
    if (!data)
        data = mcAllocateVolume(numBytes());
    else if (ownsData)
        mcPreferLargePages(data, numBytes());
}

HxLattice3::~HxLattice3()
{
    freeData();
}

void HxLattice3::freeData()
{
    if (ownsData) std::free(data);
    data = nullptr;
}

unsigned long HxLattice3::bytesFor(const unsigned long* newDims) const
{
    return mcVolumeBytes(newDims, bytesOfElement(type) * static_cast<unsigned long>(components));
}

unsigned long HxLattice3::numNodes() const
{
    const unsigned long* n = dims();
    return n[0] * n[1] * n[2];
}

unsigned long HxLattice3::numBytes() const
{
    return bytesFor(dims());
}

double HxLattice3::getValue(const McVec3i& index) const
{
    const unsigned long* n = dims();
    for (int axis = 0; axis < 3; axis++)
        if (index[axis] < 0 || static_cast<unsigned long>(index[axis]) >= n[axis]) return 0;
    if (!data) return 0;

    const unsigned long node =
        static_cast<unsigned long>(index.x) +
        n[0] * (static_cast<unsigned long>(index.y) + n[1] * static_cast<unsigned long>(index.z));
    double value = 0;
    mcDispatch(type, [&](auto* tag) {
        using T = std::remove_pointer_t<decltype(tag)>;
        value =
            static_cast<double>(static_cast<const T*>(data)[node * static_cast<unsigned long>(components)]);
    });
    return value;
}

float HxLattice3::getVoxel(const McVec3i& index) const
{
    return toFloat(getValue(index));
}

HxLatticeAccess* HxLattice3::access()
{
    return new HxLatticeAccess(this);
}

void HxLattice3::resize(unsigned long x, unsigned long y, unsigned long z)
{
    const unsigned long newDims[3] = {x, y, z};
    const unsigned long newBytes = bytesFor(newDims);
    if (newBytes != numBytes()) {
        void* block = mcAllocateVolume(newBytes);
        freeData();
        data = block;
        ownsData = true;
    }
    coordsObject->resize(newDims);
}

void* HxLattice3::detachData()
{
    void* block = data;
    data = nullptr;
    return block;
}
