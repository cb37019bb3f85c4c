#pragma once

#include "mc/McHandle.h"

#include <string>
#include <vector>

class HxViewerBase;
class HxViewerTool;

/// A set of viewers with one of them active, and the tools that it offers for them. Without widgets, so that
/// tests can use it as it is.
///
/// Keeps plain pointers to viewers, which say good-bye when they are deleted, and references to tools.
class HxViewerPanelBase
{
public:
    HxViewerPanelBase();
    HxViewerPanelBase(const HxViewerPanelBase&) = delete;
    HxViewerPanelBase& operator=(const HxViewerPanelBase&) = delete;
    virtual ~HxViewerPanelBase();

    /// Null when there is none.
    virtual HxViewerBase* getActiveViewer();

    /// Takes viewers that are not registered yet, too. When the active viewer goes, the first registered one
    /// follows.
    virtual void setActiveViewer(HxViewerBase* viewer);

    /// Binds, for one viewer, a replacement to a tool of the panel; null takes the binding away.
    virtual void setToolOverride(HxViewerBase* viewer, HxViewerTool* panelTool, HxViewerTool* replacement);

    /// In the order of registration. A viewer that is registered already keeps its place.
    virtual void registerViewer(HxViewerBase* viewer);
    virtual void unregisterViewer(HxViewerBase* viewer);
    int numViewers() const { return static_cast<int>(viewers.size()); }

    /// Null outside 0 to numViewers() - 1.
    HxViewerBase* viewer(int index) const;

    void registerTool(HxViewerTool* tool);

    /// The tool of this name, null when there is none.
    HxViewerTool* findTool(const char* name) const;

    /// What a press on the panel's tool runs for this viewer: its replacement or the tool itself.
    HxViewerTool* effectiveTool(HxViewerBase* viewer, HxViewerTool* panelTool) const;

    /// Presses the button of a tool. A trigger tool runs on the active viewer; a modal one is installed in
    /// all registered viewers that it supports, then activated once on the active viewer.
    void pressTool(HxViewerTool* panelTool);

private:
    friend class HxViewerBase;

    struct Override
    {
        HxViewerBase* viewer;
        McHandle<HxViewerTool> panelTool;
        McHandle<HxViewerTool> replacement;
    };

    void know(HxViewerBase* viewer);
    void forget(HxViewerBase* viewer);
    bool refersTo(const HxViewerBase* viewer) const;
    void dropIfUnused(HxViewerBase* viewer);

    std::vector<HxViewerBase*> viewers;
    std::vector<HxViewerBase*> known; // all that we point at, or that point at us; each lists us in turn
    std::vector<McHandle<HxViewerTool>> tools;
    std::vector<Override> overrides;
    HxViewerBase* activeViewer = nullptr;
};
