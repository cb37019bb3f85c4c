#include "app/GiResetOrientationTool.h"

#include "core/Gi.h"
#include "display/GiViewer.h"
#include "hx/HxLabelLattice3.h"

#include <algorithm>

namespace {

/// A slice should fill a good part of a window without leaving it.
float suitableZoom(const unsigned long* dims)
{
    const unsigned long smaller = std::min(dims[0], dims[1]);
    return smaller > 256 ? 1.0f : smaller > 128 ? 2.0f : 3.0f;
}

} // namespace

GiResetOrientationTool::GiResetOrientationTool(Gi* owner)
    : HxViewerTriggerTool("Reset Orientation"), gi(owner)
{
}

bool GiResetOrientationTool::supportsViewer(HxViewerBase* viewer)
{
    return dynamic_cast<GiViewer*>(viewer) != nullptr;
}

void GiResetOrientationTool::onTrigger(HxViewerBase*)
{
    if (!gi->labelLattice) return;
    const unsigned long* dims = gi->labelLattice->dims();
    const float zoom = suitableZoom(dims);
    for (int i = 0; i < std::min(gi->viewers.size(), 3); ++i) {
        GiViewer* viewer = gi->viewers[i];
        // kept: the slice is set before the orientation, so a viewer that showed a shorter axis ends on that
        // axis's last number. Pressed again, it is in the middle.
        viewer->setSlice(static_cast<int>(dims[i] / 2), false);
        viewer->setOrientation(i);
        viewer->setZoomFactor(zoom);
    }
    gi->setZoomFactor(zoom);
}
