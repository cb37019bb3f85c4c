// The widget of a slice viewer: what it paints, where pixels lie on the screen, and what it makes of Qt's
// events.

#include "app/GiQFrameBuffer.h"
#include "app/GiQViewer.h"
#include "app/GiResetOrientationTool.h"
#include "app/GiSetOrientationTool.h"
#include "editor/app/WindowEvents.h"
#include "editor/display/TestEditor.h"

#include "display/GiShape.h"
#include "hx/HxInterpreter.h"
#include "hx/HxMessage.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McMemoryException.h"
#include "tools/GiCrossHairTool.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <gtest/gtest.h>
#include <tcl.h>

#include <random>

namespace {

constexpr QRgb kGround = qRgb(96, 96, 96);

/// Gives every zoomed pixel a colour of its own.
class Map : public GiShape
{
public:
    static QRgb colorAt(int x, int y) { return qRgb(x & 255, y & 255, 200 + ((x >> 8) & 3)); }
    void render(GiFrameBuffer* buffer, const McBox2i& box) override
    {
        for (int y = box.ymin; y <= box.ymax; ++y)
            for (int x = box.xmin; x <= box.xmax; ++x) {
                const QRgb c = colorAt(x, y);
                buffer->setColor(qRed(c), qGreen(c), qBlue(c));
                buffer->writePixel(x, y);
            }
    }
};

/// One viewer with a window, over labels that are their own image, all 0 and shown in middle grey.
class FrameBufferWidget : public testing::Test
{
protected:
    FrameBufferWidget() : FrameBufferWidget(12, 10, 5) {}
    FrameBufferWidget(unsigned long nx, unsigned long ny, unsigned long nz) : editor(nx, ny, nz, 0)
    {
        TestGi& gi = editor.gi;
        gi.imageLattice = editor.lattice();
        const float box[6] = {0, float(nx), 0, float(ny), 0, float(nz)};
        editor.lattice()->coords()->setBoundingBox(box);
        viewer = new GiQViewer("viewer", &gi, nullptr);
        viewer->ref();
        gi.viewers.append(viewer);
        gi.panel.setActiveViewer(viewer);
        viewer->setDataWindow(-1, 1, false);
        viewer->setOrientation(2);
        viewer->setSlice(0, false);
        buffer().addEventHandler(&FrameBufferWidget::record, this);
    }

    GiQFrameBuffer& buffer() { return *static_cast<GiQFrameBuffer*>(viewer->getWidget()); }
    void show(int width, int height)
    {
        buffer().resize(width, height);
        buffer().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&buffer()));
        ASSERT_EQ(buffer().size(), QSize(width, height));
    }
    QImage painted() { return buffer().grab().toImage().convertToFormat(QImage::Format_RGB32); }

    static int record(GiFrameBuffer*, McEvent* event, void* test)
    {
        auto& self = *static_cast<FrameBufferWidget*>(test);
        if (const auto* key = event->as<McKeyboardEvent>()) self.lastKey = *key;
        if (const auto* button = event->as<McMouseButtonEvent>()) self.lastButton = *button;
        if (const auto* motion = event->as<McMotionEvent>()) self.lastMotion = *motion;
        ++self.events;
        if (self.throws) throw McMemoryException(77);
        return 0;
    }

    TestEditor editor;
    GiQViewer* viewer;
    McKeyboardEvent lastKey;
    McMouseButtonEvent lastButton;
    McMotionEvent lastMotion;
    int events = 0;
    bool throws = false;
};

