// The material list: what a deletion does to labels, rows and tables.

#include "TissueListSession.h"

TEST_F(TissueList, ADeletionRewritesLabelsAndMovesTheTables)
{
    const struct
    {
        int removed, replacement;
        std::vector<int> newLabelOf; // old labels 0 to 5
    } rows[] = {
        {3, 0, {0, 1, 2, 0, 3, 4}}, {2, 5, {0, 1, 4, 2, 3, 4}}, {0, 1, {0, 0, 1, 2, 3, 4}},
        {5, 4, {0, 1, 2, 3, 4, 4}}, {1, 0, {0, 0, 1, 2, 3, 4}},
    };
    std::vector<std::string> removed;
    QObject listener;
    QObject::connect(gi(), &GiQ::materialRemoved, &listener, [&](HxData*, int i, const char* name) {
        removed.push_back(std::to_string(i) + " " + name);
    });
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.removed) + " to " + std::to_string(row.replacement));
        materials()->clear();
        addMaterials(labels, 6);
        for (int i = 0; i < kVoxels; ++i) voxels()[i] = static_cast<unsigned char>(i * 7 % 6);
        for (int i = 0; i < 256; ++i) {
            gi()->lockTissue(i, i % 3 == 0);
            gi()->drawStyle2D[i] = static_cast<unsigned char>(i % 5);
            gi()->lastDrawStyle2D[i] = static_cast<unsigned char>(i % 4);
            gi()->visible3D[i] = static_cast<unsigned char>(i % 2);
        }
        list->setTissues(materials(), -1);
        std::vector<int> expected = voxelList();
        for (int& v : expected) v = row.newLabelOf[v];
        const std::string name = materials()->bundle(row.removed)->getName();
        removed.clear();

        list->removeTissue(row.removed, row.replacement);

        EXPECT_EQ(voxelList(), expected);
        ASSERT_EQ(list->rowCount(), 5);
        EXPECT_EQ(list->currentRow(), row.newLabelOf[row.replacement]);
        EXPECT_EQ(gi()->currentTissue, list->currentRow());
        for (int k = 0, old = 0; k < 5; ++k, ++old) {
            old += old == row.removed;
            EXPECT_EQ(names()[k], old == 0 ? "Exterior" : "M" + std::to_string(old));
            EXPECT_EQ(list->itemOf(k)->row(), k);
            EXPECT_EQ(gi()->locked[k], old % 3 == 0);
            EXPECT_EQ(gi()->drawStyle2D[k], old % 5);
            EXPECT_EQ(gi()->lastDrawStyle2D[k], old % 4);
            EXPECT_EQ(gi()->visible3D[k], old % 2);
        }
        EXPECT_EQ(removed, (std::vector<std::string>{std::to_string(row.removed) + " " + name}));
        float min, max;
        labels->getRange(min, max);
        EXPECT_EQ(max, 4);
    }
    const std::vector<int> before = voxelList();
    for (const auto& [i, replacement] : {std::pair(7, 0), {0, 7}, {-1, 0}, {2, 2}})
        list->removeTissue(i, replacement);
    EXPECT_EQ(voxelList(), before);
    EXPECT_EQ(list->rowCount(), 5);
}

// kept: a deletion is no undo step and clears none.
TEST_F(TissueList, UndoGoesBackBehindADeletionAndLeavesItDone)
{
    const std::vector<int> before = voxelList();
    const auto at = static_cast<std::size_t>(std::find(before.begin(), before.end(), 2) - before.begin());
    ASSERT_LT(at, before.size());
    selection().set(at);
    gi()->storeSelection(5, 1, 1);
    EXPECT_EQ(voxels()[at], 5);
    list->removeTissue(3, 0);
    EXPECT_EQ(voxels()[at], 4);
    console.clear();
    gi()->undo(); // of the transfer: all labels as they were, also those of which no material is left
    EXPECT_EQ(voxelList(), before);
    ASSERT_EQ(console.size(), 1u);
    EXPECT_EQ(console[0].rfind("The labels that came back are older than the deletion of a material.", 0),
              0u);
    EXPECT_EQ(names(), (std::vector<std::string>{"Exterior", "M1", "M2", "Left Lung", "M5"}));
    gi()->redraw();
}

