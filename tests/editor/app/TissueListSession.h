#pragma once

#include "WindowSession.h"

#include "app/GiQTissueList.h"
#include "app/GiQTissueListItem.h"

#include <QApplication>
#include <QLineEdit>
#include <QRadioButton>
#include <QTimer>

#include <algorithm>
#include <random>

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

/// Six materials, the fifth with a long name, whose labels lie about at random.
class TissueList : public WindowSession
{
protected:
    static constexpr int kVoxels = 60;

    void SetUp() override
    {
        WindowSession::SetUp();
        // A window that becomes active later moves the focus out of a name's editor.
        HxMain::getTheMain()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(HxMain::getTheMain()));
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
        QTest::mouseRelease(list->viewport(), Qt::RightButton, {}, p);
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
