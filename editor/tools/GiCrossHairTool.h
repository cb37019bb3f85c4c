#pragma once

#include "display/GiShape.h"
#include "mc/McVec.h"

/// The point that all slice viewers share: where it goes, they go. It is drawn as a pair of lines that can
/// be dragged. Not one of the selectable tools: it is always active while it is visible.
class GiCrossHairTool : public GiShape
{
public:
    using Callback = void (*)(GiCrossHairTool*, void* data);

    void render(GiFrameBuffer* frameBuffer, const McBox2i& box) override;
    int handleEvent(GiFrameBuffer* frameBuffer, McEvent* event) override;
    bool isDragging() const override { return visible && dragAxes > 0; }

    void setVisible(bool on) { visible = on; }
    bool isVisible() const { return visible; }
    /// In voxels. Does not call back: the callback tells of moves by the user's hand.
    void setPosition(const McVec3i& p) { position = p; }
    const McVec3i& getPosition() const { return position; }
    void setValueChangedCallback(Callback function, void* data);
    /// Tells the callback that the position was moved.
    void valueChanged();

private:
    /// Screen coordinates of the two lines in a viewer.
    McVec2i lines(const GiFrameBuffer& frameBuffer) const;
    void dragTo(GiFrameBuffer& frameBuffer, int x, int y);
    /// What the pointer is on: the lines that would be dragged.
    int grab(GiFrameBuffer& frameBuffer, int x, int y);

    bool visible = false;
    int dragAxes = 0; // kVertical and kHorizontal
    McVec3i position = McVec3i(0, 0, 0);
    void* callbackData = nullptr;
    Callback callback = nullptr;
};
