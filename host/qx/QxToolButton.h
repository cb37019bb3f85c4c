#pragma once

#include <QToolButton>

/// A tool button that remembers which modifier keys were held when it was last pressed: by the time that
/// clicked() arrives they may be up again.
class QxToolButton : public QToolButton
{
    Q_OBJECT

public:
    explicit QxToolButton(QWidget* parent = nullptr) : QToolButton(parent) {}

    /// None before the first press, and after a press by the keyboard or by click().
    Qt::KeyboardModifiers modifiers() const { return pressModifiers; }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    Qt::KeyboardModifiers pressModifiers;
};
