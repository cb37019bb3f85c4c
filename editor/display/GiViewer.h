#pragma once

#include "core/GiSelection2D.h"
#include "display/GiGreyImage.h"
#include "display/GiLabelImage.h"
#include "hx/HxViewerBase.h"
#include "mc/McDArray.h"
#include "mc/McHandle.h"
#include "mc/McVec.h"

class Gi;
class GiFrameBuffer;
class HxColormap;
class QCursor;

/// One 2D view on the volumes: an orientation, a slice number, a zoom factor, and the frame buffer, grey
/// image, label overlay and 2D selection that follow them. Labels and selection are never copied, only
/// pointed at anew.
///
/// Whatever changes what is shown passes through setSlice(): the slice is set up again rather than
/// patched, so there is one path for everything.
class GiViewer : public HxViewerBase
{
public:
    /// Zooming in ends here; one voxel is larger than any window by then.
    static constexpr float kLargestZoomFactor = 1024;

    GiViewer(const char* title, Gi* owner);

    /// Goes to a slice, limited to those there are. `notify` tells the editor, so that the cross
    /// hair and with it the other viewers follow.
    virtual void setSlice(int newSlice, bool notify);
    /// Screen pixels per voxel along the axis with most voxels; below 1 data pixels are dropped.
    virtual void setZoomFactor(float zoom);
    /// `update` false: only stored.
    virtual void setDataWindow(float min, float max, bool update);
    virtual void setOrientation(int newOrientation);
    /// Mirrors the volume's axes; each argument is a truth value.
    virtual void setFlip(int x, int y, int z);
    virtual void setRotate(int from, int to);
    virtual void setNumSlices(int) {}

    void redraw() override;

    int getOrientation() const { return orientation; }
    int getSlice() const { return static_cast<int>(slice); }
    float getZoomFactor() const { return zoomFactor; }
    void getDataWindow(float& min, float& max) const;
    /// Bit 0 the X axis, bit 1 Y, bit 2 Z.
    int getFlip() const { return flip; }

    /// Minimum and maximum, both included.
    const float* getMaskingWindow() const;
    void setMaskingOverlay(bool on);
    void setMaskingEnabled(bool on);
    bool maskingEnabled() const;
    void setMaskingWindow(float min, float max, bool update);
    void setColormap(HxColormap* map);
    void setCursor(const QCursor& cursor);
    void storeSelection(int) {}

    /// Attaches the buffer that the viewer draws into and tells it who owns it. The viewer does not own
    /// it; null takes it away.
    void setFrameBuffer(GiFrameBuffer* buffer);
    /// Grey image, label overlay and 2D selection; called once, after the frame buffer is there. The grey
    /// image is the lowest shape, the one that the selection is blended into.
    void createShapes();
    /// Null for a viewer that draws nothing.
    GiFrameBuffer* getFrameBuffer() const { return frameBuffer; }
    GiGreyImage* getGreyImage() const { return greyImage; }
    GiLabelImage* getLabelImage() const { return labelImage; }
    GiSelection2D* getSelection() const { return selection; }

    /// Screen pixels per column and row of the present orientation, from the physical size of the volume.
    void setupCoordinateSystem();

    /// Sizes on screen of a whole slice of each orientation.
    ///
    /// zoom     screen pixels per voxel along the axis with most voxels; the others follow by extent
    /// dims     voxels along X, Y, Z
    /// bbox     xmin, xmax, ymin, ymax, zmin, zmax
    /// matched  non-zero: all views agree on each axis
    /// sizes    three results, width and height, at least 1
    static void computeZoomedSizes(float zoom, const int* dims, const float* bbox, int matched,
                                   McVec2i* sizes);
    /// Spreads `zoomed` pixels over n entries as evenly as whole numbers allow.
    static void computeReplicUniform(int n, int zoomed, int* result);
    /// The same over n rows at rising or falling positions: the share of a row goes from midpoint to
    /// midpoint.
    static void computeReplicStacked(int n, int zoomed, const float* coords, int* result);

protected:
    Gi* gi;

private:
    void showImage(const int* size);
    void bindLabels(int width, int height);
    void applyFlip();

    McDArray<int> replicX, replicY;
    int orientation = 0;
    unsigned char flip = 0;
    GiFrameBuffer* frameBuffer = nullptr;
    McHandle<GiGreyImage> greyImage;
    McHandle<GiLabelImage> labelImage;
    McHandle<GiSelection2D> selection;
    long slice = 0;
    float zoomFactor = 1;
    float dataWindow[2] = {-200, 200};
};
