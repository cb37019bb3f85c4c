// The material list: clicks, keys and the context menu.

#include "TissueListSession.h"

#include "qx/HxColorEditor.h"
#include "qx/QxToolButton.h"

#include <QCheckBox>

TEST_F(TissueList, ClicksChooseColorLockAndMarkVoxels)
{
    clickCell(2, GiQTissueList::kName);
    EXPECT_EQ(gi()->currentTissue, 2);
    EXPECT_EQ(numSelected(), 0u);
    clickCell(2, GiQTissueList::kName, Qt::AltModifier);
    EXPECT_TRUE(allSelectedAre({2}));
    clickCell(3, GiQTissueList::kName, Qt::ShiftModifier);
    EXPECT_TRUE(allSelectedAre({2, 3}));
    clickCell(2, GiQTissueList::kName, Qt::ControlModifier);
    EXPECT_TRUE(allSelectedAre({3}));
    clickCell(2, GiQTissueList::kName, Qt::ControlModifier); // the row stays the chosen one
    EXPECT_EQ(list->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(gi()->currentTissue, 2);
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(gi()->currentTissue, 3);

    const auto select = [&](int row, Qt::KeyboardModifiers keys) {
        click(widgetIn<QxToolButton>(row, GiQTissueList::kSelect), keys);
    };
    select(5, {});
    EXPECT_TRUE(allSelectedAre({5}));
    EXPECT_EQ(gi()->currentTissue, 5);
    select(1, Qt::ShiftModifier);
    EXPECT_TRUE(allSelectedAre({1, 5}));
    select(5, Qt::ControlModifier);
    EXPECT_TRUE(allSelectedAre({1}));

    toolbox().currentSliceRadioButton->click();
    select(4, {});
    GiViewer* viewer = gi()->getCurrentViewer();
    ASSERT_EQ(viewer->getOrientation(), 2);
    for (int i = 0; i < kVoxels; ++i)
        EXPECT_EQ(selection().isSet(i), i / 20 == viewer->getSlice() ? voxels()[i] == 4 : voxels()[i] == 1);

    std::vector<int> recolored;
    QObject listener;
    QObject::connect(gi(), &GiQ::colorChanged, &listener,
                     [&](HxData*, int material) { recolored.push_back(material); });
    HxColorEditor::setNextAnswer(true, 0.2f, 0.4f, 0.6f);
    clickCell(3, GiQTissueList::kColor);
    EXPECT_EQ(list->itemOf(3)->getColor().name(), "#336699");
    EXPECT_EQ(gi()->materialColors[3][1], 102);
    clickCell(3, GiQTissueList::kColor); // not confirmed
    EXPECT_EQ(recolored, std::vector<int>{3});

    clickCell(3, GiQTissueList::kLock);
    EXPECT_EQ(gi()->locked[3], 1);
    clickCell(3, GiQTissueList::kLock);
    EXPECT_EQ(gi()->locked[3], 0);
}

TEST_F(TissueList, KeysMoveTheSelectionIntoTheMaterial)
{
    const auto markFirst = [&](int n) {
        for (int i = 0; i < n; ++i) selection().set(i);
        gi()->touchData(1, 0, 0, -1, 0, 0);
    };
    list->setTissue(2);
    markFirst(10);
    QTest::keyClick(list, Qt::Key_A);
    EXPECT_EQ(std::count(voxels(), voxels() + 10, 2), 10);
    EXPECT_EQ(numSelected(), 0u); // cleared after the transfer
    markFirst(5);
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier); // somebody's shortcut
    EXPECT_EQ(numSelected(), 5u);
    QTest::keyClick(list, Qt::Key_Minus);
    EXPECT_EQ(std::count(voxels(), voxels() + 5, 2), 0);
    markFirst(3);
    QTest::keyClick(list, Qt::Key_Plus);
    EXPECT_EQ(std::count(voxels(), voxels() + 3, 2), 3);
    markFirst(3);
    QTest::keyClick(list, Qt::Key_S);
    EXPECT_EQ(std::count(voxels(), voxels() + 3, 2), 0);
    markFirst(4);
    QTest::keyClick(list, Qt::Key_C);
    EXPECT_EQ(numSelected(), 0u);

    list->setCurrentCell(-1, -1); // no material to take them or to leave
    markFirst(4);
    const std::vector<int> before = voxelList();
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_Plus, Qt::Key_S, Qt::Key_Minus}) QTest::keyClick(list, key);
    EXPECT_EQ(voxelList(), before);
    EXPECT_EQ(numSelected(), 4u);
    QTest::keyClick(list, Qt::Key_C);
    EXPECT_EQ(numSelected(), 0u);
}

