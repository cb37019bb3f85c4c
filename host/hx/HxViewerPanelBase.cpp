#include "hx/HxViewerPanelBase.h"

#include "hx/HxViewerBase.h"
#include "hx/HxViewerTool.h"

#include <algorithm>

HxViewerPanelBase::HxViewerPanelBase() = default;

HxViewerPanelBase::~HxViewerPanelBase()
{
    while (!known.empty()) forget(known.back());
}

HxViewerBase* HxViewerPanelBase::getActiveViewer()
{
    return activeViewer;
}

void HxViewerPanelBase::setActiveViewer(HxViewerBase* viewer)
{
    HxViewerBase* former = activeViewer;
    activeViewer = viewer;
    if (viewer) know(viewer);
    if (former) dropIfUnused(former);
}

void HxViewerPanelBase::setToolOverride(HxViewerBase* viewer, HxViewerTool* panelTool,
                                        HxViewerTool* replacement)
{
    std::erase_if(overrides,
                  [&](const Override& o) { return o.viewer == viewer && o.panelTool == panelTool; });
    if (replacement) {
        overrides.push_back({viewer, panelTool, replacement});
        know(viewer);
    } else {
        dropIfUnused(viewer);
    }
}

void HxViewerPanelBase::registerViewer(HxViewerBase* viewer)
{
    if (std::find(viewers.begin(), viewers.end(), viewer) != viewers.end()) return;
    viewers.push_back(viewer);
    know(viewer);
    if (!activeViewer) setActiveViewer(viewer);
}

void HxViewerPanelBase::unregisterViewer(HxViewerBase* viewer)
{
    std::erase(viewers, viewer);
    std::erase_if(overrides, [viewer](const Override& o) { return o.viewer == viewer; });
    // The virtual form, so that a panel with widgets shows the change.
    if (activeViewer == viewer) setActiveViewer(viewers.empty() ? nullptr : viewers.front());
    dropIfUnused(viewer);
}

HxViewerBase* HxViewerPanelBase::viewer(int index) const
{
    return index >= 0 && index < numViewers() ? viewers[static_cast<std::size_t>(index)] : nullptr;
}

void HxViewerPanelBase::registerTool(HxViewerTool* tool)
{
    tools.emplace_back(tool);
}

HxViewerTool* HxViewerPanelBase::findTool(const char* name) const
{
    for (const McHandle<HxViewerTool>& tool : tools)
        if (std::string(tool->getName()) == name) return tool;
    return nullptr;
}

HxViewerTool* HxViewerPanelBase::effectiveTool(HxViewerBase* viewer, HxViewerTool* panelTool) const
{
    for (const Override& o : overrides)
        if (o.viewer == viewer && o.panelTool == panelTool) return o.replacement;
    return panelTool;
}

void HxViewerPanelBase::pressTool(HxViewerTool* panelTool)
{
    HxViewerBase* active = getActiveViewer();
    if (!active || !panelTool) return;
    const McHandle<HxViewerTool> tool = effectiveTool(active, panelTool);
    if (auto* trigger = dynamic_cast<HxViewerTriggerTool*>(tool.get())) {
        trigger->onTrigger(active);
    } else if (auto* modal = dynamic_cast<HxViewerModalTool*>(tool.get())) {
        for (HxViewerBase* each : viewers)
            if (modal->supportsViewer(each)) each->activateTool(modal);
        modal->onActivate(active);
    }
}

void HxViewerPanelBase::know(HxViewerBase* viewer)
{
    if (std::find(known.begin(), known.end(), viewer) != known.end()) return;
    known.push_back(viewer);
    viewer->knownTo.push_back(this);
}

bool HxViewerPanelBase::refersTo(const HxViewerBase* viewer) const
{
    return activeViewer == viewer || viewer->panel == this ||
           std::find(viewers.begin(), viewers.end(), viewer) != viewers.end() ||
           std::any_of(overrides.begin(), overrides.end(),
                       [viewer](const Override& o) { return o.viewer == viewer; });
}

void HxViewerPanelBase::dropIfUnused(HxViewerBase* viewer)
{
    if (refersTo(viewer)) return;
    std::erase(known, viewer);
    std::erase(viewer->knownTo, this);
}

void HxViewerPanelBase::forget(HxViewerBase* viewer)
{
    std::erase(viewers, viewer);
    std::erase_if(overrides, [viewer](const Override& o) { return o.viewer == viewer; });
    if (viewer->panel == this) viewer->panel = nullptr;
    if (activeViewer == viewer) activeViewer = viewers.empty() ? nullptr : viewers.front();
    std::erase(known, viewer);
    std::erase(viewer->knownTo, this);
}
