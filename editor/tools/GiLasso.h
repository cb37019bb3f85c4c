#pragma once

#include "core/GiSelection2D.h"
#include "mc/McBox.h"
#include "mc/McDArray.h"
#include "mc/McVec.h"
#include "tools/GiGestureStep.h"
#include "tools/GiTool.h"
#include "tools/IScissors.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QObject>
#include <QPointer>

class GiGreyImage;
class GiScreenOutline;
class GiViewer;

/// Selects what lies inside an outline.
///
/// In a slice viewer the outline is drawn by hand, clicked corner by corner, an ellipse, a rectangle, or a
/// path that clings to edges or bright lines of the picture (auto trace). It ends as a polygon in pixel
/// coordinates. Shift adds to the selection, Control takes away, neither replaces it. Over the 3D view the
/// outline takes every voxel that is seen inside or outside of it.
///
/// A gesture belongs to the viewer where it began: other viewers swallow what reaches them meanwhile. The
/// outline keeps to its pixels when the picture is zoomed or moved. It goes, and selects nothing, at Escape,
/// when the tool, the orientation or the data change, or when memory runs out under it.
class GiLasso : public QObject, public GiTool
{
    Q_OBJECT

public:
    static constexpr int kIndex = 2; // in Gi's list of tools

    explicit GiLasso(Gi* owner);
    ~GiLasso() override;

    const char* getIconName() const override { return "SegLassoIcon.png"; }
    void render(GiFrameBuffer* buffer, const McBox2i& box) override;
    int handleEvent(GiFrameBuffer* buffer, McEvent* event) override;
    /// Around the outline drawn or clicked so far, in zoomed coordinates; empty below two points.
    McBox2i getBoundingBox() override;
    bool isDragging() const override;
    void createWidget(QWidget* parent) override;
    void adaptToForeignWindow() override;
    void init() override;
    void deselect(GiFrameBuffer* buffer) override;

    /// Selects by an outline over the 3D view, as "3D Mode", the keys held at its end and masking say. One
    /// undo step. throws  McMemoryException if the undo step finds no memory; nothing has changed then
    void viewerSelect(GiScreenOutline& outline);

    /// Not 0: tracing follows bright lines unless the user asks for edges. Nothing in the editor sets it; it
    /// is there for a host, before the panel is made.
    static int neuroTraceMode;

public slots:
    /// Takes over the state of the boxes "Auto trace" and "Trace edges". What is fixed of an outline under
    /// way stays: it goes on with the new costs, or by hand. Without memory for the costs there is a message,
    /// and tracing is off.
    ///
    /// on  whether to trace, while there is no panel
    void setAutoTrace(bool on);
    /// A button of the row "2D Shape:" was clicked. A gesture under way goes on.
    void setDrawingMode(QAbstractButton* button);
    /// A button of the row "3D Mode:" was clicked.
    void setInsideOutMode(QAbstractButton* button);

protected:
    QCursor makeCursor() const override;

private:
    enum DrawingMode : int
    {
        kFreehand = 0,
        kEllipse = 1,
        kRectangle = 2
    };

    /// What an outline's pixels mean: with another orientation or size they mean something else.
    struct View
    {
        int orientation = 0;
        McVec2i size;

        friend bool operator==(const View&, const View&) = default;
    };
    static View viewOf(const GiFrameBuffer& buffer);

    // Freehand and clicked corners
    int handleEventFreehand(GiFrameBuffer& buffer, McEvent& event);
    void addCorner(GiFrameBuffer& buffer, const McEvent& event);
    void movePointer(GiFrameBuffer& buffer, const McEvent& event);
    void appendPoint(const GiFrameBuffer& buffer, const McVec2i& at);
    void finishInteraction(GiFrameBuffer& buffer);

