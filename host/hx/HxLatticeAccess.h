#pragma once

#include "mc/McHandle.h"

class HxData;
class HxLattice3;

/// Stable access to the memory of a lattice: keeps the owner alive and the pointer valid until it
/// is released, unless the lattice is resized in between.
class HxLatticeAccess
{
public:
    explicit HxLatticeAccess(HxLattice3* accessed);

    /// Start of the memory; null if `dims` are not the lattice's three dimensions.
    void* rawData(const unsigned long* dims) const;

    /// Deletes the access object.
    void release() { delete this; }

private:
    ~HxLatticeAccess();

    HxLattice3* lattice;
    McHandle<HxData> owner;
};
