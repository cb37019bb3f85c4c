#pragma once

#include "core/GiSelection2D.h"
#include "display/GiLabelImage.h"
#include "hx/HxViewerBase.h"
#include "mc/McHandle.h"

class Gi;

/// One 2D view on the volumes: an orientation, a slice number, a zoom factor, and the views of label
/// slice and selection that follow them. Nothing of a slice is copied; it is only pointed at anew.
class GiViewer : public HxViewerBase
{
public:
    GiViewer(const char* title, Gi* owner);

    /// Goes to a slice, limited to those there are. `notify` tells the editor, so that the cross
    /// hair and with it the other viewers follow.
    virtual void setSlice(int slice, bool notify);
    virtual void setZoomFactor(float zoom);
    virtual void setOrientation(int orientation);
    /// Mirrors the volume's axes; each argument is a truth value.
    virtual void setFlip(int x, int y, int z);

    int getOrientation() const { return orientation; }
    int getSlice() const { return static_cast<int>(slice); }
    float getZoomFactor() const { return zoomFactor; }
    /// Bit 0 the X axis, bit 1 Y, bit 2 Z.
    int getFlip() const { return flip; }

    /// Label overlay and 2D selection; called once by whoever completes the viewer.
    void createShapes();
    GiLabelImage* getLabelImage() const { return labelImage; }
    GiSelection2D* getSelection() const { return selection; }

protected:
    Gi* gi;

private:
    void bindLabels(int width, int height);

    int orientation = 0;
    unsigned char flip = 0;
    long slice = 0;
    float zoomFactor = 1;
    McHandle<GiLabelImage> labelImage;
    McHandle<GiSelection2D> selection;
};
