// The material list: what its rows show, and how they follow what changes elsewhere.

#include "TissueListSession.h"

#include "app/GiMaterialView3D.h"
#include "hx/HxMatDatabase.h"
#include "qx/HxColorEditor.h"

#include <QApplication>
#include <QCheckBox>
#include <QFrame>

namespace {

/// Stands in for the view of a window: it keeps its flags in tables and notes what it is told.
class NotingView3D : public GiMaterialView3D
{
public:
    void setLabelClipped(int label, bool clipped) override
    {
        visible[label] = !clipped;
        told.push_back((clipped ? "hide " : "show ") + std::to_string(label));
    }
    void setUseLabelColor(int label, bool on) override
    {
        colored[label] = on;
        told.push_back((on ? "color " : "gray ") + std::to_string(label));
    }
    void get3DVisibility(bool* flags) override { std::copy(visible, visible + kLabels, flags); }
    void getUseLabelColor(bool* flags) override { std::copy(colored, colored + kLabels, flags); }
    void updateLabels(int removed) override
    {
        std::copy(visible + removed + 1, visible + kLabels, visible + removed);
        told.push_back("removed " + std::to_string(removed));
    }

    bool visible[kLabels] = {}, colored[kLabels] = {};
    std::vector<std::string> told;
};

} // namespace

TEST_F(TissueList, RowsShowWhatTheBundlesAndTablesSay)
{
    materials()->bundle(2)->set("void", 1);
    const float rgb[3] = {1, 0.5f, 0};
    materials()->bundle(1)->setColor(rgb);
    gi()->lockTissue(3, 1);
    gi()->drawStyle2D[5] = 0;
    list->setTissues(materials(), -1);
    EXPECT_EQ(names(), (std::vector<std::string>{"Exterior", "M1", "(M2)", "M3", "Left Lung", "M5"}));
    EXPECT_EQ(list->currentRow(), 5);
    EXPECT_EQ(gi()->currentTissue, 5);
    EXPECT_EQ(list->itemOf(1)->getColor().name(), "#ff8000");
    EXPECT_TRUE(widgetIn<QFrame>(1, 0)->styleSheet().contains("#ff8000"));
    const McColor byName = HxMatDatabase::getTheDatabase()->getColor("M3");
    EXPECT_NEAR(list->itemOf(3)->getColor().redF(), byName.r, 0.01);
    EXPECT_FALSE(list->itemOf(5)->isShow2DButtonChecked());
    EXPECT_TRUE(list->itemOf(1)->isShow2DButtonChecked());
    EXPECT_TRUE(list->isLocked(3));

    materials()->bundle(2)->set("void", 0);
    materials()->bundle(1)->set("LongName", "Heart");
    list->updateMaterialVisibility();
    EXPECT_EQ(names()[1], "Heart");
    EXPECT_FALSE(list->isRowHidden(2));
    gi()->drawStyle2D[1] = 0; // as the viewers' key for the next style does
    list->updateStates();
    EXPECT_FALSE(list->itemOf(1)->isShow2DButtonChecked());
    // All columns stand in the window, with the names in what is left.
    EXPECT_EQ(list->columnViewportPosition(6) + list->columnWidth(6), list->viewport()->width());
    EXPECT_GE(list->columnWidth(GiQTissueList::kName), 60);
}

TEST_F(TissueList, Boxes3DFollowTheViewAndTellIt)
{
    const auto box = [&](int row) { return widgetIn<QCheckBox>(row, GiQTissueList::kShow3D); };
    const auto colorBox = [&](int row) { return widgetIn<QCheckBox>(row, GiQTissueList::kColor3D); };
    EXPECT_FALSE(box(2)->isEnabled());
    EXPECT_FALSE(colorBox(2)->isEnabled());
    NotingView3D view;
    view.visible[3] = view.colored[4] = true;
    list->setView3D(&view);
    EXPECT_TRUE(box(3)->isChecked() && colorBox(4)->isChecked());
    EXPECT_TRUE(view.told.empty());
    click(box(2));
    click(box(3));
    click(colorBox(2));
    HxColorEditor::setNextAnswer(true, 1, 0, 0);
    list->editColor(2); // takes the new color over
    rename(2, "Fat");   // with a color of its own
    list->editColor(3); // shown without color there
    EXPECT_EQ(view.told, (std::vector<std::string>{"show 2", "hide 3", "color 2", "gray 2", "color 2",
                                                   "gray 2", "color 2"}));
    EXPECT_EQ(eval("material 3 show3D 1"), "1");
    EXPECT_TRUE(box(3)->isChecked());

    view.told.clear();
    list->removeTissue(1, 0);
    EXPECT_EQ(view.told, std::vector<std::string>{"removed 1"});
    EXPECT_TRUE(box(2)->isChecked());
    list->setTissues(materials(), -1); // as at each start of editing
    EXPECT_TRUE(box(1)->isChecked() && box(2)->isChecked() && !box(3)->isChecked());
    EXPECT_TRUE(box(1)->isEnabled());
    list->setView3D(nullptr);
    EXPECT_FALSE(box(2)->isEnabled());
}

