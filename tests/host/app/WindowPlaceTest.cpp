#include "MainWindow.h"

#include "app/hxFitWindow.h"

#include <QAbstractButton>
#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedLayout>

namespace {

const QMargins kFrame(4, 40, 4, 4);

TEST(FitWindow, MovesAndCutsToOneScreenThatIsThere)
{
    const QRect small(0, 0, 1280, 800), second(1280, 0, 1920, 1080);
    struct Case
    {
        const char* what;
        QRect wanted, fitted;
    };
    const Case cases[] = {
        {"fits", {1300, 50, 1000, 700}, {1300, 50, 1000, 700}},
        {"as large as the screen", {0, 0, 1280, 800}, {4, 40, 1272, 756}},
        {"hangs out at the right and below", {2600, 700, 1000, 700}, {2196, 376, 1000, 700}},
        {"hangs out at the left and above", {-50, -50, 1000, 700}, {4, 40, 1000, 700}},
        {"its screen is gone", {-1900, 100, 1000, 700}, {4, 96, 1000, 700}},
        {"more on the second", {1000, 100, 900, 700}, {1284, 100, 900, 700}},
    };
    for (const Case& c : cases) {
        const QRect fitted = hxFitWindow(c.wanted, kFrame, {small, second});
        EXPECT_EQ(fitted, c.fitted) << c.what << ": " << fitted.x() << " " << fitted.y() << " "
                                    << fitted.width() << " " << fitted.height();
        const QRect framed = fitted.marginsAdded(kFrame);
        EXPECT_TRUE(small.contains(framed) || second.contains(framed)) << c.what;
    }
    EXPECT_EQ(hxFitWindow(small, kFrame, {}), small);
}

class WindowPlaceTest : public MainWindow
{
};

TEST_F(WindowPlaceTest, IsKeptWithItsFormUntilTheNextStart)
{
    const QRect place(40, 60, 1000, 720);
    window->setGeometry(place);
    QCoreApplication::processEvents();
    window->showMaximized();
    window->close();
    window = std::make_unique<HxMain>();
    EXPECT_TRUE(window->isMaximized());
    EXPECT_EQ(window->normalGeometry(), place);

    window->showNormal();
    window->close();
    window = std::make_unique<HxMain>();
    EXPECT_FALSE(window->isMaximized());
    EXPECT_EQ(window->geometry(), place);
}

TEST_F(WindowPlaceTest, AHighPanelScrollsInALowWindowAndIsNowhereCutOff)
{
    auto* panel = new QWidget;
    panel->setMinimumSize(340, 2000);
    window->showToolPanel(panel);
    window->resize(1024, 700);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents(); // the width follows the scroll bar
    EXPECT_EQ(window->size(), QSize(1024, 700));
    EXPECT_EQ(panel->height(), 2000);
    auto* scroll = child<QScrollArea>("toolScroll");
    EXPECT_TRUE(scroll->verticalScrollBar()->isVisible());
    EXPECT_GE(scroll->viewport()->width(), 340);
    EXPECT_EQ(window->currentToolPanel(), panel);
    EXPECT_EQ(window->toolPanelLayout()->currentWidget(), panel);

    // The list needs no scroll bar because another panel does.
    window->showToolPanel(nullptr);
    QCoreApplication::processEvents();
    EXPECT_FALSE(scroll->verticalScrollBar()->isVisible());
}

TEST_F(WindowPlaceTest, TheHintNamesTheNextStepAndTheFreePlaceOfTheListDeselects)
{
    auto* hint = child<QLabel>("hint");
    QCoreApplication::processEvents();
    EXPECT_TRUE(hint->text().startsWith("Drop image files here"));
    HxUniformLabelField3* labels = addLabels("a");
    QCoreApplication::processEvents();
    EXPECT_TRUE(hint->text().startsWith("To edit labels"));

    auto* list = child<QListWidget>("objectList");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
    auto* save = child<QAbstractButton>("saveObject");
    EXPECT_TRUE(save->isEnabled());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->viewport()->rect().bottomRight());
    EXPECT_FALSE(save->isEnabled());

    HxObjectPool::getThePool()->removeObject(labels);
    QCoreApplication::processEvents();
    EXPECT_TRUE(hint->text().startsWith("Drop image files here"));
}

} // namespace
