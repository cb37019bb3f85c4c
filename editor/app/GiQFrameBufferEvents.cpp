// Frame buffer widget: from Qt's events to those of the core, and what wheel and scroll bar do themselves.

#include "app/GiQFrameBuffer.h"

#include "core/Gi.h"
#include "display/GiViewer.h"
#include "tools/GiTool.h"
#include "tools/giGuarded.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kBarHeight = 12;  // rows at the lower edge that belong to the scroll bar
constexpr int kArrowWidth = 13; // columns at either end of it
constexpr int kBarStart = 15;   // where its line begins
constexpr int kWheelStep = 120; // one notch, in eighths of a degree
constexpr int kShiftedSteps = 5;

/// The end of what an event leads to.
template <class Act>
void guarded(const Act& act)
{
    giGuarded(GiReport::kConsole, act);
}

/// The pixel that a position lies in.
QPoint pixelOf(const QPointF& p)
{
    return QPoint(static_cast<int>(std::floor(p.x())), static_cast<int>(std::floor(p.y())));
}

int buttonNumber(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return 1;
    case Qt::MiddleButton:
        return 2;
    case Qt::RightButton:
        return 3;
    default:
        return 0;
    }
}

void setButtons(McEvent& event, Qt::MouseButtons buttons)
{
    event.left = buttons.testFlag(Qt::LeftButton);
    event.middle = buttons.testFlag(Qt::MiddleButton);
    event.right = buttons.testFlag(Qt::RightButton);
}

struct NamedKey
{
    int qtKey;
    int code;
};

constexpr NamedKey kNamedKeys[] = {
    {Qt::Key_Escape, McKeyboardEvent::kEscape},
    {Qt::Key_Tab, McKeyboardEvent::kTab},
    {Qt::Key_Backtab, McKeyboardEvent::kTab}, // what Qt makes of Shift and Tab
    {Qt::Key_Backspace, McKeyboardEvent::kBackspace},
    {Qt::Key_Return, McKeyboardEvent::kReturn},
    {Qt::Key_Delete, McKeyboardEvent::kDelete},
    {Qt::Key_Home, McKeyboardEvent::kHome},
    {Qt::Key_End, McKeyboardEvent::kEnd},
    {Qt::Key_Left, McKeyboardEvent::kLeft},
    {Qt::Key_Up, McKeyboardEvent::kUp},
    {Qt::Key_Right, McKeyboardEvent::kRight},
    {Qt::Key_Down, McKeyboardEvent::kDown},
    {Qt::Key_PageUp, McKeyboardEvent::kPageUp},
    {Qt::Key_PageDown, McKeyboardEvent::kPageDown},
    {Qt::Key_Shift, McKeyboardEvent::kShift},
    {Qt::Key_Control, McKeyboardEvent::kControlLeft},
    {Qt::Key_Alt, McKeyboardEvent::kAltLeft},
};

int keyCode(const QKeyEvent& event)
{
    for (const NamedKey& key : kNamedKeys)
        if (key.qtKey == event.key()) return key.code;
    const QByteArray text = event.text().toLocal8Bit();
    if (text.isEmpty()) return 0;
    const int code = static_cast<unsigned char>(text[0]);
    return code >= 'A' && code <= 'Z' ? code + 32 : code;
}

} // namespace

void GiQFrameBuffer::deliver(McEvent& event)
{
    if (ready) guarded([&] { GiFrameBuffer::handleEvent(&event); });
}

void GiQFrameBuffer::fillPosition(McEvent& event, const QPoint& p, Qt::KeyboardModifiers modifiers) const
{
    event.shift = modifiers.testFlag(Qt::ShiftModifier);
    event.ctrl = modifiers.testFlag(Qt::ControlModifier);
    event.alt = modifiers.testFlag(Qt::AltModifier);
    const McVec2i q = translatePosFromScreen(McVec2i(p.x(), p.y()));
    event.x = q.x;
    event.y = q.y;
}

