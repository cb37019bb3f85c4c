#pragma once

#include "display/GiViewer.h"

#include <QPointer>

class GiQFrameBuffer;

/// A slice viewer in a window. It owns its widget, which the panel may take as a child meanwhile; if the
/// panel deletes it, the viewer goes on without a picture.
class GiQViewer : public GiViewer
{
public:
    GiQViewer(const char* name, Gi* gi, QWidget* parent);
    ~GiQViewer() override;

    /// The frame buffer; null once its parent has deleted it.
    QWidget* getWidget() override;
    /// Names the widget after its fixed place in a panel: "A0_UpperLeft" (XY), "A1_UpperRight" (YZ) or
    /// "A2_LowerLeft" (XZ).
    void setOrientation(int newOrientation) override;
    using GiViewer::setDataWindow;
    void setDataWindow(float min, float max) { setDataWindow(min, max, true); }
    /// Takes over data window and zoom factor, and with it the size of the pixels.
    void copySettings(const GiViewer& other);

private:
    QPointer<GiQFrameBuffer> widget;
};
