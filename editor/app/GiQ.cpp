#include "app/GiQ.h"

#include "app/GiQTissueList.h"
#include "app/GiQToolboxProtected.h"
#include "app/GiResetOrientationTool.h"
#include "app/GiSetOrientationTool.h"
#include "app/HxController.h"
#include "app/HxGiEditor.h"
#include "app/HxMain.h"
#include "app/QxPreferenceDialog.h"
#include "app/QxViewerPanel.h"
#include "display/GiFrameBuffer.h"
#include "display/GiGreyImage.h"
#include "display/GiLabelImage.h"
#include "display/GiViewer.h"
#include "hx/HxColormap.h"
#include "hx/HxField3.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxSettingsMgr.h"
#include "qx/QxColormapFullRangeSlider.h"
#include "tools/GiTool.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCursor>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStackedLayout>
#include <QToolButton>

#include <algorithm>
#include <tuple>

namespace {

constexpr int kHostMode = 0, kEmbeddedMode = 1, kSubApplicationMode = 2;
constexpr int kFirstTool = 3;      // the magic wand, by its place in the list of tools
constexpr int kToolboxWidth = 320; // device-independent pixels
constexpr int kLeastWindowWidth = 800;
constexpr int kOneViewer = 1, kFourViewers = 4;

} // namespace

GiQ::GiQ(HxGiEditor* owner)
    : panel(QxViewerPanel::getThePanel()), editor(owner), mode(kHostMode), ownLayout(kFourViewers)
{
    if (HxMain* window = HxMain::getTheMain()) menuBar = window->menuBar();
    commonInit();
}

GiQ::GiQ(HxGiEditor* owner, QWidget* parent, QMenuBar* bar)
    : editor(owner),
      menuBar(bar),
      splitter(new QSplitter(Qt::Horizontal, parent)),
      mode(kEmbeddedMode),
      ownLayout(kOneViewer)
{
    splitter->setObjectName("giSplitter");
    panel = new QxViewerPanel(splitter);
    commonInit();
}

GiQ::GiQ(HxGiEditor* owner, QWidget*& toolboxOut, QWidget*& viewerOut)
    : panel(HxController::panel(HxController::kSubApplicationViewer)),
      editor(owner),
      mode(kSubApplicationMode),
      ownLayout(kOneViewer)
{
    HxMain* window = HxMain::getTheMain();
    menuBar = window->menuBar();
    // Without sub-applications it is the main panel, which has its page already.
    if (window->viewerLayout()->indexOf(panel) < 0) window->viewerLayout()->addWidget(panel);
    commonInit();
    toolboxOut = toolbox;
    viewerOut = panel;
}

void GiQ::commonInit()
{
    editor->setLabel("gi");
    formerLayout = ownLayout;
    QxPreferenceDialog* dialog = QxPreferenceDialog::getThePreferenceDialog();
    connect(dialog, &QDialog::rejected, this, &GiQ::readPreferences);
    connect(dialog, &QxPreferenceDialog::selectionDrawStyleChanged, this, &GiQ::setSelectionDrawStyle);
    buildMenus();
    createToolbox();
    toolbox->setTool(kFirstTool);
    createViewers();
    readSelectionDrawStyle();
    if (mode == kEmbeddedMode) {
        toolbox->wShow3DSelectionCheckBox->hide();
        const int width = std::max(splitter->window()->width(), kLeastWindowWidth);
        splitter->setSizes({width - kToolboxWidth, kToolboxWidth});
    }
    connect(HxSettingsMgr::getInstance(), &HxSettingsMgr::preferencesChanged, this, &GiQ::preferencesChanged);
    // In every mode: memory of an object that leaves the pool must not stay bound.
    connect(HxObjectPool::getThePool()->notifier(), &HxObjectPool::objectRemoved, this,
            &GiQ::slotObjectRemovedSA);
    setMenuEnabled(false);
    onActivate();
}

