#include "tools/GiCrossHairTool.h"

#include "core/Gi.h"
#include "display/GiViewer.h"

void GiCrossHairTool::setValueChangedCallback(Callback function, void* data)
{
    callback = function;
    callbackData = data;
}

void GiCrossHairTool::valueChanged()
{
    if (callback) callback(this, callbackData);
}

// Cross hair and viewers adjust each other; `sliceSyncBusy` keeps the answer to an adjustment from
// becoming the next one.

void Gi::sliceNumberChanged(GiViewer* viewer)
{
    if (sliceSyncBusy) return;
    sliceSyncBusy = 1;
    McVec3i p = crossHair->getPosition();
    const int axis = viewer->getOrientation();
    if (axis >= 0 && axis <= 2 && p[axis] != viewer->getSlice()) {
        p[axis] = viewer->getSlice();
        crossHair->setPosition(p);
        for (int i = 0; i < viewers.size(); ++i)
            if (viewers[i] != viewer) viewers[i]->redraw();
    }
    sliceSyncBusy = 0;
}

void Gi::crossHairCB(GiCrossHairTool* tool)
{
    if (viewers.size() == 1) return;
    sliceSyncBusy = 1;
    for (int i = 0; i < viewers.size(); ++i) {
        const int axis = viewers[i]->getOrientation();
        const int p = axis >= 0 && axis <= 2 ? tool->getPosition()[axis] : viewers[i]->getSlice();
        if (viewers[i]->getSlice() == p)
            viewers[i]->redraw();
        else
            viewers[i]->setSlice(p, true);
    }
    sliceSyncBusy = 0;
}
