#include "app/GiQTissueList.h"

#include "app/GiMaterialView3D.h"
#include "app/GiQ.h"
#include "app/GiQTissueListItem.h"
#include "app/GiQToolbox.h"
#include "hx/HxParamBundle.h"
#include "qx/QxLockItemDelegate.h"
#include "qx/QxMaterialNameItemDelegate.h"
#include "tools/giGuarded.h"

#include <QHeaderView>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int kShownRows = 8;

} // namespace

GiQTissueList::GiQTissueList(QWidget* parent) : QTableWidget(0, kNumColumns, parent)
{
    setUpTable();
    setUpHeader();
    connect(this, &QTableWidget::itemSelectionChanged, this, &GiQTissueList::selectionChanged);
    connect(this, &QTableWidget::cellChanged, this, giGuardedSlot(this, &GiQTissueList::nameChanged));
    connect(this, &QTableWidget::cellClicked, this, giGuardedSlot(this, &GiQTissueList::itemClicked));
}

GiQTissueList::~GiQTissueList() = default;

void GiQTissueList::setUpTable()
{
    setObjectName("tissuelist");
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(0);
    verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 5);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectRows);
    setShowGrid(false);
    setTabKeyNavigation(false); // Tab leads on to the next widget of the panel
    setEditTriggers(DoubleClicked | EditKeyPressed);
    setIconSize(QSize(fontMetrics().height(), fontMetrics().height()));
    setItemDelegateForColumn(kName, new QxMaterialNameItemDelegate(this));
    setItemDelegateForColumn(kLock, new QxLockItemDelegate(this));
}

void GiQTissueList::setUpHeader()
{
    const QStringList titles{tr("Col"),   tr("Name"), tr("2D"),    tr("3D"),
                             tr("Color"), tr("Lock"), tr("Select")};
    setHorizontalHeaderLabels(titles);
    QHeaderView* header = horizontalHeader();
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHighlightSections(false);
    header->setMinimumSectionSize(0);
    header->setSectionResizeMode(QHeaderView::Fixed);
    for (int c = 0; c < kNumColumns; ++c)
        header->resizeSection(c, header->fontMetrics().horizontalAdvance(titles[c]) + 10);
}

int GiQTissueList::heightOfRows(int rows) const
{
    return horizontalHeader()->sizeHint().height() + rows * verticalHeader()->defaultSectionSize() +
           2 * frameWidth();
}

QSize GiQTissueList::sizeHint() const
{
    return {QTableWidget::sizeHint().width(), heightOfRows(kShownRows)};
}

QSize GiQTissueList::minimumSizeHint() const
{
    return {QTableWidget::minimumSizeHint().width(), heightOfRows(3)};
}

// ---- filling

HxParamBundle* GiQTissueList::bundleOf(int row) const
{
    return bundle ? bundle->bundle(row) : nullptr;
}

GiQTissueListItem* GiQTissueList::itemOf(int row) const
{
    return row >= 0 && row < static_cast<int>(items.size()) ? items[static_cast<size_t>(row)].get() : nullptr;
}

QString GiQTissueList::nameOf(int row) const
{
    const HxParamBundle* material = bundleOf(row);
    if (!material) return {};
    McString longName;
    const bool isLong = material->findString("LongName", longName);
    return QString::fromLocal8Bit(isLong ? longName.c_str() : material->getName());
}

void GiQTissueList::setTissues(HxParamBundle* materials, int row)
{
    notifyStop();
    setUpdatesEnabled(false);
    {
        // No row is the user's choice while rows come and go.
        const QSignalBlocker filling(this);
        bundle = materials;
        pressRow = -1;
        while (rowCount() > 0) dropRow(rowCount() - 1);
        setUpHeader();
        const int n = rowsNeeded();
        for (int i = 0; i < n; ++i) addRow();
        horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
        horizontalHeader()->setSectionResizeMode(kName, QHeaderView::Stretch);
        show3DStates();
        setCurrentCell(row >= 0 ? row : n - 1, 0);
    }
    setUpdatesEnabled(true);
    selectionChanged();
}

int GiQTissueList::rowsNeeded() const
{
    // A label is a byte: what follows the last one that it can name has no voxels and no entry in the tables.
    return bundle ? std::min(bundle->nBundles(), kMaxMaterials) : 0;
}

