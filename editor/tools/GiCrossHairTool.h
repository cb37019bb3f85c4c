#pragma once

#include "display/GiShape.h"
#include "mc/McVec.h"

/// The point that all slice viewers share: where it goes, they go. Not one of the selectable tools.
class GiCrossHairTool : public GiShape
{
public:
    using Callback = void (*)(GiCrossHairTool*, void* data);

    void setVisible(bool on) { visible = on; }
    bool isVisible() const { return visible; }
    /// In voxels. Does not call back: the callback tells of moves by the user's hand.
    void setPosition(const McVec3i& p) { position = p; }
    const McVec3i& getPosition() const { return position; }
    void setValueChangedCallback(Callback function, void* data);
    /// Tells the callback that the position was moved.
    void valueChanged();

private:
    bool visible = false;
    McVec3i position = McVec3i(0, 0, 0);
    Callback callback = nullptr;
    void* callbackData = nullptr;
};
