#include "app/GiViewEvents.h"

#include "app/GiQ.h"
#include "app/GiQFrameBuffer.h"
#include "display/GiViewer.h"

#include <QAction>
#include <QCoreApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>

#include <tcl.h>

namespace {

Qt::MouseButtons theHeldButtons; // of the one mouse that scripts have

/// The words of one call, and the viewer that they are for.
struct Call
{
    GiQ& gi;
    GiViewer& viewer;
    GiQFrameBuffer& buffer;
    int count;
    const char* const* words;
    std::string& error;

    bool fail(const std::string& text) const
    {
        error = text;
        return false;
    }
    bool number(int i, int& value) const
    {
        if (i >= count) return fail(std::string("event ") + words[0] + " needs a number more.");
        if (Tcl_GetInt(nullptr, words[i], &value) == TCL_OK) return true;
        return fail(std::string("\"") + words[i] + "\" is no whole number.");
    }
    bool isInWindow(const QPoint& p) const { return buffer.rect().contains(p); }
};

/// Buttons and modifiers that follow the fixed words of an event, in any order.
struct Extras
{
    Qt::MouseButton button = Qt::NoButton;
    Qt::KeyboardModifiers modifiers;

    bool read(const Call& call, int from, bool mayHaveButton)
    {
        for (int i = from; i < call.count; ++i) {
            const std::string word = call.words[i];
            const Qt::MouseButton named = !mayHaveButton     ? Qt::NoButton
                                          : word == "left"   ? Qt::LeftButton
                                          : word == "middle" ? Qt::MiddleButton
                                          : word == "right"  ? Qt::RightButton
                                                             : Qt::NoButton;
            if (named != Qt::NoButton)
                button = named;
            else if (word == "shift")
                modifiers |= Qt::ShiftModifier;
            else if (word == "ctrl")
                modifiers |= Qt::ControlModifier;
            else if (word == "alt")
                modifiers |= Qt::AltModifier;
            else
                return call.fail("\"" + word + "\" is unknown; use " +
                                 (mayHaveButton ? "left, middle, right, " : "") + "shift, ctrl or alt.");
        }
        return true;
    }
};

/// Middle of a data pixel along one axis, in zoomed coordinates; outside the slice as if its outermost pixels
/// went on.
int centre(int i, const McDArray<int>& starts, const McDArray<int>& sizes)
{
    if (starts.isEmpty()) return 0;
    const int edge = std::clamp(i, 0, starts.size() - 1);
    return starts[edge] + sizes[edge] / 2 + (i - edge) * std::max(1, sizes[edge]);
}

QPoint screenPosition(const GiQFrameBuffer& buffer, int i, int j)
{
    const McVec2i p = buffer.translatePosToScreen(McVec2i(centre(i, buffer.zoomedCoordsX, buffer.replicX),
                                                          centre(j, buffer.zoomedCoordsY, buffer.replicY)));
    return QPoint(p.x, p.y);
}

bool sendMouse(const Call& call)
{
    const std::string kind = call.words[0];
    int i, j;
    Extras extras;
    if (!call.number(1, i) || !call.number(2, j) || !extras.read(call, 3, true)) return false;
    const QPoint p = screenPosition(call.buffer, i, j);
    const bool pressed = kind == "press", moved = kind == "move";
    if (pressed && !call.isInWindow(p))
        return call.fail("pixel " + std::to_string(i) + " " + std::to_string(j) +
                         " is outside the viewer's window.");

    Qt::MouseButton button = extras.button;
    if (button == Qt::NoButton && !moved) button = Qt::LeftButton;
    if (pressed) theHeldButtons |= button;
    if (kind == "release") theHeldButtons &= ~Qt::MouseButtons(button);
    const Qt::MouseButtons held = moved ? theHeldButtons | button : theHeldButtons;
    const QPoint global = call.buffer.mapToGlobal(p);
    QCursor::setPos(global); // panning and keys ask where the pointer is
    if (pressed) call.buffer.setFocus(Qt::MouseFocusReason);
    QMouseEvent event(moved     ? QEvent::MouseMove
                      : pressed ? QEvent::MouseButtonPress
                                : QEvent::MouseButtonRelease,
                      QPointF(p), QPointF(global), moved ? Qt::NoButton : button, held, extras.modifiers);
    QCoreApplication::sendEvent(&call.buffer, &event);
    return true;
}

struct NamedKey
{
    const char* name;
    int key;
    const char* text;
};

constexpr NamedKey kNamedKeys[] = {
    {"Left", Qt::Key_Left, ""},
    {"Right", Qt::Key_Right, ""},
    {"Up", Qt::Key_Up, ""},
    {"Down", Qt::Key_Down, ""},
    {"PageUp", Qt::Key_PageUp, ""},
    {"PageDown", Qt::Key_PageDown, ""},
    {"Home", Qt::Key_Home, ""},
    {"End", Qt::Key_End, ""},
    {"Return", Qt::Key_Return, "\r"},
    {"Escape", Qt::Key_Escape, "\x1b"},
    {"Tab", Qt::Key_Tab, "\t"},
    {"Backspace", Qt::Key_Backspace, "\b"},
    {"Delete", Qt::Key_Delete, "\x7f"},
    {"space", Qt::Key_Space, " "},
    {"Shift", Qt::Key_Shift, ""},
    {"Control", Qt::Key_Control, ""},
    {"Alt", Qt::Key_Alt, ""},
};

/// Number of a function key, as in "F12"; 0 for another name.
int functionKey(const std::string& name)
{
    constexpr int kMost = 12;
    for (int i = 1; i <= kMost; ++i)
        if (name == "F" + std::to_string(i)) return i;
    return 0;
}

/// The text of a character as a keyboard gives it: Control makes control characters of letters.
QString typed(QChar c, Qt::KeyboardModifiers modifiers)
{
    const char16_t upper = c.toUpper().unicode();
    if (modifiers.testFlag(Qt::ControlModifier) && upper >= u'@' && upper <= u'_')
        return QChar(static_cast<char16_t>(upper & 31));
    return modifiers.testFlag(Qt::ShiftModifier) ? c.toUpper() : c;
}

bool keyOf(const std::string& name, Qt::KeyboardModifiers modifiers, int& key, QString& text)
{
    for (const NamedKey& named : kNamedKeys) {
        if (name != named.name) continue;
        const bool backtab = named.key == Qt::Key_Tab && modifiers.testFlag(Qt::ShiftModifier);
        key = backtab ? Qt::Key_Backtab : named.key;
        text = QString::fromLatin1(named.text);
        return true;
    }
    if (const int number = functionKey(name)) {
        key = Qt::Key_F1 + number - 1;
        return true;
    }
    const QString character = QString::fromStdString(name);
    if (character.size() != 1) return false;
    key = character[0].toUpper().unicode();
    text = typed(character[0], modifiers);
    return true;
}

/// What the window does with a key before any widget sees it: true if an enabled entry of its menus has it.
bool triggerShortcut(const QList<QAction*>& entries, const QKeySequence& pressed)
{
    for (QAction* entry : entries) {
        if (entry->menu() && triggerShortcut(entry->menu()->actions(), pressed)) return true;
        if (entry->menu() || !entry->isEnabled() || !entry->shortcuts().contains(pressed)) continue;
        entry->trigger();
        return true;
    }
    return false;
}

bool isMenuKey(const GiQFrameBuffer& buffer, int key, Qt::KeyboardModifiers modifiers)
{
    const auto* bar = buffer.window()->findChild<QMenuBar*>();
    return bar && triggerShortcut(bar->actions(), QKeyCombination(modifiers, static_cast<Qt::Key>(key)));
}

bool sendKey(const Call& call)
{
    if (call.count < 2) return call.fail("event key needs the name of a key.");
    Extras extras;
    if (!extras.read(call, 2, false)) return false;
    int key;
    QString text;
    if (!keyOf(call.words[1], extras.modifiers, key, text))
        return call.fail(std::string("there is no key \"") + call.words[1] + "\".");
    // Keys go where the focus is, and a person who types into a viewer has clicked it before.
    call.gi.activateViewer(&call.viewer);
    call.buffer.setFocus(Qt::OtherFocusReason);
    QKeyEvent offer(QEvent::ShortcutOverride, key, extras.modifiers, text);
    offer.ignore();
    QCoreApplication::sendEvent(&call.buffer, &offer);
    if (!offer.isAccepted() && isMenuKey(call.buffer, key, extras.modifiers)) return true;
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, extras.modifiers, text);
        QCoreApplication::sendEvent(&call.buffer, &event);
    }
    return true;
}

