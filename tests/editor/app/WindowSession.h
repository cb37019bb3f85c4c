#pragma once

#include "EditorSession.h"

#include "app/GiQToolbox.h"
#include "app/HxMain.h"
#include "app/QxViewerPanel.h"
#include "core/GiSelection3D.h"

#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QTest>
#include <QToolButton>

/// The editor in the main window, shown on the platform without a screen.
class WindowSession : public EditorSession
{
protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        HxMain::getTheMain()->resize(1280, 800);
        HxMain::getTheMain()->show();
        if (editor()) gi()->set3dMode(true); // as a new toolbox starts
    }
    void TearDown() override
    {
        EditorSession::TearDown();
        if (editor()) { // what an image of real numbers or a user left would meet the next test
            gi()->dataDigits = 0;
            panel().setLayoutNumber(1);
            panel().setActiveViewer(gi()->viewers[2]);
        }
        HxMain::getTheMain()->hide();
    }

    static GiQToolbox& toolbox() { return *gi()->getToolbox(); }
    static QxViewerPanel& panel() { return *gi()->getPanel(); }
    static GiSelection3D& selection() { return *gi()->selection; }

    static void click(QWidget* widget, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(widget, Qt::LeftButton, modifiers);
    }
    static unsigned long numSelected()
    {
        unsigned long n = 0;
        for (unsigned long i = 0; i < selection().numBits(); ++i) n += selection().isSet(i);
        return n;
    }
    static std::string text(const QString& s) { return s.toStdString(); }
    static std::vector<std::string> items(const QComboBox* box)
    {
        std::vector<std::string> list;
        for (int i = 0; i < box->count(); ++i)
            list.push_back((i == box->currentIndex() ? "*" : "") + text(box->itemText(i)));
        return list;
    }

    /// Every entry as "Menu/Submenu/Entry|key", separators as "-".
    static void listMenu(const QMenu* menu, const std::string& path, std::vector<std::string>& list)
    {
        for (const QAction* action : menu->actions()) {
            if (action->isSeparator()) {
                list.push_back(path + "-");
            } else if (action->menu()) {
                listMenu(action->menu(), path + text(action->text()) + "/", list);
            } else {
                const std::string key = text(action->shortcut().toString());
                list.push_back(path + text(action->text()) + (key.empty() ? "" : "|" + key));
            }
        }
    }
    /// Of those that can be seen: editors that rest keep theirs in the bar.
    static QMenu* menuOf(const QMenuBar* bar, const char* title)
    {
        for (const QAction* action : bar->actions())
            if (action->isVisible() && action->text() == title) return action->menu();
        return nullptr;
    }
    /// An entry by its texts, as "Orientation/Flip X".
    static QAction* entry(const QMenu* menu, const QString& path)
    {
        const QString first = path.section('/', 0, 0), rest = path.section('/', 1);
        for (QAction* action : menu->actions())
            if (action->text() == first) return rest.isEmpty() ? action : entry(action->menu(), rest);
        ADD_FAILURE() << "no entry " << path.toStdString();
        return nullptr;
    }
    static QMenu* mainMenu(const char* title) { return menuOf(HxMain::getTheMain()->menuBar(), title); }
};
