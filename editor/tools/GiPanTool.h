#pragma once

#include "mc/McHandle.h"
#include "tools/GiTool.h"

class HxViewerModalTool;

/// Scrolls a slice under the hand. It works with the middle button whatever tool is active, and with the
/// left one while it is active itself. It has no panel; the viewer panel's own "Translate" chooses it.
class GiPanTool : public GiTool
{
public:
    static constexpr int kIndex = 6; // in Gi's list of tools

    explicit GiPanTool(Gi* owner);
    ~GiPanTool() override;

    int handleEvent(GiFrameBuffer* frameBuffer, McEvent* event) override;
    bool isDragging() const override { return dragBuffer != nullptr; }
    QWidget* getWidget(QWidget*) override { return nullptr; }
    const char* getIconName() const override { return "SegPanIcon.png"; }
    HxViewerModalTool* wrapper() override { return viewerTool; }

protected:
    QCursor makeCursor() const override;

private:
    class Wrapper;

    bool startsDrag(const McEvent& event) const;
    void rememberGrip(const GiFrameBuffer& frameBuffer);
    void scroll(GiFrameBuffer& frameBuffer);

    int grabX = 0, grabY = 0;            // place of the slice that the hand holds
    GiFrameBuffer* dragBuffer = nullptr; // null when not dragging
    McHandle<HxViewerModalTool> viewerTool;
};
