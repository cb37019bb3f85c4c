#include "qx/QxToolButton.h"

#include <QMouseEvent>

QxToolButton::QxToolButton(QWidget* parent) : QToolButton(parent)
{
    // First of all listeners, so that none sees the keys of an earlier press.
    connect(this, &QAbstractButton::pressed, this, [this] {
        if (!mouseHolds) pressModifiers = {};
    });
}

void QxToolButton::mousePressEvent(QMouseEvent* event)
{
    mouseHolds = true;
    pressModifiers = event->modifiers();
    QToolButton::mousePressEvent(event);
}

void QxToolButton::mouseReleaseEvent(QMouseEvent* event)
{
    mouseHolds = false;
    QToolButton::mouseReleaseEvent(event);
}
