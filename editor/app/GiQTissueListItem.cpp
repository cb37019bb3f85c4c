#include "app/GiQTissueListItem.h"

#include "app/GiMaterialView3D.h"
#include "app/GiQ.h"
#include "app/GiQTissueList.h"
#include "hx/HxMatDatabase.h"
#include "hx/HxParamBundle.h"
#include "hx/HxResource.h"
#include "qx/QxToolButton.h"
#include "tools/giGuarded.h"

#include <QCheckBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QSignalBlocker>

#include <algorithm>

namespace {

/// A check box or a swatch stands in the middle of its cell; the cell around it takes clicks for the table.
QWidget* centred(QWidget* widget)
{
    auto* cell = new QWidget;
    auto* layout = new QHBoxLayout(cell);
    layout->setContentsMargins(2, 0, 2, 0);
    layout->addWidget(widget, 0, Qt::AlignCenter);
    return cell;
}

QColor colorOf(const HxParamBundle& material)
{
    float rgb[3];
    if (!material.findColor(rgb)) {
        const McColor color = HxMatDatabase::getTheDatabase()->getColor(material.getName());
        rgb[0] = color.r;
        rgb[1] = color.g;
        rgb[2] = color.b;
    }
    for (float& component : rgb) component = std::clamp(component, 0.0f, 1.0f);
    return QColor::fromRgbF(rgb[0], rgb[1], rgb[2]);
}

} // namespace

GiQTissueListItem::GiQTissueListItem(GiQTissueList* owner, int row) : list(owner)
{
    const QSignalBlocker filling(list);
    makeCells(row);
    fillCells(row);
    connectCells();
}

const QIcon& GiQTissueListItem::lockIcon(bool locked)
{
    static const QIcon closed = HxResource::readIcon("SegLockIcon.png");
    static const QIcon open = HxResource::readIcon("SegUnlockIcon.png");
    return locked ? closed : open;
}

QCheckBox* GiQTissueListItem::makeBox(int row, int column, const char* objectName, const QString& toolTip)
{
    auto* box = new QCheckBox;
    box->setObjectName(objectName);
    box->setToolTip(toolTip);
    box->setBackgroundRole(list->viewport()->backgroundRole());
    box->setFocusPolicy(Qt::TabFocus); // a click leaves the keys with the list
    list->setCellWidget(row, column, centred(box));
    return box;
}

void GiQTissueListItem::makeCells(int row)
{
    colorFrame = new QFrame;
    colorFrame->setObjectName("roiColor");
    colorFrame->setFrameShape(QFrame::Box);
    const int side = list->fontMetrics().height() + 3;
    colorFrame->setFixedSize(side, side);
    colorFrame->setToolTip(GiQTissueList::tr("Set material color"));
    // The tip is the cell's, too: one of the frame's own would take the frame's style sheet and so its color.
    colorFrame->setAttribute(Qt::WA_TransparentForMouseEvents);
    QWidget* colorCell = centred(colorFrame);
    colorCell->setToolTip(colorFrame->toolTip());
    list->setCellWidget(row, GiQTissueList::kColor, colorCell);

    nameItem = new QTableWidgetItem;
    list->setItem(row, GiQTissueList::kName, nameItem);
    box2D = makeBox(row, GiQTissueList::kShow2D, "show2D", GiQTissueList::tr("Show in the slice viewers"));
    box3D = makeBox(row, GiQTissueList::kShow3D, "show3D", GiQTissueList::tr("Show in the 3D view"));
    boxColor = makeBox(row, GiQTissueList::kColor3D, "useLabelColor",
                       GiQTissueList::tr("Use the material color in the 3D view"));
    lockItem = new QTableWidgetItem;
    lockItem->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    list->setItem(row, GiQTissueList::kLock, lockItem);

    selectButton = new QxToolButton;
    selectButton->setObjectName("selectMaterial");
    selectButton->setText(GiQTissueList::tr("Select"));
    selectButton->setToolTip(GiQTissueList::tr("Select material"));
    selectButton->setAutoRaise(true);
    selectButton->setFocusPolicy(Qt::TabFocus);
    selectButton->setBackgroundRole(list->viewport()->backgroundRole());
    list->setCellWidget(row, GiQTissueList::kSelect, selectButton);
}

