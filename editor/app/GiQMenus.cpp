// The menus: what is in them, which operation an entry runs, and what they show when they open.

#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "app/HxHTML.h"
#include "app/QxViewerPanel.h"
#include "display/GiViewer.h"
#include "filters/GiFilter.h"
#include "hx/HxInterpreter.h"
#include "hx/HxMessage.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxSkin.h"
#include "tools/giGuarded.h"

#include <QAction>
#include <QActionGroup>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QSignalBlocker>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>

/// One entry. An operation that is not part of this build is null: the entry stays in its place, disabled.
struct GiQ::MenuEntry
{
    const char* text;
    QKeyCombination key;
    void (GiQ::*operation)();
};

namespace {

constexpr QKeyCombination kNoKey = QKeyCombination::fromCombined(0);
constexpr int kEmbeddedMode = 1;
constexpr int kFlipX = 10, kFlipY = 20, kFlipZ = 30; // data of the flip actions; below are orientations
constexpr int kLastOrientation = 2;

bool scriptVariableExists(const char* name)
{
    return HxInterpreter::getTheInterpreter()->getVar(name) != nullptr;
}

} // namespace

void GiQ::buildMenus()
{
    buildSegmentationMenu();
    buildSelectionMenu();
    readFlipPreference();
}

void GiQ::addEntries(QMenu* menu, std::initializer_list<MenuEntry> entries)
{
    for (const MenuEntry& entry : entries) {
        QAction* action = menu->addAction(tr(entry.text));
        if (entry.key != kNoKey) action->setShortcut(entry.key);
        if (entry.operation)
            connect(action, &QAction::triggered, this, giGuardedSlot(this, entry.operation));
        else
            deadActions.append(action);
    }
}

void GiQ::buildSegmentationMenu()
{
    segmentationMenu = new QMenu(tr("&Segmentation"));
    QMenu* menu = segmentationMenu;
    addEntries(menu, {{"Undo", Qt::CTRL | Qt::Key_Z, &GiQ::menuUndo}});
    undoAction = menu->actions().constFirst();
    menu->addSeparator();
    buildOrientationMenu();
    activeMenu = menu->addMenu(tr("Current viewer"));
    connect(activeMenu, &QMenu::aboutToShow, this, &GiQ::configureActivePopup);
    connect(activeMenu, &QMenu::triggered, this, giGuardedSlot(this, &GiQ::activeViewerChanged));
    if (scriptVariableExists("giNeuroMode")) addEntries(menu, {{"Projection", kNoKey, nullptr}});
    if (mode != kEmbeddedMode) addEntries(menu, {{"Material Statistics...", kNoKey, nullptr}});
    menu->addSeparator();
    addEntries(menu->addMenu(tr("&Fill holes")),
               {{"Current slice", Qt::CTRL | Qt::Key_H, nullptr}, {"All slices", kNoKey, nullptr}});
    addEntries(menu, {{"&Remove islands ...", kNoKey, nullptr}, {"&Smooth labels ...", kNoKey, nullptr}});
    if (scriptVariableExists("giRemoveSkinFilter")) addEntries(menu, {{"Remove s&kin ...", kNoKey, nullptr}});
    if (mode == 0) buildImageMenus();
    menu->addSeparator();
    addPluginFilters();
}

void GiQ::buildOrientationMenu()
{
    struct Item
    {
        const char* text;
        const char* embeddedText;
        QKeyCombination key;
        int data;
    };
    orientationMenu = segmentationMenu->addMenu(tr("Orientation"));
    const auto add = [this](const Item& item) {
        QAction* action =
            orientationMenu->addAction(tr(mode == kEmbeddedMode ? item.embeddedText : item.text));
        if (item.key != kNoKey) action->setShortcut(item.key);
        action->setCheckable(true);
        action->setData(item.data);
    };
    for (const Item& item :
         {Item{"XY (axial)", "XY Plane", kNoKey, 2}, Item{"XZ (coronal)", "XZ Plane", kNoKey, 1},
          Item{"YZ (sagittal)", "YZ Plane", kNoKey, 0}})
        add(item);
    orientationMenu->actions().constFirst()->setChecked(true);
    orientationMenu->addSeparator();
    for (const Item& item : {Item{"Flip X", "Flip X", Qt::ALT | Qt::Key_X, kFlipX},
                             Item{"Flip Y", "Flip Y", Qt::ALT | Qt::Key_Y, kFlipY},
                             Item{"Flip Z", "Flip Z", Qt::ALT | Qt::Key_Z, kFlipZ}})
        add(item);
    connect(orientationMenu, &QMenu::triggered, this, giGuardedSlot(this, &GiQ::orientationChanged));
    connect(orientationMenu, &QMenu::aboutToShow, this, &GiQ::configureOrientationPopup);
}