void GiQTissueList::addRow()
{
    const int row = rowCount();
    insertRow(row);
    items.push_back(std::make_unique<GiQTissueListItem>(this, row));
    applyVoid(row);
}

void GiQTissueList::dropRow(int row)
{
    // Of rows that just go, Qt keeps the addresses of the cells' widgets as those of editors that stay open.
    // The editor of a name that gets one of these addresses later would never close.
    for (int c = 0; c < kNumColumns; ++c) removeCellWidget(row, c);
    items.erase(items.begin() + row);
    removeRow(row);
}

/// One row for each material, however many came or went elsewhere. What the rows show is left as it is.
void GiQTissueList::fitRows()
{
    const int n = rowsNeeded(), former = currentRow();
    if (rowCount() == n) return;
    const bool isFirst = rowCount() == 0;
    if (rowCount() > n) notifyStop();
    {
        // The row that Qt makes current meanwhile is nobody's choice.
        const QSignalBlocker filling(this);
        while (rowCount() > n) dropRow(rowCount() - 1);
        while (rowCount() < n) addRow();
        show3DStates();
    }
    if (isFirst || former >= n) setTissue(n - 1);
}

void GiQTissueList::updateRows()
{
    fitRows();
    for (int row = 0; row < rowCount(); ++row) itemOf(row)->showColor(row);
    updateMaterialVisibility();
}

void GiQTissueList::appendTissue(HxParamBundle* material)
{
    fitRows();
    setTissue(bundle->index(material));
}

void GiQTissueList::applyVoid(int row)
{
    const HxParamBundle* material = bundleOf(row);
    int isVoid = 0;
    if (material) material->findNum("void", isVoid);
    setRowHidden(row, !material || isVoid != 0);
}

void GiQTissueList::updateMaterialVisibility()
{
    for (int row = 0; row < rowCount(); ++row) {
        if (bundleOf(row)) itemOf(row)->setName(nameOf(row));
        applyVoid(row);
    }
}

void GiQTissueList::updateStates()
{
    for (int row = 0; row < static_cast<int>(items.size()); ++row) itemOf(row)->showStates(row);
}

// ---- the current material

void GiQTissueList::setTissue(int row)
{
    setCurrentCell(row, 0);
    selectionChanged(); // also when the row was the current one: the tools may stand on another material
}

void GiQTissueList::selectionChanged()
{
    // Not the current row: on the way of a key it is still the former one.
    const QModelIndexList selected = selectionModel()->selectedRows();
    const int row = selected.isEmpty() ? currentRow() : selected.first().row();
    if (gi && row >= 0) gi->currentTissue = row;
}

bool GiQTissueList::is3D() const
{
    if (!gi) return false;
    return gi->getToolbox() ? gi->getToolbox()->selectionIs3D() : gi->mode3D;
}

void GiQTissueList::selectVoxels(int row, SelectMode mode)
{
    if (gi && bundleOf(row)) gi->selectTissue(row, mode, is3D());
}

void GiQTissueList::locateTissue(int row)
{
    if (gi && bundleOf(row)) gi->locateTissue(row);
}

bool GiQTissueList::isLocked(int row) const
{
    return gi && row >= 0 && row < kMaxMaterials && gi->locked[row];
}

void GiQTissueList::lock(int row, bool on)
{
    if (!gi || !itemOf(row)) return;
    gi->lockTissue(row, on);
    itemOf(row)->setLock(on);
}

void GiQTissueList::lockAll(bool on)
{
    for (int row = 1; row < rowCount(); ++row) lock(row, on);
}

// ---- the 3D view

void GiQTissueList::setView3D(GiMaterialView3D* view)
{
    view3D = view;
    for (const auto& item : items) item->enable3D(view3D);
    show3DStates();
}

void GiQTissueList::show3DStates()
{
    if (!view3D) return;
    bool flags[GiMaterialView3D::kLabels] = {};
    view3D->get3DVisibility(flags);
    set3DVisibility(flags);
    view3D->getUseLabelColor(flags);
    set3DUseLabelColor(flags);
}

void GiQTissueList::set3DVisibility(const bool* visible)
{
    for (int row = 0; bundle && row < rowCount(); ++row) itemOf(row)->setShow3D(visible[row]);
}

void GiQTissueList::set3DUseLabelColor(const bool* used)
{
    for (int row = 0; bundle && row < rowCount(); ++row) itemOf(row)->setColor3D(used[row]);
}