    // Auto trace
    bool isTracing() const { return scissors.currentCost != -1; }
    bool traceEdges() const;
    static McVec2i tracePosition(const GiFrameBuffer& buffer, const McVec2i& pixel);
    int handleEventAutoTrace(GiFrameBuffer& buffer, McEvent& event);
    bool initAutoTracing(GiViewer& viewer);
    bool hasCostsOf(const GiViewer& viewer, const GiGreyImage& image) const;
    void goOnWithTrace();
    void stopTracing();
    void startAutoTracing(GiFrameBuffer& buffer, const McEvent& event, const McVec2i& pixel);
    void updateAutoTracing(GiFrameBuffer& buffer, const McVec2i& pixel);
    McBox2i changeOfTrace(const McVec2i& end);
    void extendByWay(McBox2i& box, McVec2i from, const McVec2i& to);
    McBox2i startOfTrace(const McVec2i& first) const;
    McVec2i traceEndAt(const McVec2i& pixel);
    void appendAutoTraceToPath(const GiFrameBuffer& buffer, const McVec2i& pixel);
    void resetAutoTracing(GiFrameBuffer& buffer, const McEvent& event, const McVec2i& pixel);
    void stopAutoTracing(GiFrameBuffer& buffer, const McEvent& event, const McVec2i& pixel);
    void renderAutoTrace(GiFrameBuffer& buffer);

    // Ellipse and rectangle
    int handleEventEllipse(GiFrameBuffer& buffer, McEvent& event);
    void startEllipse(GiFrameBuffer& buffer, const McVec2i& pixel);
    void moveEllipse(const McVec2i& pixel);
    void stopEllipse(const McVec2i& pixel, GiSelectMode mode);
    int handleEventRectangle(GiFrameBuffer& buffer, McEvent& event);
    void startRectangle(GiFrameBuffer& buffer, const McVec2i& pixel);
    void moveRectangle(const McVec2i& pixel);
    void stopRectangle(const McVec2i& pixel, GiSelectMode mode);
    void beginShape(GiFrameBuffer& buffer, const McVec2i& pixel);
    McDArray<McVec2f> shapeOnScreen() const;
    void moveShape(const McVec2i& pixel);
    void selectShape(const McDArray<McVec2f>& outline, GiSelectMode mode);
    void renderShape(GiFrameBuffer& buffer) const;

    // All of them
    static GiSelectMode modeOf(const McEvent& event);
    void keepUpWithView();
    void keepUpWithZoom(const GiFrameBuffer& buffer);
    void selectOutline(GiFrameBuffer& buffer, const McDArray<McVec2f>& outline, GiSelectMode mode);
    void showSelection(GiFrameBuffer& buffer);
    void saveUndo(GiViewer& viewer);
    void abandon();
    bool isGone(const GiFrameBuffer* buffer) const;
    void enableBoxes();

    GiSelectMode selectionMode = kSelectAdd; // of the outline, from the keys at its start
    McVec2i currentPos;                      // the pointer, zoomed coordinates
    McDArray<McVec2i> path;                  // the outline so far, zoomed coordinates
    McDArray<McVec2i> pathPixels;            // the same in pixels of the slice
    GiFrameBuffer* frameBuffer = nullptr;    // where outline or trace began; null while there is none
    View pathView;
    McVec2i pathZoom; // zoomed size that `path` is for
    // The undo step of the outline, and its slice: what goes on meanwhile can take it away.
    GiGestureStep undoStep;
    int undoSlice = 0;

    bool autoTrace = false;
    int costSlice = -1; // the slice whose costs the scissors have; -1: to be made anew
    float costWindow[2] = {0, 0};
    McVec2i costSize;
    int costOrientation = 0;
    const void* costData = nullptr;    // the image's memory at that moment; only compared
    McDArray<unsigned char> costImage; // the scissors read it while they search; the viewer's own may go

    DrawingMode drawingMode = kFreehand;
    int insideOutMode = 0;                // 3D: 0 selects inside, 1 outside
    McVec2i ellipseStart, rectangleStart; // pixels of the slice
    bool ellipseActive = false, rectangleActive = false;
    bool ellipseFromCenter = false, rectangleFromCenter = false;
    McVec2i shapeEnd;                     // the pixel under the pointer
    GiFrameBuffer* shapeBuffer = nullptr; // where the ellipse or rectangle is dragged
    View shapeView;
    McBox2i shapeBox; // what it covers on screen

    IScissors scissors;
    McVec2i anchor; // the seed of the trace
    bool hasTraceEnd = false;
    McVec2i traceEnd;            // the end of the trace that is on screen
    McDArray<McVec2i> tracePath; // from a pixel to the seed; kept for its memory

    QPointer<QAbstractButton> ellipseButton, rectangleButton, outsideButton;
    QPointer<QCheckBox> autoTraceBox, traceEdgesBox;
};
