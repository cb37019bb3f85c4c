#pragma once

#include "hx/HxLabelField3.h"

/// A label field whose slices lie at Z positions of their own. Not an HxUniformLabelField3.
class HxStackedLabelField3 : public HxLabelField3
{
    Q_OBJECT

public:
    /// Zeroed labels, no materials; zPositions: dims[2] floats, rising.
    /// throws  McMemoryException
    HxStackedLabelField3(const unsigned long* dims, const float* zPositions);
    /// Takes over a lattice with stacked coordinates.
    explicit HxStackedLabelField3(HxLabelLattice3* lattice);

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }
};
