#pragma once

#include <QScrollArea>

class QStackedLayout;

/// A stack of tool panels that scrolls, up and down only, when the window is too low for the current panel.
///
/// It is as wide as the widest panel needs, with room for the scroll bar while this shows; so no panel is cut
/// off at its side, and the column keeps its width when panels change.
class HxToolScroll : public QScrollArea
{
    Q_OBJECT

public:
    explicit HxToolScroll(QWidget* parent = nullptr);

    QStackedLayout* panels() const { return stack; }

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QSize withScrollBar(QSize size) const;

    QStackedLayout* stack;
};
