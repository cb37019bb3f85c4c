#include "hx/HxViewerTool.h"

HxViewerTool::HxViewerTool(const char* toolName) : name(toolName) {}

bool HxViewerTool::supportsViewer(HxViewerBase*)
{
    return true;
}

HxViewerModalTool::HxViewerModalTool(const char* toolName) : HxViewerTool(toolName) {}

void HxViewerModalTool::onActivate(HxViewerBase*) {}

int HxViewerModalTool::processEvent(const SoEvent*, HxViewer*)
{
    return 0;
}

HxViewerTriggerTool::HxViewerTriggerTool(const char* toolName) : HxViewerTool(toolName) {}
