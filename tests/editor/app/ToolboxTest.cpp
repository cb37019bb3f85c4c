// The toolbox: its form, transfer with locks and modifiers, the warning of a hidden selection, tools and
// their pages, and the lines about the voxel under the pointer.

#include "WindowSession.h"

#include "app/GiQTissueList.h"
#include "core/giHasHiddenVoxels.h"
#include "hx/HxColormap.h"
#include "qx/QxColormapFullRangeSlider.h"
#include "tools/GiCrossHairTool.h"
#include "tools/GiTool.h"

#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QStackedLayout>
#include <QToolBar>

#include <random>

class Toolbox : public WindowSession
{
protected:
    void open()
    {
        labels = addLabels("labels");
        addMaterials(labels, 3);
        addImage("image");
        eval("segment labels image");
        gi()->currentTissue = 1;
    }
    int countLabel(int label) const
    {
        const unsigned char* voxels = labels->labelLattice()->getLabels();
        return static_cast<int>(std::count(voxels, voxels + 60, label));
    }
    static bool isAlert() { return toolbox().addSelectionButton->styleSheet().contains("red"); }

    HxUniformLabelField3* labels = nullptr;
};

TEST_F(Toolbox, EveryPartHasItsNameTextAndClass)
{
    struct Part
    {
        const char *name, *type, *text;
    };
    constexpr Part kParts[] = {
        {"wGiFrame", "QFrame", ""},
        {"wGiInput", "QWidget", ""},
        {"wImageDataText", "QLabel", "Image Data:"},
        {"wImageData", "QComboBox", ""},
        {"wLabelDataText", "QLabel", "Label Data:"},
        {"wLabelData", "QComboBox", ""},
        {"wNewLabels", "QToolButton", "New"},
        {"matLabel", "QLabel", "Materials:"},
        {"addMatButton", "QToolButton", "Add a new material"},
        {"delMatButton", "QToolButton", "Delete the selected material"},
        {"tissueFrame", "QFrame", ""},
        {"wGiZoomBox", "QGroupBox", "Zoom and Data Window"},
        {"zoomInButton", "QToolButton", "Zoom in"},
        {"zoomOutButton", "QToolButton", "Zoom out"},
        {"zoomLabel", "QLabel", ""},
        {"qxRangeSlider", "QxColormapFullRangeSlider", "Set data window"},
        {"w2DColormapButton", "QToolButton", "Select 2D Colormap"},
        {"allZoomRadioButton", "QRadioButton", "All viewers"},
        {"currentZoomRadioButton", "QRadioButton", "Current viewer"},
        {"wGiSelectionBox", "QGroupBox", "Selection"},
        {"clearSelectionButton", "QToolButton", "Clear current selection"},
        {"replaceSelectionButton", "QToolButton", "Replace selected region"},
        {"addSelectionButton", "QToolButton", "Add selected voxels"},
        {"subtractSelectionButton", "QToolButton", "Subtract selected voxels"},
        {"prevSel2DButton", "QToolButton", "Previous selection"},
        {"nextSel2DButton", "QToolButton", "Next selection"},
        {"growButton", "QToolButton", "Grow Selection"},
        {"shrinkButton", "QToolButton", "Shrink Selection"},
        {"allSlicesRadioButton", "QRadioButton", "All slices"},
        {"currentSliceRadioButton", "QRadioButton", "Current slice"},
        {"wShow3DSelectionCheckBox", "QCheckBox", "Show in 3D"},
        {"wGiToolsBox", "QGroupBox", "Display and Masking"},
        {"wShowCrossHairButton", "QToolButton", "2D Crosshair"},
        {"wShow3DSlicesButton", "QToolButton", "3D MPR"},
        {"wShow3DVolrenButton", "QToolButton", "3D Volume Rendering"},
        {"w3DColormapButton", "QToolButton", "Select 3D Colormap"},
        {"wMaskingLabel", "QLabel", "Masking:"},
        {"wEnableMaskingCheckBox", "QCheckBox", "Enable"},
        {"wShowMaskingCheckBox", "QCheckBox", "Show"},
        {"wMaskingWindowSlider", "QxColormapFullRangeSlider", "Set masking window"},
        {"wGiFrame2", "QFrame", ""},
        {"wToolContainer", "QFrame", ""},
        {"wInfoContainer", "QWidget", ""},
        {"infoPos", "QLabel", "<b>Pos:</b>"},
        {"infoIdx", "QLabel", "<b>Index:</b>"},
        {"infoMat", "QLabel", "<b>Material:</b>"},
        {"infoGrey", "QLabel", "<b>Intensity:</b>"},
    };
    open();
    toolbox().updateInfo();
    for (const Part& part : kParts) {
        const QList<QWidget*> found = toolbox().findChildren<QWidget*>(part.name);
        ASSERT_EQ(found.size(), 1) << part.name;
        EXPECT_STREQ(found[0]->metaObject()->className(), part.type) << part.name;
        const QString texts = found[0]->toolTip() + "\n" + found[0]->property("text").toString() + "\n" +
                              found[0]->property("title").toString();
        EXPECT_TRUE(texts.contains(part.text)) << part.name << ": " << text(texts);
    }
}

