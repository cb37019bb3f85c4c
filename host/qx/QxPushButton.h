#pragma once

#include <QPushButton>

/// A push button that remembers which modifier keys were held when it was last pressed: by the time that
/// clicked() arrives they may be up again.
class QxPushButton : public QPushButton
{
    Q_OBJECT

public:
    explicit QxPushButton(QWidget* parent = nullptr);
    explicit QxPushButton(const QString& text, QWidget* parent = nullptr);

    /// None before the first press, and after a press by the keyboard or by click().
    Qt::KeyboardModifiers modifiers() const { return pressModifiers; }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    Qt::KeyboardModifiers pressModifiers;
    bool mouseHolds = false; // from a press of the mouse to its release
};
