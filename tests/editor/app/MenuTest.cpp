// The menus: what is in them in which order, under which keys, and what the entries with a state do.

#include "WindowSession.h"

#include "hx/HxSettingsMgr.h"

#include "hx/HxWorkArea.h"

#include <QMenuBar>

class Menus : public WindowSession
{
protected:
    void open()
    {
        addLabels("labels");
        addImage("image");
        eval("segment labels image");
    }
    static std::vector<std::string> tree(const QMenu* menu)
    {
        std::vector<std::string> list;
        listMenu(menu, "", list);
        return list;
    }
    static QAction* orientation(const char* name)
    {
        return entry(mainMenu("&Segmentation"), QString("Orientation/") + name);
    }
    static void openOrientation()
    {
        emit entry(mainMenu("&Segmentation"), "Orientation")->menu()->aboutToShow();
    }
};

TEST_F(Menus, HoldAllEntriesInOrderWithTheirKeys)
{
    open();
    emit entry(mainMenu("&Segmentation"), "Current viewer")->menu()->aboutToShow();
    EXPECT_EQ(tree(mainMenu("&Segmentation")),
              (std::vector<std::string>{
                  "Undo|Ctrl+Z", "-", "Orientation/XY (axial)", "Orientation/XZ (coronal)",
                  "Orientation/YZ (sagittal)", "Orientation/-", "Orientation/Flip X|Alt+X",
                  "Orientation/Flip Y|Alt+Y", "Orientation/Flip Z|Alt+Z", "Current viewer/Viewer 1 (XY)",
                  "Material Statistics...", "-", "&Fill holes/Current slice|Ctrl+H", "&Fill holes/All slices",
                  "&Remove islands ...", "&Smooth labels ...", "-"}));
    EXPECT_EQ(tree(mainMenu("&Selection")),
              (std::vector<std::string>{"&Grow/Current slice|Ctrl++", "&Grow/All slices", "&Grow/Volume",
                                        "&Shrink/Current slice|Ctrl+-", "&Shrink/All slices",
                                        "&Shrink/Volume", "&Fill/Current slice|Ctrl+F", "&Fill/All slices",
                                        "&Fill/Volume", "S&mooth/Current slice|Ctrl+M", "S&mooth/All slices",
                                        "Invert/Current slice", "Invert/All slices", "S&nakes ...",
                                        "Make &ellipse", "&Interpolate|Ctrl+I", "&Wrap|Ctrl+W"}));
    EXPECT_EQ(orientation("XZ (coronal)")->data().toInt(), 1);
    EXPECT_EQ(orientation("Flip Z")->data().toInt(), 30);
}

TEST_F(Menus, EntriesLiveWithDataIfTheirOperationIsThere)
{
    open();
    QAction* fill = entry(mainMenu("&Selection"), "&Fill/Volume");
    QAction* smooth = entry(mainMenu("&Selection"), "S&mooth/All slices");
    EXPECT_TRUE(fill->isEnabled());
    EXPECT_FALSE(smooth->isEnabled());
    editor()->stopEditing();
    EXPECT_FALSE(fill->isEnabled());
    EXPECT_FALSE(orientation("XY (axial)")->isEnabled());
    HxSubApplication::leaveRunning();
    for (const QAction* action : HxMain::getTheMain()->menuBar()->actions())
        EXPECT_FALSE(action->text() == "&Selection" && action->isVisible());
}

TEST_F(Menus, UndoFollowsTheHistory)
{
    open();
    QAction* undo = entry(mainMenu("&Segmentation"), "Undo");
    EXPECT_FALSE(undo->isEnabled()) << "nothing was done yet";
    entry(mainMenu("&Selection"), "Invert/All slices")->trigger();
    EXPECT_EQ(numSelected(), 60u);
    EXPECT_TRUE(undo->isEnabled());
    undo->trigger();
    EXPECT_EQ(numSelected(), 0u);
    EXPECT_FALSE(undo->isEnabled());
}

TEST_F(Menus, FillsOfTheSelectionCloseHolesOfSliceSlicesOrVolume)
{
    const unsigned long dims[3] = {5, 5, 5};
    addLabels("labels", dims);
    addImage("image", 0, dims);
    eval("segment labels image");
    const auto shell = [&] { // rings in the slices 1 to 3 of a hollow cube, closed above and below
        eval("gi clear 3d");
        for (int z = 1; z < 4; ++z)
            for (int y = 1; y < 4; ++y)
                for (int x = 1; x < 4; ++x)
                    if (x != 2 || y != 2 || z != 2) selection().set(x, y, z);
        gi()->updateSelectionBoxes();
    };
    for (const char* path : {"&Fill/Current slice", "&Fill/All slices", "&Fill/Volume"}) {
        shell();
        ASSERT_EQ(numSelected(), 26u);
        entry(mainMenu("&Selection"), path)->trigger();
        EXPECT_EQ(numSelected(), 27u) << path;
        eval("gi undo");
        EXPECT_EQ(numSelected(), 26u) << path;
    }
}

