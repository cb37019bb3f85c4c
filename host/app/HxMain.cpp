#include "app/HxMain.h"

#include "app/HxConsole.h"
#include "app/HxFileDialog.h"
#include "app/HxMainWorkArea.h"
#include "app/HxToolScroll.h"
#include "app/HxUnsavedData.h"
#include "app/HxWorkspace.h"
#include "app/QxViewerPanel.h"
#include "app/hxFitWindow.h"
#include "app/hxShowDialog.h"
#include "hx/HxCompModule.h"
#include "hx/HxData.h"
#include "hx/HxEditor.h"
#include "hx/HxInterpreter.h"
#include "hx/HxLabelField3.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
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

#include <algorithm>

namespace {

constexpr QSize kFirstSize(1280, 800);
constexpr int kFirstColumnWidth = 330;
constexpr int kFirstConsoleHeight = 110;
constexpr const char* kGeometryKey = "mainWindow";
// Not known before the window is shown; frames of window managers are seldom wider.
constexpr QMargins kFrame(4, 40, 4, 4);
constexpr const char* kMaximizedKey = "mainWindow.maximized";
constexpr const char* kStateKey = "mainWindow.docks";

HxMain* theMain = nullptr;

/// Free for windows, the main screen first. That of the offscreen platform is none that anybody looks at, so
/// pictures of the window have their full size there.
QList<QRect> screenAreas()
{
    QList<QRect> areas;
    if (QGuiApplication::platformName() == "offscreen") return areas;
    for (const QScreen* screen : QGuiApplication::screens()) areas.append(screen->availableGeometry());
    return areas;
}

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
    followPool();
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
    auto* scroll = new HxToolScroll(column);
    toolPanels = scroll->panels();
    objects = new HxWorkspace(column);
    toolPanels->addWidget(objects);
    connect(toolPanels, &QStackedLayout::currentChanged, this, &HxMain::updateActionsSoon);
    rows->addWidget(scroll, 1);
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
    const QString name = QString::fromUtf8(object->getLabel());
    const QString ownFile = object->hasFile() ? QString::fromUtf8(object->getFilename()) : QString();
    const bool labels = dynamic_cast<HxLabelField3*>(object);
    const QString path =
        HxFileDialog::saveFile(this, tr("Save %1").arg(name), HxFileDialog::proposal(name, ownFile), labels);
    return !path.isEmpty() && write(object, path);
}

bool HxMain::write(HxData* object, const QString& path)
{
    McString error;
    if (!object->save(path.toUtf8().constData(), error)) {
        HxMessage::getTheMsg()->error("%s", error.c_str());
        return false;
    }
    HxFileDialog::rememberSaved(path);
    rememberFile({{path}, dynamic_cast<HxLabelField3*>(object) != nullptr});
    tellLoss(QString::fromUtf8(error.c_str()));
    return true;
}

/// Once for each file: who saves often has read it. A script is not held up, and has it on the console.
void HxMain::tellLoss(const QString& loss)
{
    if (loss.isEmpty() || toldLosses.contains(loss) || HxInterpreter::isScriptRunning()) return;
    toldLosses.append(loss);
    HxMessage::getTheMsg()->Info(loss.toUtf8().constData());
}

HxData* HxMain::dataToSave() const
{
    // One that stops still counts as running while its pages are gone already.
    if (mode && mode == HxSubApplication::running()) return mode->currentData();
    if (currentToolPanel() == objects) return dynamic_cast<HxData*>(objects->selected());
    const HxEditor* editor = coveringEditor();
    return editor ? editor->data() : nullptr;
}

/// The editor that has put its panel over the list, whose selection nobody sees then; null if none has.
HxEditor* HxMain::coveringEditor() const
{
    if (currentToolPanel() == objects) return nullptr;
    const std::vector<HxEditor*>& editors = HxEditor::all();
    const auto found = std::find_if(editors.rbegin(), editors.rend(),
                                    [](const HxEditor* editor) { return editor->data() != nullptr; });
    return found == editors.rend() ? nullptr : *found;
}

