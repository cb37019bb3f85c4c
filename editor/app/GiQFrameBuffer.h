#pragma once

#include "display/GiFrameBuffer.h"
#include "mc/McEvent.h"

#include <QCursor>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>

class QMouseEvent;
class QPainter;

/// The frame buffer as a widget: shows the picture, centred in grey where it is smaller than the widget,
/// with a title and a scroll bar through the slices over it, and turns Qt's events into those of the
/// core.
///
/// Besides the coordinates of GiFrameBuffer there are screen coordinates: device-independent pixels of
/// the widget. On a finer screen each becomes a block of device pixels, drawn crisp.
///
/// A buffer that is not ready (no size yet) paints the background and ignores mouse and keys.
class GiQFrameBuffer : public QWidget, public GiFrameBuffer
{
    Q_OBJECT

public:
    /// A size below 1 leaves the buffer not ready.
    /// throws  McMemoryException
    GiQFrameBuffer(const char* name, QWidget* parent, int width, int height, int offsetX, int offsetY);
    ~GiQFrameBuffer() override;

    using GiFrameBuffer::render;
    using QWidget::resize;
    using QWidget::window;

    /// As in the base; then the picture fills the widget as far as the slice does, and what was in its
    /// middle stays there. A zero component leaves the buffer not ready.
    void resize(const McVec2i& size, const int* columns, const int* rows) override;
    /// Limited to the zoomed size.
    void setMemSize(const McVec2i& size) override;
    /// Scrolls, limited so that the window stays within the slice. Pixels that stay in view are moved,
    /// only the rest is drawn.
    void setOffset(const McVec2i& p) override;
    /// Repaints at once, if the widget is visible.
    void paste() override;
    void paste(const McBox2i& box) override;
    /// While the pointer is over the scroll bar the cursor shows that; the new one follows afterwards.
    void setCursor(const QCursor& shape) override;
    McVec2i windowSize() const override { return widgetSize; }

    /// Screen to zoomed coordinates and back, each the inverse of the other.
    McVec2i translatePosFromScreen(const McVec2i& p) const;
    McVec2i translatePosToScreen(const McVec2i& p) const;
    /// What is added to a position on the unflipped screen to get zoomed coordinates: along an axis on which
    /// the picture is centred, the negative margin; on others the scroll offset.
    McVec2i getDrawingAreaOffset() const;
    bool isReady() const { return ready; }
    /// The wheel has come to rest, if it was turned lately; otherwise that is found out by waiting.
    void endWheelBrowsing();

    /// All buffers that exist.
    static McDArray<GiQFrameBuffer*> allFrameBuffers;
    /// Added to slice numbers that are shown: the script variable VOREL_INDEX_BASE, read by each constructor.
    static long sSliceNumBase;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    /// The release of a key that leafs goes elsewhere: it ends here.
    void focusOutEvent(QFocusEvent* event) override;
    /// Tab is a key of the editor and does not move the focus.
    bool focusNextPrevChild(bool) override { return false; }

private slots:
    /// The wheel has come to rest: the slice is shown at full quality.
    void wheelBrowsingStopped();

private:
    void createBuffer(const McVec2i& size);
    void destroyBuffer();
    McVec2i withinSlice(const McVec2i& p) const;
    void fitMemory();
    void renderUncovered(const McVec2i& moved);
    McVec2i margin() const;
    QRect screenRect(const McBox2i& box) const;
    int numSlices() const;
    int slice() const;

    void paintPicture(QPainter& painter, const QRect& part) const;
    void paintTitle(QPainter& painter) const;
    void paintScrollBar(QPainter& painter) const;
    const char* orientationName() const;

    enum class BarPart
    {
        kNone,
        kArrow,
        kTick
    };
    int barLength() const;
    BarPart barPartAt(const QPoint& p) const;
    bool pressOnBar(const QPoint& p);
    int draggedSlice(const QPoint& p) const;
    bool hoverOverBar(const QPoint& p);
    void leaveBar();

    void fillPosition(McEvent& event, const QPoint& p, Qt::KeyboardModifiers modifiers) const;
    void fillMotion(const QPoint& p, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
    void translateKeyEvent(const QKeyEvent& event, int released);
    void deliverButton(const QMouseEvent& event, bool pressed);
    void deliver(McEvent& event);

    McMouseButtonEvent buttonEvent;
    McMotionEvent motionEvent;
    McKeyboardEvent keyEvent;
    McLeaveWindowEvent leaveWindowEvent;
    std::unique_ptr<QImage> image; // the memory of the base
    McVec2i widgetSize;            // as the last resize event told it
    bool ready;
    bool overScrollBar = false; // the cursor tells of arrows or tick
    bool draggingScrollBar = false;
    int grabOffset = 0; // from the tick to the pointer, while it is dragged
    QCursor savedCursor;
    Qt::MouseButtons heldButtons; // at the last event of the mouse
    QTimer wheelTimer;
    int wheelRemainder = 0; // of a step, in eighths of a degree
};
