#include "hx/HxViewerBase.h"

#include "hx/HxViewerPanelBase.h"
#include "hx/HxViewerTool.h"

HxViewerBase::HxViewerBase(const char* name) : viewerName(name) {}

HxViewerBase::~HxViewerBase()
{
    // forget() takes the panel out of the list.
    while (!knownTo.empty()) knownTo.back()->forget(this);
}

void HxViewerBase::setPanel(HxViewerPanelBase* newPanel)
{
    HxViewerPanelBase* former = panel;
    panel = newPanel;
    if (former) former->dropIfUnused(this);
    if (newPanel) newPanel->know(this);
}

void HxViewerBase::activateTool(HxViewerModalTool* tool)
{
    modalTool = tool;
}

HxViewerModalTool* HxViewerBase::activeTool() const
{
    return modalTool;
}