bool sendWheel(const Call& call)
{
    int delta;
    Extras extras;
    if (!call.number(1, delta) || !extras.read(call, 2, false)) return false;
    QPoint p = call.buffer.mapFromGlobal(QCursor::pos());
    if (!call.isInWindow(p)) p = call.buffer.rect().center();
    QWheelEvent event(QPointF(p), QPointF(call.buffer.mapToGlobal(p)), QPoint(), QPoint(0, delta),
                      theHeldButtons, extras.modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&call.buffer, &event);
    call.buffer.endWheelBrowsing(); // a script does not wait for the wheel to rest
    return true;
}

bool sendLeave(const Call& call)
{
    if (call.count > 1) return call.fail("event leave takes no more words.");
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&call.buffer, &event);
    return true;
}

struct Kind
{
    const char* name;
    bool (*send)(const Call&);
};

constexpr Kind kKinds[] = {{"press", sendMouse}, {"release", sendMouse}, {"move", sendMouse},
                           {"key", sendKey},     {"wheel", sendWheel},   {"leave", sendLeave}};

} // namespace

bool giSendViewEvent(GiQ& gi, GiViewer& viewer, int count, const char* const* words, std::string& error)
{
    error = "use event press, release, move, key, wheel or leave.";
    auto* buffer = qobject_cast<GiQFrameBuffer*>(viewer.getWidget());
    if (!buffer) {
        error = "this viewer has no window.";
        return false;
    }
    for (const Kind& kind : kKinds)
        if (count > 0 && words[0] == std::string(kind.name))
            return kind.send({gi, viewer, *buffer, count, words, error});
    return false;
}
