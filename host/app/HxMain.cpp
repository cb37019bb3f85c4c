#include "app/HxMain.h"

#include "app/HxConsole.h"
#include "app/HxFileDialog.h"
#include "app/HxMainWorkArea.h"
#include "app/HxUnsavedData.h"
#include "app/HxWorkspace.h"
#include "app/QxViewerPanel.h"
#include "app/hxShowDialog.h"
#include "hx/HxCompModule.h"
#include "hx/HxData.h"
#include "hx/HxMessage.h"
#include "hx/HxResource.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxSubApplication.h"
#include "mc/McException.h"

#include <QAbstractButton>
#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileInfo>
#include <QMimeData>
#include <QScreen>
#include <QStackedLayout>
#include <QThread>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr QSize kFirstSize(1280, 800);
constexpr int kFirstColumnWidth = 330;
constexpr int kFirstConsoleHeight = 110;
constexpr const char* kGeometryKey = "mainWindow";
constexpr const char* kStateKey = "mainWindow.docks";

HxMain* theMain = nullptr;

} // namespace

HxMain::HxMain()
{
    theMain = this;
    setObjectName("mainWindow");
    setWindowTitle(QApplication::applicationDisplayName());
    setWindowIcon(HxResource::readIcon("HxVorel.png"));
    setAcceptDrops(true);
    // The tool panels take the whole height, the console only the width of the viewers.
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);

    makeToolColumn();
    makeViewers();
    makeConsole();
    makeFileMenu();
    makeObjectMenu();
    makeViewMenu();
    makeHelpMenu();
    makeModes();
    updateActions();

    HxWorkArea::getTheWorkArea()->setView(area);
    HxSubApplication::setSwitchHandler([this](HxSubApplication* application) { switchMode(application); });
    connect(objects, &HxWorkspace::selectionChanged, this, &HxMain::updateActions);
    connect(objects, &HxWorkspace::valueChanged, this, [this] {
        if (area->neighbourButton()->isChecked()) compute();
    });
    connect(area->mainButton(), &QAbstractButton::clicked, this, &HxMain::compute);
    restoreWindow();
}

HxMain::~HxMain()
{
    HxSubApplication::setSwitchHandler({});
    HxMessage::setSink({});
    HxMessage::setDialogHandler({});
    HxWorkArea::getTheWorkArea()->setView(nullptr);
    theMain = nullptr;
}

HxMain* HxMain::getTheMain()
{
    return theMain;
}

bool HxMain::isMainThread()
{
    return QCoreApplication::instance() && QThread::currentThread() == QCoreApplication::instance()->thread();
}

QSize HxMain::sizeHint() const
{
    return kFirstSize;
}

void HxMain::makeToolColumn()
{
    auto* column = new QWidget;
    auto* rows = new QVBoxLayout(column);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    toolPanels = new QStackedLayout;
    objects = new HxWorkspace(column);
    toolPanels->addWidget(objects);
    rows->addLayout(toolPanels, 1);
    area = new HxMainWorkArea(column);
    rows->addWidget(area);

    toolDock = new QDockWidget(tr("Tools"), this);
    toolDock->setObjectName("tools");
    toolDock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    toolDock->setTitleBarWidget(new QWidget(toolDock)); // it is moved by the menu; a title would cost height
    toolDock->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    toolDock->setWidget(column);
    addDockWidget(Qt::LeftDockWidgetArea, toolDock);
}

void HxMain::makeViewers()
{
    auto* viewers = new QWidget(this);
    viewerAreas = new QStackedLayout(viewers);
    panel = new QxViewerPanel(viewers);
    panel->setObjectName("viewerPanel");
    panel->setHint(tr("Drop image files here, or open them with Ctrl+O.\n\nTo edit labels, select a label "
                      "field in the list and press Edit Labels."));
    viewerAreas->addWidget(panel);
    setCentralWidget(viewers);
}

void HxMain::makeConsole()
{
    consoleView = new HxConsole(this);
    consoleDock = new QDockWidget(tr("Console"), this);
    consoleDock->setObjectName("consoleDock");
    consoleDock->setWidget(consoleView);
    consoleDock->setAllowedAreas(Qt::BottomDockWidgetArea | Qt::TopDockWidgetArea);
    addDockWidget(Qt::BottomDockWidgetArea, consoleDock);
}

QWidget* HxMain::currentToolPanel() const
{
    return toolPanels->currentWidget();
}

void HxMain::showToolPanel(QWidget* toolPanel)
{
    if (toolPanel && toolPanels->indexOf(toolPanel) < 0) toolPanels->addWidget(toolPanel);
    toolPanels->setCurrentWidget(toolPanel ? toolPanel : objects);
    updateActions();
}

void HxMain::takeMessages()
{
    HxMessage::setDialogHandler(hxShowDialog);
    HxMessage::setSink([this](const char* entry) {
        consoleView->append(QString::fromUtf8(entry));
        // Who started the program from a terminal may still read there what a crash would take away.
        const std::string_view text(entry);
        std::fprintf(stderr, "%s%s", entry, text.ends_with('\n') ? "" : "\n");
    });
}

