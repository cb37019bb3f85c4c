// The blow tool in its viewers: gestures, what they select and draw, and what may come in between.

#include "editor/display/DrawnEditor.h"
#include "editor/tools/FailingShape.h"
#include "editor/tools/ViewerEvents.h"

#include "tools/GiBlowTool.h"
#include "tools/GiCrossHairTool.h"
#include "tools/McBlowRegion.h"

#include <QLineEdit>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace {

constexpr int kX = 60, kY = 50, kZ = 40;

std::vector<bool> pixelsOf(const GiSelection2D& selection)
{
    std::vector<bool> pixels;
    for (int y = 0; y < static_cast<int>(selection.height); ++y)
        for (int x = 0; x < static_cast<int>(selection.width); ++x) pixels.push_back(selection.isSet(x, y));
    return pixels;
}

/// A picture in which ties of the rasterisation leave two colors open.
class Canvas
{
public:
    explicit Canvas(const GiFrameBuffer& frame) : buffer(frame)
    {
        for (const unsigned int color : pictureOf(frame)) colors.push_back({color});
    }

    /// Steps of one pixel along the longer side; the other side to the nearest pixel.
    void line(const McVec2i& from, const McVec2i& to, unsigned int color)
    {
        const int dx = to.x - from.x, dy = to.y - from.y, n = std::max(std::abs(dx), std::abs(dy));
        if (n == 0) paint(from.x, from.y, color);
        for (int i = 0; n > 0 && i <= n; ++i) {
            const double x = from.x + double(dx) * i / n, y = from.y + double(dy) * i / n;
            const int lowX = static_cast<int>(std::ceil(x - 0.5)),
                      highX = static_cast<int>(std::floor(x + 0.5));
            const int lowY = static_cast<int>(std::ceil(y - 0.5)),
                      highY = static_cast<int>(std::floor(y + 0.5));
            if (lowX == highX && lowY == highY) {
                paint(lowX, lowY, color);
            } else {
                at(lowX, lowY).insert(color);
                at(highX, highY).insert(color);
            }
        }
    }
    void block(const McVec2i& p, unsigned int color)
    {
        for (int i = 0; i < 4; ++i) paint(p.x + i % 2, p.y + i / 2, color);
    }
    /// Pixels of the present picture that are not as they may be.
    int differences() const
    {
        const std::vector<unsigned int> picture = pictureOf(buffer);
        int n = 0;
        for (std::size_t i = 0; i < picture.size(); ++i) n += !colors[i].contains(picture[i]);
        return n;
    }

private:
    std::set<unsigned int>& at(int x, int y)
    {
        return colors[static_cast<std::size_t>((y - buffer.offset.y) * buffer.memSize.x + x -
                                               buffer.offset.x)];
    }
    void paint(int x, int y, unsigned int color) { at(x, y) = {color}; }

    const GiFrameBuffer& buffer;
    std::vector<std::set<unsigned int>> colors;
};

/// A bright ball around the middle of a dark volume.
class BlowTool : public testing::Test
{
protected:
    BlowTool() : editor(kX, kY, kZ), image(editor.size())
    {
        for (int z = 0; z < kZ; ++z)
            for (int y = 0; y < kY; ++y)
                for (int x = 0; x < kX; ++x)
                    image[static_cast<std::size_t>(x + kX * (y + kY * z))] =
                        std::hypot(x - 30, y - 25, z - 20) < 15 ? 200 : 20;
        editor.gi.setVolumeByte(editor.dims, kX, image.data(), editor.lattice());
        for (int o = 0; o < 3; ++o) editor.viewer(o).setDataWindow(0, 255, true);
        editor.gi.setZoomFactor(2);
        editor.gi.setTool(GiBlowTool::kIndex);
        tool = dynamic_cast<GiBlowTool*>(editor.gi.currentTool);
        editor.gi.clearUndo(1);
        editor.gi.touches.clear();
    }

    GiFrameBuffer& buffer() { return editor.buffer(shown); }
    GiViewer& viewer() { return editor.viewer(shown); }
    int send(McEvent& event) { return buffer().handleEvent(&event); }
    int send(McEvent&& event) { return send(event); }
    McVec2i screen(int column, int row) { return buffer().pixelCentre(column, row); }