void GiQFrameBuffer::fillMotion(const QPoint& p, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    fillPosition(motionEvent, p, modifiers);
    setButtons(motionEvent, buttons);
}

void GiQFrameBuffer::deliverButton(const QMouseEvent& event, bool pressed)
{
    fillPosition(buttonEvent, pixelOf(event.position()), event.modifiers());
    setButtons(buttonEvent, pressed ? Qt::MouseButtons(event.button()) : Qt::NoButton);
    buttonEvent.pressed = pressed;
    buttonEvent.button = buttonNumber(event.button());
    deliver(buttonEvent);
}

int GiQFrameBuffer::barLength() const
{
    return std::max(1, widgetSize.x - 2 * kBarStart);
}

GiQFrameBuffer::BarPart GiQFrameBuffer::barPartAt(const QPoint& p) const
{
    constexpr int kBefore = 5, kBehind = 4; // columns beside the tick that belong to it
    const int slices = numSlices();
    if (slices < 2 || p.y() < widgetSize.y - kBarHeight) return BarPart::kNone;
    if (p.x() < kArrowWidth || p.x() >= widgetSize.x - kArrowWidth) return BarPart::kArrow;
    const int tick = kBarStart + barLength() * slice() / (slices - 1);
    return p.x() >= tick - kBefore && p.x() <= tick + kBehind ? BarPart::kTick : BarPart::kNone;
}

/// True if arrows or tick took a press of the left button.
bool GiQFrameBuffer::pressOnBar(const QPoint& p)
{
    if (!viewer) return false;
    const bool back = p.x() < kArrowWidth, forth = p.x() >= widgetSize.x - kArrowWidth;
    if (p.y() >= widgetSize.y - kBarHeight && (back || forth)) {
        if (forth && !back)
            viewer->setSlice(slice() + 1, true);
        else if (slice() > 0)
            viewer->setSlice(slice() - 1, true);
        return true;
    }
    if (draggingScrollBar || !overScrollBar || numSlices() < 2) return false;
    // kept: the tick is painted with one slice less in the divisor. It jumps by less than its share of a
    // slice when it is grabbed, and stays under the hand from then on.
    grabOffset = p.x() - (barLength() * slice() / numSlices() + kBarStart);
    draggingScrollBar = true;
    setBrowsing(true);
    return true;
}

int GiQFrameBuffer::draggedSlice(const QPoint& p) const
{
    const int place = (p.x() - grabOffset - kBarStart) * (numSlices() - 1);
    return std::max(0, static_cast<int>(static_cast<float>(place) / static_cast<float>(barLength()) + 0.5f));
}

/// True if the pointer is over arrows or tick; cursor and brush outline follow.
bool GiQFrameBuffer::hoverOverBar(const QPoint& p)
{
    const BarPart part = barPartAt(p);
    if (part == BarPart::kNone) {
        // kept: along the bar the pointer stays the one of the part that it touched last, and a press takes
        // the tick, so that a hand which slips off the narrow tick does not mark voxels instead.
        if (p.y() < widgetSize.y - kBarHeight) leaveBar();
        return false;
    }
    if (!overScrollBar) savedCursor = cursor();
    overScrollBar = true;
    QWidget::setCursor(part == BarPart::kArrow ? Qt::ArrowCursor : Qt::SizeHorCursor);
    if (gi && gi->currentTool) gi->currentTool->eventTakenElsewhere(this);
    return true;
}

void GiQFrameBuffer::leaveBar()
{
    if (!overScrollBar) return;
    overScrollBar = false;
    QWidget::setCursor(savedCursor);
}

void GiQFrameBuffer::mousePressEvent(QMouseEvent* event)
{
    heldButtons = event->buttons();
    if (!ready) return;
    guarded([&] {
        if (event->button() == Qt::LeftButton && pressOnBar(pixelOf(event->position()))) return;
        deliverButton(*event, true);
    });
}