/// The main button at rest; a tool panel that has made it its own is not the workspace.
void HxMain::compute()
{
    if (currentToolPanel() != objects) return;
    try {
        objects->fireSelected();
    } catch (const McException& exception) {
        HxResource::handleException(exception);
    }
}

// Modes

/// Called last in the start or stop of a sub-application, which shows its own pages.
void HxMain::switchMode(HxSubApplication* application)
{
    mode = application;
    if (!application) {
        toolPanels->setCurrentIndex(0);
        viewerAreas->setCurrentIndex(0);
    }
    // The buttons below are the workspace's; a sub-application has its own and needs the height.
    area->mainButton()->setVisible(!application);
    area->mainButton()->setEnabled(true);
    area->neighbourButton()->setVisible(!application);
    QString title;
    for (const HxSubApplicationEntry& entry : HxResource::mSubApplications)
        if (application && entry.className == application->getTypeId().name())
            title = QString::fromStdString(entry.title);
    for (QAction* action : modes->actions())
        action->setChecked(application ? action->data().toString() == application->getTypeId().name()
                                       : action->data().toString().isEmpty());
    const QString name = QApplication::applicationDisplayName();
    setWindowTitle(title.isEmpty() ? name : title + " - " + name);
    updateActions();
}

void HxMain::enterMode(const QString& className)
{
    try {
        if (className.isEmpty()) {
            HxSubApplication::leaveRunning();
        } else if (HxSubApplication* application =
                       HxResource::subApplication(className.toUtf8().constData())) {
            application->makeCurrent();
        } else {
            HxMessage::getTheMsg()->error("%s cannot be started; the console says why.",
                                          className.toUtf8().constData());
        }
    } catch (const McException& exception) {
        HxResource::handleException(exception);
    }
    // A start that failed leaves the former mode, and its button is to say so.
    const HxSubApplication* running = HxSubApplication::running();
    const QString shown = running ? running->getTypeId().name() : "";
    for (QAction* action : modes->actions()) action->setChecked(action->data().toString() == shown);
}

// Saving

bool HxMain::saveData(HxData* object)
{
    if (!object) return false;
    const QString path = QString::fromUtf8(object->getFilename());
    return object->hasFile() && HxFileDialog::isWritable(path) ? write(object, path) : saveDataAs(object);
}

bool HxMain::saveDataAs(HxData* object)
{
    if (!object) return false;
    QString name = QString::fromUtf8(object->getLabel());
    if (!HxFileDialog::isWritable(name) || !name.contains('.')) name += ".nrrd";
    const QString path = HxFileDialog::saveFile(this, tr("Save %1").arg(object->getLabel()), name);
    return !path.isEmpty() && write(object, path);
}

bool HxMain::write(HxData* object, const QString& path)
{
    McString error;
    if (!object->save(path.toUtf8().constData(), error)) {
        HxMessage::getTheMsg()->error("%s", error.c_str());
        return false;
    }
    rememberFile(path);
    return true;
}

HxData* HxMain::dataToSave() const
{
    // One that stops still counts as running while its pages are gone already.
    if (mode && mode == HxSubApplication::running()) return mode->currentData();
    return dynamic_cast<HxData*>(objects->selected());
}

/// A disabled entry leaves its key to whoever has the focus.
void HxMain::updateActions()
{
    const bool canSave = dataToSave();
    saveAction->setEnabled(canSave);
    saveAsAction->setEnabled(canSave);
    // Whoever has made the buttons its own keeps them as they are.
    if (currentToolPanel() != objects) return;
    const bool canCompute = dynamic_cast<HxCompModule*>(objects->selected());
    area->mainButton()->setEnabled(canCompute);
    area->neighbourButton()->setEnabled(canCompute);
}

// The window

void HxMain::closeEvent(QCloseEvent* event)
{
    if (!hxMayDrop(hxUnsavedData())) {
        event->ignore();
        return;
    }
    storeWindow();
    event->accept();
}

void HxMain::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void HxMain::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) paths.append(url.toLocalFile());
    event->acceptProposedAction();
    openFiles(paths);
}

void HxMain::restoreWindow()
{
    resize(kFirstSize);
    resizeDocks({toolDock}, {kFirstColumnWidth}, Qt::Horizontal);
    resizeDocks({consoleDock}, {kFirstConsoleHeight}, Qt::Vertical);

    HxSettingsMgr* settings = HxSettingsMgr::getInstance();
    const QRect stored = settings->getGeometry(kGeometryKey);
    const QScreen* screen = QGuiApplication::screenAt(stored.center());
    // The screen of the last session may be gone.
    if (stored.isValid() && screen) setGeometry(stored.intersected(screen->availableGeometry()));
    restoreState(QByteArray::fromBase64(settings->getTexts(kStateKey).value(0).toLatin1()));
}

void HxMain::storeWindow()
{
    HxSettingsMgr* settings = HxSettingsMgr::getInstance();
    settings->setGeometry(kGeometryKey, normalGeometry().isValid() ? normalGeometry() : geometry());
    settings->setTexts(kStateKey, {QString::fromLatin1(saveState().toBase64())});
}
