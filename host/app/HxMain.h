#pragma once

#include <QMainWindow>

class HxConsole;
class HxData;
class HxMainWorkArea;
class HxObject;
class HxSubApplication;
class HxWorkspace;
class QActionGroup;
class QDockWidget;
class QMenu;
class QSplitter;
class QStackedLayout;
class QxViewerPanel;

/// The main window: a column of tool panels at the left, viewers at the right, the console below.
///
/// Tool panels and viewer areas are stacks whose page 0 is the host's own: the workspace, and the main viewer
/// panel. Sub-applications and editors add their pages. Exists from the start of the program to its end, also
/// when nothing is shown; main thread only.
class HxMain : public QMainWindow
{
    Q_OBJECT

public:
    HxMain();
    ~HxMain() override;

    /// Null before it is made.
    static HxMain* getTheMain();

    static bool isMainThread();

    QStackedLayout* toolPanelLayout() const { return toolPanels; }
    QStackedLayout* viewerLayout() const { return viewerAreas; }

    QWidget* currentToolPanel() const;

    /// Makes this the current tool panel, and adds it to the stack if it is not there; null means page 0.
    void showToolPanel(QWidget* panel);

    /// Saves to the object's file, or asks for one when there is none that can be written. Returns false,
    /// having told the person why, when it is not saved, also when the person cancels.
    bool saveData(HxData* data);

    /// Asks for the file first.
    bool saveDataAs(HxData* data);

    /// That of the normal window.
    QxViewerPanel* viewerPanel() const { return panel; }

    HxConsole* console() const { return consoleView; }
    HxWorkspace* workspace() const { return objects; }
    HxMainWorkArea* workArea() const { return area; }

    /// Questions and errors become dialogs, messages go to the console pane; for runs with a display.
    void takeMessages();

    /// Reads data files, each an object of its own, and runs those that are scripts. What fails is told in
    /// one dialog.
    void openFiles(const QStringList& paths);

public slots:
    void open();
    void openAsLabels();
    void openSeries();
    void save();
    void saveAs();
    void showPreferences();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void makeColumns();
    void makeConsole();
    void makeModes();
    void makeFileMenu();
    void makeObjectMenu();
    void makeViewMenu();
    void makeHelpMenu();
    void switchMode(HxSubApplication* application);
    void enterMode(const char* className);
    bool load(const QStringList& paths, bool asLabels, QString& error);
    void remember(const QString& path);
    void fillRecentFiles();
    void updateActions();
    void showHelp();
    void showAbout();
    void restoreWindow();
    void storeWindow();
    HxData* dataToSave() const;

    QSplitter* columns = nullptr;
    QStackedLayout* toolPanels = nullptr;
    QStackedLayout* viewerAreas = nullptr;
    HxWorkspace* objects = nullptr;
    HxMainWorkArea* area = nullptr;
    HxConsole* consoleView = nullptr;
    QDockWidget* consoleDock = nullptr;
    QxViewerPanel* panel = nullptr;
    QActionGroup* modes = nullptr;
    QMenu* recentFiles = nullptr;
    QMenu* objectMenu = nullptr;
    QAction* saveAction = nullptr;
    QAction* saveAsAction = nullptr;
};