TEST_F(TissueList, CheckBoxesHideAndBringTheLastStyleBack)
{
    auto* box = widgetIn<QCheckBox>(2, GiQTissueList::kShow2D);
    list->itemOf(2)->setDrawStyle2D(3);
    click(box);
    EXPECT_EQ(gi()->drawStyle2D[2], 0);
    EXPECT_EQ(gi()->lastDrawStyle2D[2], 3);
    click(box);
    EXPECT_EQ(gi()->drawStyle2D[2], 3);
    EXPECT_TRUE(box->isChecked());
}

TEST_F(TissueList, MenuOffersWhatFitsAndDoesIt)
{
    const std::vector<std::string> onRow = {"Draw Style/Invisible",
                                            "Draw Style/Contour",
                                            "Draw Style/Hatched",
                                            "Draw Style/Dotted",
                                            "Draw Style/Light Dots",
                                            "Draw Style/-",
                                            "Draw Style/Preferences...",
                                            "New Material",
                                            "Rename Material",
                                            "Delete Material",
                                            "Edit Color",
                                            "Locate",
                                            "Lock Material",
                                            "-",
                                            "Lock All"};
    EXPECT_EQ(menu(2, "Draw Style/Dotted"), onRow);
    EXPECT_EQ(gi()->drawStyle2D[2], 3);
    EXPECT_EQ(gi()->currentTissue, 2);
    menu(2, "Lock Material");
    EXPECT_EQ(gi()->locked[2], 1);
    const std::vector<std::string> mixed = menu(2, "Lock All");
    EXPECT_EQ(mixed[12], "Unlock Material");
    EXPECT_EQ(mixed.back(), "Unlock All");
    EXPECT_EQ(gi()->locked[0], 0);
    EXPECT_EQ(gi()->locked[5], 1);
    // kept: the first material, which neither of the two locks or unlocks, counts.
    EXPECT_EQ(menu(-1, "Unlock All"), (std::vector<std::string>{"New Material", "Lock All", "Unlock All"}));
    clickCell(0, GiQTissueList::kLock);
    EXPECT_EQ(menu(-1, "Lock All"), (std::vector<std::string>{"New Material", "Lock All", "Unlock All"}));
    EXPECT_EQ(menu(-1, "Unlock All"), (std::vector<std::string>{"New Material", "Unlock All"}));
    EXPECT_EQ(gi()->locked[0], 1);
    clickCell(0, GiQTissueList::kLock);
    EXPECT_EQ(gi()->locked[5], 0);
    menu(-1, "New Material");
    EXPECT_EQ(list->rowCount(), 7);
    HxMessage::queueAnswers({0});
    menu(6, "Delete Material");
    EXPECT_EQ(list->rowCount(), 6);
    HxColorEditor::setNextAnswer(true, 0, 1, 1);
    menu(1, "Edit Color");
    EXPECT_EQ(list->itemOf(1)->getColor().name(), "#00ffff");
    menu(3, "Rename Material");
    EXPECT_TRUE(list->viewport()->findChild<QLineEdit*>());
    list->notifyStop();
    EXPECT_FALSE(list->isPersistentEditorOpen(list->item(3, GiQTissueList::kName)));

    std::fill(voxels(), voxels() + kVoxels, 0);
    voxels()[2 * 20] = 1; // slice 2 of XY
    menu(1, "Locate");
    EXPECT_EQ(gi()->viewers[2]->getSlice(), 2);
}
