#include "MainWindow.h"

#include "app/HxConsole.h"
#include "app/HxFileDialog.h"
#include "app/HxWindowCommands.h"
#include "app/HxWorkspace.h"
#include "hx/HxInterpreter.h"

#include <QDropEvent>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QUrl>

namespace {

class MenuCommandTest : public MainWindow
{
protected:
    MenuCommandTest() { hxRegisterWindowCommands(); }

    /// The result, or the complaint behind "error: ".
    static std::string run(const std::string& script)
    {
        McString result;
        const int code = HxInterpreter::getTheInterpreter()->eval(script.c_str(), result);
        return (code == TCL_OK ? "" : "error: ") + result.str();
    }
};

TEST_F(MenuCommandTest, FindsEntriesByTheirTextsAndFillsMenusOnTheWay)
{
    QMenu* outer = window->menuBar()->addMenu("&Cooking && Baking");
    QMenu* inner = outer->addMenu("S&weet ...");
    int baked = 0;
    std::vector<QString> seen;
    QObject::connect(inner, &QMenu::aboutToShow, inner, [&] {
        inner->clear();
        inner->addAction("&Cake ...", [&] { ++baked; })->setData("cake");
        inner->addAction("Pie")->setEnabled(false);
    });
    QObject::connect(outer, &QMenu::triggered, outer,
                     [&](QAction* a) { seen.push_back(a->data().toString()); });

    EXPECT_EQ(run("menu {Cooking & Baking/Sweet/Cake}"), "");
    EXPECT_EQ(baked, 1);
    EXPECT_EQ(seen, std::vector<QString>{"cake"}); // menus hear of the entries of their submenus
    EXPECT_EQ(run("menu {Cooking & Baking/Sweet/Pie}"),
              "error: menu: \"Cooking & Baking/Sweet/Pie\" is disabled.");
    EXPECT_EQ(run("menu {Cooking & Baking/Sweet/Cake/Crumb}"),
              "error: menu: \"Cooking & Baking/Sweet/Cake\" has no entries.");
    outer->menuAction()->setVisible(false);
    EXPECT_EQ(run("menu Gardening"),
              "error: menu: there is no entry \"Gardening\" in the menu bar; there are "
              "File, Object, View, Help.");
}

TEST_F(MenuCommandTest, RenamingInTheListTakesTheNameThatIsFree)
{
    HxUniformLabelField3* labels = addLabels("a.nrrd");
    addLabels("b.nrrd");
    window->workspace()->select(labels);
    auto* list = child<QListWidget>("objectList");
    EXPECT_EQ(run("menu Object/Rename"), "");
    QWidget* editor = list->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "b.nrrd");
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents(); // the list takes the text a moment later
    EXPECT_STREQ(labels->getLabel(), "b2.nrrd");
    EXPECT_EQ(list->item(0)->text(), "b2.nrrd");
}

TEST_F(MenuCommandTest, FilesAreDroppedAndScriptsAreOpened)
{
    McString error;
    ASSERT_TRUE(addLabels("a")->save(path("a.nrrd").toUtf8(), error)) << error.c_str();
    HxObjectPool::getThePool()->clear();

    QMimeData dropped;
    dropped.setUrls({QUrl::fromLocalFile(path("a.nrrd"))});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &drop);
    EXPECT_NE(HxObjectPool::getThePool()->find("a.nrrd"), nullptr);

    QFile script(path("s.tcl"));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("set ran 1");
    script.close();
    HxFileDialog::setNextAnswer({path("s.tcl")});
    EXPECT_EQ(run("menu File/Open; set ran"), "1");
}

TEST_F(MenuCommandTest, ASnapshotShowsTheWindowAlsoWhenItIsHidden)
{
    window->close();
    const std::string file = path("w.png").toStdString();
    EXPECT_EQ(run("windowSnapshot " + file), "");
    EXPECT_FALSE(window->isVisible());
    const QImage image(path("w.png"));
    EXPECT_EQ(image.size(), QSize(1280, 800));
    // The list and the console are light, the grid of viewers is not: the parts were laid out.
    EXPECT_NE(image.pixel(160, 300), image.pixel(800, 300));
}

} // namespace
