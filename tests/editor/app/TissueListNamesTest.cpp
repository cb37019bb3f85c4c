// The material list: names of new materials, and what becomes of those that are typed.

#include "TissueListSession.h"

#include "hx/HxMatDatabase.h"

TEST_F(TissueList, ARenameCleansMergesOrKeepsTheName)
{
    int answer = 1;
    std::string asked;
    HxMessage::setDialogHandler([&](const HxDialogRequest& request) {
        asked = request.text;
        return answer;
    });
    rename(1, "Right Lung!");
    EXPECT_EQ(names()[1], "Right_Lung");
    EXPECT_STREQ(materials()->bundle(1)->getName(), "Right_Lung");
    rename(1, "");
    EXPECT_EQ(names()[1], "Right_Lung");
    rename(1, "%%%");
    EXPECT_EQ(names()[1], "Right_Lung");
    rename(1, "Fat"); // known: takes its color along
    EXPECT_EQ(list->itemOf(1)->getColor().name(), "#f5db66");
    EXPECT_EQ(gi()->materialColors[1][2], 102);
    rename(4, "Lung, left"); // the identity stays
    EXPECT_EQ(names()[4], "Lung, left");
    EXPECT_STREQ(materials()->bundle(4)->getName(), "M4");
    rename(2, "Lung, left"); // a long name is nobody's identity
    EXPECT_EQ(names()[2], "Lung_left");
    EXPECT_TRUE(asked.empty());

    rename(2, "M5");
    EXPECT_EQ(asked, "A material called \"M5\" already exists.\n\nDo you want to merge the two materials?");
    EXPECT_EQ(names()[2], "Lung_left");
    std::vector<int> expected = voxelList();
    for (int& v : expected) v = v == 2 ? 4 : v - (v > 2);
    answer = 0;
    rename(2, "M5");
    EXPECT_EQ(names(), (std::vector<std::string>{"Exterior", "Fat", "M3", "Lung, left", "M5"}));
    EXPECT_EQ(voxelList(), expected);
    EXPECT_EQ(list->currentRow(), 4);
}

