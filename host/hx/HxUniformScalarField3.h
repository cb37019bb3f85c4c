#pragma once

#include "hx/HxRegScalarField3.h"

/// An image with equal spacing along each axis.
class HxUniformScalarField3 : public HxRegScalarField3
{
    Q_OBJECT

public:
    /// takeOver false: views the caller's memory, which must outlive the field and is never freed.
    /// takeOver true: the block is malloc'ed and freed with the field. Null makes a new zeroed one.
    HxUniformScalarField3(const unsigned long* dims, int type, void* data = nullptr, bool takeOver = false);

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }
};
