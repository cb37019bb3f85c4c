#pragma once

#include "mc/McBox.h"
#include "mc/McDArray.h"
#include "mc/McVec.h"
#include "tools/GiGestureStep.h"
#include "tools/GiTool.h"

#include <QCheckBox>
#include <QObject>
#include <QPointer>

#include <span>

class GiViewer;

/// Marks and erases pixels of the current slice by hand.
///
/// The pen has a size in screen pixels, so it covers fewer voxels the larger they are shown: a voxel is taken
/// when the centre of its block on screen lies under the pen, and the voxel under the pointer always is. Fast
/// strokes have no gaps. Corners clicked with Alt make a polygon that is drawn with the pen when it ends.
/// Each press is a step of undo; a stroke that goes on in another slice, or after some other step, gets
/// another one there.
class GiBrush : public QObject, public GiTool
{
    Q_OBJECT

public:
    static constexpr int kIndex = 1; // in Gi's list of tools

    explicit GiBrush(Gi* owner);

    const char* getIconName() const override { return "SegBrushIcon.png"; }
    void render(GiFrameBuffer* frameBuffer, const McBox2i& box) override;
    int handleEvent(GiFrameBuffer* frameBuffer, McEvent* event) override;
    /// While the button is down, so that its release is not taken for a grip at the cross hair.
    bool isDragging() const override { return isPressed; }
    void deselect(GiFrameBuffer* frameBuffer) override;
    void createWidget(QWidget* parent) override;
    void select() override {}
    void eventTakenElsewhere(GiFrameBuffer* frameBuffer) override { clear(frameBuffer); }

    /// Width and height of the pen, in screen pixels.
    void setBrushSize(int size);
    int getBrushSize() const { return brushWidth; }
    /// Stamps the pen once.
    /// centre  in zoomed coordinates of the buffer
    /// set     1 marks, 0 erases
    void putBrush(GiFrameBuffer* frameBuffer, McVec2i centre, int set);
    /// The stamp of the morphological mode: marks the brightest pixel under `brushMask` that touches the
    /// selection. Nothing happens without a mask and grey slice of the announced sizes, or with `erase`.
    void putBrush2(GiFrameBuffer* frameBuffer, McVec2i centre, int set, int erase);
    /// Opens an undo step for the viewer's slice.
    void startInteraction(GiViewer* inViewer);
    /// Draws the polygon with the pen and forgets it; Control in the event erases.
    void finishInteraction(GiFrameBuffer* frameBuffer, McEvent* event);
    /// Forgets pointer and polygon and takes their marks off the screen.
    void clear(GiFrameBuffer* frameBuffer);

    static bool autoHide;    // no outline while the left button is down
    static bool squareBrush; // else a disc
    /// 0 off. Nothing in the editor turns it on; it is there for a host, which also fills the three fields
    /// below.
    static int morphologicalMode;

    unsigned char* brushMask = nullptr;  // a weight per pen pixel, rows of `brushWidth`; not owned
    int imageWidth = 0, imageHeight = 0; // of the viewer's grey slice

public slots:
    void slotBrushSizeChanged(int size);
    void slotCircularBrush();
    void slotSquareBrush();
    /// state  a Qt::CheckState
    void slotHideBrush(int state);

protected:
    QCursor makeCursor() const override;

private:
    bool hasPosition() const { return lastPos.x >= kSomewhere; }
    bool currentMaterialOnly() const;
    McBox2i penBox(const McVec2i& centre, int width, int height) const;
    McBox2i startRepaint(GiFrameBuffer& frameBuffer);
    void keepUpWithButton(const McEvent& event);
    void openStep();
    void fillAt(GiFrameBuffer& frameBuffer, const McEvent& event);
    void press(GiFrameBuffer& frameBuffer, const McEvent& event);
    void drag(GiFrameBuffer& frameBuffer, const McEvent& event);
    void release(GiFrameBuffer& frameBuffer, McEvent& event, McBox2i& repaint);
    void drawStroke(GiFrameBuffer& frameBuffer, const McVec2i& from, const McVec2i& to, int set);
    void stampAlong(GiFrameBuffer& frameBuffer, const McBox2i& box, std::span<const McVec2i> places, int set);
    void repaintViewers(const McBox2i& changed);
    void renderPolygon(GiFrameBuffer& frameBuffer) const;

    static constexpr int kNowhere = -9999, kSomewhere = -9998;
    static constexpr int kLeastWeight = 128; // of the mask; heavier pixels count

    int drawing = 0;        // the left button is down
    bool isPressed = false; // and went down on this tool, be it beside the image
    // The undo step of the stroke, and what it holds; null: none yet.
    GiGestureStep strokeStep;
    int strokeOrientation = 0, strokeSlice = 0;
    int brushWidth = 25, brushHeight = 25;
    McVec2i mousePos{kNowhere, kNowhere};
    McVec2i lastPos{kNowhere, kNowhere}; // of the event before
    int lastWidth = 0, lastHeight = 0;   // size of the outline that is on screen
    GiViewer* viewer = nullptr;          // the one with the pointer and the outline
    McDArray<McVec2i> points;            // corners of the polygon being clicked, zoomed coordinates
    QPointer<QCheckBox> currentMaterialBox;
};
