#include "app/GiSetOrientationTool.h"

#include "display/GiViewer.h"

GiSetOrientationTool::GiSetOrientationTool(int newOrientation)
    : HxViewerTriggerTool("Set Orientation"), orientation(newOrientation)
{
}

bool GiSetOrientationTool::supportsViewer(HxViewerBase* viewer)
{
    return dynamic_cast<GiViewer*>(viewer) != nullptr;
}

void GiSetOrientationTool::onTrigger(HxViewerBase* viewer)
{
    if (auto* slices = dynamic_cast<GiViewer*>(viewer)) slices->setOrientation(orientation);
}