TEST_F(FrameBufferWidget, titleTellsSliceCountAndPlane)
{
    show(130, 60);
    viewer->setZoomFactor(14); // covers the window in all orientations
    const auto expectTitle = [&](const char* text) {
        const QImage seen = painted().copy(0, 0, 130, 30);
        QImage wanted(130, 30, QImage::Format_RGB32);
        wanted.fill(seen.pixel(0, 0));
        QPainter painter(&wanted);
        painter.setFont(buffer().font());
        const int base = painter.fontMetrics().ascent() + 10;
        painter.setPen(Qt::black);
        painter.drawText(11, base + 1, text);
        painter.setPen(Qt::white);
        painter.drawText(10, base, text);
        painter.end();
        EXPECT_EQ(seen, wanted) << text;
    };
    expectTitle("# 0/5 [XY]");
    viewer->setSlice(99, true);
    expectTitle("# 4/5 [XY]");
    viewer->setOrientation(1);
    expectTitle("# 4/10 [XZ]");

    HxSettingsMgr& settings = *HxSettingsMgr::getInstance();
    const HxPreferences former = settings.getPreferences();
    HxPreferences names = former;
    names.anatomicalNames = true;
    settings.setPreferences(names, false);
    expectTitle("# 4/10 [coronal]");
    viewer->setOrientation(0);
    expectTitle("# 4/12 [sagittal]");
    viewer->setOrientation(2);
    expectTitle("# 4/5 [axial]");
    settings.setPreferences(former, false);

    Tcl_Interp* interp = HxInterpreter::getTheInterpreter()->tcl();
    Tcl_SetVar(interp, "VOREL_INDEX_BASE", "1", TCL_GLOBAL_ONLY);
    delete new GiQFrameBuffer("other", nullptr, 8, 8, 0, 0); // each constructor reads it
    expectTitle("# 5/5 [XY]");
    Tcl_UnsetVar(interp, "VOREL_INDEX_BASE", TCL_GLOBAL_ONLY);
    delete new GiQFrameBuffer("other", nullptr, 8, 8, 0, 0);
    EXPECT_EQ(GiQFrameBuffer::sSliceNumBase, 0);
}

TEST_F(FrameBufferWidget, scrollBarIsWhereTheSliceIs)
{
    show(130, 60);
    viewer->setZoomFactor(12);
    viewer->setSlice(2, true);
    const QImage image = painted();
    const QRgb white = qRgb(255, 255, 255), black = qRgb(0, 0, 0), grey = image.pixel(60, 40);
    ASSERT_NE(grey, white);
    for (int x = 15; x <= 115; ++x) EXPECT_EQ(image.pixel(x, 52), white) << x;
    EXPECT_EQ(image.pixel(13, 52), grey);
    EXPECT_EQ(image.pixel(116, 52), grey);
    EXPECT_EQ(image.pixel(116, 53), black) << "the shadow, one pixel on";
    for (int y = 48; y <= 56; ++y) EXPECT_EQ(image.pixel(65, y), white) << y;
    EXPECT_EQ(image.pixel(65, 47), grey);
    EXPECT_EQ(image.pixel(66, 57), black);
    for (const QPoint p :
         {QPoint(4, 52), QPoint(11, 48), QPoint(11, 56), QPoint(125, 52), QPoint(118, 48), QPoint(118, 56)})
        EXPECT_EQ(image.pixel(p), white) << p.x() << " " << p.y();

    viewer->setSlice(4, true);
    EXPECT_EQ(painted().pixel(115, 48), white);
}

class OneSlice : public FrameBufferWidget
{
protected:
    OneSlice() : FrameBufferWidget(12, 10, 1) {}
};

TEST_F(OneSlice, hasNoScrollBarAndNothingToDrag)
{
    show(130, 60);
    viewer->setZoomFactor(12);
    const QImage image = painted();
    EXPECT_EQ(image.pixel(60, 52), image.pixel(60, 40));
    Hand(&buffer()).moveTo(15, 52).press(15, 52).release(15, 52);
    EXPECT_EQ(lastButton.button, 1) << "the press went on to the tools";
    EXPECT_FALSE(buffer().isBrowsing());
}

TEST_F(FrameBufferWidget, withoutDataOrSizeThereIsOnlyBackground)
{
    show(130, 60);
    GiQFrameBuffer blank("blank", nullptr, 0, 5, 0, 0);
    EXPECT_FALSE(blank.isReady());
    Hand(&blank).press(3, 3).type('a');
    blank.resize(40, 30);
    blank.grab(); // lets the widget know of its size
    EXPECT_TRUE(blank.isReady());

    editor.gi.labelLattice = nullptr;
    const QImage empty = painted();
    for (const QPoint p : {QPoint(12, 20), QPoint(65, 30), QPoint(65, 52)})
        EXPECT_EQ(empty.pixel(p), kGround);
    editor.gi.labelLattice = editor.lattice();
}

