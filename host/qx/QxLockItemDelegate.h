#pragma once

#include <QStyledItemDelegate>

/// Shows the lock of a material in the middle of its cell: it cannot be edited, and no focus frame cuts
/// through the picture.
class QxLockItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget*, const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        return nullptr;
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};
