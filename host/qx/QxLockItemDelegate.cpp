#include "qx/QxLockItemDelegate.h"

#include <QApplication>
#include <QPainter>

#include <algorithm>

namespace {

/// A light ground under the picture, which a selected row's strong color would swallow.
void paintPad(QPainter& painter, const QStyleOptionViewItem& cell)
{
    constexpr int kRounding = 3;
    const int side = std::min(cell.rect.width(), cell.rect.height()) - 2;
    QRect pad(0, 0, side, side);
    pad.moveCenter(cell.rect.center());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(cell.palette.base());
    painter.drawRoundedRect(pad, kRounding, kRounding);
    painter.restore();
}

} // namespace

void QxLockItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.state &= ~QStyle::State_HasFocus;
    const QIcon icon = cell.icon;
    cell.icon = QIcon();
    cell.features &= ~QStyleOptionViewItem::HasDecoration;
    cell.text.clear();

    // The cell as any other, then the picture: the style would put it at the left.
    const QStyle* style = cell.widget ? cell.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
    if (cell.state & QStyle::State_Selected) paintPad(*painter, cell);
    icon.paint(painter, cell.rect.adjusted(1, 1, -1, -1), Qt::AlignCenter,
               cell.state & QStyle::State_Enabled ? QIcon::Normal : QIcon::Disabled);
}
