#pragma once

#include "hx/HxField3.h"
#include "hx/HxHistogramInterface.h"
#include "hx/HxLattice3.h"

#include <memory>

/// A scalar field on a regular lattice: an image, or a label field. Owns its lattice, which it
/// offers as HxLattice and HxLattice3.
class HxRegScalarField3 : public HxField3
{
    Q_OBJECT

public:
    /// dims       number of voxels along x, y, z, each at least 1
    /// type       host element code
    /// coordKind  1 uniform, 2 stacked with Z positions 0 to nz - 1
    /// data       malloc'ed block that the field takes over; null: a new zeroed one
    /// The bounding box starts with unit spacing from 0 on and is set through coords().
    /// throws  McMemoryException
    HxRegScalarField3(const unsigned long* dims, int type, int coordKind, void* data);
    ~HxRegScalarField3() override;

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    HxLattice3* lattice() const { return latticeObject.get(); }
    HxLatticeCoords* coords() const { return latticeObject->coords(); }

    /// Forgets the data pointer without freeing it and hands it to the caller. The field is good
    /// for nothing but deletion afterwards.
    void* detachData() { return latticeObject->detachData(); }

    McInterface* getInterface(McTypeId type) override;

protected:
    /// Takes the lattice over and becomes its owner.
    explicit HxRegScalarField3(HxLattice3* lattice);

    bool computeRange(double& min, double& max) override;

private:
    class Histogram : public HxHistogramInterface
    {
    public:
        explicit Histogram(HxRegScalarField3* owner) : field(owner) {}

        HxRegScalarField3* owner() const override { return field; }
        McHistogram getHistogram(int numBins) override;

    private:
        HxRegScalarField3* field;
    };

    std::unique_ptr<HxLattice3> latticeObject;
    Histogram histogram{this};
};
