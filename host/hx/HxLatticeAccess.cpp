#include "hx/HxLatticeAccess.h"

#include "hx/HxLattice3.h"

#include <algorithm>

HxLatticeAccess::HxLatticeAccess(HxLattice3* accessed) : lattice(accessed)
{
    // An object that nobody counts lives by its user's hand; a reference would delete it in the end.
    HxData* field = lattice->owner();
    if (field && field->refCount() > 0) owner = field;
}

HxLatticeAccess::~HxLatticeAccess() = default;

void* HxLatticeAccess::rawData(const unsigned long* dims) const
{
    return std::equal(dims, dims + 3, lattice->dims()) ? lattice->dataPtr() : nullptr;
}