TEST_F(Toolbox, NothingIsCutOffInASmallWindow)
{
    open();
    QTest::qWait(0); // the layouts take effect
    for (const QWidget* part : toolbox().findChildren<QWidget*>()) {
        const QWidget* outer = part->parentWidget();
        if (!part->isVisible() || !outer || part->objectName().isEmpty() ||
            part->objectName().startsWith("qt_") || toolbox().tissueList->isAncestorOf(part))
            continue;
        EXPECT_TRUE(outer->rect().contains(part->geometry())) << text(part->objectName());
        EXPECT_GE(part->width(), part->minimumSizeHint().width()) << text(part->objectName());
        EXPECT_GE(part->height(), part->minimumSizeHint().height()) << text(part->objectName());
    }
}

TEST_F(Toolbox, ALockedMaterialKeepsTheThreeTransfersStill)
{
    open();
    eval("gi toggleVoxel 1 1 1");
    gi()->lockTissue(1, 1);
    for (QToolButton* button :
         {toolbox().addSelectionButton, toolbox().replaceSelectionButton, toolbox().subtractSelectionButton})
        click(button);
    EXPECT_EQ(countLabel(1), 0);
    EXPECT_EQ(numSelected(), 1u);
    EXPECT_FALSE(gi()->canUndo());

    gi()->lockTissue(1, 0);
    click(toolbox().addSelectionButton, Qt::ShiftModifier);
    EXPECT_EQ(countLabel(1), 1);
    EXPECT_EQ(numSelected(), 1u) << "Shift keeps the selection";
    click(toolbox().subtractSelectionButton);
    EXPECT_EQ(countLabel(1), 0);
    eval("gi clear 3d; gi toggleVoxel 2 2 2");
    click(toolbox().addSelectionButton);
    EXPECT_EQ(countLabel(1), 1);
    EXPECT_EQ(numSelected(), 0u);
}

TEST_F(Toolbox, ClearTakesTheMarkerAwayEvenWithoutData)
{
    open();
    toolbox().wMaskingWindowSlider->setRange(0, 255);
    const QImage before = toolbox().wMaskingWindowSlider->grab().toImage();
    gi()->setToolDataWindowMarker(100);
    EXPECT_NE(toolbox().wMaskingWindowSlider->grab().toImage(), before);
    editor()->stopEditing();
    toolbox().activateGUI(true);
    const QImage empty = toolbox().wMaskingWindowSlider->grab().toImage();
    gi()->setToolDataWindowMarker(100);
    click(toolbox().clearSelectionButton);
    EXPECT_EQ(toolbox().wMaskingWindowSlider->grab().toImage(), empty);
}

