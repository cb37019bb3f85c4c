#include "app/GiQToolbox.h"

#include "app/GiQ.h"
#include "app/GiQTissueList.h"
#include "display/GiViewer.h"
#include "hx/HxColormap.h"
#include "hx/HxInterpreter.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxObjectPool.h"
#include "hx/HxParamBundle.h"
#include "hx/HxResource.h"
#include "hx/HxWorkArea.h"
#include "qx/QxColormapFullRangeSlider.h"
#include "tools/GiCrossHairTool.h"
#include "tools/GiTool.h"
#include "tools/giGuarded.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStackedLayout>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr int kPixmapWidth = 18, kPixmapHeight = 12, kPixmapFrame = 4; // of a colormap in the menu

void setIcon(QToolButton* button, const char* file)
{
    const QIcon icon = HxResource::readIcon(file);
    button->setIcon(icon);
    if (!icon.availableSizes().isEmpty()) button->setIconSize(icon.availableSizes().constFirst());
}

/// Changes one of a pair of radio buttons; the other one follows.
void choose(bool first, QRadioButton* one, QRadioButton* other)
{
    (first ? one : other)->setChecked(true);
}

/// A click on one of these leaves the keys with the viewer; who goes through the toolbox by keys still can.
template <class Widget>
void leaveFocusWithViewer(const QList<Widget*>& widgets)
{
    for (Widget* widget : widgets)
        if (widget->focusPolicy() != Qt::NoFocus) widget->setFocusPolicy(Qt::TabFocus);
}

} // namespace

int GiQToolbox::sIndexNumBase = 0;

GiQToolbox::GiQToolbox(GiQ* owner, QWidget* parent) : QWidget(parent), gi(owner)
{
    setupUi(this);
    makeToolArea();
    const char* base = HxInterpreter::getTheInterpreter()->getVar("VOREL_INDEX_BASE");
    sIndexNumBase = base ? std::atoi(base) : 0;
    tissueList->setGiQ(gi);
    tissueFrame->setBackgroundRole(tissueList->backgroundRole());
    setTissues(nullptr);
    if (gi->labelLattice) setTissues(gi->materials);
    wShowMaskingCheckBox->setChecked(true);
    updateInfo();
    colormap2DMenu = new QMenu(this);
    colormap3DMenu = new QMenu(this);
    w2DColormapButton->setMenu(colormap2DMenu);
    w2DColormapButton->setPopupMode(QToolButton::InstantPopup);
    w3DColormapButton->setMenu(colormap3DMenu);
    w3DColormapButton->setPopupMode(QToolButton::InstantPopup);
    loadIcons();
    connectButtons();
    connectWidgets();
    addTools();
    leaveFocusWithViewer(findChildren<QAbstractButton*>());
    leaveFocusWithViewer(findChildren<QAbstractSlider*>());
}

GiQToolbox::~GiQToolbox() = default;

void GiQToolbox::makeToolArea()
{
    toolBar = new QToolBar(wGiFrame2);
    toolBar->setObjectName("toolBar");
    auto* column = new QVBoxLayout(wGiFrame2);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(toolBar);
    column->addWidget(wToolContainer, 1);
    column->addWidget(wInfoContainer);
    toolPages = new QStackedLayout(wToolContainer);
    toolPages->setContentsMargins(0, 0, 0, 0);
    emptyPage = new QWidget(wToolContainer);
    toolPages->addWidget(emptyPage);
}

void GiQToolbox::loadIcons()
{
    setIcon(zoomInButton, "SegLupePlusIcon.png");
    setIcon(zoomOutButton, "SegLupeMinusIcon.png");
    setIcon(w2DColormapButton, "SegColorMap.png");
    setIcon(w3DColormapButton, "SegColorMap.png");
    setIcon(clearSelectionButton, "SegClearIcon.png");
    setIcon(replaceSelectionButton, "SegReplaceIcon.png");
    setIcon(addSelectionButton, "SegPlusIcon.png");
    setIcon(subtractSelectionButton, "SegMinusIcon.png");
    setIcon(prevSel2DButton, "SegPreviousIcon.png");
    setIcon(nextSel2DButton, "SegNextIcon.png");
    setIcon(growButton, "SegGrowIcon.png");
    setIcon(shrinkButton, "SegShrinkIcon.png");
    setIcon(wShowCrossHairButton, "SegCrossHairIcon.png");
    setIcon(wShow3DSlicesButton, "SegMPRIcon.png");
    setIcon(wShow3DVolrenButton, "SegVRTIcon.png");
}

