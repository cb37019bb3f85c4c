#pragma once

#include "hx/HxLabelField3.h"

/// A label field with equal spacing along each axis.
class HxUniformLabelField3 : public HxLabelField3
{
    Q_OBJECT

public:
    /// Zeroed labels, unit spacing, no materials.
    /// throws  McMemoryException
    explicit HxUniformLabelField3(const unsigned long* dims);
    /// Takes over a lattice with uniform coordinates.
    explicit HxUniformLabelField3(HxLabelLattice3* lattice);

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }
};
