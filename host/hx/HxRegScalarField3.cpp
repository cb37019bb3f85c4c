#include "hx/HxRegScalarField3.h"

#include "hx/HxSettingsMgr.h"
#include "hx/HxStackedScalarField3.h"
#include "hx/HxUniformScalarField3.h"
#include "hx/HxValueRange.h"
#include "mc/McTypedPointer.h"

McTypeId HxHistogramInterface::getClassTypeId()
{
    return McTypeId::declare<HxHistogramInterface, McInterface>("HxHistogramInterface");
}

HxRegScalarField3::HxRegScalarField3(const unsigned long* dims, int type, int coordKind, void* data)
    : HxRegScalarField3(new HxLattice3(dims, 1, type, coordKind, data, true))
{
}

HxRegScalarField3::HxRegScalarField3(HxLattice3* lattice) : latticeObject(lattice)
{
    latticeObject->setOwner(this);
}

HxRegScalarField3::~HxRegScalarField3() = default;

McTypeId HxRegScalarField3::getClassTypeId()
{
    return hxClassType<HxRegScalarField3, HxField3>("HxRegScalarField3");
}

McInterface* HxRegScalarField3::getInterface(McTypeId type)
{
    if (type == McTypeId::of<HxLattice3>() || type == McTypeId::of<HxLattice>()) return lattice();
    if (type == McTypeId::of<HxHistogramInterface>()) return &histogram;
    return HxField3::getInterface(type);
}

bool HxRegScalarField3::computeRange(double& min, double& max)
{
    constexpr unsigned long kWorthSharing = 1 << 20; // bytes; waking other threads costs more below
    const unsigned long numValues =
        lattice()->numNodes() * static_cast<unsigned long>(lattice()->numDataVars());
    const int threads =
        lattice()->numBytes() < kWorthSharing ? 1 : HxSettingsMgr::getInstance()->numThreads();
    return lattice()->dataPtr() &&
           hxValueRange(lattice()->dataPtr(), numValues, lattice()->primType(), threads, min, max);
}

McHistogram HxRegScalarField3::Histogram::getHistogram(int numBins)
{
    const HxLattice3* lattice = field->lattice();
    if (!lattice->dataPtr()) return McHistogram();
    const unsigned long numValues = lattice->numNodes() * static_cast<unsigned long>(lattice->numDataVars());
    return McHistogram(McTypedPointer(lattice->dataPtr(), lattice->primType()), numValues, numBins);
}

HxUniformScalarField3::HxUniformScalarField3(const unsigned long* dims, int type, void* data, bool takeOver)
    : HxRegScalarField3(new HxLattice3(dims, 1, type, HxLatticeCoords::kUniform, data, takeOver))
{
}

McTypeId HxUniformScalarField3::getClassTypeId()
{
    return hxClassType<HxUniformScalarField3, HxRegScalarField3>("HxUniformScalarField3");
}

HxStackedScalarField3::HxStackedScalarField3(const unsigned long* dims, int type, const float* zPositions,
                                             void* data, bool takeOver)
    : HxRegScalarField3(new HxLattice3(dims, 1, type, HxLatticeCoords::kStacked, data, takeOver))
{
    coords()->setZPositions(zPositions);
}

McTypeId HxStackedScalarField3::getClassTypeId()
{
    return hxClassType<HxStackedScalarField3, HxRegScalarField3>("HxStackedScalarField3");
}