void GiQFrameBuffer::mouseReleaseEvent(QMouseEvent* event)
{
    heldButtons = event->buttons();
    if (!ready) return;
    if (!draggingScrollBar) {
        deliverButton(*event, false);
        return;
    }
    const int target = draggedSlice(pixelOf(event->position()));
    draggingScrollBar = false;
    setBrowsing(false);
    if (viewer) guarded([&] { viewer->setSlice(target, true); });
}

void GiQFrameBuffer::mouseMoveEvent(QMouseEvent* event)
{
    heldButtons = event->buttons();
    if (!ready) return;
    const QPoint p = pixelOf(event->position());
    guarded([&] {
        if (draggingScrollBar && heldButtons.testFlag(Qt::LeftButton)) {
            if (viewer) viewer->setSlice(draggedSlice(p), true);
            return;
        }
        if (heldButtons == Qt::NoButton && hoverOverBar(p)) return;
        fillMotion(p, heldButtons, event->modifiers());
        deliver(motionEvent);
    });
}

void GiQFrameBuffer::leaveEvent(QEvent*)
{
    leaveBar();
    deliver(leaveWindowEvent);
}

void GiQFrameBuffer::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    const bool byMouse = draggingScrollBar || wheelTimer.isActive();
    if (isBrowsing() && !byMouse) wheelBrowsingStopped();
}

void GiQFrameBuffer::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (!ready || !viewer) return;
    const int delta = event->angleDelta().y();
    if ((delta > 0 && wheelRemainder < 0) || (delta < 0 && wheelRemainder > 0)) wheelRemainder = 0;
    wheelRemainder += delta;
    const int steps = wheelRemainder / kWheelStep;
    wheelRemainder -= steps * kWheelStep;
    if (steps == 0) return;
    heldButtons = event->buttons();
    guarded([&] {
        setBrowsing(true);
        const bool shifted = event->modifiers().testFlag(Qt::ShiftModifier);
        viewer->setSlice(slice() + (shifted ? kShiftedSteps * steps : steps), true);
        wheelTimer.start();
        fillMotion(pixelOf(event->position()), event->buttons(), event->modifiers());
        deliver(motionEvent);
    });
}

void GiQFrameBuffer::endWheelBrowsing()
{
    if (wheelTimer.isActive()) wheelBrowsingStopped();
}

void GiQFrameBuffer::wheelBrowsingStopped()
{
    wheelTimer.stop();
    setBrowsing(false);
    if (viewer) guarded([&] { viewer->setSlice(slice(), true); });
}

void GiQFrameBuffer::translateKeyEvent(const QKeyEvent& event, int released)
{
    fillPosition(keyEvent, mapFromGlobal(QCursor::pos()), event.modifiers());
    setButtons(keyEvent, heldButtons);
    keyEvent.count = 1;
    keyEvent.key = keyCode(event);
    keyEvent.released = released;
    keyEvent.autoRepeat = event.isAutoRepeat();
}

bool GiQFrameBuffer::event(QEvent* event)
{
    // Over a slice the key saves the labels that are edited, whatever the window would save.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Save)) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void GiQFrameBuffer::keyPressEvent(QKeyEvent* event)
{
    translateKeyEvent(*event, 0);
    deliver(keyEvent);
}

void GiQFrameBuffer::keyReleaseEvent(QKeyEvent* event)
{
    translateKeyEvent(*event, 1);
    deliver(keyEvent);
}

void GiQFrameBuffer::resizeEvent(QResizeEvent* event)
{
    widgetSize = McVec2i(std::max(1, event->size().width()), std::max(1, event->size().height()));
    ready = event->size().width() > 0 && event->size().height() > 0;
    guarded([&] {
        fitMemory();
        if (numSlices() == 0) clear();
        render(nullptr);
    });
    // Not painted at once: the window around is still being laid out, and what it has yet to paint would keep
    // pixels of the former layout.
    update();
}
