#include "qx/QxToolButton.h"

#include <QKeyEvent>
#include <QMouseEvent>

void QxToolButton::mousePressEvent(QMouseEvent* event)
{
    pressModifiers = event->modifiers();
    QToolButton::mousePressEvent(event);
}

void QxToolButton::keyPressEvent(QKeyEvent* event)
{
    pressModifiers = {};
    QToolButton::keyPressEvent(event);
}