TEST_F(Toolbox, WarnsOfVoxelsThatNoVisibleSliceShows)
{
    open();
    panel().setLayoutNumber(4);
    for (int o = 0; o < 3; ++o) gi()->viewers[o]->setSlice(1, true);
    const auto toggle = [this](const char* voxel) {
        eval(std::string("gi toggleVoxel ") + voxel);
        gi()->touchData(1, 0, 0, 0, 0, 0);
    };
    toggle("1 3 2");
    toggle("4 1 2");
    toggle("4 3 1");
    EXPECT_FALSE(isAlert()) << "each lies in one of the three slices";
    toggle("4 3 2");
    EXPECT_TRUE(isAlert());
    EXPECT_TRUE(toolbox().allSlicesRadioButton->styleSheet().contains("red"));
    gi()->viewers[2]->setSlice(2, true);
    EXPECT_TRUE(isAlert()) << "now the one in slice 1 is hidden";
    toggle("4 3 1");
    EXPECT_FALSE(isAlert());

    gi()->viewers[2]->setSlice(0, true);
    EXPECT_TRUE(isAlert());
    click(toolbox().currentSliceRadioButton);
    EXPECT_FALSE(isAlert());
    EXPECT_FALSE(gi()->mode3D);
    click(toolbox().allSlicesRadioButton);
    EXPECT_TRUE(isAlert());
    gi()->viewers[2]->setSlice(2, true);
    EXPECT_FALSE(isAlert());
    toggle("1 3 0");
    EXPECT_FALSE(isAlert());
    panel().setLayoutNumber(1);
    EXPECT_TRUE(isAlert()) << "one viewer alone shows less";
    EXPECT_EQ(numSelected(), 4u) << "the scan leaves the selection alone";
}

TEST_F(Toolbox, TheScanForHiddenVoxelsAgreesWithALookAtEachVoxel)
{
    std::mt19937 random(20);
    for (int round = 0; round < 300; ++round) {
        const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
        GiSelection3D volume;
        volume.resize(1ul + below(70), 1ul + below(9), 1ul + below(9));
        const int n[3] = {int(volume.dims[0]), int(volume.dims[1]), int(volume.dims[2])};
        std::vector<GiShownSlice> shown;
        for (int i = below(5); i > 0; --i) {
            const int o = below(3);
            shown.push_back({o, below(n[o] + 2) - 1});
        }
        const auto isShown = [&](const int* p) {
            for (const GiShownSlice& s : shown)
                if (p[s.orientation] == s.slice) return true;
            return false;
        };
        // Everything that is shown, and now and then a voxel anywhere.
        bool hidden = false;
        const int extra = below(3);
        for (int k = 0; k < extra; ++k) {
            const int p[3] = {below(n[0]), below(n[1]), below(n[2])};
            volume.set(p[0], p[1], p[2]);
            hidden = hidden || !isShown(p);
        }
        for (int p[3] = {0, 0, 0}; p[2] < n[2]; ++p[2])
            for (p[1] = 0; p[1] < n[1]; ++p[1])
                for (p[0] = 0; p[0] < n[0]; ++p[0])
                    if (isShown(p) && below(4)) volume.set(p[0], p[1], p[2]);
        EXPECT_EQ(giHasHiddenVoxels(volume, shown), hidden) << "round " << round;
    }
}

