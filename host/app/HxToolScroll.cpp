#include "app/HxToolScroll.h"

#include <QEvent>
#include <QScrollBar>
#include <QStackedLayout>

#include <algorithm>

namespace {

constexpr int kLeastHeight = 120; // a panel in a lower one would be more scroll bar than panel

/// Wide enough for every panel, but only as high as the current one must be.
class PanelStack : public QStackedLayout
{
public:
    using QStackedLayout::QStackedLayout;

    QSize minimumSize() const override { return {QStackedLayout::minimumSize().width(), currentHeight()}; }

private:
    int currentHeight() const
    {
        const int index = currentIndex();
        return index < 0 ? 0 : itemAt(index)->minimumSize().height();
    }
};

} // namespace

HxToolScroll::HxToolScroll(QWidget* parent) : QScrollArea(parent)
{
    setObjectName("toolScroll");
    setFrameShape(NoFrame);
    // Else it would take the focus on behalf of what refuses it: a click on a check box or beside all widgets
    // would take the keys away from the viewer.
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* content = new QWidget;
    stack = new PanelStack(content);
    // The stack has another height with another panel, which a stacked layout does not expect.
    connect(stack, &QStackedLayout::currentChanged, stack, [this] { stack->update(); });
    setWidget(content);
}

QSize HxToolScroll::minimumSizeHint() const
{
    const QSize least = stack->minimumSize();
    return withScrollBar({least.width(), std::min(least.height(), kLeastHeight)});
}

QSize HxToolScroll::sizeHint() const
{
    return withScrollBar(stack->sizeHint().expandedTo(stack->minimumSize()));
}

QSize HxToolScroll::withScrollBar(QSize size) const
{
    if (stack->minimumSize().height() > height()) size.rwidth() += verticalScrollBar()->sizeHint().width();
    return size;
}

bool HxToolScroll::eventFilter(QObject* receiver, QEvent* event)
{
    // A scroll area stays what it is when its content needs another size; this one follows in width.
    if (receiver == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
    return QScrollArea::eventFilter(receiver, event);
}

void HxToolScroll::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    updateGeometry();
}