TEST_F(TissueList, TheUserIsAskedBeforeADeletionAndTheFirstMaterialStays)
{
    std::vector<std::string> asked;
    int answer = 1;
    HxMessage::setDialogHandler([&](const HxDialogRequest& request) {
        asked.push_back(request.text);
        return answer;
    });
    list->setTissue(0);
    list->removeTissue();
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_TRUE(asked.empty());
    list->setTissue(4);
    QTest::keyClick(list, Qt::Key_Delete);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0], "Are you sure you want to remove material \"Left Lung\" ?\n\n"
                        "Any such voxels will be assigned to \"Exterior\".");
    EXPECT_EQ(list->rowCount(), 6);
    answer = 0;
    click(toolbox().delMatButton);
    EXPECT_EQ(names(), (std::vector<std::string>{"Exterior", "M1", "M2", "M3", "M5"}));
    EXPECT_EQ(list->currentRow(), 0);
}

// kept: a step of one slice brings back the old numbers there and nowhere else.
TEST_F(TissueList, UndoOfASliceBehindADeletionTellsOfTheOldNumbers)
{
    const std::vector<int> before = voxelList();
    gi()->getCurrentViewer()->setSlice(0, true);
    selection().set(0);
    gi()->storeSelection(5, 0, 1);
    list->removeTissue(2, 0);
    std::vector<int> expected = before;
    for (int i = 20; i < kVoxels; ++i) expected[i] = before[i] == 2 ? 0 : before[i] - (before[i] > 2);
    selection().set(1);
    gi()->storeSelection(1, 0, 1);
    console.clear();
    gi()->undo(); // a step of the new numbers
    EXPECT_TRUE(console.empty());
    gi()->undo();
    EXPECT_EQ(console.size(), 1u);
    EXPECT_EQ(voxelList(), expected);
}

TEST_F(TissueList, MaterialsBeyondTheLastLabelMoveUpWhenOneGoes)
{
    for (int i = 6; i < 300; ++i) materials()->insert(new HxParamBundle(("E" + std::to_string(i)).c_str()));
    labels->touch(HxObject::kParametersChanged);
    EXPECT_EQ(list->rowCount(), 256);
    const std::vector<int> before = voxelList();
    eval("gi deleteMaterial 5 299"); // no label can be that
    eval("gi deleteMaterial 280 0");
    EXPECT_EQ(materials()->nBundles(), 300);
    EXPECT_EQ(voxelList(), before);

    gi()->lockTissue(255, 1); // its entry in the tables stays behind for the newcomer
    eval("gi deleteMaterial 3 0");
    ASSERT_EQ(list->rowCount(), 256);
    EXPECT_EQ(names()[254], "E255");
    EXPECT_EQ(names()[255], "E256");
    EXPECT_TRUE(list->isLocked(255));
    EXPECT_EQ(eval("material 255 name"), "E256");
}

TEST_F(TissueList, AnAnswerIsForTheMaterialThatWasAskedAbout)
{
    addLabels("others");
    const std::vector<std::string> all = {"Exterior", "M1", "M2", "M3", "Left Lung", "M5"};
    const struct
    {
        const char* question;
        const char* meanwhile; // by another script, while the question stands
        std::vector<std::string> expected;
    } rows[] = {
        {"delete", "gi deleteMaterial 1 0", {"Exterior", "M2", "M3", "M5"}},
        {"delete", "gi deleteMaterial 4 0", {"Exterior", "M1", "M2", "M3", "M5"}},
        {"delete", "segment others image", all},
        {"merge", "gi deleteMaterial 1 0", {"Exterior", "M3", "Left Lung", "M5"}},
        {"merge", "gi deleteMaterial 2 0", {"Exterior", "M1", "M3", "Left Lung", "M5"}},
        {"merge", "gi deleteMaterial 5 0", {"Exterior", "M1", "M2", "M3", "Left Lung"}},
        {"merge", "segment others image", all},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.question) + ": " + row.meanwhile);
        materials()->clear();
        addMaterials(labels, 6);
        materials()->bundle(4)->set("LongName", "Left Lung");
        eval("segment labels image");
        list->setTissues(materials(), 4);
        HxMessage::setDialogHandler([&](const HxDialogRequest&) {
            eval(row.meanwhile);
            return 0;
        });
        if (row.question == std::string("delete"))
            list->removeTissue();
        else
            list->item(2, GiQTissueList::kName)->setText("M5");
        eval("segment labels image");
        EXPECT_EQ(names(), row.expected);
    }
}