/// Every pixel on the screen is the one that its coordinates tell, for centred and scrolled pictures, even
/// and odd margins, and all flips.
TEST_F(FrameBufferWidget, screenAndZoomedCoordinatesAgreeWithThePicture)
{
    McHandle<Map> map(new Map);
    buffer().addShape(map);
    show(101, 90);
    for (const float zoom : {4.0f, 5.0f, 20.0f})
        for (int flips = 0; flips < 4; ++flips) {
            viewer->setZoomFactor(zoom);
            viewer->setFlip(flips & 1, flips >> 1, 0);
            buffer().setOffset(McVec2i(17, 9));
            buffer().render(nullptr);
            const QImage image = painted();
            int wrong = 0, inside = 0;
            for (int y = 30; y < 78; ++y) // between title and scroll bar
                for (int x = 0; x < 101; ++x) {
                    const McVec2i p = buffer().translatePosFromScreen(McVec2i(x, y));
                    const McVec2i back = buffer().translatePosToScreen(p);
                    const bool shown = p.x >= buffer().offset.x && p.y >= buffer().offset.y &&
                                       p.x < buffer().offset.x + buffer().memSize.x &&
                                       p.y < buffer().offset.y + buffer().memSize.y;
                    inside += shown;
                    wrong += image.pixel(x, y) != (shown ? Map::colorAt(p.x, p.y) : kGround);
                    wrong += back.x != x || back.y != y;
                }
            EXPECT_EQ(wrong, 0) << "zoom " << zoom << ", flips " << flips;
            EXPECT_GT(inside, 40 * 30);
        }
    buffer().removeShape(map);
}

TEST_F(FrameBufferWidget, scrollingDrawsWhatAFullDrawingDraws)
{
    McHandle<Map> map(new Map);
    GiCrossHairTool& crossHair = *editor.gi.crossHair;
    buffer().addShape(map);
    buffer().addShape(&crossHair);
    crossHair.setVisible(true);
    show(60, 50);
    viewer->setZoomFactor(20);
    std::mt19937 random(7);
    for (int i = 0; i < 200; ++i) {
        if (i % 20 == 0) {
            viewer->setFlip(i / 20 & 1, i / 40 & 1, 0);
            buffer().render(nullptr);
        }
        const McVec2i from = buffer().offset;
        const int reach = i % 3 ? 15 : 150;
        const auto step = [&] {
            return static_cast<int>(random() % static_cast<unsigned>(2 * reach)) - reach;
        };
        buffer().setOffset(McVec2i(from.x + step(), from.y + step()));
        const QImage scrolled =
            QImage(buffer().memory, buffer().memSize.x, buffer().memSize.y, QImage::Format_RGB32).copy();
        buffer().render(nullptr);
        const QImage whole(buffer().memory, buffer().memSize.x, buffer().memSize.y, QImage::Format_RGB32);
        ASSERT_EQ(scrolled, whole) << "step " << i;
        ASSERT_TRUE(buffer().offset.x >= 0 && buffer().offset.x <= 240 - 60);
        ASSERT_TRUE(buffer().offset.y >= 0 && buffer().offset.y <= 200 - 50);
    }
    buffer().removeShape(map);
    buffer().removeShape(&crossHair);
}

/// Notes where a widget is painted.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget* widget) : target(widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            painted.append(static_cast<QPaintEvent*>(event)->region().boundingRect());
        return false;
    }
    QWidget* target;
    QList<QRect> painted;
};

TEST_F(FrameBufferWidget, pastePaintsAtOnceAndOnlyThere)
{
    buffer().paste(); // not shown yet: nothing to do, nothing to fail
    show(130, 110);
    viewer->setZoomFactor(10); // 120 x 100
    QCoreApplication::processEvents();
    PaintWatch watch(&buffer());
    buffer().paste(McBox2i(20, 10, 29, 14));
    EXPECT_EQ(watch.painted, QList<QRect>{QRect(25, 15, 10, 5)});
    viewer->setFlip(1, 0, 0);
    buffer().render(nullptr);
    watch.painted.clear();
    buffer().paste(McBox2i(20, 10, 29, 14));
    EXPECT_EQ(watch.painted, QList<QRect>{QRect(95, 15, 10, 5)});
    watch.painted.clear();
    buffer().paste(McBox2i(5, 5, 4, 4));
    EXPECT_TRUE(watch.painted.isEmpty());
}

