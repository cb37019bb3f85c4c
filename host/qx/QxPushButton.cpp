#include "qx/QxPushButton.h"

#include <QKeyEvent>
#include <QMouseEvent>

void QxPushButton::mousePressEvent(QMouseEvent* event)
{
    pressModifiers = event->modifiers();
    QPushButton::mousePressEvent(event);
}

void QxPushButton::keyPressEvent(QKeyEvent* event)
{
    pressModifiers = {};
    QPushButton::keyPressEvent(event);
}
