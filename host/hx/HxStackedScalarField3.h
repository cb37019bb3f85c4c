#pragma once

#include "hx/HxRegScalarField3.h"

/// An image whose slices lie at Z positions of their own.
class HxStackedScalarField3 : public HxRegScalarField3
{
    Q_OBJECT

public:
    /// zPositions: dims[2] floats, rising; copied. Memory as in HxUniformScalarField3.
    HxStackedScalarField3(const unsigned long* dims, int type, const float* zPositions, void* data = nullptr,
                          bool takeOver = false);

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }
};
