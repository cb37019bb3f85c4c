// The menus of the main window and what they start.

#include "app/HxConsole.h"
#include "app/HxFileDialog.h"
#include "app/HxHTML.h"
#include "app/HxMain.h"
#include "app/HxObjectMenu.h"
#include "app/HxWorkspace.h"
#include "app/QxPreferenceDialog.h"
#include "hx/HxData.h"
#include "hx/HxEditor.h"
#include "hx/HxFileAccess.h"
#include "hx/HxInterpreter.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxResource.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxSubApplication.h"
#include "io/HxFileKind.h"

#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include <map>

#include <tcl.h>

namespace {

constexpr qsizetype kMostAlone = 8; // files of one kind, chosen together, that may be no series

bool isScript(const QString& path)
{
    return path.endsWith(".hx") || path.endsWith(".tcl");
}

} // namespace

void HxMain::makeFileMenu()
{
    fileMenu = menuBar()->addMenu(tr("&File"));
    openAction = fileMenu->addAction(HxResource::readIcon("HxOpen.png"), tr("&Open..."),
                                     QKeySequence(Qt::CTRL | Qt::Key_O), this, &HxMain::open);
    openAction->setToolTip(tr("Open images, label fields and scripts"));
    fileMenu->addAction(tr("Open as &Labels..."), this, &HxMain::openAsLabels);
    fileMenu->addAction(tr("Open S&lices of a Folder..."), this, &HxMain::openSeries);
    recentFiles = fileMenu->addMenu(tr("Open &Recent"));
    connect(fileMenu, &QMenu::aboutToShow, this, &HxMain::fillRecentFiles);
    fileMenu->addSeparator();
    saveAction =
        fileMenu->addAction(HxResource::readIcon("HxSave.png"), tr("&Save"),
                            QKeySequence(Qt::CTRL | Qt::Key_S), this, [this] { saveData(dataToSave()); });
    saveAction->setObjectName("save");
    saveAsAction = fileMenu->addAction(tr("Save &As..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S),
                                       this, [this] { saveDataAs(dataToSave()); });
    fileMenu->addSeparator();
    fileMenu->addAction(tr("&Preferences..."), this,
                        [] { QxPreferenceDialog::getThePreferenceDialog()->showPage("Segmentation"); });
    fileMenu->addSeparator();
    fileMenu->addAction(tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), this, [this] {
        // A script that chose the entry ends, too.
        if (close()) HxInterpreter::getTheInterpreter()->requestQuit(0);
    });
    connect(fileMenu, &QMenu::aboutToShow, this, &HxMain::updateActions);
    fillRecentFiles();
}

void HxMain::makeObjectMenu()
{
    objectMenu = menuBar()->addMenu(tr("&Object"));
    const auto fill = [this] {
        objectMenu->clear();
        hxFillObjectMenu(*objectMenu, objects->selected(), *objects);
    };
    connect(objectMenu, &QMenu::aboutToShow, this, fill);
    fill();
}

void HxMain::makeViewMenu()
{
    viewMenu = menuBar()->addMenu(tr("&View"));
    viewMenu->addAction(consoleDock->toggleViewAction());
    QAction* right = viewMenu->addAction(tr("&Tools at the Right"));
    right->setCheckable(true);
    connect(right, &QAction::triggered, this, [this](bool on) {
        addDockWidget(on ? Qt::RightDockWidgetArea : Qt::LeftDockWidgetArea, toolDock);
    });
    connect(viewMenu, &QMenu::aboutToShow, this,
            [this, right] { right->setChecked(dockWidgetArea(toolDock) == Qt::RightDockWidgetArea); });
    viewMenu->addAction(tr("C&lear Console"), consoleView, &HxConsole::clear);
    viewMenu->addSeparator();
}

void HxMain::makeHelpMenu()
{
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("&User's Guide"), QKeySequence(Qt::Key_F1), this, [this] {
        HxHTML* browser = HxHTML::getTheBrowser();
        const HxSubApplication* running = HxSubApplication::running();
        const HxEditor* editor = coveringEditor();
        const QString page = running  ? QString::fromUtf8(running->helpPath().c_str())
                             : editor ? QString::fromUtf8(editor->helpPath().c_str())
                                      : QString();
        if (QFileInfo::exists(page))
            browser->load(page.toUtf8().constData());
        else
            browser->home();
        browser->show();
    });
    help->addAction(tr("&Contents"), this, [] {
        HxHTML::getTheBrowser()->home();
        HxHTML::getTheBrowser()->show();
    });
    help->addAction(tr("&About Vorel"), this, &HxMain::showAbout);
}