TEST_F(FrameBufferWidget, resizingKeepsWhatIsInTheMiddle)
{
    show(100, 100);
    viewer->setZoomFactor(40); // 480 x 400
    buffer().setOffset(McVec2i(150, 120));
    buffer().resize(140, 60);
    EXPECT_EQ(buffer().memSize.x, 140);
    EXPECT_EQ(buffer().memSize.y, 60);
    EXPECT_EQ(buffer().offset.x, 130);
    EXPECT_EQ(buffer().offset.y, 140);
    viewer->setZoomFactor(2);
    EXPECT_EQ(buffer().memSize.x, 24) << "no larger than the slice";
    viewer->setZoomFactor(40);
    EXPECT_EQ(buffer().memSize.x, 140);
}

TEST_F(FrameBufferWidget, arrowsStepAndSwallowTheirClicks)
{
    show(130, 60);
    Hand hand(&buffer());
    hand.press(12, 48).release(12, 48);
    EXPECT_EQ(viewer->getSlice(), 0);
    EXPECT_EQ(lastButton.pressed, 0) << "tools never saw the press on slice 0";
    EXPECT_EQ(events, 1);
    hand.press(117, 59).release(117, 59);
    EXPECT_EQ(viewer->getSlice(), 1);
    hand.press(0, 48).release(0, 48);
    EXPECT_EQ(viewer->getSlice(), 0);
    for (int i = 0; i < 9; ++i) hand.press(129, 50).release(129, 50);
    EXPECT_EQ(viewer->getSlice(), 4);

    events = 0;
    hand.press(117, 47);
    hand.press(116, 50, Qt::RightButton).press(12, 50, Qt::MiddleButton);
    EXPECT_EQ(events, 3) << "above the bar, beside the arrow, and other buttons are not for the bar";
    EXPECT_EQ(viewer->getSlice(), 4);
}

TEST_F(FrameBufferWidget, keptGrabDifferenceWhileTheTickIsDragged)
{
    show(130, 60); // the line is 100 pixels long
    viewer->setSlice(2, true);
    Hand hand(&buffer());
    hand.moveTo(65, 50);
    events = 0;
    hand.press(65, 50); // painted at 65, but 55 by the number of slices: the hand holds it 10 pixels off
    EXPECT_TRUE(buffer().isBrowsing());
    hand.moveTo(79, 50);
    EXPECT_EQ(viewer->getSlice(), 2) << "64 / 25 + 0.5 would be slice 3";
    hand.moveTo(90, 20);
    EXPECT_EQ(viewer->getSlice(), 3);
    hand.moveTo(-50, 50);
    EXPECT_EQ(viewer->getSlice(), 0);
    hand.moveTo(900, 50);
    EXPECT_EQ(viewer->getSlice(), 4);
    hand.release(50, 50);
    EXPECT_EQ(viewer->getSlice(), 1);
    EXPECT_FALSE(buffer().isBrowsing());
    EXPECT_EQ(events, 0) << "the tools saw nothing of it";
}