    void press(int column, int row, bool shift = false, bool ctrl = false)
    {
        pressed = screen(column, row);
        McMouseButtonEvent event = buttonEvent(1, true, pressed.x, pressed.y);
        event.shift = shift;
        event.ctrl = ctrl;
        send(event);
    }
    /// Moves to a distance from the press, in screen pixels.
    void drag(int distance) { send(motionEvent(1, pressed.x + distance, pressed.y)); }
    void release() { send(buttonEvent(1, false, 5, 5)); }

    /// An engine like that of the gesture.
    std::unique_ptr<McBlowRegion> engineAt(int column, int row, int limit = 15)
    {
        GiGreyImage& grey = *viewer().getGreyImage();
        auto region = std::make_unique<McBlowRegion>(static_cast<int>(grey.width),
                                                     static_cast<int>(grey.height), grey.grey, 0, 4);
        region->tolerance = limit;
        region->init(column, row);
        return region;
    }
    /// What a curve fills, beside a selection that is there already.
    std::vector<bool> filledBy(const McBlowCurve& curve, GiSelectMode mode = kSelectReplace,
                               const GiSelection2D* before = nullptr)
    {
        const GiSelection2D& shape = *viewer().getSelection();
        GiSelection2D result;
        result.resize(static_cast<int>(shape.width), static_cast<int>(shape.height));
        if (before) result.copyData(*before);
        result.setSelection(curve.size(), curve.data(), mode);
        return pixelsOf(result);
    }
    std::vector<bool> filled(int column, int row, int step, GiSelectMode mode = kSelectReplace,
                             const GiSelection2D* before = nullptr)
    {
        return filledBy(*engineAt(column, row)->getTimeStep(step), mode, before);
    }
    std::vector<bool> selected() { return pixelsOf(*viewer().getSelection()); }
    long count()
    {
        long n = 0;
        for (unsigned long i = 0; i < editor.size(); ++i) n += editor.gi.selection->isSet(i);
        return n;
    }
    /// No mark of the curve is left, nor a wrong one there.
    void expectPictureIsWhatARedrawShows()
    {
        const std::vector<unsigned int> picture = pictureOf(buffer());
        viewer().redraw();
        const std::vector<unsigned int> whole = pictureOf(buffer());
        const auto [left, drawn] = std::mismatch(picture.begin(), picture.end(), whole.begin());
        EXPECT_EQ(left, picture.end())
            << "pixel " << left - picture.begin() << " of rows of " << buffer().memSize.x << " is "
            << std::hex << *left << " instead of " << *drawn;
    }
    bool showsCurve(int orientation)
    {
        for (unsigned int pixel : pictureOf(editor.buffer(orientation)))
            if (pixel == 0xFFFF00 || pixel == 0x00FFFF) return true;
        return false;
    }

    DrawnEditor editor;
    std::vector<unsigned char> image;
    GiBlowTool* tool;
    int shown = 2;
    McVec2i pressed;
};

TEST_F(BlowTool, SelectsTheCurveOfTheDragsLengthAsOneStep)
{
    struct Case
    {
        int distance, step;
    };
    for (shown = 0; shown < 3; ++shown)
        for (const Case c : {Case{0, 0}, Case{2, 0}, Case{3, 1}, Case{5, 2}, Case{12, 4}, Case{40, 16}}) {
            SCOPED_TRACE(c.distance);
            editor.gi.touches.clear();
            press(20, 18);
            if (c.distance > 0) drag(c.distance);
            release();
            EXPECT_EQ(selected(), filled(20, 18, c.step));
            EXPECT_EQ(editor.gi.touches,
                      (std::vector<TestGi::Touch>{{1, 0, shown, viewer().getSlice(), 0, 0}}));
            EXPECT_EQ(editor.gi.undoActions.size(), 1);
            editor.gi.undo();
            EXPECT_EQ(count(), 0);
        }
}

TEST_F(BlowTool, DraggedBackItShowsTheCircleAgain)
{
    press(20, 18);
    drag(50);
    drag(0);
    release();
    EXPECT_EQ(selected(), filled(20, 18, 0));
    shown = 1;
    press(0, 39);
    release();
    EXPECT_EQ(selected(), filled(2, 37, 0)) << "the corner: it begins two pixels within";
}

