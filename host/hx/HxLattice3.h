#pragma once

#include "hx/HxLattice.h"
#include "hx/HxLatticeCoords.h"

#include <memory>

/// A 3D lattice: a block of memory, x fastest, the components of a node side by side, and the
/// positions of its nodes. Node (i, j, k) has index i + nx*(j + ny*k).
class HxLattice3 : public HxLattice
{
public:
    static McTypeId getClassTypeId();

    /// dims         counts along x, y, z; sides may exceed 32767
    /// elementType  host element code; code 5 or 6 (reserved) takes 8 bytes a component
    /// block        memory of the whole lattice; null: a new zeroed one, owned
    /// takeOver     true: the block is malloc'ed, and freed with the lattice. false: a view
    /// throws  McMemoryException; McException for an unknown code. The block stays the caller's then
    HxLattice3(const unsigned long* dims, int numDataVars, int elementType, int coordKind, void* block,
               bool takeOver);
    /// The same on given coordinates, which the lattice takes over, with their dims.
    HxLattice3(HxLatticeCoords* coords, int numDataVars, int elementType, void* block, bool takeOver);
    ~HxLattice3() override;
    HxLattice3(const HxLattice3&) = delete;
    HxLattice3& operator=(const HxLattice3&) = delete;

    int numDims() const override { return 3; }
    const unsigned long* dims() const override { return coordsObject->dims(); }
    int primType() const override { return type; }
    int numDataVars() const override { return components; }
    float getVoxel(const McVec3i& index) const override;
    /// The same without loss of precision.
    double getValue(const McVec3i& index) const;
    HxLatticeAccess* access() override;

    void* dataPtr() const { return data; }
    unsigned long numNodes() const;
    unsigned long numBytes() const;

    HxLatticeCoords* coords() const { return coordsObject.get(); }

    /// New dimensions in the same bounding box. An equal number of bytes keeps the block, its
    /// address and its content; otherwise there is a new zeroed block. A viewed block is left alone
    /// and replaced by an own one.
    /// throws  McMemoryException, and nothing is changed
    virtual void resize(unsigned long x, unsigned long y, unsigned long z);

    /// Gives the block away; the lattice keeps no memory.
    void* detachData();

    HxData* owner() const override { return owningField; }
    /// Called by the field that takes the lattice over.
    void setOwner(HxData* field) { owningField = field; }

private:
    unsigned long bytesFor(const unsigned long* newDims) const;
    void freeData();

    std::unique_ptr<HxLatticeCoords> coordsObject;
    int components;
    int type;
    void* data = nullptr;
    bool ownsData = true;
    HxData* owningField = nullptr;
};
