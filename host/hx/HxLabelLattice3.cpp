#include "hx/HxLabelLattice3.h"

#include "hx/HxStackedLabelField3.h"
#include "hx/HxUniformLabelField3.h"
#include "mc/McElementType.h"
#include "mc/McMemory.h"

#include <cstdlib>
#include <cstring>

McTypeId HxLabelLattice::getClassTypeId()
{
    return McTypeId::declare<HxLabelLattice, McInterface>("HxLabelLattice");
}

McInterfaceOwner* HxLabelLattice::owner() const
{
    return labels->owner();
}

McTypeId HxMutableLabelLattice::getClassTypeId()
{
    return McTypeId::declare<HxMutableLabelLattice, McInterface>("HxMutableLabelLattice");
}

McInterfaceOwner* HxMutableLabelLattice::owner() const
{
    return labels->owner();
}

McTypeId HxLabelLattice3::getClassTypeId()
{
    return hxClassType<HxLabelLattice3, HxLattice3>("HxLabelLattice3");
}

HxLabelLattice3::HxLabelLattice3(HxLatticeCoords* coords)
    : HxLattice3(coords, 1, kMcUnsignedChar, nullptr, true)
{
}

HxLabelLattice3::HxLabelLattice3(HxLatticeCoords* coords, unsigned char* labels)
    : HxLattice3(coords, 1, kMcUnsignedChar, labels, true)
{
}

HxLabelLattice3::~HxLabelLattice3()
{
    std::free(weights);
}

void HxLabelLattice3::createWeights()
{
    if (!weights) weights = static_cast<unsigned char*>(mcAllocateZeroed(numBytes()));
}

HxParamBundle* HxLabelLattice3::materials() const
{
    return owner() ? owner()->parameters.materials() : nullptr;
}

void HxLabelLattice3::clear()
{
    std::memset(getLabels(), 0, numBytes());
}

HxLabelField3* HxLabelLattice3::create()
{
    HxLabelField3* made;
    if (coords()->kind() == HxLatticeCoords::kStacked)
        made = new HxStackedLabelField3(this);
    else
        made = new HxUniformLabelField3(this);

    // Label 0 is what is no material, and stays so: the entry cannot be removed by accident.
    auto* exterior = new HxParamBundle("Exterior");
    exterior->setFlag(HxParamBase::kFixed, 1);
    materials()->insert(exterior);
    return made;
}

HxLabelField3* HxLabelLattice3::field() const
{
    return static_cast<HxLabelField3*>(owner());
}

void HxLabelLattice3::resize(unsigned long x, unsigned long y, unsigned long z)
{
    const unsigned long before = numBytes();
    HxLattice3::resize(x, y, z);
    if (numBytes() == before) return;
    std::free(weights);
    weights = nullptr;
}
