#pragma once

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

/// Mouse and keyboard of these tests: the only maker of Qt events. Moves carry the buttons that are held.
/// Positions are those of the widget.
class Hand
{
public:
    explicit Hand(QWidget* target, Qt::KeyboardModifiers held = {}) : widget(target), modifiers(held) {}

    Hand& press(int x, int y, Qt::MouseButton button = Qt::LeftButton)
    {
        buttons |= button;
        return mouse(QEvent::MouseButtonPress, x, y, button);
    }
    Hand& release(int x, int y, Qt::MouseButton button = Qt::LeftButton)
    {
        buttons &= ~Qt::MouseButtons(button);
        return mouse(QEvent::MouseButtonRelease, x, y, button);
    }
    Hand& doubleClick(int x, int y)
    {
        buttons |= Qt::LeftButton;
        return mouse(QEvent::MouseButtonDblClick, x, y, Qt::LeftButton);
    }
    Hand& moveTo(int x, int y) { return mouse(QEvent::MouseMove, x, y, Qt::NoButton); }
    Hand& turn(int delta)
    {
        const QPoint p = widget->rect().center();
        QWheelEvent event(p, widget->mapToGlobal(p), QPoint(), QPoint(0, delta), buttons, modifiers,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(widget, &event);
        return *this;
    }
    Hand& leave()
    {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(widget, &event);
        return *this;
    }
    Hand& keyDown(int key, const QString& text = {}, bool repeated = false)
    {
        return keyboard(QEvent::KeyPress, key, text, repeated);
    }
    Hand& keyUp(int key, const QString& text = {}, bool repeated = false)
    {
        return keyboard(QEvent::KeyRelease, key, text, repeated);
    }
    /// A key with a character of its own.
    Hand& type(char c)
    {
        const QString text(QLatin1Char{c});
        const int key = text.toUpper()[0].unicode();
        return keyDown(key, text).keyUp(key, text);
    }

private:
    Hand& mouse(QEvent::Type type, int x, int y, Qt::MouseButton button)
    {
        const QPointF p(x, y);
        QMouseEvent event(type, p, widget->mapToGlobal(p), button, buttons, modifiers);
        QCoreApplication::sendEvent(widget, &event);
        return *this;
    }
    Hand& keyboard(QEvent::Type type, int key, const QString& text, bool repeated)
    {
        QKeyEvent event(type, key, modifiers, text, repeated);
        QCoreApplication::sendEvent(widget, &event);
        return *this;
    }

    QWidget* widget;
    Qt::KeyboardModifiers modifiers;
    Qt::MouseButtons buttons;
};
