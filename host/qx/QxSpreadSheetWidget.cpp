#include "qx/QxSpreadSheetWidget.h"

#include "hx/HxSpreadSheet.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

#include <algorithm>

namespace {

constexpr int kSortRole = Qt::UserRole; // numbers as numbers, texts as texts

QStandardItem* cellOf(const HxSpreadSheet& sheet, int column, int row)
{
    auto* item = new QStandardItem(QString::fromUtf8(sheet.text(column, row).c_str()));
    item->setEditable(false);
    if (sheet.columnType(column) == HxSpreadSheet::ColumnType::String) {
        item->setData(item->text(), kSortRole);
    } else {
        item->setData(sheet.number(column, row), kSortRole);
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    return item;
}

} // namespace

QxSpreadSheetWidget::QxSpreadSheetWidget(QWidget* parent)
    : QTableView(parent), cells(new QStandardItemModel(this)), order(new QSortFilterProxyModel(this))
{
    order->setSortRole(kSortRole);
    order->setSortCaseSensitivity(Qt::CaseInsensitive);
    order->setSourceModel(cells);
    setModel(order);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    verticalHeader()->hide();
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder); // as the sheet has them
    setSortingEnabled(true);
}

void QxSpreadSheetWidget::setSpreadSheet(HxSpreadSheet* newSheet)
{
    if (sheet) disconnect(sheet, nullptr, this, nullptr);
    sheet = newSheet;
    if (sheet) {
        connect(sheet, &HxData::dataObjectTouched, this, &QxSpreadSheetWidget::readSheet);
        connect(sheet, &QObject::destroyed, this, [this] { cells->clear(); });
    }
    readSheet();
}

void QxSpreadSheetWidget::readSheet()
{
    cells->clear();
    if (!sheet) return;
    for (int c = 0; c < sheet->numColumns(); ++c) {
        QList<QStandardItem*> column;
        for (int r = 0; r < sheet->numRows(); ++r) column.append(cellOf(*sheet, c, r));
        cells->appendColumn(column);
        cells->setHeaderData(c, Qt::Horizontal, QString::fromUtf8(sheet->columnTitle(c)));
    }
    resizeColumnsToContents();
}

void QxSpreadSheetWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy))
        copySelection();
    else
        QTableView::keyPressEvent(event);
}

void QxSpreadSheetWidget::copySelection() const
{
    QModelIndexList selected = selectionModel()->selectedIndexes();
    std::sort(selected.begin(), selected.end(), [](const QModelIndex& a, const QModelIndex& b) {
        return std::pair(a.row(), a.column()) < std::pair(b.row(), b.column());
    });
    QString text;
    for (int i = 0; i < selected.size(); ++i) {
        if (i > 0) text += selected[i].row() == selected[i - 1].row() ? '\t' : '\n';
        text += selected[i].data().toString();
    }
    if (!text.isEmpty()) QApplication::clipboard()->setText(text + '\n');
}