TEST_F(BlowTool, AddsSubtractsOrReplaces)
{
    struct Case
    {
        bool shift, ctrl;
        GiSelectMode mode;
    };
    for (const Case c : {Case{true, false, kSelectAdd}, Case{false, true, kSelectSubtract},
                         Case{true, true, kSelectSubtract}, Case{false, false, kSelectReplace}}) {
        editor.gi.selection->clear();
        for (int x = 0; x < 30; ++x)
            for (int y = 0; y < kY; ++y) viewer().getSelection()->set(x, y);
        GiSelection2D before;
        before.resize(kX, kY);
        before.copyData(*viewer().getSelection());
        press(30, 25, c.shift, c.ctrl);
        drag(9);
        release();
        EXPECT_EQ(selected(), filled(30, 25, 3, c.mode, &before));
    }
}

TEST_F(BlowTool, LeavesNoMarkBehind)
{
    for (const float zoom : {2.0f, 1.0f, 0.4f, 3.7f})
        for (const int flip : {0, 1}) {
            SCOPED_TRACE(zoom);
            editor.gi.setZoomFactor(zoom);
            viewer().setFlip(flip, flip, 0);
            viewer().redraw();
            press(35, 22);
            for (const int distance : {5, 30, 80, 40, 12, 0, 3, 55}) {
                drag(distance);
                expectPictureIsWhatARedrawShows();
            }
            release();
            expectPictureIsWhatARedrawShows();
        }
}

TEST_F(BlowTool, DrawsLinesPointsAndThePress)
{
    constexpr unsigned int kYellow = 0xFFFF00, kSky = 0x0080FF, kBlue = 0x0000FF;
    for (const float zoom : {1.0f, 3.0f})
        for (const int distance : {0, 4, 20}) {
            SCOPED_TRACE(testing::Message() << "zoom " << zoom << ", distance " << distance);
            editor.gi.setZoomFactor(zoom);
            editor.gi.selection->clear();
            viewer().redraw();
            Canvas expected(buffer());
            press(32, 24);
            drag(distance);
            const auto engine = engineAt(32, 24);
            const McBlowCurve& curve = *engine->getTimeStep(static_cast<int>(distance * 0.4));
            const auto screenOf = [&](int i) {
                const McVec2f& p = curve[i % curve.size()];
                const int z = static_cast<int>(zoom);
                return McVec2i(static_cast<int>(p.x + 0.5f) * z, static_cast<int>(p.y + 0.5f) * z);
            };
            for (int i = 0; i < curve.size(); ++i) {
                expected.line(screenOf(i), screenOf(i + 1), kYellow);
                expected.block(screenOf(i), kSky);
            }
            expected.block(pressed, kBlue);
            EXPECT_EQ(expected.differences(), 0);
            release();
        }
}

TEST_F(BlowTool, DrawsItsCurveInItsOwnViewerOnly)
{
    press(30, 25);
    drag(20);
    for (int o = 0; o < 3; ++o) {
        editor.viewer(o).redraw();
        EXPECT_EQ(showsCurve(o), o == 2);
    }
    release();
    EXPECT_FALSE(showsCurve(2));
}

// A motion tries as many steps as are missing. A curve that rests uses up some of them, and so holds at an
// edge for a while.
TEST_F(BlowTool, GrowsWithMotionsAlone)
{
    EXPECT_EQ(tool->getBoundingBox(), McBox2i(0, 0, 1000, 1000)) << "before the first press";
    auto* tolerance = tool->getWidget(nullptr)->findChild<QLineEdit*>("wToleranceEdit");
    tolerance->setText("0");
    press(30, 25);
    const auto engine = engineAt(30, 25, 50);
    for (const int distance : {20, 60, 80, 81, 82, 83, 100, 130}) {
        drag(distance);
        const int step = static_cast<int>(distance * 0.4);
        const McBlowCurve* curve = engine->getTimeStep(step);
        for (int i = 0; i < 3; ++i) viewer().redraw();
        EXPECT_EQ(tool->getBoundingBox().xmax, [&] {
            int right = -1;
            for (const McVec2f& p : *curve) right = std::max(right, static_cast<int>(p.x) + 1);
            return right;
        }()) << distance;
    }
    EXPECT_LT(engine->tolerance, 50) << "the curve did rest";
    release();
    EXPECT_EQ(selected(), filledBy(*engine->curves.last())) << "what was drawn";
}

