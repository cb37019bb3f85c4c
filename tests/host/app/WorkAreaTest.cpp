#include "MainWindow.h"

#include "app/HxConsole.h"
#include "app/HxConsoleInput.h"
#include "app/HxMainWorkArea.h"
#include "hx/HxWorkArea.h"

#include <QMouseEvent>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>
#include <QWindow>

namespace {

/// Polls as an operation does, until it is to stop or the time is over.
bool workFor(int ms)
{
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < ms)
        if (HxWorkArea::getTheWorkArea()->interrupted()) return true;
    return false;
}

/// Puts an event of the mouse where those of the window system arrive.
void post(QWidget* target, QEvent::Type type)
{
    QWindow* window = target->window()->windowHandle();
    const QPointF local = target->mapTo(target->window(), target->rect().center());
    const bool down = type == QEvent::MouseButtonPress;
    QCoreApplication::postEvent(window,
                                new QMouseEvent(type, local, window->mapToGlobal(local), Qt::LeftButton,
                                                down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier));
}

class WorkAreaTest : public MainWindow
{
protected:
    ~WorkAreaTest() override { HxWorkArea::getTheWorkArea()->restoreBusyDepth(0); }
    HxWorkArea* area = HxWorkArea::getTheWorkArea();
};

TEST_F(WorkAreaTest, ShowsWhatRunsAndTheStopButtonEndsIt)
{
    auto* stop = child<QToolButton>("stop");
    auto* bar = child<QProgressBar>("progress");
    EXPECT_FALSE(stop->isEnabled());
    area->busyOn("Growing");
    area->setProgress(0.25);
    EXPECT_TRUE(stop->isEnabled());
    EXPECT_EQ(bar->text(), "Growing  25%");

    post(stop, QEvent::MouseButtonPress);
    post(stop, QEvent::MouseButtonRelease);
    EXPECT_TRUE(workFor(5000));
    area->busyOff();
    EXPECT_FALSE(stop->isEnabled());
    EXPECT_EQ(bar->text(), "");
}

TEST_F(WorkAreaTest, OtherInputAndTimersWait)
{
    QAbstractButton* apply = area->mainButton();
    apply->setEnabled(true);
    QSignalSpy clicked(apply, &QAbstractButton::clicked);
    QTimer timer;
    QSignalSpy ticked(&timer, &QTimer::timeout);
    timer.start(1);

    area->busyOn("Growing");
    post(apply, QEvent::MouseButtonPress);
    post(apply, QEvent::MouseButtonRelease);
    EXPECT_FALSE(workFor(150));
    area->busyOff();
    EXPECT_EQ(ticked.count(), 0);
    QTRY_VERIFY(ticked.count() > 0);
    EXPECT_EQ(clicked.count(), 0);
}

TEST_F(WorkAreaTest, AButtonThatWasDownBeforeGetsItsRelease)
{
    QAbstractButton* apply = area->mainButton();
    apply->setEnabled(true);
    QSignalSpy clicked(apply, &QAbstractButton::clicked);
    post(apply, QEvent::MouseButtonPress);
    QCoreApplication::processEvents();
    ASSERT_TRUE(apply->isDown());

    area->busyOn("Growing");
    post(apply, QEvent::MouseButtonRelease);
    EXPECT_FALSE(workFor(150));
    EXPECT_EQ(clicked.count(), 0);
    area->busyOff();
    QCoreApplication::processEvents();
    EXPECT_FALSE(apply->isDown());
    EXPECT_EQ(clicked.count(), 1);
}

TEST_F(WorkAreaTest, TheConsoleRunsCommandsAndRecallsThem)
{
    HxConsoleInput* line = window->console()->input();
    const auto type = [line](const char* text) {
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
    };
    type("expr {6 * 7}");
    EXPECT_EQ(window->console()->text(), "> expr {6 * 7}\n42");
    window->console()->clear();
    type("set answer [expr {");
    type("40 + 1}]");
    EXPECT_EQ(window->console()->text(), "> set answer [expr {\n... 40 + 1}]\n41");
    window->console()->clear();
    type("nonsense");
    EXPECT_NE(window->console()->text().indexOf("invalid command name"), -1);

    QTest::keyClicks(line, "draft");
    QTest::keyClick(line, Qt::Key_Up);
    QTest::keyClick(line, Qt::Key_Up);
    EXPECT_EQ(line->text(), "40 + 1}]");
    for (int i = 0; i < 9; ++i) QTest::keyClick(line, Qt::Key_Up);
    EXPECT_EQ(line->text(), "expr {6 * 7}");
    for (int i = 0; i < 9; ++i) QTest::keyClick(line, Qt::Key_Down);
    EXPECT_EQ(line->text(), "draft");
}

TEST_F(WorkAreaTest, TabCompletesCommandsObjectsAndTheirWords)
{
    addLabels("liver.nrrd");
    HxConsoleInput* line = window->console()->input();
    QTest::keyClicks(line, "live");
    QTest::keyClick(line, Qt::Key_Tab);
    EXPECT_EQ(line->text(), "liver.nrrd ");
    QTest::keyClicks(line, "voxel");
    QTest::keyClick(line, Qt::Key_Tab);
    EXPECT_EQ(line->text(), "liver.nrrd voxelSize ");

    line->setText("set n [str");
    QTest::keyClick(line, Qt::Key_Tab);
    EXPECT_EQ(line->text(), "set n [string ");
}

} // namespace
