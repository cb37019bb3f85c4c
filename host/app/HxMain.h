#pragma once

#include "app/HxRecentFile.h"

#include <QMainWindow>
#include <QStringList>

class HxConsole;
class HxData;
class HxEditor;
class HxMainWorkArea;
class HxObject;
class HxSubApplication;
class HxWorkspace;
class QActionGroup;
class QDockWidget;
class QMenu;
class QStackedLayout;
class QxViewerPanel;

/// The main window: a column of tool panels beside the viewers, the console below these.
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
    bool saveData(HxData* object);

    /// Asks for the file first.
    bool saveDataAs(HxData* object);

    /// That of the normal window.
    QxViewerPanel* viewerPanel() const { return panel; }

    HxConsole* console() const { return consoleView; }
    HxWorkspace* workspace() const { return objects; }
    HxMainWorkArea* workArea() const { return area; }

    /// Questions and errors become dialogs, messages also go to the console pane; for runs with a display.
    void takeMessages();

    /// Reads data files and runs those that are scripts. Slices of one kind become one series if they are
    /// one; each other file is an object of its own. What fails is told in one dialog.
    ///
    /// asLabels  data become label fields
    void openFiles(const QStringList& paths, bool asLabels = false);

    /// Puts what was opened or saved on top of the list of recent files.
    void rememberFile(const HxRecentFile& file);

    QSize sizeHint() const override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void makeToolColumn();
    void makeViewers();
    void makeConsole();
    void makeFileMenu();
    void makeObjectMenu();
    void makeViewMenu();
    void makeHelpMenu();
    void makeModes();
    void switchMode(HxSubApplication* application);
    void enterMode(const QString& className);
    void open();
    void openAsLabels();
    void openSeries();
    bool load(const QStringList& paths, bool asLabels, QString& error);
    bool run(const QString& script, QString& error);
    bool write(HxData* object, const QString& path);
    void tellLoss(const QString& loss);
    void fillRecentFiles();
    void updateActions();
    void updateActionsSoon();
    void followPool();
    void followObject(HxObject* object);
    HxData* dataToSave() const;
    HxEditor* coveringEditor() const;
    QString nextStep() const;
    void compute();
    void showAbout();
    void restoreWindow();
    void storeWindow();

    QStackedLayout* toolPanels = nullptr;
    QStackedLayout* viewerAreas = nullptr;
    QDockWidget* toolDock = nullptr;
    HxWorkspace* objects = nullptr;
    HxMainWorkArea* area = nullptr;
    HxConsole* consoleView = nullptr;
    QDockWidget* consoleDock = nullptr;
    QxViewerPanel* panel = nullptr;
    HxSubApplication* mode = nullptr; // whose pages show; null for the host's own
    QActionGroup* modes = nullptr;
    QMenu* fileMenu = nullptr;
    QMenu* recentFiles = nullptr;
    QMenu* objectMenu = nullptr;
    QMenu* viewMenu = nullptr;
    QAction* openAction = nullptr;
    QAction* saveAction = nullptr;
    QAction* saveAsAction = nullptr;
    QStringList toldLosses; // sentences about saved files that were shown
    bool updatePending = false;
};