TEST_F(Menus, AnInterruptedFillKeepsWhatIsDoneAndUndoTakesAllBack)
{
    const unsigned long dims[3] = {5, 5, 9};
    addLabels("labels", dims);
    addImage("image", 0, dims);
    eval("segment labels image");
    for (int z = 0; z < 9; ++z)
        for (const auto& p : {McVec2i(1, 2), McVec2i(3, 2), McVec2i(2, 1), McVec2i(2, 3)})
            selection().set(p.x, p.y, z);
    gi()->viewers[0]->setSlice(2, true); // YZ: it cuts through the filled slices and the others
    gi()->updateSelectionBoxes();
    int announced = 0;
    const auto heard = QObject::connect(gi(), &GiQ::selectionChanged, [&] { ++announced; });
    HxWorkArea::getTheWorkArea()->interruptAfter(4);
    gi()->selectionFillAll();
    QObject::disconnect(heard);
    EXPECT_EQ(numSelected(), 9u * 4 + 4);
    EXPECT_EQ(announced, 1);
    for (int i = 0; i < 3; ++i) {
        GiSelection2D view = *gi()->viewers[i]->getSelection();
        const McBox2i told = view.selectionBox;
        view.computeSelectionBox();
        EXPECT_EQ(told, view.selectionBox) << "viewer " << i;
    }
    eval("gi undo");
    EXPECT_EQ(numSelected(), 9u * 4);
}

TEST_F(Menus, FlipsToggleAndTheirMarksFollow)
{
    open();
    orientation("Flip X")->trigger();
    orientation("Flip Z")->trigger();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(gi()->viewers[i]->getFlip(), 5);
    orientation("Flip X")->trigger();
    EXPECT_EQ(gi()->viewers[0]->getFlip(), 4);
    openOrientation();
    EXPECT_FALSE(orientation("Flip X")->isChecked());
    EXPECT_TRUE(orientation("Flip Z")->isChecked());
    orientation("Flip Z")->trigger();
    EXPECT_EQ(gi()->viewers[2]->getFlip(), 0);
}

TEST_F(Menus, OrientationAndActiveViewerAreChosenHere)
{
    open();
    orientation("YZ (sagittal)")->trigger();
    EXPECT_EQ(gi()->getCurrentViewer()->getOrientation(), 0);
    openOrientation();
    EXPECT_TRUE(orientation("YZ (sagittal)")->isChecked());
    EXPECT_FALSE(orientation("XY (axial)")->isChecked());
    orientation("XY (axial)")->trigger();

    panel().setLayoutNumber(4);
    QMenu* viewers = entry(mainMenu("&Segmentation"), "Current viewer")->menu();
    emit viewers->aboutToShow();
    ASSERT_EQ(viewers->actions().size(), 3);
    EXPECT_EQ(text(viewers->actions()[0]->text()), "Viewer 1 (XY)");
    EXPECT_EQ(text(viewers->actions()[2]->text()), "Viewer 3 (YZ)");
    EXPECT_TRUE(viewers->actions()[0]->isChecked());
    viewers->actions()[2]->trigger();
    EXPECT_EQ(panel().getActiveViewer(), gi()->viewers[0]);
    EXPECT_EQ(gi()->getCurrentOrientation(), 0);
}

// kept: a saved flip only shows as a check mark.
TEST_F(Menus, SavedFlipsAreMarksOnlyAndAreWrittenBack)
{
    HxPreferences preferences;
    preferences.giOrientation = "2 1 0 1";
    HxSettingsMgr::getInstance()->setPreferences(preferences, false);
    QWidget window;
    QMenuBar bar;
    {
        const McHandle<HxGiEditor> embedded(new HxGiEditor(&window, &bar));
        const QMenu* menu = menuOf(&bar, "&Segmentation");
        EXPECT_TRUE(entry(menu, "Orientation/Flip X")->isChecked());
        EXPECT_FALSE(entry(menu, "Orientation/Flip Y")->isChecked());
        EXPECT_TRUE(entry(menu, "Orientation/Flip Z")->isChecked());
        EXPECT_EQ(embedded->getGi()->viewers[0]->getFlip(), 0);
        entry(menu, "Orientation/Flip Y")->setChecked(true);
    }
    EXPECT_STREQ(HxSettingsMgr::getInstance()->getPreferences().giOrientation, "0 1 1 1");
    EXPECT_TRUE(bar.actions().isEmpty());
    HxSettingsMgr::getInstance()->setPreferences(HxPreferences(), false);
}

TEST_F(Menus, OptionalEntriesAppearWithTheirScriptVariables)
{
    eval("set giNeuroMode 1; set giRemoveSkinFilter 1");
    QWidget window;
    QMenuBar bar;
    {
        const McHandle<HxGiEditor> embedded(new HxGiEditor(&window, &bar));
        const std::vector<std::string> entries = tree(menuOf(&bar, "&Segmentation"));
        const auto has = [&](const char* name) {
            return std::find(entries.begin(), entries.end(), name) != entries.end();
        };
        EXPECT_TRUE(has("Projection"));
        EXPECT_TRUE(has("Remove s&kin ..."));
        EXPECT_TRUE(has("Orientation/XZ Plane"));
        EXPECT_FALSE(has("Material Statistics..."));
    }
    eval("unset giNeuroMode giRemoveSkinFilter");
}