void GiQ::createToolbox()
{
    toolbox = new GiQToolboxProtected(this, splitter);
    if (mode == kSubApplicationMode) {
        HxMain::getTheMain()->toolPanelLayout()->addWidget(toolbox);
        connectDataSetSwitch();
    } else {
        toolbox->wGiInput->hide();
    }
}

GiQ::~GiQ()
{
    onDeactivate();
    disconnectData();
    disconnect(HxSettingsMgr::getInstance(), nullptr, this, nullptr);
    writeFlipPreference();
    if (menuBar && mode == kEmbeddedMode) menuBar->clear();
    delete segmentationMenu;
    delete selectionMenu;
    destroyMembers();
    delete toolbox;
    delete splitter; // the panel in it is its child; in the other modes the panel is the host's
}

QWidget* GiQ::getWidget() const
{
    return splitter;
}

// What the core announces

void GiQ::setVolume(const unsigned long* dims, McTypedPointer data, HxLabelLattice3* lattice)
{
    Gi::setVolume(dims, data, lattice);
}

void GiQ::updateCursor()
{
    const QCursor cursor = currentTool ? *currentTool->getToolCursor() : QCursor(Qt::ArrowCursor);
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->setCursor(cursor);
}

void GiQ::updateUndoSensitivity()
{
    if (undoAction) undoAction->setEnabled(canUndo());
}

void GiQ::stateRestored()
{
    // Voxels that come back can lie outside the slices in view.
    checkForHiddenSelection();
}

void GiQ::setCurrentTissue(int tissue)
{
    if (toolbox) toolbox->tissueList->setTissue(tissue);
    Gi::setCurrentTissue(tissue);
}

void GiQ::sliceNumberChanged(GiViewer* viewer)
{
    Gi::sliceNumberChanged(viewer);
    checkForHiddenSelection();
}

void GiQ::touchData(int selectionTouched, int labelsTouched, int, int, int, int)
{
    if (selectionTouched) emit selectionChanged();
    if (labelsTouched) {
        // Only marked as stale: the next question for the range pays for the scan, not the edit.
        if (auto* field = dynamic_cast<HxField3*>(labelData)) field->touchMinMax(0, -1, 0);
        emit labelsChanged(labelData);
    }
}

void GiQ::set3dMode(bool on)
{
    Gi::set3dMode(on);
    if (toolbox) toolbox->set3D(on);
}

void GiQ::setZoomMode(bool allViewers)
{
    Gi::setZoomMode(allViewers);
    if (toolbox) toolbox->allZoom(allViewers);
}

void GiQ::setMaskingEnabled(bool on)
{
    toolbox->wEnableMaskingCheckBox->setChecked(on);
}

void GiQ::setMaskingOverlay(bool on)
{
    toolbox->wShowMaskingCheckBox->setChecked(on);
}

bool GiQ::maskingEnabled() const
{
    return toolbox->wEnableMaskingCheckBox->isChecked();
}

void GiQ::setTool(int index)
{
    toolbox->setTool(index);
}

int GiQ::getPickedVoxel(HxViewer*, int, int, McVec3i&, float&)
{
    return 0; // nothing can be picked without a 3D view
}

void GiQ::setToolDataWindowMarker(float value)
{
    toolbox->wMaskingWindowSlider->setMarker(value);
}

void GiQ::clearToolDataWindowMarker()
{
    toolbox->wMaskingWindowSlider->clearMarker();
}

void GiQ::setToolDataWindowSliderTracking(bool on)
{
    toolbox->wMaskingWindowSlider->setTracking(on);
}

bool GiQ::toolDataWindowSliderTracking()
{
    return toolbox->wMaskingWindowSlider->isTracking();
}

void GiQ::setZoomFactor(float zoom)
{
    Gi::setZoomFactor(zoom);
    toolbox->zoomLabel->setText(getZoomFactorText());
    toolbox->zoomLabel->updateGeometry();
}

