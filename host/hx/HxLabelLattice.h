#pragma once

#include "mc/McInterface.h"
#include "mc/McTypeId.h"

class HxLabelLattice3;

/// Marker: the object has a label lattice.
class HxLabelLattice : public McInterface
{
public:
    explicit HxLabelLattice(const HxLabelLattice3* lattice) : labels(lattice) {}

    static McTypeId getClassTypeId();
    McInterfaceOwner* owner() const override;

private:
    const HxLabelLattice3* labels;
};

/// Marker: the object has a label lattice that may be edited.
class HxMutableLabelLattice : public McInterface
{
public:
    explicit HxMutableLabelLattice(const HxLabelLattice3* lattice) : labels(lattice) {}

    static McTypeId getClassTypeId();
    McInterfaceOwner* owner() const override;

private:
    const HxLabelLattice3* labels;
};