/// What a person can do who sees no viewer yet.
QString HxMain::nextStep() const
{
    bool hasImage = false, hasLabels = false;
    const HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i) {
        if (pool->object(i)->isIconHidden() || !dynamic_cast<HxField3*>(pool->object(i))) continue;
        (dynamic_cast<HxLabelField3*>(pool->object(i)) ? hasLabels : hasImage) = true;
    }
    if (!hasImage && !hasLabels) return tr("Drop image files here, or open them with Ctrl+O.");

    QStringList steps;
    if (hasImage)
        steps.append(
            tr("To make labels, select the image in the list and choose New Labels in the menu Object."));
    if (hasLabels) steps.append(tr("To edit labels, select them in the list and press Edit Labels."));
    if (!HxResource::mSubApplications.empty())
        steps.append(tr("Or change to %1 in the bar above.")
                         .arg(QString::fromStdString(HxResource::mSubApplications.front().title)));
    return steps.join("\n\n");
}

void HxMain::followPool()
{
    HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i) followObject(pool->object(i));
    connect(pool->notifier(), &HxObjectPool::objectAdded, this, &HxMain::followObject);
    connect(pool->notifier(), &HxObjectPool::objectRemoved, this, &HxMain::updateActionsSoon);
    connect(pool->notifier(), &HxObjectPool::iconVisibilityChanged, this, &HxMain::updateActionsSoon);
    connect(pool->notifier(), &HxObjectPool::viewerTogglesChanged, this, &HxMain::updateActionsSoon);
}

void HxMain::followObject(HxObject* object)
{
    if (auto* changing = dynamic_cast<HxData*>(object))
        connect(changing, &HxData::modifiedChanged, this, &HxMain::updateActionsSoon, Qt::UniqueConnection);
    updateActionsSoon();
}

/// For what also makes modes and editors change their data: they have done so by then.
void HxMain::updateActionsSoon()
{
    if (updatePending) return;
    updatePending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            updatePending = false;
            updateActions();
        },
        Qt::QueuedConnection);
}

/// A disabled entry leaves its key to whoever has the focus.
void HxMain::updateActions()
{
    const bool canSave = dataToSave();
    saveAction->setEnabled(canSave);
    saveAsAction->setEnabled(canSave);
    panel->setHint(nextStep());
    // Whoever has made the buttons its own keeps them as they are.
    if (currentToolPanel() != objects) return;
    const bool canCompute = dynamic_cast<HxCompModule*>(objects->selected());
    area->mainButton()->setEnabled(canCompute);
    area->neighbourButton()->setEnabled(canCompute);
}

// The window

void HxMain::closeEvent(QCloseEvent* event)
{
    if (!hxMayDropUnfinished() || !hxMayDrop(hxUnsavedData())) {
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
    HxSettingsMgr* settings = HxSettingsMgr::getInstance();
    const QRect stored = settings->getGeometry(kGeometryKey);
    if (stored.isValid())
        setGeometry(hxFitWindow(stored, kFrame, screenAreas()));
    else // the window manager finds the place
        resize(hxFitWindow(QRect(QPoint(), kFirstSize), kFrame, screenAreas().mid(0, 1)).size());
    resizeDocks({toolDock}, {kFirstColumnWidth}, Qt::Horizontal);
    resizeDocks({consoleDock}, {kFirstConsoleHeight}, Qt::Vertical);
    if (!settings->getTexts(kMaximizedKey).isEmpty()) setWindowState(windowState() | Qt::WindowMaximized);
    restoreState(QByteArray::fromBase64(settings->getTexts(kStateKey).value(0).toLatin1()));
}

void HxMain::storeWindow()
{
    HxSettingsMgr* settings = HxSettingsMgr::getInstance();
    settings->setGeometry(kGeometryKey, normalGeometry().isValid() ? normalGeometry() : geometry());
    settings->setTexts(kMaximizedKey, isMaximized() ? QStringList("1") : QStringList());
    settings->setTexts(kStateKey, {QString::fromLatin1(saveState().toBase64())});
}
