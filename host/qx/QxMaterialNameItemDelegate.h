#pragma once

#include <QStyledItemDelegate>

/// Edits the name of a material in a line with QxMaterialValidator, and commits its text.
class QxMaterialNameItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;

protected:
    bool eventFilter(QObject* editor, QEvent* event) override;
};
