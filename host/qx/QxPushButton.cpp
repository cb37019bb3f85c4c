#include "qx/QxPushButton.h"

#include <QMouseEvent>

QxPushButton::QxPushButton(QWidget* parent) : QxPushButton(QString(), parent) {}

QxPushButton::QxPushButton(const QString& text, QWidget* parent) : QPushButton(text, parent)
{
    // First of all listeners, so that none sees the keys of an earlier press.
    connect(this, &QAbstractButton::pressed, this, [this] {
        if (!mouseHolds) pressModifiers = {};
    });
}

void QxPushButton::mousePressEvent(QMouseEvent* event)
{
    mouseHolds = true;
    pressModifiers = event->modifiers();
    QPushButton::mousePressEvent(event);
}

void QxPushButton::mouseReleaseEvent(QMouseEvent* event)
{
    mouseHolds = false;
    QPushButton::mouseReleaseEvent(event);
}
