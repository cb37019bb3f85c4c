#pragma once

#include "hx/HxLabelLattice.h"
#include "hx/HxLattice3.h"

class HxLabelField3;
class HxParamBundle;

/// A lattice of labels: one byte a voxel, and on request a second byte, the weight, for the shape
/// of the border inside the voxel.
class HxLabelLattice3 : public HxLattice3
{
public:
    static McTypeId getClassTypeId();

    /// Zeroed labels. Takes the coordinates over; make them with another lattice's clone().
    /// throws  McMemoryException
    explicit HxLabelLattice3(HxLatticeCoords* coords);
    /// Labels in a malloc'ed block, which is taken over.
    HxLabelLattice3(HxLatticeCoords* coords, unsigned char* labels);
    ~HxLabelLattice3() override;

    unsigned char* getLabels() const { return static_cast<unsigned char*>(dataPtr()); }
    /// Null without.
    unsigned char* getWeights() const { return weights; }
    /// Zeroed weights of the size of the labels; existing ones stay where they are.
    /// throws  McMemoryException
    void createWeights();

    /// The bundle "Materials" of the owner's parameters, made empty when absent. Null without an
    /// owner.
    HxParamBundle* materials() const;

    /// All labels 0. The owner's range is left to the caller.
    void clear();

    /// Makes the field that owns this lattice from now on, uniform or stacked by the kind of the
    /// coordinates, with the one material "Exterior". Not yet in the pool.
    HxLabelField3* create();

    /// The field that owns this lattice; null for a free one.
    HxLabelField3* field() const;

    /// Drops the weights unless the number of bytes stays.
    void resize(unsigned long x, unsigned long y, unsigned long z) override;

    /// What the lattice's owner offers as the marker interfaces.
    HxLabelLattice* labelMarker() { return &isLabelLattice; }
    HxMutableLabelLattice* mutableMarker() { return &isMutable; }

private:
    HxLabelLattice isLabelLattice{this};
    HxMutableLabelLattice isMutable{this};
    unsigned char* weights = nullptr;
};