void GiQToolbox::connectButtons()
{
    struct Entry
    {
        QAbstractButton* button;
        void (GiQToolbox::*operation)(); // null: not part of this build, so the button is disabled
    };
    const Entry entries[] = {
        {clearSelectionButton, &GiQToolbox::clearSelection},
        {replaceSelectionButton, &GiQToolbox::replaceBySelection},
        {addSelectionButton, &GiQToolbox::addSelection},
        {subtractSelectionButton, &GiQToolbox::subtractSelection},
        {growButton, &GiQToolbox::growSelection},
        {shrinkButton, &GiQToolbox::shrinkSelection},
        {wShowCrossHairButton, &GiQToolbox::crossHair},
        {zoomInButton, &GiQToolbox::zoomIn},
        {zoomOutButton, &GiQToolbox::zoomOut},
        {wShow3DSelectionCheckBox, nullptr},
        {wShow3DSlicesButton, nullptr},
        {wShow3DVolrenButton, nullptr},
        {w3DColormapButton, nullptr},
    };
    for (const Entry& entry : entries) {
        entry.button->setEnabled(entry.operation != nullptr);
        if (entry.operation)
            connect(entry.button, &QAbstractButton::clicked, this, giGuardedSlot(this, entry.operation));
    }
    addSelectionButton->installEventFilter(this);
}

void GiQToolbox::connectWidgets()
{
    connect(prevSel2DButton, &QToolButton::clicked, gi, giGuardedSlot(gi, &GiQ::showPrevSliceWithSelection));
    connect(nextSel2DButton, &QToolButton::clicked, gi, giGuardedSlot(gi, &GiQ::showNextSliceWithSelection));
    connect(gi, &GiQ::selectionChanged, this, &GiQToolbox::handleSelectionChange);
    connect(gi, &GiQ::hiddenSelectionDetected, this, &GiQToolbox::handleHiddenSelection);
    connect(allZoomRadioButton, &QRadioButton::toggled, this,
            giGuardedSlot(this, &GiQToolbox::toggleZoomChanged));
    connect(allSlicesRadioButton, &QRadioButton::toggled, this,
            giGuardedSlot(this, &GiQToolbox::toggle3dChanged));
    connect(addMatButton, &QToolButton::clicked, tissueList,
            [this] { giGuarded(GiReport::kDialog, [this] { tissueList->addTissue(); }); });
    connect(delMatButton, &QToolButton::clicked, tissueList,
            giGuardedSlot(tissueList, qOverload<>(&GiQTissueList::removeTissue)));
    connect(qxRangeSlider, &QxColormapFullRangeSlider::valueChanged, gi,
            giGuardedSlot(gi, qOverload<float, float>(&GiQ::setDataWindow)));
    connect(wEnableMaskingCheckBox, &QCheckBox::stateChanged, gi, giGuardedSlot(gi, &GiQ::setEnableMask));
    connect(wShowMaskingCheckBox, &QCheckBox::stateChanged, gi, giGuardedSlot(gi, &GiQ::setShowMask));
    connect(wMaskingWindowSlider, &QxColormapFullRangeSlider::valueChanged, gi,
            giGuardedSlot(gi, &GiQ::toolDataWindowSliderChanged));
    if (QAbstractButton* button = HxWorkArea::getTheWorkArea()->mainButton())
        connect(button, &QAbstractButton::clicked, gi, &GiQ::menuClose, Qt::UniqueConnection);
    connect(toolBar, &QToolBar::actionTriggered, this, giGuardedSlot(this, &GiQToolbox::setActiveTool));
    connect(colormap2DMenu, &QMenu::aboutToShow, this, &GiQToolbox::configure2DColormapMenu);
    connect(colormap2DMenu, &QMenu::triggered, this, giGuardedSlot(this, &GiQToolbox::setColormap));
    connect(colormap3DMenu, &QMenu::aboutToShow, this, &GiQToolbox::configure3DColormapMenu);
}

/// A tool without a panel gets no button, but keeps its number.
void GiQToolbox::addTools()
{
    for (int i = 0; i < gi->tools.size(); ++i) {
        GiTool* tool = gi->tools[i];
        QWidget* page = tool ? tool->getWidget(wToolContainer) : nullptr;
        if (!page) continue;
        if (gi->getWidget()) tool->adaptToForeignWindow();
        toolPages->addWidget(page);
        const QIcon icon = HxResource::readIcon(tool->getIconName());
        if (!icon.availableSizes().isEmpty()) toolBar->setIconSize(icon.availableSizes().constFirst());
        QAction* action = toolBar->addAction(icon, tr(tool->name));
        action->setCheckable(true);
        action->setData(i);
        // Scripts press it by this name.
        if (QWidget* button = toolBar->widgetForAction(action))
            button->setObjectName(QString("tool%1").arg(i));
    }
}

