#pragma once

#include "display/GiShape.h"
#include "mc/McVec.h"

/// A mark at one pixel of a slice: a vertical and a horizontal line over the whole picture. It cannot be
/// dragged; for hosts that mark a place of their own.
class GiCrossHair : public GiShape
{
public:
    using Callback = void (*)(GiCrossHair*, void* data);

    void render(GiFrameBuffer* frameBuffer, const McBox2i& box) override;
    int handleEvent(GiFrameBuffer*, McEvent*) override { return 0; }

    /// In pixels of the slice; calls back if it is another place.
    void setPosition(const McVec2i& p);
    const McVec2i& getPosition() const { return position; }
    /// Where the lines run in a buffer: the first screen pixel of the position.
    McVec2i getEffPosition(const GiFrameBuffer& frameBuffer) const;
    void setValueChangedCallback(Callback function, void* data);
    /// which  non-zero: the vertical line, 0: the horizontal one
    void setColor(int which, int r, int g, int b);

private:
    McVec2i position;
    void* callbackData = nullptr;
    Callback callback = nullptr;
    unsigned char colors[2][3] = {{255, 0, 0}, {0, 255, 0}}; // horizontal, vertical
};