TEST_F(Toolbox, TheNextSliceWithASelectionIsFoundFromTheButtons)
{
    const unsigned long deep[3] = {5, 4, 9};
    labels = addLabels("labels", deep);
    addImage("image", 0, deep);
    eval("segment labels image; gi toggleVoxel 1 1 2; gi toggleVoxel 1 1 6");
    const auto slice = [] { return gi()->getCurrentSlice(); };
    ASSERT_EQ(slice(), 4);
    click(toolbox().nextSel2DButton);
    EXPECT_EQ(slice(), 6);
    click(toolbox().nextSel2DButton);
    EXPECT_EQ(slice(), 6) << "nothing ahead";
    click(toolbox().prevSel2DButton);
    EXPECT_EQ(slice(), 2);
    gi()->getCurrentViewer()->setSlice(5, true);
    gi()->showFirstSliceWithSelection();
    EXPECT_EQ(slice(), 2);
    gi()->showLastSliceWithSelection();
    EXPECT_EQ(slice(), 6);
    gi()->showFirstSliceWithSelection();
    gi()->showPrevSliceWithSelection();
    EXPECT_EQ(slice(), 2);
}

TEST_F(Toolbox, AToolShowsItsPageAndOneWithoutPanelAnEmptyOne)
{
    open();
    auto* pages = qobject_cast<QStackedLayout*>(toolbox().wToolContainer->layout());
    auto* bar = toolbox().findChild<QToolBar*>("toolBar");
    int numButtons = 0;
    for (int i = 0; i < gi()->tools.size(); ++i) {
        GiTool* tool = gi()->tools[i];
        QWidget* page = tool ? tool->getWidget(nullptr) : nullptr;
        toolbox().setTool(i);
        EXPECT_EQ(gi()->currentTool, tool);
        EXPECT_EQ(pages->currentWidget(), page ? page : pages->widget(0)) << i;
        std::vector<int> checked;
        for (const QAction* action : bar->actions())
            if (action->isChecked()) checked.push_back(action->data().toInt());
        EXPECT_EQ(checked, page ? std::vector<int>{i} : std::vector<int>{}) << i;
        numButtons += page != nullptr;
    }
    EXPECT_EQ(bar->actions().size(), numButtons);
    ASSERT_GT(numButtons, 0);
    bar->actions().constFirst()->trigger();
    EXPECT_EQ(gi()->currentTool, gi()->tools[bar->actions().constFirst()->data().toInt()]);
}

TEST_F(Toolbox, TheLinesUnderThePointerCountFromTheIndexBase)
{
    open();
    gi()->dataDigits = 2;
    gi()->coordinateDigits = 1;
    gi()->dataWindowScale = 2;
    gi()->dataWindowBias = 0.5f;
    GiQToolbox::sIndexNumBase = 1;
    toolbox().updateInfo(McVec3i(0, 3, 2), McVec3f(0, 3.21f, 2), 4, "a<b");
    EXPECT_EQ(text(toolbox().infoIdx->text()), "<b>Index:</b> 1 4 3");
    EXPECT_EQ(text(toolbox().infoPos->text()), "<b>Pos:</b> 0.0 3.2 2.0");
    EXPECT_EQ(text(toolbox().infoGrey->text()), "<b>Intensity:</b> 8.50");
    EXPECT_EQ(text(toolbox().infoMat->text()), "<b>Material:</b> a&lt;b");
    GiQToolbox::sIndexNumBase = 0;
    gi()->dataWindowScale = 1;
    gi()->dataWindowBias = 0;
}

TEST_F(Toolbox, TheCrossHairStartsWhereTheViewersAre)
{
    open();
    const int at[3] = {3, 2, 0};
    for (int i = 0; i < 3; ++i) gi()->viewers[i]->setSlice(at[i], false);
    click(toolbox().wShowCrossHairButton);
    EXPECT_TRUE(gi()->crossHair->isVisible());
    EXPECT_TRUE(toolbox().wShowCrossHairButton->isChecked());
    for (int i = 0; i < 3; ++i) EXPECT_EQ(gi()->crossHair->getPosition()[i], at[i]);
    click(toolbox().wShowCrossHairButton);
    EXPECT_FALSE(gi()->crossHair->isVisible());
    EXPECT_FALSE(toolbox().wShowCrossHairButton->isChecked());
}

