// The slice viewers and their place in the panel: making them, activation and its end, layouts, and the
// question which of them can be seen.

#include "app/GiQ.h"
#include "app/GiQTissueList.h"
#include "app/GiQToolbox.h"
#include "app/GiQViewer.h"
#include "app/GiResetOrientationTool.h"
#include "app/GiSetOrientationTool.h"
#include "app/HxMain.h"
#include "app/QxViewerPanel.h"
#include "display/GiFrameBuffer.h"
#include "hx/HxWorkArea.h"
#include "tools/GiCrossHairTool.h"
#include "tools/GiTool.h"

#include <QAbstractButton>
#include <QSignalBlocker>

namespace {

constexpr int kHostMode = 0, kSubApplicationMode = 2;
constexpr int kOneViewer = 1, kFourViewers = 4, kThreeViewers = 5;

} // namespace

void GiQ::createViewers()
{
    viewerPanel = panel;
    connect(panel, &QxViewerPanel::layoutNumberChanged, this, &GiQ::checkForHiddenSelection);
    createViewerTools();
    for (int orientation = 0; orientation < 3; ++orientation) {
        auto* viewer = new GiQViewer("viewer", this, panel);
        viewer->ref();
        viewer->setPanel(panel);
        viewer->setOrientation(orientation);
        viewer->setFlip(flips[0], flips[1], flips[2]);
        addShapes(viewer);
        viewers.append(viewer);
    }
    panel->setActiveViewer(viewers[2]);
    lastViewer = viewers[2];
    updateCursor();
}

void GiQ::createViewerTools()
{
    for (int orientation = 0; orientation < 3; ++orientation)
        orientationTools[orientation] = new GiSetOrientationTool(orientation);
    resetTool = new GiResetOrientationTool(this);
}

void GiQ::addShapes(GiViewer* viewer)
{
    GiFrameBuffer* buffer = viewer->getFrameBuffer();
    if (panTool) buffer->addShape(panTool);
    buffer->addShape(crossHair);
    if (currentTool) buffer->addShape(currentTool);
}

/// What the panel's buttons run while this viewer is the active one.
void GiQ::overrideTools(GiViewer* viewer)
{
    const auto replace = [&](const char* name, HxViewerTool* tool) {
        if (HxViewerTool* panelTool = panel->findTool(name)) panel->setToolOverride(viewer, panelTool, tool);
    };
    if (panTool) replace("Translate", panTool->wrapper());
    replace("ViewYZ", orientationTools[0]);
    replace("ViewXZ", orientationTools[1]);
    replace("ViewXY", orientationTools[2]);
    replace("Home", resetTool);
}

void GiQ::flipViewers()
{
    for (int i = 0; i < viewers.size(); ++i) {
        viewers[i]->setFlip(flips[0], flips[1], flips[2]);
        GiFrameBuffer* buffer = viewers[i]->getFrameBuffer();
        if (!buffer) continue;
        buffer->render(nullptr);
        buffer->paste();
    }
}

void GiQ::redraw()
{
    Gi::redraw();
    // A key over a slice can change how a material is drawn; its row follows.
    if (toolbox) toolbox->tissueList->updateStates();
}

void GiQ::redrawViewAll()
{
    for (int i = 0; panel && i < panel->numViewers(); ++i)
        if (!isOwnViewer(panel->viewer(i))) panel->viewer(i)->redraw();
    redraw();
}

// Activation

void GiQ::onActivate()
{
    if (!registeredViewers.isEmpty() || !panel) return;
    if (mode == kHostMode) takeMainButton();
    addMenu();
    takePanel();
}

void GiQ::onDeactivate()
{
    if (registeredViewers.isEmpty()) return;
    removeMenu();
    if (mode == kHostMode) giveMainButtonBack();
    if (panel)
        givePanelBack();
    else
        registeredViewers.clear();
}

