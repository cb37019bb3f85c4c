#include "hx/HxViewerTool.h"

HxViewerTool::HxViewerTool(const char* name) : toolName(name) {}

bool HxViewerTool::supportsViewer(HxViewerBase*)
{
    return true;
}

HxViewerModalTool::HxViewerModalTool(const char* name) : HxViewerTool(name) {}

void HxViewerModalTool::onActivate(HxViewerBase*) {}

int HxViewerModalTool::processEvent(const SoEvent*, HxViewer*)
{
    return 0;
}

HxViewerTriggerTool::HxViewerTriggerTool(const char* name) : HxViewerTool(name) {}