TEST_F(Toolbox, TheColormapMenuOffersThePoolsMaps)
{
    open();
    auto* map = new HxColormap;
    map->setLabel("fire");
    HxObjectPool::getThePool()->addObject(map);
    QMenu* menu = toolbox().w2DColormapButton->menu();
    emit menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(text(menu->actions()[0]->text()), "Gray Ramp");
    EXPECT_TRUE(menu->actions()[0]->isChecked());
    EXPECT_FALSE(menu->actions()[1]->icon().isNull());
    menu->actions()[1]->trigger();
    EXPECT_EQ(gi()->getColormap(), map);
    EXPECT_EQ(toolbox().qxRangeSlider->getColormap(), map);
    emit menu->aboutToShow();
    EXPECT_TRUE(menu->actions()[1]->isChecked());
    menu->actions()[0]->trigger();
    EXPECT_EQ(gi()->getColormap(), nullptr);
}

TEST_F(Toolbox, WithoutDataOnlyTheChoiceOfDataIsAlive)
{
    open();
    editor()->stopEditing();
    EXPECT_TRUE(toolbox().wGiInput->isEnabled());
    for (QWidget* part :
         {static_cast<QWidget*>(toolbox().wGiZoomBox), static_cast<QWidget*>(toolbox().wGiSelectionBox),
          static_cast<QWidget*>(toolbox().wGiToolsBox), static_cast<QWidget*>(toolbox().wGiFrame2),
          static_cast<QWidget*>(toolbox().addMatButton)})
        EXPECT_FALSE(part->isEnabled()) << text(part->objectName());
    eval("segment labels image");
    EXPECT_TRUE(toolbox().addSelectionButton->isEnabled());
    for (QWidget* later : {static_cast<QWidget*>(toolbox().wShow3DSlicesButton),
                           static_cast<QWidget*>(toolbox().wShow3DSelectionCheckBox)})
        EXPECT_FALSE(later->isEnabled()) << "its operation is not there: " << text(later->objectName());
}

/// Visible parts that a press reaches and that open nothing.
static std::vector<QWidget*> partsToPress(const GiQToolbox& toolbox)
{
    std::vector<QWidget*> parts;
    for (QWidget* part : toolbox.findChildren<QWidget*>()) {
        const auto* button = qobject_cast<QToolButton*>(part);
        const bool opens = qobject_cast<QComboBox*>(part) || (button && button->menu());
        if (part->isVisible() && part->isEnabled() && !part->isWindow() && !opens &&
            !toolbox.tissueList->isAncestorOf(part) && part != toolbox.tissueList)
            parts.push_back(part);
    }
    return parts;
}

TEST_F(Toolbox, AClickLeavesTheKeysWithTheViewerUnlessOnAField)
{
    open();
    gi()->activateViewer(gi()->viewers[2]);
    QWidget* viewer = gi()->viewers[2]->getWidget();
    const QWidget* window = HxMain::getTheMain();
    int numFields = 0, numSteps = 0;
    for (int tool = 0; tool < gi()->tools.size(); ++tool) {
        toolbox().setTool(tool);
        for (QWidget* part : partsToPress(toolbox())) {
            viewer->setFocus();
            const bool isField = qobject_cast<QLineEdit*>(part) || qobject_cast<QAbstractSpinBox*>(part);
            QTest::mousePress(part, Qt::LeftButton);
            QTest::mouseRelease(part, Qt::LeftButton, {}, QPoint(-9, -9)); // beside: a button does nothing
            EXPECT_EQ(window->focusWidget() == viewer, !isField)
                << "tool " << tool << ": " << text(part->metaObject()->className()) << " "
                << text(part->objectName());
            numFields += isField;
            // Tab still gets to whatever can be operated.
            if (!qobject_cast<QAbstractButton*>(part) && !qobject_cast<QAbstractSlider*>(part)) continue;
            numSteps += (part->focusPolicy() & Qt::TabFocus) != 0;
        }
    }
    EXPECT_GT(numFields, 5);
    EXPECT_GT(numSteps, 50);
}
