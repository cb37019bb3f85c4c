#pragma once

#include <QPointer>
#include <QTableView>

class HxSpreadSheet;
class QSortFilterProxyModel;
class QStandardItemModel;

/// Shows a table of results. A click on a header sorts by that column, numbers as numbers; Ctrl+C copies the
/// selected cells as text with tabs.
class QxSpreadSheetWidget : public QTableView
{
    Q_OBJECT

public:
    explicit QxSpreadSheetWidget(QWidget* parent = nullptr);

    /// Not owned: the view empties when the sheet is deleted, and follows its changes. Null empties.
    void setSpreadSheet(HxSpreadSheet* sheet);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void readSheet();
    void copySelection() const;

    QPointer<HxSpreadSheet> sheet;
    QStandardItemModel* cells;
    QSortFilterProxyModel* order;
};
