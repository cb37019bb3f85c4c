#pragma once

#include "qx/QxPressModifiers.h"

#include <QToolButton>

/// A tool button that remembers the modifier keys of its last press.
class QxToolButton : public QxPressModifiers<QToolButton>
{
    Q_OBJECT

public:
    explicit QxToolButton(QWidget* parent = nullptr);
};
