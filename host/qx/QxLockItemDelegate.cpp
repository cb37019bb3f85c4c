#include "qx/QxLockItemDelegate.h"

#include <QApplication>
#include <QPainter>

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
    icon.paint(painter, cell.rect.adjusted(1, 1, -1, -1), Qt::AlignCenter,
               cell.state & QStyle::State_Enabled ? QIcon::Normal : QIcon::Disabled);
}
