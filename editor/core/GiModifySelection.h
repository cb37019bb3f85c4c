#pragma once

#include "core/GiAction.h"
#include "mc/McBitfield.h"
#include "mc/McBox.h"

class Gi;
class GiSelection3D;

/// Restores a box, or the whole, of the volume's selection.
class GiModifySelection : public GiAction
{
public:
    explicit GiModifySelection(Gi* owner);

    void saveVolume(GiSelection3D* source);
    /// Saves the voxels of a box that lies inside the volume, both ends included.
    void saveRegion(GiSelection3D* source, const McBox3i& region);
    /// Saves one slice; an orientation other than 0, 1, 2 saves nothing.
    void saveSlice(GiSelection3D* source, int slice, int orientation);

    /// The whole form hands its bits over, so it can be executed once.
    void execute() override;
    long getMemSize() override;

private:
    template <class CopyRow>
    void forEachRow(const CopyRow& copyRow) const;

    Gi* gi;
    GiSelection3D* selection = nullptr;
    McBitfield savedBits;
    McBox3i box;
    bool wholeVolume = false;
};
