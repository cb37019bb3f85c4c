#pragma once

#include "mc/McBox.h"
#include "mc/McHandable.h"

class GiFrameBuffer;
class McEvent;

/// Something that a slice viewer shows: image, label overlay, tool, cross hair. The shapes of a
/// frame buffer stand in drawing order and are offered its events in the same order.
class GiShape : public McHandable
{
public:
    /// Draws the part inside `box`, in zoomed coordinates.
    virtual void render(GiFrameBuffer*, const McBox2i& /*box*/) {}
    /// Non-zero if the event was consumed.
    virtual int handleEvent(GiFrameBuffer*, McEvent*) { return 0; }
    virtual McBox2i getBoundingBox() { return McBox2i(0, -1, 0, -1); }
    /// A dragging shape gets events before its neighbours.
    virtual bool isDragging() const { return false; }
};
