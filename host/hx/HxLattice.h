#pragma once

#include "hx/HxData.h"
#include "hx/HxLatticeAccess.h"
#include "mc/McInterface.h"
#include "mc/McTypeId.h"
#include "mc/McVec.h"

/// A lattice of values of any dimension, as data objects offer it.
class HxLattice : public McInterface
{
public:
    static McTypeId getClassTypeId();

    /// The data object that owns the lattice; null for a free one.
    HxData* owner() const override = 0;

    virtual int numDims() const = 0;
    /// numDims() counts, the fastest axis first.
    virtual const unsigned long* dims() const = 0;
    /// Host element code.
    virtual int primType() const = 0;
    /// Components per node.
    virtual int numDataVars() const = 0;

    /// First component at a node; 0 outside and for element codes beyond the seven known ones.
    virtual float getVoxel(const McVec3i& index) const = 0;

    /// A new access object; the caller ends its use with release().
    virtual HxLatticeAccess* access() = 0;
};