void GiQTissueListItem::fillCells(int row)
{
    showColor(row);
    setName(list->nameOf(row));
    showStates(row);
    enable3D(list->getView3D());
}

void GiQTissueListItem::showColor(int row)
{
    if (const HxParamBundle* material = list->bundleOf(row)) setColor(colorOf(*material));
}

void GiQTissueListItem::showStates(int row)
{
    const GiQ* gi = list->getGi();
    setLock(list->isLocked(row));
    box2D->setChecked(gi && gi->drawStyle2D[row] != 0);
}

void GiQTissueListItem::connectCells()
{
    connect(box2D, &QCheckBox::clicked, this, giGuardedSlot(this, &GiQTissueListItem::setShow2D));
    connect(box3D, &QCheckBox::clicked, this, giGuardedSlot(this, &GiQTissueListItem::slotShow3D));
    connect(boxColor, &QCheckBox::clicked, this, giGuardedSlot(this, &GiQTissueListItem::slotShowColor));
    connect(selectButton, &QxToolButton::clicked, this,
            giGuardedSlot(this, &GiQTissueListItem::selectMaterial));
}

int GiQTissueListItem::row() const
{
    return list->row(nameItem);
}

QString GiQTissueListItem::getName() const
{
    return nameItem->text();
}

bool GiQTissueListItem::isShow2DButtonChecked() const
{
    return box2D->isChecked();
}

bool GiQTissueListItem::isColor3DButtonChecked() const
{
    return boxColor->isChecked();
}

void GiQTissueListItem::setName(const QString& name)
{
    const QSignalBlocker noEdit(list);
    nameItem->setText(name);
    nameItem->setToolTip("<p>" + name.toHtmlEscaped() + "</p>"); // the column cuts long ones off
}

void GiQTissueListItem::setColor(const QColor& newColor)
{
    if (color == newColor) return; // style sheets take long
    color = newColor;
    colorFrame->setStyleSheet(QString("background-color: %1").arg(color.name()));
}

void GiQTissueListItem::setLock(bool on)
{
    if (shownLock == on) return;
    shownLock = on;
    const QSignalBlocker noEdit(list);
    lockItem->setIcon(lockIcon(on));
    lockItem->setToolTip(on ? GiQTissueList::tr("Locked: edits leave this material as it is")
                            : GiQTissueList::tr("Unlocked"));
}

void GiQTissueListItem::setShow3D(bool on)
{
    const QSignalBlocker quiet(box3D);
    box3D->setChecked(on);
}

void GiQTissueListItem::setColor3D(bool on)
{
    const QSignalBlocker quiet(boxColor);
    boxColor->setChecked(on);
}

void GiQTissueListItem::enable3D(bool on)
{
    box3D->setEnabled(on);
    boxColor->setEnabled(on);
}

void GiQTissueListItem::slotShow3D(bool on)
{
    if (GiMaterialView3D* view = list->getView3D()) view->setLabelClipped(row(), !on);
}

void GiQTissueListItem::slotShowColor(bool on)
{
    if (GiMaterialView3D* view = list->getView3D()) view->setUseLabelColor(row(), on);
}

void GiQTissueListItem::setDrawStyle2D(unsigned int style)
{
    GiQ* gi = list->getGi();
    if (!gi) return;
    box2D->setChecked(style != 0);
    const int material = row();
    if (style == 0 && gi->drawStyle2D[material] != 0)
        gi->lastDrawStyle2D[material] = gi->drawStyle2D[material];
    gi->drawStyle2D[material] = static_cast<unsigned char>(style);
    gi->redraw();
}

void GiQTissueListItem::setShow2D(bool on)
{
    if (const GiQ* gi = list->getGi()) setDrawStyle2D(on ? gi->lastDrawStyle2D[row()] : 0);
}

void GiQTissueListItem::selectMaterial()
{
    const int material = row();
    list->selectRow(material);
    const Qt::KeyboardModifiers held = selectButton->modifiers();
    list->selectVoxels(material, held & Qt::ShiftModifier     ? GiQTissueList::kAddVoxels
                                 : held & Qt::ControlModifier ? GiQTissueList::kRemoveVoxels
                                                              : GiQTissueList::kReplaceVoxels);
}