TEST_F(FrameBufferWidget, cursorTellsOfArrowsAndTick)
{
    show(130, 60);
    viewer->setSlice(2, true);
    buffer().setCursor(Qt::CrossCursor);
    Hand hand(&buffer());
    const auto shapeAt = [&](int x, int y) {
        hand.moveTo(x, y);
        return buffer().cursor().shape();
    };
    EXPECT_EQ(shapeAt(65, 47), Qt::CrossCursor);
    for (const int x : {60, 69}) EXPECT_EQ(shapeAt(x, 48), Qt::SizeHorCursor) << x;
    for (const int x : {59, 70}) {
        shapeAt(65, 48);
        EXPECT_EQ(shapeAt(x, 48), Qt::SizeHorCursor) << x << ", kept along the bar";
        shapeAt(65, 20);
        EXPECT_EQ(shapeAt(x, 48), Qt::CrossCursor) << x;
    }
    for (const int x : {12, 117}) EXPECT_EQ(shapeAt(x, 59), Qt::ArrowCursor) << x;
    buffer().setCursor(Qt::WaitCursor); // another tool meanwhile
    EXPECT_EQ(buffer().cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(shapeAt(65, 20), Qt::WaitCursor);
    shapeAt(65, 50);
    hand.leave();
    EXPECT_EQ(buffer().cursor().shape(), Qt::WaitCursor);
}

TEST_F(FrameBufferWidget, wheelGathersNotchesAndForgetsThemWhenItTurnsBack)
{
    show(130, 60);
    Hand hand(&buffer());
    hand.turn(60);
    EXPECT_EQ(viewer->getSlice(), 0);
    EXPECT_FALSE(buffer().isBrowsing());
    hand.turn(60);
    EXPECT_EQ(viewer->getSlice(), 1);
    EXPECT_TRUE(buffer().isBrowsing());
    hand.turn(240);
    EXPECT_EQ(viewer->getSlice(), 3);
    hand.turn(100).turn(-60).turn(-59);
    EXPECT_EQ(viewer->getSlice(), 3);
    hand.turn(-1);
    EXPECT_EQ(viewer->getSlice(), 2);
    EXPECT_EQ(events, 3) << "the tools hear of each step as of a motion";
    Hand(&buffer(), Qt::ShiftModifier).turn(-120);
    EXPECT_EQ(viewer->getSlice(), 0) << "five at once, within the volume";
    EXPECT_EQ(lastMotion.shift, 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !buffer().isBrowsing(); }, 5000)) << "it comes to rest";
}

TEST_F(FrameBufferWidget, eventsCarryButtonsModifiersAndZoomedPositions)
{
    show(130, 110);
    viewer->setZoomFactor(10); // 120 x 100, centred: 5 pixels around it
    Hand hand(&buffer(), Qt::ShiftModifier | Qt::AltModifier);
    hand.press(15, 25, Qt::RightButton);
    EXPECT_EQ(lastButton.x, 10);
    EXPECT_EQ(lastButton.y, 20);
    EXPECT_EQ((std::array{lastButton.left, lastButton.middle, lastButton.right}), (std::array{0, 0, 1}));
    EXPECT_EQ((std::array{lastButton.shift, lastButton.ctrl, lastButton.alt}), (std::array{1, 0, 1}));
    EXPECT_EQ((std::array{lastButton.button, lastButton.pressed}), (std::array{3, 1}));
    hand.press(15, 25, Qt::MiddleButton);
    EXPECT_EQ((std::array{lastButton.button, lastButton.middle, lastButton.right}), (std::array{2, 1, 0}))
        << "only the event's own button";
    hand.moveTo(0, 0);
    EXPECT_EQ((std::array{lastMotion.x, lastMotion.middle, lastMotion.right}), (std::array{-5, 1, 1}));
    hand.release(15, 25, Qt::MiddleButton);
    EXPECT_EQ((std::array{lastButton.button, lastButton.pressed, lastButton.middle}), (std::array{2, 0, 0}));
    Hand(&buffer()).doubleClick(20, 20);
    EXPECT_EQ((std::array{lastButton.button, lastButton.pressed, lastButton.left}), (std::array{1, 1, 1}));
    Hand(&buffer()).keyDown(Qt::Key_Home);
    EXPECT_EQ(lastKey.left, 1) << "as the mouse left it";
}