void GiQ::buildSelectionMenu()
{
    selectionMenu = new QMenu(tr("&Selection"));
    QMenu* menu = selectionMenu;
    addEntries(menu->addMenu(tr("&Grow")), {{"Current slice", Qt::CTRL | Qt::Key_Plus, &GiQ::growSelection2D},
                                            {"All slices", kNoKey, &GiQ::growSelectionAll2D},
                                            {"Volume", kNoKey, &GiQ::growSelection3D}});
    addEntries(menu->addMenu(tr("&Shrink")),
               {{"Current slice", Qt::CTRL | Qt::Key_Minus, &GiQ::shrinkSelection2D},
                {"All slices", kNoKey, &GiQ::shrinkSelectionAll2D},
                {"Volume", kNoKey, &GiQ::shrinkSelection3D}});
    addEntries(menu->addMenu(tr("&Fill")), {{"Current slice", Qt::CTRL | Qt::Key_F, &GiQ::selectionFill},
                                            {"All slices", kNoKey, &GiQ::selectionFillAll},
                                            {"Volume", kNoKey, &GiQ::selectionFillVolume}});
    addEntries(menu->addMenu(tr("S&mooth")),
               {{"Current slice", Qt::CTRL | Qt::Key_M, nullptr}, {"All slices", kNoKey, nullptr}});
    addEntries(menu->addMenu(tr("Invert")), {{"Current slice", kNoKey, &GiQ::selectionInvert2D},
                                             {"All slices", kNoKey, &GiQ::selectionInvert3D}});
    addEntries(menu, {{"S&nakes ...", kNoKey, nullptr},
                      {"Make &ellipse", kNoKey, &GiQ::selectionEllipse},
                      {"&Interpolate", Qt::CTRL | Qt::Key_I, nullptr},
                      {"&Wrap", Qt::CTRL | Qt::Key_W, nullptr}});
}

void GiQ::addPluginFilters()
{
    for (int i = 0; i < pluginFilters.size(); ++i)
        if (pluginFilters[i])
            segmentationMenu->addAction(pluginFilters[i]->name)->setData(pluginFilters[i]->name);
    // The whole menu is connected: entries without data and with other data fall through.
    connect(segmentationMenu, &QMenu::triggered, this, &GiQ::menuPluginFilter);
}

// In the bar

void GiQ::addMenu()
{
    if (!menuBar) return;
    if (menuActions.isEmpty())
        menuActions = {menuBar->addMenu(segmentationMenu), menuBar->addMenu(selectionMenu)};
    for (QAction* action : std::as_const(menuActions)) action->setVisible(true);
}

void GiQ::removeMenu()
{
    if (!menuBar) return;
    for (QAction* action : std::as_const(menuActions)) action->setVisible(false);
}

void GiQ::setMenuEnabled(bool on)
{
    if (!menuBar) return;
    enableActions(segmentationMenu, on);
    enableActions(selectionMenu, on);
    if (on) updateUndoSensitivity();
}

void GiQ::enableActions(QMenu* menu, bool on)
{
    for (QAction* action : menu->actions()) {
        action->setEnabled(on && !deadActions.contains(action));
        if (action->menu()) enableActions(action->menu(), on);
    }
}

// Orientation and flips

QAction* GiQ::orientationAction(int data) const
{
    for (QAction* action : orientationMenu->actions())
        if (!action->isSeparator() && action->data().toInt() == data) return action;
    return nullptr;
}

// kept: the flips of the last session only check the entries; the display starts unflipped, and the check
// marks follow it when the menu opens. A mirrored start would be taken for the data's own side.
void GiQ::readFlipPreference()
{
    int orientation, x, y, z;
    const char* text = HxSettingsMgr::getInstance()->getPreferences().giOrientation;
    if (std::sscanf(text ? text : "", "%d%d%d%d", &orientation, &x, &y, &z) != 4) return;
    orientationAction(kFlipX)->setChecked(x != 0);
    orientationAction(kFlipY)->setChecked(y != 0);
    orientationAction(kFlipZ)->setChecked(z != 0);
}

