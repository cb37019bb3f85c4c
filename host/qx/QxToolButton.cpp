#include "qx/QxToolButton.h"

QxToolButton::QxToolButton(QWidget* parent) : QxPressModifiers(parent) {}