void HxMain::makeModes()
{
    QToolBar* bar = addToolBar(tr("Modes"));
    bar->setObjectName("modes");
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    bar->addAction(openAction);
    bar->addAction(saveAction);
    bar->addSeparator();

    modes = new QActionGroup(this);
    const auto add = [&](const QString& title, const char* icon, const QString& className) {
        QAction* action = modes->addAction(HxResource::readIcon(icon), title);
        action->setObjectName(className.isEmpty() ? "HxWorkspace" : className);
        action->setCheckable(true);
        action->setChecked(className.isEmpty());
        action->setData(className);
        bar->addAction(action);
        viewMenu->addAction(action);
    };
    add(tr("Workspace"), "HxImage.png", QString());
    for (const HxSubApplicationEntry& entry : HxResource::mSubApplications)
        add(QString::fromStdString(entry.title),
            entry.icon.empty() ? "HxSegmentation.png" : entry.icon.c_str(),
            QString::fromStdString(entry.className));
    connect(modes, &QActionGroup::triggered, this,
            [this](QAction* action) { enterMode(action->data().toString()); });
}

// Opening

void HxMain::open()
{
    openFiles(HxFileDialog::openFiles(this, tr("Open")));
}

void HxMain::openAsLabels()
{
    openFiles(HxFileDialog::openFiles(this, tr("Open as Labels")), true);
}

void HxMain::openSeries()
{
    const QString folder = HxFileDialog::openFolder(this, tr("Open the Slices of a Folder"));
    if (!folder.isEmpty()) openFiles({folder});
}

void HxMain::openFiles(const QStringList& paths, bool asLabels)
{
    // Slices wait for the others of their kind, which may lie anywhere in the list.
    std::map<HxFileKind, QStringList> slices;
    QStringList single, errors;
    for (const QString& path : paths) {
        const HxFileKind kind = isScript(path) ? HxFileKind::unknown : hxSeriesKind(path.toStdString());
        (kind == HxFileKind::unknown ? single : slices[kind]).append(path);
    }
    for (const auto& [kind, files] : slices) {
        QString error;
        if (files.size() > 1 && load(files, asLabels, error)) continue;
        // A few that are no series may be volumes or pictures by themselves. Of many, or of a series that the
        // person has stopped, the reason is what helps.
        if (files.size() > kMostAlone || error.endsWith(": interrupted."))
            errors.append(error);
        else
            single.append(files);
    }
    for (const QString& path : std::as_const(single)) {
        QString error;
        if (!(isScript(path) ? run(path, error) : load({path}, asLabels, error))) errors.append(error);
    }
    if (!errors.isEmpty()) HxMessage::getTheMsg()->error("%s", errors.join('\n').toUtf8().constData());
}

bool HxMain::load(const QStringList& paths, bool asLabels, QString& error)
{
    McDArray<McString> files;
    for (const QString& path : paths) files.append(path.toUtf8().constData());
    McString reason;
    const McHandle<HxData> loaded(HxFileAccess::load(files, asLabels, reason));
    if (!loaded) {
        error = QString::fromUtf8(reason.c_str());
        return false;
    }
    HxObjectPool::getThePool()->addObject(loaded);
    objects->select(loaded);
    rememberFile({paths, asLabels});
    return true;
}

bool HxMain::run(const QString& script, QString& error)
{
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    McString result;
    const int code = interpreter->evalFile(script.toUtf8().constData(), result);
    error = QString::fromUtf8(interpreter->errorText().c_str());
    if (code == TCL_OK) rememberFile({{script}, false});
    return code == TCL_OK || interpreter->quitCode();
}

void HxMain::rememberFile(const HxRecentFile& file)
{
    file.remember();
}

void HxMain::fillRecentFiles()
{
    recentFiles->clear();
    int number = 0;
    for (const HxRecentFile& file : HxRecentFile::all()) {
        QAction* action =
            recentFiles->addAction(QString("&%1 %2").arg(++number).arg(file.title().replace('&', "&&")), this,
                                   [this, file] { openFiles(file.paths, file.asLabels); });
        action->setToolTip(file.paths.join('\n'));
    }
    recentFiles->setToolTipsVisible(true);
    recentFiles->menuAction()->setEnabled(number > 0);
}

void HxMain::showAbout()
{
    HxMessage::getTheMsg()->Info(qPrintable(tr("Vorel %1\n\nA host for volume data; Kelvane, the editor of "
                                               "label fields, runs inside it.")
                                                .arg(QApplication::applicationVersion())));
}