TEST_F(FrameBufferWidget, keysHaveTheCodesOfTheCore)
{
    struct Case
    {
        int key;
        const char* text;
        int code;
    };
    const Case cases[] = {{Qt::Key_Escape, "\x1b", 65307},
                          {Qt::Key_Tab, "\t", 65289},
                          {Qt::Key_Backtab, "", 65289},
                          {Qt::Key_Backspace, "\b", 65288},
                          {Qt::Key_Return, "\r", 65293},
                          {Qt::Key_Delete, "\x7f", 65535},
                          {Qt::Key_Home, "", 65360},
                          {Qt::Key_End, "", 65367},
                          {Qt::Key_Left, "", 65361},
                          {Qt::Key_Up, "", 65362},
                          {Qt::Key_Right, "", 65363},
                          {Qt::Key_Down, "", 65364},
                          {Qt::Key_PageUp, "", 65365},
                          {Qt::Key_PageDown, "", 65366},
                          {Qt::Key_Shift, "", 65505},
                          {Qt::Key_Control, "", 65507},
                          {Qt::Key_Alt, "", 65513},
                          {Qt::Key_A, "a", 'a'},
                          {Qt::Key_A, "A", 'a'},
                          {Qt::Key_Z, "Z", 'z'},
                          {Qt::Key_Plus, "+", '+'},
                          {Qt::Key_BracketRight, "\x1d", 29},
                          {Qt::Key_At, "@", '@'},
                          {Qt::Key_Space, " ", 32},
                          {Qt::Key_F5, "", 0},
                          {Qt::Key_Adiaeresis, "\xc3\xa4", 0xc3}};
    for (const Case& c : cases) {
        Hand hand(&buffer());
        hand.keyDown(c.key, QString::fromUtf8(c.text));
        EXPECT_EQ(lastKey.key, c.code) << c.text;
        EXPECT_EQ((std::array{lastKey.released, lastKey.autoRepeat, lastKey.count}), (std::array{0, 0, 1}));
        hand.keyUp(c.key, QString::fromUtf8(c.text), true);
        EXPECT_EQ((std::array{lastKey.key, lastKey.released, lastKey.autoRepeat}),
                  (std::array{c.code, 1, 1}));
    }
}

TEST_F(FrameBufferWidget, exceptionsEndAtTheWindow)
{
    std::vector<std::string> console;
    HxMessage::getTheMsg()->setSink([&](const char* text) { console.push_back(text); });
    throws = true;
    Hand(&buffer()).press(20, 20).moveTo(21, 20).release(21, 20).turn(120).type('x').leave();
    EXPECT_EQ(console.size(), 7u);
    HxMessage::getTheMsg()->setSink({});
}

TEST_F(FrameBufferWidget, viewerAndWidgetSurviveEachOther)
{
    auto* parent = new QWidget;
    McHandle<GiQViewer> other(new GiQViewer("other", &editor.gi, parent));
    const int buffers = GiQFrameBuffer::allFrameBuffers.size();
    other->setOrientation(0);
    EXPECT_EQ(other->getWidget()->objectName(), "A1_UpperRight");
    other->setOrientation(1);
    EXPECT_EQ(other->getWidget()->objectName(), "A2_LowerLeft");
    other->setOrientation(2);
    EXPECT_EQ(other->getWidget()->objectName(), "A0_UpperLeft");
    delete parent;
    EXPECT_EQ(other->getWidget(), nullptr);
    EXPECT_EQ(GiQFrameBuffer::allFrameBuffers.size(), buffers - 1);
    other->setOrientation(0);
    other->setSlice(3, true);
    EXPECT_EQ(other->getSlice(), 3);

    QWidget home;
    {
        McHandle<GiQViewer> third(new GiQViewer("third", &editor.gi, &home));
        third->copySettings(*viewer);
        float min, max;
        third->getDataWindow(min, max);
        EXPECT_EQ(min, -1);
        EXPECT_EQ(third->getZoomFactor(), viewer->getZoomFactor());
    }
    EXPECT_TRUE(home.children().isEmpty());
}

TEST_F(FrameBufferWidget, panelToolsTurnAndBringHome)
{
    McHandle<GiSetOrientationTool> turn(new GiSetOrientationTool(1));
    McHandle<GiResetOrientationTool> home(new GiResetOrientationTool(&editor.gi));
    EXPECT_STREQ(turn->getName(), "Set Orientation");
    EXPECT_STREQ(home->getName(), "Reset Orientation");
    HxViewerBase foreign("other");
    EXPECT_FALSE(turn->supportsViewer(&foreign));
    EXPECT_FALSE(home->supportsViewer(&foreign));
    EXPECT_TRUE(home->supportsViewer(viewer));
    turn->onTrigger(&foreign);
    turn->onTrigger(viewer);
    EXPECT_EQ(viewer->getOrientation(), 1);
    home->onTrigger(viewer);
    EXPECT_EQ(viewer->getOrientation(), 0);
    EXPECT_EQ(viewer->getSlice(), 6);
    EXPECT_EQ(viewer->getZoomFactor(), 3);
    editor.gi.labelLattice = nullptr;
    home->onTrigger(viewer);
    editor.gi.labelLattice = editor.lattice();
}

} // namespace
