// The material list: what its rows show, and what clicks, keys, typing and the menu do to materials, labels
// and the tables beside them.

#include "WindowSession.h"

#include "app/GiMaterialView3D.h"
#include "app/GiQTissueList.h"
#include "app/GiQTissueListItem.h"
#include "hx/HxMatDatabase.h"
#include "qx/HxColorEditor.h"
#include "qx/QxToolButton.h"

#include <QApplication>
#include <QCheckBox>
#include <QFrame>
#include <QLineEdit>
#include <QRadioButton>
#include <QTimer>

#include <algorithm>
#include <random>

namespace {

constexpr int kVoxels = 60;

/// While menus pop up: this platform says of each that it cannot be raised.
class PopUps
{
public:
    PopUps() { failOnWarning = qInstallMessageHandler(passOn); }
    ~PopUps() { qInstallMessageHandler(failOnWarning); }

private:
    static void passOn(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if (!text.startsWith("This plugin does not support")) failOnWarning(type, context, text);
    }
    static inline QtMessageHandler failOnWarning;
};

class TissueList : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        labels = addLabels("labels");
        addMaterials(labels, 6);
        materials()->bundle(4)->set("LongName", "Left Lung");
        addImage("image");
        std::mt19937 random(7);
        for (int i = 0; i < kVoxels; ++i) voxels()[i] = static_cast<unsigned char>(random() % 6);
        eval("segment labels image");
        list = toolbox().tissueList;
        toolbox().allSlicesRadioButton->setChecked(true);
    }
    void TearDown() override
    {
        HxMessage::setDialogHandler({});
        HxMessage::clearAnswers();
        for (int i = 1; i < 256; ++i) gi()->drawStyle2D[i] = gi()->lastDrawStyle2D[i] = 1;
        WindowSession::TearDown();
    }

    HxParamBundle* materials() const { return labels->labelLattice()->materials(); }
    unsigned char* voxels() const { return labels->labelLattice()->getLabels(); }
    std::vector<int> voxelList() const { return {voxels(), voxels() + kVoxels}; }

    /// The names as the table shows them, hidden rows in brackets.
    std::vector<std::string> names() const
    {
        std::vector<std::string> shown;
        for (int row = 0; row < list->rowCount(); ++row) {
            const std::string name = text(list->item(row, GiQTissueList::kName)->text());
            shown.push_back(list->isRowHidden(row) ? "(" + name + ")" : name);
        }
        return shown;
    }
    QPoint cell(int row, int column) const
    {
        return list->visualRect(list->model()->index(row, column)).center();
    }
    void clickCell(int row, int column, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers, cell(row, column));
    }
    template <class Widget>
    Widget* widgetIn(int row, int column) const
    {
        QWidget* inCell = list->cellWidget(row, column);
        auto* found = qobject_cast<Widget*>(inCell);
        return found ? found : inCell->findChild<Widget*>();
    }
    /// Types a name into a row as a person does.
    void rename(int row, const char* name)
    {
        list->setTissue(row);
        list->editItem(list->item(row, GiQTissueList::kName));
        auto* line = list->viewport()->findChild<QLineEdit*>();
        ASSERT_TRUE(line);
        line->selectAll();
        QTest::keyClick(line, Qt::Key_Delete);
        for (const QChar c : QString::fromUtf8(name)) {
            if (c.unicode() < 128)
                QTest::keyClick(line, c.toLatin1());
            else
                line->insert(c); // an input method's
        }
        QTest::keyClick(line, Qt::Key_Return);
        QCoreApplication::processEvents(); // takes the text
        QCoreApplication::processEvents(); // asks about a merge
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    /// Opens the menu over a row, or below all, lists its entries, and triggers the one of that text.
    std::vector<std::string> menu(int row, const char* choose = nullptr)
    {
        const PopUps popUps;
        std::vector<std::string> entries;
        QTimer::singleShot(0, list, [&] {
            auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_TRUE(popup);
            listMenu(popup, "", entries);
            QAction* chosen = choose ? entry(popup, choose) : nullptr;
            if (chosen) {
                popup->setActiveAction(chosen);
                // An entry of a submenu closes both, as a click does.
                for (QMenu* sub : popup->findChildren<QMenu*>())
                    if (sub->actions().contains(chosen)) sub->setActiveAction(chosen);
                QWidget* top = QApplication::activePopupWidget();
                QTest::keyClick(top, Qt::Key_Return);
            }
            while (QWidget* top = QApplication::activePopupWidget()) top->close();
        });
        const QPoint p =
            row >= 0 ? cell(row, GiQTissueList::kName) : QPoint(20, cell(list->rowCount() - 1, 0).y() + 40);
        QTest::mousePress(list->viewport(), Qt::RightButton, {}, p);
        return entries;
    }
    bool allSelectedAre(const std::vector<int>& wanted)
    {
        for (int i = 0; i < kVoxels; ++i) {
            const bool want = std::count(wanted.begin(), wanted.end(), voxels()[i]);
            if (selection().isSet(i) != want) return false;
        }
        return true;
    }

    HxUniformLabelField3* labels = nullptr;
    GiQTissueList* list = nullptr;
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
    gi()->undo(); // of the transfer: all labels as they were, also those of which no material is left
    EXPECT_EQ(voxelList(), before);
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
    EXPECT_EQ(menu(-1, "Unlock All"), (std::vector<std::string>{"New Material", "Unlock All"}));
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