// Without data

void GiQ::clear()
{
    disconnectData();
    if (colormap) disconnect(colormap, &HxColormap::dataObjectTouched, this, &GiQ::slot2DColormapTouched);
    colormap = nullptr;
    materials = nullptr;
    labelData = nullptr;
    imageData = nullptr;
    labelLattice = nullptr;
    imageLattice = nullptr;
    endBrowsing();    // the key that goes through the slices may still be down
    forgetGradient(); // with no image bound, as it may be shown itself
    currentTissue = 0;
    selection->resize(0, 0, 0);
    // The windows into the bits must shrink with them before anybody is told: listeners scan them.
    for (int i = 0; i < viewers.size(); ++i)
        selection->getSlice(viewers[i]->getSelection(), viewers[i]->getOrientation(), 0);
    touchData(1, 0, 0, 0, 0, 0);
    for (int i = viewers.size() - 1; i >= 0; --i) {
        if (GiFrameBuffer* buffer = viewers[i]->getFrameBuffer()) buffer->clear();
        if (GiLabelImage* labels = viewers[i]->getLabelImage()) labels->setMemory(nullptr, 0, 0);
        if (GiGreyImage* image = viewers[i]->getGreyImage()) image->clear();
    }
    emptySliders();
    setMenuEnabled(false);
    if (toolbox) toolbox->setTissues(nullptr);
    clearUndo(1);
    // The views end with the data: nothing may reach memory that its owner is free to give back.
    const unsigned long none[3] = {0, 0, 0};
    imageSlices.init(none, McTypedPointer(nullptr, 0));
    labelSlices.init(none, 1, nullptr);
    // What the windows showed goes with the data.
    for (int i = 0; i < viewers.size(); ++i)
        if (QWidget* widget = viewers[i]->getWidget()) widget->update();
}

void GiQ::preInitShowOnly()
{
    toolbox->qxRangeSlider->show();
    if (toolbox->isHidden()) return;
    setMenuEnabled(true);
    toolbox->addMatButton->setEnabled(true);
    toolbox->delMatButton->setEnabled(true);
    toolbox->tissueFrame->setEnabled(true);
    toolbox->activateGUI(true);
}

// Preferences

void GiQ::preferencesChanged(const HxPreferences& old, const HxPreferences& now)
{
    const auto look = [](const HxPreferences& p) {
        return std::tie(p.selectionDrawStyle, p.selectionStyle3D, p.selectionAlpha);
    };
    // A weight that a script chose stays until the user wants another look.
    if (look(old) != look(now)) readPreferences();
}

void GiQ::readPreferences()
{
    readSelectionDrawStyle();
}

void GiQ::setSelectionDrawStyle(int style, int alpha)
{
    selectionDrawStyle = static_cast<unsigned char>(style);
    for (int i = 0; i < viewers.size(); ++i)
        if (GiFrameBuffer* buffer = viewers[i]->getFrameBuffer()) buffer->selectionAlpha = alpha;
    redraw();
}

void GiQ::materialsChanged()
{
    if (!materials) return;
    toolbox->tissueList->updateRows();
    GiLabelImage::setColor(this, *materials);
    redraw();
}

// Closing

void GiQ::menuClose()
{
    HxMain* window = HxMain::getTheMain();
    if (!window || window->currentToolPanel() != toolbox) return;
    constexpr int kClose = 0;
    const GiViewer* viewer = getCurrentViewer();
    const GiSelection2D* slice = viewer ? viewer->getSelection() : nullptr;
    // kept: only the slice in view is looked at; a selection in other slices goes without a question.
    // Finding it would mean a scan of the volume for a button that people press when they are done.
    if (slice && !slice->selectionBox.isEmpty() &&
        HxMessage::getTheMsg()->warning("Current selection will be lost !\n Close anyway ?", "Close",
                                        "Cancel") != kClose)
        return;
    editor->detach(); // may delete the editor, and this with it
}
