#pragma once

#include "qx/QxPressModifiers.h"

#include <QPushButton>

/// A push button that remembers the modifier keys of its last press.
class QxPushButton : public QxPressModifiers<QPushButton>
{
    Q_OBJECT

public:
    explicit QxPushButton(QWidget* parent = nullptr);
    explicit QxPushButton(const QString& text, QWidget* parent = nullptr);
};