bool GiQToolbox::eventFilter(QObject* object, QEvent* event)
{
    if (object == addSelectionButton && event->type() == QEvent::MouseButtonPress)
        shiftOnAdd = static_cast<QMouseEvent*>(event)->modifiers() & Qt::ShiftModifier;
    return QWidget::eventFilter(object, event);
}

// Tools

void GiQToolbox::setTool(int n)
{
    gi->Gi::setTool(n);
    for (QAction* action : toolBar->actions()) action->setChecked(action->data().toInt() == n);
    QWidget* page = gi->currentTool ? gi->currentTool->getWidget(wToolContainer) : nullptr;
    toolPages->setCurrentWidget(page ? page : emptyPage);
    redraw();
}

void GiQToolbox::setActiveTool(QAction* action)
{
    setTool(action->data().toInt());
    gi->focusViewer();
}

/// Return and Escape come here from fields that are done with them: what was typed counts, and the next key
/// is meant for the slice.
void GiQToolbox::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Escape)
        gi->focusViewer();
    else
        QWidget::keyPressEvent(event);
}

// Scope of selection and zoom

bool GiQToolbox::selectionIs3D() const
{
    return allSlicesRadioButton->isChecked();
}

bool GiQToolbox::zoomAll() const
{
    return allZoomRadioButton->isChecked();
}

void GiQToolbox::set3D(bool on)
{
    choose(on, allSlicesRadioButton, currentSliceRadioButton);
    if (on)
        gi->checkForHiddenSelection();
    else
        handleAlertMode3D(false);
}

void GiQToolbox::allZoom(bool on)
{
    choose(on, allZoomRadioButton, currentZoomRadioButton);
}

void GiQToolbox::toggleZoomChanged(bool)
{
    gi->setZoomMode(zoomAll());
}

void GiQToolbox::toggle3dChanged(bool)
{
    gi->set3dMode(selectionIs3D());
}

void GiQToolbox::zoomIn()
{
    gi->zoomIn();
}

void GiQToolbox::zoomOut()
{
    gi->zoomOut();
}

// Transfer

bool GiQToolbox::mayTransfer() const
{
    return gi->labelLattice && !gi->locked[gi->currentTissue & 255];
}

void GiQToolbox::clearSelection()
{
    if (gi->labelLattice) gi->clearSelection(selectionIs3D(), true);
    wMaskingWindowSlider->clearMarker();
}

void GiQToolbox::addSelection()
{
    const bool keepSelection = std::exchange(shiftOnAdd, false);
    if (mayTransfer()) gi->storeSelection(gi->currentTissue, selectionIs3D(), !keepSelection);
}

void GiQToolbox::replaceBySelection()
{
    if (!mayTransfer()) return;
    gi->replaceBySelection(gi->currentTissue, selectionIs3D());
    gi->clearSelection(selectionIs3D(), false);
}

void GiQToolbox::subtractSelection()
{
    if (mayTransfer()) gi->subtractSelection(gi->currentTissue, selectionIs3D());
}

void GiQToolbox::growSelection()
{
    if (selectionIs3D())
        gi->growSelection3D();
    else
        gi->growSelection2D();
}

void GiQToolbox::shrinkSelection()
{
    if (selectionIs3D())
        gi->shrinkSelection3D();
    else
        gi->shrinkSelection2D();
}

// Display

void GiQToolbox::crossHair()
{
    GiCrossHairTool* tool = gi->crossHair;
    if (!gi->labelLattice) {
        wShowCrossHairButton->setChecked(tool->isVisible()); // the click has toggled it
        return;
    }
    tool->setVisible(!tool->isVisible());
    wShowCrossHairButton->setChecked(tool->isVisible());
    wShowCrossHairButton->setDown(tool->isVisible());
    const unsigned long* dims = gi->labelLattice->dims();
    McVec3i position;
    for (int axis = 0; axis < 3; ++axis) position[axis] = static_cast<int>(dims[axis] / 2);
    for (int i = 0; i < std::min(gi->viewers.size(), 3); ++i)
        position[gi->viewers[i]->getOrientation()] = gi->viewers[i]->getSlice();
    tool->setPosition(position);
    gi->redraw();
}