TEST_F(BlowTool, KeepsItsPlaceWhenTheZoomChanges)
{
    press(30, 25);
    drag(20);
    editor.gi.setZoomFactor(4);
    expectPictureIsWhatARedrawShows();
    pressed = screen(30, 25);
    const std::size_t mark = static_cast<std::size_t>((pressed.y - buffer().offset.y) * buffer().memSize.x +
                                                      pressed.x - buffer().offset.x);
    EXPECT_EQ(pictureOf(buffer())[mark], 0x0000FFu);
    drag(12);
    release();
    EXPECT_EQ(selected(), filled(30, 25, 4));
}

TEST_F(BlowTool, TheMaskingWindowHasNoSay)
{
    viewer().setMaskingEnabled(true);
    viewer().setMaskingWindow(0, 100, false); // the ball is brighter
    press(30, 25);
    drag(20);
    release();
    EXPECT_EQ(selected(), filled(30, 25, 8));
    EXPECT_TRUE(viewer().getSelection()->isSet(30, 25));
}

TEST_F(BlowTool, ALackOfMemoryEndsTheGesture)
{
    const McHandle<FailingShape> shape(new FailingShape);
    buffer().addShape(shape);
    press(30, 25);
    shape->fails = true;
    EXPECT_THROW(drag(20), McMemoryException);
    EXPECT_FALSE(tool->isDragging());
    EXPECT_FALSE(showsCurve(2));
    EXPECT_EQ(editor.gi.undoActions.size(), 0);
    release();
    EXPECT_EQ(count(), 0);

    press(30, 25);
    drag(20);
    shape->fails = true;
    EXPECT_THROW(release(), McMemoryException);
    EXPECT_FALSE(tool->isDragging());
    EXPECT_EQ(selected(), filled(30, 25, 8)) << "the picture failed, not the selection";
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    editor.gi.undo();
    EXPECT_EQ(count(), 0);
}

TEST_F(BlowTool, EndsLikeARelease)
{
    GiCrossHairTool& crossHair = *editor.gi.crossHair;
    crossHair.setVisible(true);
    crossHair.setPosition(McVec3i(45, 40, viewer().getSlice()));
    buffer().addShape(&crossHair);
    const McVec2i onLine = screen(45, 5);
    struct Case
    {
        const char* shows;
        std::function<void()> end;
    };
    const Case cases[] = {
        {"the pointer leaves", [&] { send(McLeaveWindowEvent()); }},
        {"the pointer leaves on a line of the cross hair",
         [&] {
             McLeaveWindowEvent event;
             event.x = onLine.x;
             event.y = onLine.y;
             EXPECT_EQ(send(event), 1);
         }},
        {"a release on a line of the cross hair",
         [&] { EXPECT_EQ(send(buttonEvent(1, false, onLine.x, onLine.y)), 1); }},
        {"a press beside the picture", [&] { send(buttonEvent(1, true, -1, 3)); }},
        {"a release in another viewer",
         [&] {
             McMouseButtonEvent event = buttonEvent(1, false, 1, 1);
             editor.buffer(0).handleEvent(&event);
         }},
        {"another button", [&] { send(buttonEvent(3, false, 1, 1)); }},
    };
    for (const Case& c : cases) {
        editor.gi.touches.clear();
        press(30, 25);
        drag(20);
        c.end();
        EXPECT_EQ(selected(), filled(30, 25, 8)) << c.shows;
        EXPECT_EQ(editor.gi.touches.size(), 1u) << c.shows;
        drag(60);
        release();
        send(McLeaveWindowEvent());
        send(buttonEvent(1, true, -1, 3));
        EXPECT_EQ(editor.gi.touches.size(), 1u) << "it had ended: " << c.shows;
        EXPECT_EQ(crossHair.getPosition(), McVec3i(45, 40, viewer().getSlice()));
    }
}