void GiQ::writeFlipPreference()
{
    if (!orientationMenu) return;
    HxPreferences copy = HxSettingsMgr::getInstance()->getPreferences();
    copy.giOrientation = McString::printf(
        "%d %d %d %d", viewers.size() > 0 ? viewers[0]->getOrientation() : 0,
        orientationAction(kFlipX)->isChecked() ? 1 : 0, orientationAction(kFlipY)->isChecked() ? 1 : 0,
        orientationAction(kFlipZ)->isChecked() ? 1 : 0);
    HxSettingsMgr::getInstance()->setPreferences(copy, false);
}

void GiQ::orientationChanged(QAction* action)
{
    const int data = action->data().toInt();
    if (data > kLastOrientation) {
        unsigned char& flip = flips[data / 10 - 1];
        flip = !flip;
        flipViewers();
    } else if (GiViewer* viewer = getCurrentViewer()) {
        viewer->setOrientation(data);
    }
    checkForHiddenSelection();
}

void GiQ::configureOrientationPopup()
{
    const QSignalBlocker quiet(orientationMenu.data());
    const GiViewer* viewer = getCurrentViewer();
    for (int orientation = 0; orientation <= kLastOrientation; ++orientation)
        orientationAction(orientation)->setChecked(viewer && viewer->getOrientation() == orientation);
    orientationAction(kFlipX)->setChecked(flips[0]);
    orientationAction(kFlipY)->setChecked(flips[1]);
    orientationAction(kFlipZ)->setChecked(flips[2]);
}

// Current viewer

void GiQ::configureActivePopup()
{
    static constexpr const char* kNames[] = {"YZ", "XZ", "XY"};
    const QSignalBlocker quiet(activeMenu.data());
    activeMenu->clear();
    int number = 0;
    for (HxViewerBase* viewer : visibleViewers()) {
        ++number;
        const char* kind =
            isOwnViewer(viewer) ? kNames[static_cast<GiViewer*>(viewer)->getOrientation()] : "3D";
        QAction* action = activeMenu->addAction(tr("Viewer %1 (%2)").arg(number).arg(kind));
        action->setData(number - 1);
        action->setCheckable(true);
        action->setChecked(viewer == panel->getActiveViewer());
    }
}

void GiQ::activeViewerChanged(QAction* action)
{
    const QList<HxViewerBase*> visible = visibleViewers();
    const int i = action->data().toInt();
    if (i >= 0 && i < visible.size()) panel->setActiveViewer(visible[i]);
    checkForHiddenSelection();
}

// Entries

void GiQ::menuUndo()
{
    undo();
}

void GiQ::menuRedo()
{
    redo();
}

void GiQ::menuAction()
{
    std::puts("GiQ::menuAction()");
}

void GiQ::menuPluginFilter(QAction* action)
{
    const QByteArray name = action->data().toString().toLocal8Bit();
    GiFilter* chosen = nullptr;
    for (GiFilter* filter : pluginFilters)
        if (filter && !name.isEmpty() && name == filter->name) chosen = filter; // of equal names the last
    if (!chosen) return;
    try {
        if (QWidget* widget = chosen->getWidget(toolbox, true)) {
            widget->show();
            widget->raise();
        }
    } catch (const std::exception& e) { // of foreign code, which may throw what it likes
        HxMessage::getTheMsg()->error("The dialog of \"%s\" cannot be opened: %s", chosen->name, e.what());
    } catch (...) {
        HxMessage::getTheMsg()->error("The dialog of \"%s\" cannot be opened.", chosen->name);
    }
}

void GiQ::menuUsersguide()
{
    const McString path = HxSkin::getGlobalInstance()->getPathToHelpFile("GI.html", "kelvane");
    HxHTML* browser = HxHTML::getTheBrowser();
    if (std::filesystem::exists(static_cast<const char*>(path)))
        browser->load(path);
    else
        browser->home();
    browser->show();
}

void GiQ::onHide()
{
    for (int i = 0; i < filters.size(); ++i)
        if (QWidget* widget = filters[i] ? filters[i]->getWidget(toolbox, false) : nullptr) widget->close();
}
