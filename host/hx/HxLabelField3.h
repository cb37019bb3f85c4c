#pragma once

#include "hx/HxImageConnection.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxRegScalarField3.h"

/// A label field, uniform or stacked: what both kinds have in common.
///
/// The parameters hold the bundle "Materials", whose sub-bundle i describes label i.
class HxLabelField3 : public HxRegScalarField3
{
    Q_OBJECT

public:
    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    HxLabelLattice3* labelLattice() const;
    HxParamBundle* materials() const { return labelLattice()->materials(); }

    /// Surface of a material: the voxel faces between it and anything else, the border of the
    /// volume included, each weighted by its area over the area of an x-y face. So the value does
    /// not depend on the unit of length. Stacked fields take the mean slice distance. 0 when interrupted.
    float getSurfaceArea(int material);

    /// Writes labels, coordinates and all parameters in the host's own form. False after a failure,
    /// which is reported on the console.
    bool writeVorelMeshBinary(const char* path);

    /// The connection "ImageData" to the image that the labels belong to.
    HxConnection& imageConnection() { return image; }

    McInterface* getInterface(McTypeId type) override;
    int parse(Tcl_Interp* interp, int wordCount, char** words) override;
    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    /// Takes the lattice over.
    explicit HxLabelField3(HxLabelLattice3* lattice);

    void memberAdded(HxObject* newcomer) override;
    void memberRenamed(HxObject* member) override;

private:
    HxImageConnection image{this};
};