TEST_F(BlowTool, IsGivenUpWhereItsSliceIsGone)
{
    struct Case
    {
        const char* shows;
        std::function<void()> change;
    };
    const Case cases[] = {
        {"another slice", [&] { viewer().setSlice(viewer().getSlice() + 1, true); }},
        {"another orientation", [&] { viewer().setOrientation(1); }},
        {"another tool", [&] { editor.gi.setTool(-1); }},
        {"the same data again", [&] { editor.gi.initTools(); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.shows);
        editor.gi.setTool(GiBlowTool::kIndex);
        viewer().setOrientation(2);
        editor.gi.touches.clear();
        press(30, 25);
        drag(20);
        c.change();
        drag(30);
        release();
        EXPECT_EQ(count(), 0);
        EXPECT_EQ(editor.gi.undoActions.size(), 0) << "there is nothing to undo";
        EXPECT_TRUE(editor.gi.touches.empty());
        EXPECT_FALSE(showsCurve(2));
        expectPictureIsWhatARedrawShows();
    }
    // Steps of others in the middle stay, and with them the one below.
    editor.gi.setTool(GiBlowTool::kIndex);
    viewer().setOrientation(2);
    press(20, 18);
    editor.gi.saveUndoInformationForVolume(1, 0, &viewer());
    editor.gi.setTool(-1);
    EXPECT_EQ(editor.gi.undoActions.size(), 2);
}

TEST_F(BlowTool, StaysUndoableAfterAnUndoInItsMiddle)
{
    press(30, 25);
    drag(20);
    editor.gi.undo();
    EXPECT_EQ(editor.gi.undoActions.size(), 0);
    drag(30);
    release();
    EXPECT_GT(count(), 0);
    ASSERT_EQ(editor.gi.undoActions.size(), 1);
    editor.gi.undo();
    EXPECT_EQ(count(), 0);
}

TEST_F(BlowTool, AFurtherPressBeginsANewCurve)
{
    press(30, 25);
    drag(20);
    const McVec2i at = screen(40, 30);
    send(buttonEvent(3, true, at.x, at.y));
    EXPECT_FALSE(showsCurve(2)) << "the old one is gone, the new one is drawn with the first move";
    send(buttonEvent(3, false, at.x, at.y));
    EXPECT_EQ(selected(), filled(40, 30, 0));
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
}

TEST_F(BlowTool, TakesItsSettingsAtThePress)
{
    QWidget* panel = tool->getWidget(nullptr);
    auto* tolerance = panel->findChild<QLineEdit*>("wToleranceEdit");
    auto* gaussWidth = panel->findChild<QLineEdit*>("wGaussWidthEdit");
    struct Case
    {
        const char *tolerance, *gaussWidth;
        bool crossesEdge;
    };
    for (const Case c : {Case{"50", "1", true}, Case{"0", "8", false}, Case{"", "4", false}}) {
        tolerance->setText(c.tolerance);
        gaussWidth->setText(c.gaussWidth);
        press(30, 25);
        tolerance->setText("25");
        drag(45);
        release();
        EXPECT_EQ(viewer().getSelection()->isSet(30, 3), c.crossesEdge) << c.tolerance;
    }
}

TEST_F(BlowTool, WorksOnSlicesOfOneRowAndOnWhatIsNoNumber)
{
    for (const auto& [x, y, z] : {std::array<unsigned long, 3>{1, 30, 9}, {30, 1, 9}, {1, 1, 1}}) {
        DrawnEditor thin(x, y, z);
        std::vector<float> values(thin.size(), std::numeric_limits<float>::quiet_NaN());
        thin.gi.setVolumeFloat(thin.dims, static_cast<int>(x), values.data(), thin.lattice());
        thin.gi.setTool(GiBlowTool::kIndex);
        for (int o = 0; o < 3; ++o) {
            GiFrameBuffer& frame = thin.buffer(o);
            McMouseButtonEvent down = buttonEvent(1, true, 0, 0), up = buttonEvent(1, false, 0, 0);
            McMotionEvent move = motionEvent(1, 200, 0);
            frame.handleEvent(&down);
            frame.handleEvent(&move);
            frame.handleEvent(&up);
            EXPECT_EQ(thin.gi.touches.size(), 1u);
            thin.gi.touches.clear();
        }
    }
}

} // namespace
