// The editor's place in the host's windows in its three modes: what it takes over, and that it gives it
// back as it was.

#include "WindowSession.h"

#include "app/GiQViewer.h"
#include "app/QxPreferenceDialog.h"
#include "display/GiFrameBuffer.h"
#include "hx/HxViewerTool.h"
#include "hx/HxWorkArea.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QMenuBar>
#include <QSplitter>
#include <QStackedLayout>

class Activation : public WindowSession
{
protected:
    static int numEntries()
    {
        int n = 0;
        for (const QAction* action : HxMain::getTheMain()->menuBar()->actions()) n += action->isVisible();
        return n;
    }
    /// A viewer of the host's.
    struct Foreign : HxViewerBase
    {
        Foreign() : HxViewerBase("foreign") {}
        QWidget* getWidget() override { return &widget; }
        void redraw() override { ++redraws; }

        QWidget widget;
        int redraws = 0;
    };
    static std::vector<HxViewerBase*> registered(const QxViewerPanel* panel)
    {
        std::vector<HxViewerBase*> list;
        for (int i = 0; i < panel->numViewers(); ++i) list.push_back(panel->viewer(i));
        return list;
    }
};

TEST_F(Activation, TheHostsWindowIsTakenOverAndGivenBack)
{
    if (editor()) gi()->onDeactivate(); // without announced modes both share the main panel
    HxMain* window = HxMain::getTheMain();
    QxViewerPanel* main = QxViewerPanel::getThePanel();
    QAbstractButton* button = HxWorkArea::getTheWorkArea()->mainButton();
    ASSERT_TRUE(button);
    McHandle<Foreign> first(new Foreign), second(new Foreign);
    main->registerViewer(first);
    main->registerViewer(second);
    main->setLayoutNumber(5);
    const int entries = numEntries();
    HxUniformLabelField3* labels = addLabels("labels");
    addImage("image");
    {
        auto* hosted = new HxGiEditor;
        ASSERT_TRUE(hosted->attach(labels));
        GiQ* controller = hosted->getGi();
        EXPECT_EQ(controller->getMode(), 0);
        EXPECT_EQ(controller->labelData, labels);
        EXPECT_EQ(registered(main),
                  (std::vector<HxViewerBase*>{first, controller->viewers[2], controller->viewers[1],
                                              controller->viewers[0]}));
        EXPECT_EQ(main->layoutNumber(), 4);
        EXPECT_EQ(main->getActiveViewer(), controller->viewers[2]);
        EXPECT_EQ(window->currentToolPanel(), controller->getToolbox());
        EXPECT_EQ(text(button->text()), "Close");
        EXPECT_TRUE(HxWorkArea::getTheWorkArea()->neighbourButton()->isHidden());
        EXPECT_EQ(numEntries(), entries + 2);
        EXPECT_TRUE(controller->getToolbox()->wGiInput->isHidden());
        first->redraws = 0;
        controller->redrawViewAll();
        EXPECT_EQ(first->redraws, 1);

        QMenu* images = entry(mainMenu("&Segmentation"), "Gray image")->menu();
        addImage("second");
        emit images->aboutToShow();
        ASSERT_EQ(images->actions().size(), 3);
        EXPECT_TRUE(images->actions()[1]->isChecked());
        images->actions()[2]->trigger();
        EXPECT_STREQ(controller->imageData->getLabel(), "second");

        controller->onDeactivate();
        EXPECT_EQ(registered(main), (std::vector<HxViewerBase*>{first, second}));
        controller->onActivate();
        main->setLayoutNumber(1);

        // The question comes only for a selection in the slice at hand.
        controller->selection->set(1, 1, 0);
        controller->updateSelectionBoxes();
        controller->viewers[2]->setSlice(0, true);
        int asked = 0;
        HxMessage::getTheMsg()->setDialogHandler([&](const HxDialogRequest& request) {
            EXPECT_EQ(request.text, "Current selection will be lost !\n Close anyway ?");
            ++asked;
            return 1;
        });
        button->click();
        EXPECT_EQ(asked, 1);
        EXPECT_EQ(controller->labelData, labels);
        controller->viewers[2]->setSlice(2, true);
        button->click(); // deletes the editor
        HxMessage::getTheMsg()->setDialogHandler({});
        EXPECT_EQ(asked, 1);
    }
    EXPECT_EQ(HxEditor::editorOf(labels), nullptr);
    EXPECT_EQ(registered(main), (std::vector<HxViewerBase*>{first, second}));
    EXPECT_EQ(main->layoutNumber(), 5);
    EXPECT_EQ(text(button->text()), "Apply");
    EXPECT_EQ(numEntries(), entries);
    EXPECT_EQ(window->currentToolPanel(), window->toolPanelLayout()->widget(0));
    main->unregisterViewer(first);
    main->unregisterViewer(second);
    if (editor()) gi()->onActivate();
}