void GiQToolbox::redraw()
{
    if (gi) gi->redraw();
}

void GiQToolbox::setColormap(QAction* action)
{
    gi->setColormap(static_cast<HxColormap*>(action->data().value<void*>()));
}

void GiQToolbox::configure2DColormapMenu()
{
    const auto add = [this](const QString& text, HxColormap* map) {
        const QIcon icon(HxColormap::getPixmap(map, kPixmapWidth, kPixmapHeight, kPixmapFrame, 0, 0));
        QAction* action = colormap2DMenu->addAction(icon, text);
        action->setData(QVariant::fromValue<void*>(map));
        action->setCheckable(true);
        action->setChecked(gi->getColormap() == map);
    };
    colormap2DMenu->clear();
    add(tr("Gray Ramp"), nullptr);
    const HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i)
        if (auto* map = dynamic_cast<HxColormap*>(pool->object(i)))
            add(QString::fromUtf8(map->getLabel()), map);
}

void GiQToolbox::configure3DColormapMenu()
{
    colormap3DMenu->clear();
}

void GiQToolbox::handleSelectionChange()
{
    gi->checkForHiddenSelection();
}

void GiQToolbox::handleHiddenSelection(int hidden)
{
    handleAlertMode3D(hidden != 0);
}

void GiQToolbox::handleAlertMode3D(bool alert)
{
    // Every change of a selection tells its state again; icons and styles are costly to set.
    if (alert == alertShown) return;
    alertShown = alert;
    allSlicesRadioButton->setStyleSheet(alert ? "color: red;" : "color: black;");
    struct Entry
    {
        QToolButton* button;
        const char* icon;
        const char* alertIcon;
    };
    for (const Entry& entry : {Entry{clearSelectionButton, "SegClearIcon.png", "SegClearAlertIcon.png"},
                               Entry{replaceSelectionButton, "SegReplaceIcon.png", "SegReplaceAlertIcon.png"},
                               Entry{addSelectionButton, "SegPlusIcon.png", "SegPlusAlertIcon.png"},
                               Entry{subtractSelectionButton, "SegMinusIcon.png", "SegMinusAlertIcon.png"}}) {
        entry.button->setStyleSheet(alert ? "border-color: red;" : "");
        setIcon(entry.button, alert ? entry.alertIcon : entry.icon);
    }
}

// Data

void GiQToolbox::setTissues(HxParamBundle* bundle)
{
    tissueList->setTissues(bundle, -1);
    delMatButton->setEnabled(bundle);
    addMatButton->setEnabled(bundle);
    tissueFrame->setEnabled(bundle);
    activateGUI(bundle);
}

void GiQToolbox::activateGUI(bool on)
{
    for (QWidget* part : {static_cast<QWidget*>(wGiZoomBox), static_cast<QWidget*>(wGiSelectionBox),
                          static_cast<QWidget*>(wGiToolsBox), static_cast<QWidget*>(wGiFrame2)})
        part->setEnabled(on);
}

// What is under the pointer

void GiQToolbox::updateInfo(const McVec3i& index, const McVec3f& position, const char* material)
{
    const int digits = gi->coordinateDigits;
    infoIdx->setText(QString::asprintf("<b>Index:</b> %d %d %d", index[0] + sIndexNumBase,
                                       index[1] + sIndexNumBase, index[2] + sIndexNumBase));
    infoPos->setText(QString::asprintf("<b>Pos:</b> %.*f %.*f %.*f", digits, static_cast<double>(position[0]),
                                       digits, static_cast<double>(position[1]), digits,
                                       static_cast<double>(position[2])));
    infoMat->setText("<b>Material:</b> " + QString::fromUtf8(material).toHtmlEscaped());
}

void GiQToolbox::updateInfo(const McVec3i& index, const McVec3f& position, float value, const char* material)
{
    infoGrey->setText(
        QString::asprintf("<b>Intensity:</b> %.*f", gi->dataDigits,
                          static_cast<double>(value * gi->dataWindowScale + gi->dataWindowBias)));
    updateInfo(index, position, material);
}

void GiQToolbox::updateInfo()
{
    infoPos->setText("<b>Pos:</b>");
    infoIdx->setText("<b>Index:</b>");
    infoMat->setText("<b>Material:</b>");
    infoGrey->setText("<b>Intensity:</b>");
}
