// What the user's hands do in the material list: clicks, keys and the context menu.

#include "app/GiQ.h"
#include "app/GiQTissueList.h"
#include "app/GiQTissueListItem.h"
#include "app/GiQToolbox.h"
#include "app/QxPreferenceDialog.h"
#include "tools/giGuarded.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>

#include <algorithm>

namespace {

/// Data of the context menu's entries.
enum Entry
{
    kInvisible = 1,
    kLightDots = 5,
    kPreferences = 7,
    kLocate = 10,
    kDelete = 11,
    kRename = 12,
    kEditColor = 13,
    kToggleLock = 14,
    kNew = 15,
    kLockAll = 16,
    kUnlockAll = 17
};

constexpr const char* kStyles[] = {
    QT_TRANSLATE_NOOP("GiQTissueList", "Invisible"), QT_TRANSLATE_NOOP("GiQTissueList", "Contour"),
    QT_TRANSLATE_NOOP("GiQTissueList", "Hatched"), QT_TRANSLATE_NOOP("GiQTissueList", "Dotted"),
    QT_TRANSLATE_NOOP("GiQTissueList", "Light Dots")};

} // namespace

void GiQTissueList::itemClicked(int row, int column)
{
    if (column == kColor) editColor(row);
    if (column == kLock) lock(row, !isLocked(row));
}

QItemSelectionModel::SelectionFlags GiQTissueList::selectionCommand(const QModelIndex& index,
                                                                    const QEvent* event) const
{
    // Modifier keys mark voxels here; they must not take the mark off the current row.
    const auto command = QTableWidget::selectionCommand(index, event);
    const bool unmarks = command & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle);
    return unmarks ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows : command;
}

bool GiQTissueList::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    // The key means the row, in whatever cell of it the keyboard is.
    const QModelIndex cell = trigger == EditKeyPressed ? index.siblingAtColumn(kName) : index;
    return cell.column() == kName && QTableWidget::edit(cell, trigger, event);
}

void GiQTissueList::mousePressEvent(QMouseEvent* event)
{
    giGuarded(GiReport::kConsole, [&] { handlePress(event); });
}

void GiQTissueList::handlePress(QMouseEvent* event)
{
    QTableWidget::mousePressEvent(event);
    if (event->button() == Qt::LeftButton) pressRow = currentRow();
    if (event->button() == Qt::RightButton) {
        const int row = rowAt(qRound(event->position().y()));
        popupContextMenu(itemOf(row), event->globalPosition().toPoint(), row);
        return;
    }
    if (event->modifiers() & Qt::ShiftModifier)
        selectVoxels(currentRow(), kAddVoxels);
    else if (event->modifiers() & Qt::ControlModifier)
        selectVoxels(currentRow(), kRemoveVoxels);
    else if (event->modifiers() & Qt::AltModifier)
        selectVoxels(currentRow(), kReplaceVoxels);
}

void GiQTissueList::keyPressEvent(QKeyEvent* event)
{
    giGuarded(GiReport::kConsole, [&] { handleKey(event); });
}

void GiQTissueList::handleKey(QKeyEvent* event)
{
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    // What takes or leaves voxels needs a material; the selection can be cleared without one.
    const bool isForSelection = bundle && event->key() == Qt::Key_C;
    if (!gi || !plain || !(bundleOf(currentRow()) || isForSelection))
        return QTableWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_A:
    case Qt::Key_Plus:
        gi->storeSelection(currentRow(), is3D(), 1);
        break;
    case Qt::Key_S:
    case Qt::Key_Minus:
        gi->subtractSelection(currentRow(), is3D());
        break;
    case Qt::Key_C:
        gi->clearSelection(is3D(), true);
        break;
    case Qt::Key_Delete:
        removeTissue();
        break;
    default:
        QTableWidget::keyPressEvent(event);
    }
}

void GiQTissueList::fillStyleMenu(QMenu& menu, int row) const
{
    for (int style = 0; style < static_cast<int>(std::size(kStyles)); ++style) {
        QAction* action = menu.addAction(tr(kStyles[style]));
        action->setData(kInvisible + style);
        action->setCheckable(true);
        action->setChecked(gi && gi->drawStyle2D[row] == style);
    }
    if (gi && gi->getWidget()) return; // a foreign window has no preferences of ours
    menu.addSeparator();
    menu.addAction(tr("Preferences..."))->setData(kPreferences);
}

void GiQTissueList::fillContextMenu(QMenu& menu, int row)
{
    const bool onItem = itemOf(row);
    QMenu* styles = menu.addMenu(tr("Draw Style"));
    if (onItem) fillStyleMenu(*styles, row);
    styles->setEnabled(onItem);
    menu.addAction(tr("New Material"))->setData(kNew);
    if (onItem) {
        menu.addAction(tr("Rename Material"))->setData(kRename);
        menu.addAction(tr("Delete Material"))->setData(kDelete);
        menu.addAction(tr("Edit Color"))->setData(kEditColor);
        menu.addAction(tr("Locate"))->setData(kLocate);
        menu.addAction(isLocked(row) ? tr("Unlock Material") : tr("Lock Material"))->setData(kToggleLock);
        menu.addSeparator();
    }
    // kept: material 0 counts here, though the two entries leave it as it is. So each of them is there
    // whenever one padlock in the list says that it could be, without an exception to learn.
    int locked = 0;
    for (int i = 0; i < rowCount(); ++i) locked += isLocked(i);
    if (locked < rowCount()) menu.addAction(tr("Lock All"))->setData(kLockAll);
    if (locked > 0) menu.addAction(tr("Unlock All"))->setData(kUnlockAll);
}

void GiQTissueList::runMenuEntry(int entry, int row)
{
    if (entry >= kInvisible && entry <= kLightDots && itemOf(row))
        itemOf(row)->setDrawStyle2D(static_cast<unsigned int>(entry - kInvisible));
    switch (entry) {
    case kPreferences:
        QxPreferenceDialog::getThePreferenceDialog()->showPage("Segmentation");
        break;
    case kLocate:
        locateTissue(row);
        break;
    case kDelete:
        removeTissue();
        break;
    case kRename:
        editItem(item(row, kName));
        break;
    case kEditColor:
        editColor(row);
        break;
    case kToggleLock:
        lock(row, !isLocked(row));
        break;
    case kNew:
        addTissue();
        break;
    case kLockAll:
    case kUnlockAll:
        lockAll(entry == kLockAll);
        break;
    default:
        break;
    }
}

void GiQTissueList::popupContextMenu(GiQTissueListItem* item, const QPoint& globalPosition, int row)
{
    static bool isOpen = false;
    if (isOpen || !bundle) return;
    isOpen = true;
    QMenu menu(this);
    menu.setObjectName("materialMenu");
    fillContextMenu(menu, item ? row : -1);
    const QPointer<GiQTissueListItem> asked(item); // a script can delete its material meanwhile
    const QAction* chosen = menu.exec(globalPosition);
    isOpen = false;
    if (!chosen || (item && !asked)) return;
    giGuarded(GiReport::kDialog, [&] {
        runMenuEntry(chosen->data().toInt(), asked ? asked->row() : row);
        if (gi) gi->redraw();
    });
}