TEST_F(Activation, AForeignWindowGetsPanelAndToolboxSideBySide)
{
    HxUniformLabelField3* labels = addLabels("labels");
    QWidget window;
    window.resize(1000, 700);
    QMenuBar bar(&window);
    {
        const McHandle<HxGiEditor> embedded(new HxGiEditor(&window, &bar));
        GiQ* controller = embedded->getGi();
        auto* splitter = qobject_cast<QSplitter*>(controller->getWidget());
        ASSERT_TRUE(splitter);
        EXPECT_EQ(splitter->parentWidget(), &window);
        EXPECT_EQ(splitter->widget(0), controller->getPanel());
        EXPECT_EQ(splitter->widget(1), controller->getToolbox());
        EXPECT_EQ(controller->getPanel()->layoutNumber(), 1);
        EXPECT_TRUE(controller->getToolbox()->wShow3DSelectionCheckBox->isHidden());
        EXPECT_EQ(bar.actions().size(), 2);
        embedded->startEditing(labels, nullptr);
        EXPECT_EQ(controller->labelData, labels);
        controller->changeViewerLayout();
        EXPECT_EQ(controller->getPanel()->layoutNumber(), 5);
        controller->changeViewerLayout();
        EXPECT_EQ(controller->getPanel()->layoutNumber(), 1);

        labels->labelLattice()->resize(6, 4, 3);
        labels->touch();
        EXPECT_EQ(controller->labelData, nullptr) << "memory that moved is let go of";
        embedded->startEditing(labels, nullptr);
        HxObjectPool::getThePool()->removeObject(labels);
        EXPECT_EQ(controller->labelData, nullptr);
    }
    EXPECT_EQ(window.findChild<QSplitter*>(), nullptr);
}

TEST_F(Activation, TheSubApplicationShowsItsPagesWhileItRuns)
{
    HxMain* window = HxMain::getTheMain();
    addLabels("labels");
    addImage("image");
    eval("segment labels image; gi invertSelection 3d");
    EXPECT_EQ(gi()->getMode(), 2);
    EXPECT_EQ(window->currentToolPanel(), &toolbox());
    EXPECT_EQ(window->viewerLayout()->currentWidget(), &panel());
    EXPECT_TRUE(toolbox().isVisible());
    EXPECT_TRUE(gi()->viewers[2]->getWidget()->isVisible());
    EXPECT_FALSE(toolbox().wGiInput->isHidden());
    EXPECT_EQ(panel().layoutNumber(), 1);
    gi()->changeViewerLayout();
    EXPECT_EQ(panel().layoutNumber(), 4);
    gi()->changeViewerLayout();

    HxSubApplication::leaveRunning();
    EXPECT_EQ(window->currentToolPanel(), window->toolPanelLayout()->widget(0));
    EXPECT_FALSE(toolbox().isVisible());
    HxGiSubApplication::instance()->makeCurrent();
    EXPECT_EQ(window->currentToolPanel(), &toolbox());
    EXPECT_EQ(gi()->undoActions.size(), 1) << "data and history wait";
}

TEST_F(Activation, ThePanelsButtonsServeTheSliceViewers)
{
    addLabels("labels");
    addImage("image");
    eval("segment labels image");
    GiViewer* viewer = gi()->viewers[2];
    for (const auto& [name, orientation] :
         {std::pair("ViewYZ", 0), std::pair("ViewXZ", 1), std::pair("ViewXY", 2)}) {
        panel().pressTool(panel().findTool(name));
        EXPECT_EQ(viewer->getOrientation(), orientation) << name;
    }
    panel().pressTool(panel().findTool("Translate"));
    EXPECT_EQ(gi()->currentTool, gi()->panTool);
    toolbox().setTool(1);
    gi()->onDeactivate();
    gi()->onActivate();
    panel().pressTool(panel().findTool("ViewXZ"));
    EXPECT_EQ(viewer->getOrientation(), 1) << "also after another activation";
    panel().pressTool(panel().findTool("Home"));
    EXPECT_EQ(viewer->getOrientation(), 2);
}

TEST_F(Activation, APreviewedSelectionStyleEndsWithTheDialog)
{
    addLabels("labels");
    eval("segment labels");
    gi()->setSelectionDrawStyle(3, 200);
    EXPECT_EQ(gi()->selectionDrawStyle, 3);
    EXPECT_EQ(gi()->viewers[1]->getFrameBuffer()->selectionAlpha, 200);
    emit QxPreferenceDialog::getThePreferenceDialog()->rejected();
    EXPECT_EQ(gi()->selectionDrawStyle, 1);
    EXPECT_EQ(gi()->viewers[1]->getFrameBuffer()->selectionAlpha, 96);
}