TEST_F(TissueList, TypedNamesStopAtTheLimitAndLoseWhatIsNotLegal)
{
    QTest::keyClick(list, Qt::Key_F2); // from any cell of the row
    auto* line = list->viewport()->findChild<QLineEdit*>();
    ASSERT_TRUE(line);
    EXPECT_EQ(line->text(), "M5");
    QTest::keyClick(line, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    const struct
    {
        std::string typed, expected;
    } table[] = {{std::string(80, 'x'), std::string(64, 'x')},
                 {"Gr\u00f6\u00dfe 7", "Gre_7"},
                 {"a\"b\\c{d}e;f", "abcdef"},
                 {" ", "_"},
                 {"..", ".."}};
    for (const auto& row : table) {
        rename(1, "");
        rename(1, row.typed.c_str());
        EXPECT_EQ(names()[1], row.expected);
        EXPECT_EQ(materials()->bundle(1)->getName(), row.expected);
    }
    // A long name of a file is shown whole, and keeps every character.
    const std::string long80 = "Gr\u00f6\u00dfe " + std::string(80, 'y');
    materials()->bundle(4)->set("LongName", long80.c_str());
    list->updateMaterialVisibility();
    EXPECT_EQ(names()[4], long80);
    EXPECT_EQ(list->item(4, GiQTissueList::kName)->toolTip().toStdString(), "<p>" + long80 + "</p>");
    rename(4, "\u00c4u\u00dferes");
    EXPECT_EQ(names()[4], "\u00c4u\u00dferes");
    EXPECT_EQ(list->item(4, GiQTissueList::kName)->toolTip(), QString::fromUtf8("<p>\u00c4u\u00dferes</p>"));
    EXPECT_STREQ(materials()->bundle(4)->getName(), "M4");
    rename(4, ""); // none at all would be no name
    EXPECT_EQ(names()[4], "\u00c4u\u00dferes");
    // Scripts take the names of atlases as they are.
    const std::string atlasName(100, 'z');
    EXPECT_EQ(eval("material 1 name " + atlasName), atlasName);
    EXPECT_EQ(names()[1], atlasName);
    list->setTissue(1);
    QTest::keyClick(list, Qt::Key_F2); // and Return lets them be
    QTest::keyClick(list->viewport()->findChild<QLineEdit*>(), Qt::Key_Return);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(list->viewport()->findChild<QLineEdit*>());
    EXPECT_EQ(names()[1], atlasName);
}

TEST_F(TissueList, AKnownNameWithoutColorLeavesTheMaterialBare)
{
    HxParamBundle& known = *HxMatDatabase::getTheDatabase()->materials();
    known.bundle("Ether", 1);
    list->addTissue("Ether");
    EXPECT_EQ(materials()->bundle(6)->nParameters(), 0);
    const McColor byName = HxMatDatabase::getTheDatabase()->getColor("Ether");
    EXPECT_NEAR(list->itemOf(6)->getColor().redF(), byName.r, 0.01);
    rename(1, "Ether"); // another has it: asked, and without an answer not merged
    EXPECT_EQ(names()[1], "M1");
    known.remove(known.bundle("Ether", 0));
}

TEST_F(TissueList, NewMaterialsGetFreshNamesAndColorsUntilLabelsRunOut)
{
    int added = 0;
    QObject listener;
    QObject::connect(gi(), &GiQ::materialAdded, &listener, [&] { ++added; });
    click(toolbox().addMatButton);
    EXPECT_EQ(names().back(), "Material7");
    EXPECT_EQ(list->currentRow(), 6);
    EXPECT_EQ(gi()->currentTissue, 6);
    int id = 0;
    EXPECT_EQ(materials()->bundle(6)->findNum("Id", id), 1);
    EXPECT_EQ(id, 7);
    materials()->bundle("Material8", 1);
    list->setTissues(materials(), -1);
    list->addTissue();
    EXPECT_EQ(names().back(), "Material9");
    list->addTissue("Fat");
    EXPECT_EQ(list->itemOf(9)->getColor().name(), "#f5db66");
    list->addTissue("Fat"); // taken
    EXPECT_EQ(names().back(), "Fat2");
    EXPECT_EQ(added, 4);

    // A made color lies farther from all others than any of them lies from its neighbour, at first.
    const McColor color = list->bestNewColor();
    for (int i = 0; i < list->rowCount(); ++i) {
        const QColor other = list->itemOf(i)->getColor();
        EXPECT_GT(std::abs(other.redF() - color.r) + std::abs(other.greenF() - color.g) +
                      std::abs(other.blueF() - color.b),
                  0.2);
    }
    std::string told;
    HxMessage::setDialogHandler([&](const HxDialogRequest& request) {
        told = request.text;
        return 0;
    });
    while (list->rowCount() < 256) list->addTissue();
    EXPECT_EQ(told, "");
    list->addTissue();
    EXPECT_EQ(told, "Maximum number of materials reached.");
    EXPECT_EQ(materials()->nBundles(), 256);

    gi()->drawStyle2D[255] = gi()->lastDrawStyle2D[255] = 3; // beyond the last one after the next step
    gi()->visible3D[255] = 1;
    list->removeTissue(255, 0);
    EXPECT_EQ(gi()->drawStyle2D[255], 1);
    EXPECT_EQ(gi()->lastDrawStyle2D[255], 1);
    EXPECT_EQ(gi()->visible3D[255], 0);
}

TEST_F(TissueList, SaysWhichCharactersOfANameWereDropped)
{
    const struct
    {
        const char* typed;
        std::vector<std::string> remarks;
    } rows[] = {
        {"Liver", {}},
        {"left kidney", {}},
        {"a/b (c)", {"A material is named by letters, digits and _-. alone: \"a/b (c)\" became \"ab_c\"."}},
        {"()", {"A material is named by letters, digits and _-. alone: \"()\" became \"ab_c\"."}}};
    for (const auto& row : rows) {
        console.clear();
        list->item(1, GiQTissueList::kName)->setText(row.typed);
        EXPECT_EQ(console, row.remarks) << row.typed;
    }
}

TEST_F(TissueList, ANewMaterialAlwaysHasANameAndTellsIfItIsAnother)
{
    const struct
    {
        const char* given;
        std::string name;
        bool isTold;
    } rows[] = {{"Liver", "Liver", false},
                {"left kidney", "left_kidney", false},
                {"a/b", "ab", true},
                {"%%%", "Material10", true},
                {"", "Material11", true}};
    for (const auto& row : rows) {
        console.clear();
        eval("gi newMaterial {" + std::string(row.given) + "}");
        EXPECT_EQ(materials()->bundle(list->currentRow())->getName(), row.name);
        const std::string told = "A material is named by letters, digits and _-. alone: \"" +
                                 std::string(row.given) + "\" became \"" + row.name + "\".";
        EXPECT_EQ(console, row.isTold ? std::vector{told} : std::vector<std::string>{});
    }
}

// Widgets of cells have come and gone meanwhile, and an editor can stand where one of them was in memory.
TEST_F(TissueList, ANamesEditorClosesHoweverOftenRowsWereMade)
{
    for (int i = 0; i < 50; ++i) {
        list->setTissues(materials(), 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTest::keyClick(list, Qt::Key_F2);
        auto* line = list->viewport()->findChild<QLineEdit*>();
        ASSERT_TRUE(line);
        QTest::keyClick(line, Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        ASSERT_FALSE(list->viewport()->findChild<QLineEdit*>()) << i;
    }
}
