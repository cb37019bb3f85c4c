#pragma once

#include "mc/McBox.h"
#include "mc/McVec.h"
#include "tools/GiGestureStep.h"
#include "tools/GiTool.h"
#include "tools/mcBlowCurve.h"

#include <QLineEdit>
#include <QObject>
#include <QPointer>

#include <memory>

class GiViewer;
class McBlowRegion;

/// Blows up a closed curve from the pixel that is pressed: the farther the pointer is dragged from there, the
/// longer the curve has grown. It grows fast where the displayed slice is flat and stops at edges. The curve
/// that is shown at the release becomes the selection.
///
/// A gesture belongs to the slice in which it began. It ends without a selection when another slice or data
/// set or another tool comes in between.
class GiBlowTool : public QObject, public GiTool
{
    Q_OBJECT

public:
    static constexpr int kIndex = 5; // in Gi's list of tools

    explicit GiBlowTool(Gi* owner);
    ~GiBlowTool() override;

    const char* getIconName() const override { return "SegBlowerIcon.png"; }
    void init() override;
    void deselect(GiFrameBuffer* frameBuffer) override;
    void render(GiFrameBuffer* frameBuffer, const McBox2i& box) override;
    int handleEvent(GiFrameBuffer* frameBuffer, McEvent* event) override;
    /// Of the curve, in image pixels.
    McBox2i getBoundingBox() override;
    /// A gesture ends where the button is let go, also on a line of the cross hair.
    bool isDragging() const override { return dragging; }
    void createWidget(QWidget* parent) override;

protected:
    QCursor makeCursor() const override;

private:
    bool isOnItsSlice() const;
    const McBlowCurve* shownCurve() const;
    void getParams();
    int follow(GiFrameBuffer& frameBuffer, const McEvent& event);
    void press(GiFrameBuffer& frameBuffer, const McEvent& event);
    void drag(GiFrameBuffer& frameBuffer, const McEvent& event);
    void keepUpWithZoom(const GiFrameBuffer& frameBuffer);
    void redraw(GiFrameBuffer& frameBuffer);
    void handleMouseUp();
    void abandon();

    std::unique_ptr<McBlowRegion> region; // of the last gesture
    int selectionMode = 0;                // a GiSelectMode
    McBox2i lastBox;                      // image pixels of the curve that is on screen
    QPointer<QLineEdit> gaussWidthEdit, toleranceEdit;
    McVec2i pressPixel; // of the slice
    McVec2i pressPos;   // zoomed coordinates, where the slice has pressZoom of them
    McVec2i pressZoom;
    float dragDistance = 0; // screen pixels from the press to the pointer
    bool dragging = false;
    int timeStep = 0;
    bool showCurve = true;
    int tolerance = 35;
    int gaussWidth = 4;
    GiViewer* viewer = nullptr; // of the gesture, with its slice; not to be used before isOnItsSlice()
    int orientation = 0, slice = 0;
    GiGestureStep undoStep; // that the press has opened
};