void GiQ::takeMainButton()
{
    if (HxMain* window = HxMain::getTheMain()) window->showToolPanel(toolbox);
    HxWorkArea* area = HxWorkArea::getTheWorkArea();
    if (QAbstractButton* button = area->mainButton()) {
        button->setText(tr("Close"));
        button->setEnabled(true);
        connect(button, &QAbstractButton::clicked, this, &GiQ::menuClose, Qt::UniqueConnection);
    }
    if (QAbstractButton* neighbour = area->neighbourButton()) neighbour->hide();
}

void GiQ::giveMainButtonBack()
{
    HxWorkArea* area = HxWorkArea::getTheWorkArea();
    if (QAbstractButton* button = area->mainButton()) {
        button->setText(tr("Apply"));
        disconnect(button, &QAbstractButton::clicked, this, &GiQ::menuClose);
    }
    if (QAbstractButton* neighbour = area->neighbourButton()) neighbour->show();
    if (HxMain* window = HxMain::getTheMain()) window->showToolPanel(nullptr);
}

void GiQ::takePanel()
{
    formerLayout = panel->layoutNumber();
    formerViewers.clear();
    for (int i = 0; i < panel->numViewers(); ++i) formerViewers.append(panel->viewer(i));
    panel->setRelayoutHeld(true);
    for (int i = 1; i < formerViewers.size(); ++i) panel->unregisterViewer(formerViewers[i]);
    for (int i = viewers.size() - 1; i >= 0; --i) {
        panel->registerViewer(viewers[i]);
        overrideTools(viewers[i]); // the panel forgets those of a viewer that leaves it
        registeredViewers.append(viewers[i]);
    }
    // The view that most people draw in; a viewer of the host's may have become active meanwhile.
    if (!isOwnViewer(panel->getActiveViewer())) panel->setActiveViewer(viewers[2]);
    updateCursor();
    panel->setLayoutNumber(ownLayout);
    panel->setRelayoutHeld(false);
    panel->reconfigure();
    checkForHiddenSelection(); // until now no viewer had its place
}

void GiQ::givePanelBack()
{
    ownLayout = panel->layoutNumber();
    panel->setRelayoutHeld(true);
    for (HxViewerBase* viewer : std::as_const(registeredViewers)) panel->unregisterViewer(viewer);
    registeredViewers.clear();
    for (int i = 1; i < formerViewers.size(); ++i) panel->registerViewer(formerViewers[i]);
    formerViewers.clear();
    panel->setLayoutNumber(formerLayout);
    panel->setRelayoutHeld(false);
    panel->reconfigure();
}

// The panel

void GiQ::activateViewer(HxViewerBase* viewer)
{
    if (panel->getActiveViewer() != viewer) panel->setActiveViewer(viewer);
    if (isOwnViewer(viewer)) lastViewer = static_cast<GiViewer*>(viewer);
    checkForHiddenSelection();
}

void GiQ::endBrowsing()
{
    for (int i = 0; i < viewers.size(); ++i)
        if (GiFrameBuffer* buffer = viewers[i]->getFrameBuffer()) buffer->setBrowsing(false);
}

void GiQ::changeViewerLayout()
{
    const int several = mode == kSubApplicationMode ? kFourViewers : kThreeViewers;
    panel->setLayoutNumber(panel->layoutNumber() != kOneViewer ? kOneViewer : several);
    focusViewer();
}

void GiQ::focusViewer()
{
    HxViewerBase* active = panel->getActiveViewer();
    if (isOwnViewer(active) && active->getWidget()) active->getWidget()->setFocus(Qt::OtherFocusReason);
}

bool GiQ::isOwnViewer(const HxViewerBase* viewer) const
{
    for (int i = 0; i < viewers.size(); ++i)
        if (viewers[i] == viewer) return true;
    return false;
}

QList<HxViewerBase*> GiQ::visibleViewers() const
{
    QList<HxViewerBase*> visible;
    for (int i = 0; panel && i < panel->numViewers(); ++i)
        if (panel->isViewerVisible(panel->viewer(i))) visible.append(panel->viewer(i));
    return visible;
}
