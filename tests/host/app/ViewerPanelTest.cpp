#include "MainWindow.h"

#include "app/HxController.h"
#include "app/QxViewerPanel.h"
#include "hx/HxViewerBase.h"
#include "hx/HxViewerTool.h"

#include <QAction>
#include <QToolBar>
#include <QToolButton>

namespace {

/// A viewer with a plain widget of its own.
class PlainViewer : public HxViewerBase
{
public:
    explicit PlainViewer(const char* place) : HxViewerBase("plain"), widget(new QWidget)
    {
        widget->setObjectName(place);
    }
    ~PlainViewer() override { delete widget; }
    QWidget* getWidget() override { return widget; }

private:
    QPointer<QWidget> widget;
};

class CountingTool : public HxViewerTriggerTool
{
public:
    CountingTool() : HxViewerTriggerTool("Counting") {}
    void onTrigger(HxViewerBase* viewer) override { triggeredOn.push_back(viewer); }
    std::vector<HxViewerBase*> triggeredOn;
};

class ViewerPanelTest : public MainWindow
{
protected:
    ViewerPanelTest()
    {
        panel = window->viewerPanel();
        for (const McHandle<PlainViewer>& viewer : {free, xz, yz, xy}) panel->registerViewer(viewer);
        panel->setActiveViewer(xy);
    }

    /// Where the viewer's picture lies in the panel, in thirds from the upper left: "00", "10", ...
    /// Empty for one without a place.
    std::string placeOf(const McHandle<PlainViewer>& viewer) const
    {
        QWidget* widget = viewer->getWidget();
        EXPECT_EQ(widget->isVisible(), panel->isViewerVisible(viewer));
        if (!widget->isVisible()) return {};
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        const QPoint corner = widget->mapTo(panel, QPoint(0, 0));
        std::string place;
        place += static_cast<char>('0' + (corner.x() > panel->width() / 3));
        place += static_cast<char>('0' + (corner.y() > panel->height() / 3));
        return place;
    }

    QxViewerPanel* panel;
    McHandle<PlainViewer> xy = new PlainViewer("A0_UpperLeft");
    McHandle<PlainViewer> yz = new PlainViewer("A1_UpperRight");
    McHandle<PlainViewer> xz = new PlainViewer("A2_LowerLeft");
    McHandle<PlainViewer> free = new PlainViewer("");
};

TEST_F(ViewerPanelTest, LayoutsPlaceViewersByTheirNames)
{
    panel->setLayoutNumber(4);
    EXPECT_EQ(placeOf(xy), "00");
    EXPECT_EQ(placeOf(yz), "10");
    EXPECT_EQ(placeOf(xz), "01");
    EXPECT_EQ(placeOf(free), "11");

    panel->setLayoutNumber(5);
    EXPECT_EQ(placeOf(xy), "00");
    EXPECT_GT(xy->getWidget()->height(), panel->height() / 2);
    EXPECT_EQ(placeOf(yz), "10");
    EXPECT_EQ(placeOf(xz), "11");
    EXPECT_EQ(placeOf(free), "");

    panel->setLayoutNumber(1);
    EXPECT_EQ(placeOf(xy), "00");
    EXPECT_EQ(placeOf(yz) + placeOf(xz) + placeOf(free), "");
    panel->setActiveViewer(xz);
    EXPECT_EQ(placeOf(xz), "00");
    EXPECT_EQ(placeOf(xy), "");

    panel->setLayoutNumber(3);
    EXPECT_EQ(panel->layoutNumber(), 1);
}

TEST_F(ViewerPanelTest, NamesAreReadWhenLaidOutAndOneThatIsTakenGetsTheFreePlace)
{
    panel->unregisterViewer(free);
    panel->setLayoutNumber(4);
    yz->getWidget()->setObjectName("A0_UpperLeft"); // two XY slices
    EXPECT_EQ(placeOf(yz), "10");
    panel->reconfigure();
    // In the order of registration: yz came before xy.
    EXPECT_EQ(placeOf(yz), "00");
    EXPECT_EQ(placeOf(xy), "11");
}

TEST_F(ViewerPanelTest, NothingMovesWhileLayoutIsHeld)
{
    panel->setLayoutNumber(4);
    panel->setRelayoutHeld(true);
    panel->setLayoutNumber(5);
    EXPECT_TRUE(panel->isViewerVisible(free));
    panel->setRelayoutHeld(false);
    panel->reconfigure();
    EXPECT_FALSE(panel->isViewerVisible(free));
}

TEST_F(ViewerPanelTest, ViewersLeaveWithTheirWidgetsAndDeadOnesLeaveNothing)
{
    panel->unregisterViewer(xy);
    EXPECT_EQ(panel->getActiveViewer(), free);
    EXPECT_FALSE(panel->isAncestorOf(xy->getWidget()));
    EXPECT_FALSE(panel->isViewerVisible(xy));

    panel->setLayoutNumber(4);
    free = nullptr; // the last reference
    EXPECT_EQ(panel->numViewers(), 2);
    QCoreApplication::processEvents();
    EXPECT_EQ(placeOf(yz), "10");
}

TEST_F(ViewerPanelTest, ToolsThatNothingStandsBehindAreDisabled)
{
    QAction* home = panel->findChild<QAction*>("Home");
    auto* button =
        qobject_cast<QToolButton*>(panel->findChild<QToolBar*>("viewerTools")->widgetForAction(home));
    ASSERT_NE(button, nullptr);
    EXPECT_FALSE(button->isEnabled());

    const McHandle<CountingTool> replacement(new CountingTool);
    panel->setToolOverride(xy, panel->findTool("Home"), replacement);
    EXPECT_TRUE(button->isEnabled());
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(replacement->triggeredOn, std::vector<HxViewerBase*>{xy});

    panel->setActiveViewer(yz);
    EXPECT_FALSE(button->isEnabled());
    for (const char* name : {"Translate", "ViewYZ", "ViewXY", "ViewXZ"})
        EXPECT_NE(panel->findTool(name), nullptr);
}

TEST_F(ViewerPanelTest, WithoutSubApplicationsTheirPanelIsTheMainOne)
{
    EXPECT_EQ(HxController::panel(15), panel);
    EXPECT_EQ(QxViewerPanel::getThePanel(), panel);
    EXPECT_EQ(HxController::panel(16), nullptr);
    QxViewerPanel* other = HxController::panel(3);
    EXPECT_NE(other, panel);
    EXPECT_EQ(HxController::panel(3), other);
    EXPECT_FALSE(other->isVisible());
}

} // namespace
