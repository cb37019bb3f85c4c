#include "MainWindow.h"

#include "app/HxController.h"
#include "app/HxFileDialog.h"
#include "app/HxHTML.h"
#include "app/HxMainWorkArea.h"
#include "app/HxWorkspace.h"
#include "app/QxViewerPanel.h"
#include "hx/HxClassRegistry.h"
#include "hx/HxCompModule.h"
#include "hx/HxEditor.h"
#include "hx/HxPortIntTextN.h"
#include "hx/HxResource.h"
#include "hx/HxSkin.h"
#include "hx/HxSubApplication.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QSpinBox>
#include <QStackedLayout>
#include <QTextBrowser>

namespace {

/// A mode with a tool panel and a viewer page of its own.
class PaintMode : public HxSubApplication
{
public:
    McTypeId getTypeId() const override { return hxClassType<PaintMode, HxSubApplication>("PaintMode"); }
    HxData* currentData() override { return painted; }
    void onStart() override
    {
        HxMain* main = HxMain::getTheMain();
        if (!tools) main->toolPanelLayout()->addWidget(tools = new QLabel("paint"));
        QxViewerPanel* panel = HxController::panel(HxController::kSubApplicationViewer);
        if (main->viewerLayout()->indexOf(panel) < 0) main->viewerLayout()->addWidget(panel);
        main->showToolPanel(tools);
        main->viewerLayout()->setCurrentWidget(panel);
        HxSubApplication::onStart();
    }
    QPointer<QWidget> tools;
    HxData* painted = nullptr;
};

/// Edits in the normal window: its panel covers the list.
class PanelEditor : public HxEditor
{
public:
    PanelEditor() : HxEditor(HxData::getClassTypeId()) {}
    bool typeCheck(HxData* data) override { return data; }
    void startEditing(HxData*) override { HxMain::getTheMain()->showToolPanel(tools = new QLabel("edit")); }
    void stopEditing() override
    {
        HxMain::getTheMain()->showToolPanel(nullptr);
        delete tools;
    }
    QPointer<QWidget> tools;
};

/// Counts how often it computes.
class CountingModule : public HxCompModule
{
public:
    CountingModule() : HxCompModule(HxData::getClassTypeId()) {}
    void compute() override { ++computed; }
    HxPortIntTextN steps{this, "steps"};
    int computed = 0;
};

class ModeTest : public MainWindow
{
protected:
    /// The window makes its buttons from the list.
    static bool announce()
    {
        HxClassRegistry::add("PaintMode", "HxSubApplication", [] { return new PaintMode; });
        HxSubApplicationEntry entry;
        entry.className = "PaintMode";
        entry.title = "Paint";
        HxResource::mSubApplications.push_back(entry);
        return true;
    }
    ~ModeTest() override
    {
        HxSubApplication::leaveRunning();
        HxResource::mSubApplications.clear();
    }
    bool announced = announce();
};

/// Announces before the window is made.
class PaintTest : public ModeTest
{
protected:
    PaintTest() { openWindow(); }
};

TEST_F(ModeTest, TheGuideOfAnEditorInTheNormalWindowOpens)
{
    QFile page(path("edit.html"));
    ASSERT_TRUE(page.open(QIODevice::WriteOnly));
    page.write("<title>How to edit</title>");
    page.close();
    const McHandle<PanelEditor> editor(new PanelEditor);
    const QDir resources(HxSkin::getGlobalInstance()->getPathToHelpFile("", ".").c_str());
    editor->setHelpFile(resources.relativeFilePath(path("edit.html")).toUtf8().constData(), ".");
    editor->attach(addLabels("a.nrrd"));
    QAction* guide = nullptr;
    for (QAction* action : window->findChildren<QAction*>())
        if (action->shortcut() == QKeySequence(Qt::Key_F1)) guide = action;
    ASSERT_TRUE(guide);
    guide->trigger();
    const auto* browser = HxHTML::getTheBrowser()->findChild<QTextBrowser*>();
    EXPECT_EQ(browser->documentTitle().toStdString(), "How to edit");
    editor->detach();
    guide->trigger();
    EXPECT_NE(browser->documentTitle().toStdString(), "How to edit");
    HxHTML::getTheBrowser()->close();
}

TEST_F(PaintTest, ItsButtonShowsItsPagesAndTheWorkspaceButtonThoseOfTheHost)
{
    addLabels("a.nrrd");
    auto* save = window->findChild<QAction*>("save");
    EXPECT_TRUE(save->isEnabled());

    child<QAction>("PaintMode")->trigger();
    auto* mode = static_cast<PaintMode*>(HxSubApplication::running());
    ASSERT_NE(mode, nullptr);
    EXPECT_EQ(window->currentToolPanel(), mode->tools);
    EXPECT_TRUE(mode->tools->isVisible());
    EXPECT_NE(HxController::panel(15), window->viewerPanel());
    EXPECT_TRUE(HxController::panel(15)->isVisible());
    EXPECT_EQ(window->windowTitle().section(" - ", 0, 0), "Paint");
    // The key for saving is left to the mode when it names nothing to save.
    EXPECT_FALSE(save->isEnabled());

    child<QAction>("HxWorkspace")->trigger();
    EXPECT_EQ(HxSubApplication::running(), nullptr);
    EXPECT_EQ(window->currentToolPanel(), window->workspace());
    EXPECT_TRUE(window->viewerPanel()->isVisible());
    EXPECT_TRUE(save->isEnabled());

    mode->makeCurrent();
    EXPECT_TRUE(child<QAction>("PaintMode")->isChecked());
    EXPECT_FALSE(save->isEnabled());
    // A button of the mode that makes the labels which are painted from then on.
    mode->painted = addLabels("b.nrrd");
    QCoreApplication::processEvents();
    EXPECT_TRUE(save->isEnabled());
}

TEST_F(ModeTest, SavingMeansTheDataOfTheEditorWhosePanelShows)
{
    HxUniformLabelField3* selected = addLabels("selected");
    HxUniformLabelField3* edited = addLabels("edited");
    ASSERT_EQ(window->workspace()->selected(), selected);
    auto* save = window->findChild<QAction*>("save");

    const McHandle<PanelEditor> editor(new PanelEditor);
    ASSERT_TRUE(editor->attach(edited));
    EXPECT_TRUE(save->isEnabled());
    HxFileDialog::setNextAnswer({path("edited.nrrd")});
    save->trigger();
    EXPECT_EQ(edited->getFilename(), path("edited.nrrd"));
    EXPECT_FALSE(selected->hasFile());

    editor->detach();
    HxFileDialog::setNextAnswer({path("selected.nrrd")});
    save->trigger();
    EXPECT_EQ(selected->getFilename(), path("selected.nrrd"));

    // A panel that belongs to no data covers the list, and nothing is to be saved.
    QWidget help;
    window->showToolPanel(&help);
    EXPECT_FALSE(save->isEnabled());
    window->showToolPanel(nullptr);
}

TEST_F(ModeTest, ApplyFiresTheSelectedModuleAndAutoEachChange)
{
    const McHandle<CountingModule> module(new CountingModule);
    module->setLabel("counter");
    addLabels("a.nrrd");
    HxObjectPool::getThePool()->addObject(module);
    QAbstractButton* apply = window->workArea()->mainButton();
    EXPECT_FALSE(apply->isEnabled()); // data are selected
    window->workspace()->select(module);
    QTest::mouseClick(apply, Qt::LeftButton);
    EXPECT_EQ(module->computed, 1);

    auto* steps = child<QSpinBox>("steps");
    QTest::keyClick(steps, Qt::Key_Up);
    EXPECT_EQ(module->steps.getValue(), 1);
    EXPECT_EQ(module->computed, 1);
    QTest::mouseClick(window->workArea()->neighbourButton(), Qt::LeftButton);
    QTest::keyClick(steps, Qt::Key_Up);
    EXPECT_EQ(module->computed, 2);
    module->steps.setRange(0, 1); // by a script, say
    EXPECT_EQ(steps->value(), 1);

    // A panel that has made the button its own.
    auto* panel = new QWidget;
    window->showToolPanel(panel);
    apply->setText("Close");
    QTest::mouseClick(apply, Qt::LeftButton);
    EXPECT_EQ(module->computed, 2);
    window->showToolPanel(nullptr);
    EXPECT_EQ(window->currentToolPanel(), window->workspace());
}

TEST_F(ModeTest, AModuleThatGoesLeavesNoControlBehind)
{
    McHandle<CountingModule> module(new CountingModule);
    HxObjectPool::getThePool()->addObject(module);
    window->workspace()->select(module);
    EXPECT_NE(window->findChild<QSpinBox*>("steps"), nullptr);
    HxObjectPool::getThePool()->removeObject(module);
    module = nullptr;
    addLabels("a.nrrd"); // the pool speaks to all lists of objects
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window->findChild<QSpinBox*>("steps"), nullptr);
}

} // namespace
