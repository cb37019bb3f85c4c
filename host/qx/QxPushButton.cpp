#include "qx/QxPushButton.h"

QxPushButton::QxPushButton(QWidget* parent) : QxPressModifiers(parent) {}

QxPushButton::QxPushButton(const QString& text, QWidget* parent) : QxPressModifiers(parent)
{
    setText(text);
}