TEST_F(TissueList, MovingARowKeepsTheFirstAndTheLabels)
{
    const std::vector<int> before = voxelList();
    clickCell(0, GiQTissueList::kName);
    list->moveTissue(3);
    EXPECT_EQ(names()[0], "Exterior");
    clickCell(3, GiQTissueList::kName);
    list->moveTissue(0); // counts as 1
    EXPECT_EQ(names(), (std::vector<std::string>{"Exterior", "M3", "M1", "M2", "Left Lung", "M5"}));
    EXPECT_EQ(list->currentRow(), 1);
    EXPECT_EQ(voxelList(), before);
}

TEST_F(TissueList, IsEmptyWithoutDataAndTakesNoHarm)
{
    list->setTissues(nullptr, -1);
    EXPECT_EQ(list->rowCount(), 0);
    list->addTissue();
    list->removeTissue();
    list->editColor(0);
    list->moveTissue(2);
    QTest::keyClick(list, Qt::Key_Delete);
    QTest::mousePress(list->viewport(), Qt::RightButton);
    EXPECT_FALSE(QApplication::activePopupWidget());
    EXPECT_EQ(materials()->nBundles(), 6);
}

TEST_F(TissueList, RowsFollowWhatOthersDoToTheMaterials)
{
    list->setTissue(2);
    eval("labels parameters Materials/Extra/Color {1 0 0}");
    EXPECT_EQ(names(), (std::vector<std::string>{"Exterior", "M1", "M2", "M3", "Left Lung", "M5", "Extra"}));
    EXPECT_EQ(list->currentRow(), 2);
    EXPECT_EQ(gi()->currentTissue, 2);
    eval("material 6 style2D 2");
    EXPECT_EQ(gi()->drawStyle2D[6], 2);
    EXPECT_EQ(gi()->materialColors[6][0], 255);

    eval("labels parameters Materials/M1/Color {0 1 0}");
    EXPECT_EQ(list->itemOf(1)->getColor().name(), "#00ff00");
    EXPECT_TRUE(widgetIn<QFrame>(1, 0)->styleSheet().contains("#00ff00"));
    EXPECT_EQ(gi()->materialColors[1][1], 255);
    eval("labels parameters Materials/M1/LongName Heart");
    eval("labels parameters Materials/M3/void 1");
    EXPECT_EQ(names()[1], "Heart");
    EXPECT_EQ(names()[3], "(M3)");

    list->setTissue(6);
    materials()->remove("Extra");
    labels->touch(HxObject::kParametersChanged);
    EXPECT_EQ(list->rowCount(), 6);
    EXPECT_EQ(gi()->currentTissue, 5);

    // Those who add without a word are met at the next command.
    materials()->bundle("Silent1", 1);
    eval("material 6 lock 1");
    EXPECT_TRUE(list->isLocked(6));
    materials()->bundle("Silent2", 1);
    eval("gi newMaterial Liver");
    EXPECT_EQ(names().back(), "Liver");
    EXPECT_EQ(list->currentRow(), 8);
    EXPECT_EQ(gi()->currentTissue, 8);
    materials()->bundle("Silent3", 1);
    eval("gi deleteMaterial 9 0");
    EXPECT_EQ(list->rowCount(), 9);
    EXPECT_EQ(materials()->nBundles(), 9);
}
