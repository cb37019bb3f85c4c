#pragma once

#include "filters/GiFilter.h"

#include <QObject>

class QLineEdit;

/// Takes small pieces out of the current slice's selection, such as noise that a threshold leaves. A piece is
/// 4-connected; its size is its number of pixels.
class GiSpecksFilter : public QObject, public GiFilter
{
    Q_OBJECT

public:
    explicit GiSpecksFilter(Gi* owner);

    /// Removes all pieces of fewer than `smallest` pixels, as one undo step. Returns how many; 0 without
    /// data.
    int apply(int smallest);

public slots:
    void applyClicked();
    void hideWidget();

protected:
    QWidget* createWidget(QWidget* parent) override;

private:
    QPointer<QLineEdit> smallestEdit;
};
