#pragma once

#include "mc/McHandable.h"
#include "mc/McHandle.h"

#include <string>
#include <vector>

class HxViewerModalTool;
class HxViewerPanelBase;
class QWidget;

/// Anything that shows data in a viewer panel.
class HxViewerBase : public McHandable
{
public:
    explicit HxViewerBase(const char* name);
    ~HxViewerBase() override;

    /// Null for a viewer without a window.
    virtual QWidget* getWidget() { return nullptr; }
    virtual void redraw() {}

    const char* getName() const { return viewerName.c_str(); }

    /// The panel that the viewer belongs to; null when it has none.
    HxViewerPanelBase* getPanelBase() const { return panel; }
    void setPanel(HxViewerPanelBase* newPanel);

    /// Makes the tool this viewer's modal tool; null means none. Only installs: the tool's onActivate is
    /// called by the panel's button.
    void activateTool(HxViewerModalTool* tool);
    HxViewerModalTool* activeTool() const;

private:
    friend class HxViewerPanelBase;

    std::string viewerName;
    HxViewerPanelBase* panel = nullptr;
    McHandle<HxViewerModalTool> modalTool;
    std::vector<HxViewerPanelBase*> knownTo; // panels with a plain pointer to this viewer
};
