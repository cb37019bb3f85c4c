#pragma once

#include <QAbstractButton>
#include <QMouseEvent>

/// A button that remembers which modifier keys were held when it was last pressed: by the time that clicked()
/// arrives they may be up again.
template <class Button>
class QxPressModifiers : public Button
{
public:
    explicit QxPressModifiers(QWidget* parent) : Button(parent)
    {
        // First of all listeners, so that none sees the keys of an earlier press.
        QObject::connect(this, &QAbstractButton::pressed, this, [this] {
            if (!mouseHolds) pressModifiers = {};
        });
    }

    /// None before the first press, and after a press by the keyboard or by click().
    Qt::KeyboardModifiers modifiers() const { return pressModifiers; }

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        mouseHolds = true;
        pressModifiers = event->modifiers();
        Button::mousePressEvent(event);
    }
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        mouseHolds = false;
        Button::mouseReleaseEvent(event);
    }

private:
    Qt::KeyboardModifiers pressModifiers;
    bool mouseHolds = false; // from a press of the mouse to its release
};
