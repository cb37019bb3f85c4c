#pragma once

#include "mc/McVec.h"

class GiScreenOutline;
class GiSelection3D;

/// A voxel on its way through the lasso of the 3D view.
struct GiLassoStruct
{
    int x;          // in its row
    long index;     // in the volume
    McVec2f screen; // where the voxel is seen
    GiSelection3D* selection;
    const GiScreenOutline* lasso;
    const void* row;          // of the image, its first element
    float minValue, maxValue; // of the tools' window, both included
};

/// Changes one voxel, or leaves it.
using GiLassoCallback = void (*)(GiLassoStruct&);

/// What an outline over the 3D view does.
struct GiLassoAction
{
    GiLassoCallback callback;
    bool clearsFirst; // the whole selection goes before
};

/// The action for the keys held when the outline was closed.
///
/// outside   everything outside the outline is meant: with Shift it is added, without it taken away
/// masks     only values in the window change
/// primType  Gi's code of the image's element type
///
/// kept: with masking, an image of unsigned 32-bit numbers is not compared. Whatever is inside is set then,
/// also with Control, and where "Outside" without Shift would cut away: the outline does something that can
/// be seen and undone, and it never takes away what the window would have spared.
GiLassoAction giLassoAction(bool outside, bool ctrl, bool shift, bool masks, int primType);
