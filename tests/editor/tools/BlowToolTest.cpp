// The blow tool in its viewers: gestures, what they select and draw, and what may come in between.

#include "editor/display/DrawnEditor.h"
#include "editor/tools/ViewerEvents.h"

#include "tools/GiBlowTool.h"
#include "tools/McBlowRegion.h"

#include <QLineEdit>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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

    /// What the curve of a step fills, beside a selection that is there already.
    std::vector<bool> filled(int column, int row, int step, GiSelectMode mode = kSelectReplace,
                             const GiSelection2D* before = nullptr)
    {
        GiGreyImage& grey = *viewer().getGreyImage();
        McBlowRegion region(static_cast<int>(grey.width), static_cast<int>(grey.height), grey.grey, 0, 4);
        region.tolerance = 15;
        region.init(column, row);
        const McBlowCurve* curve = region.getTimeStep(step);
        GiSelection2D result;
        result.resize(static_cast<int>(grey.width), static_cast<int>(grey.height));
        if (before) result.copyData(*before);
        result.setSelection(curve->size(), curve->data(), mode);
        return pixelsOf(result);
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

TEST_F(BlowTool, SelectsTheCurveOfTheDragsLength)
{
    struct Case
    {
        int distance, step;
    };
    for (shown = 0; shown < 3; ++shown)
        for (const Case c : {Case{0, 0}, Case{2, 0}, Case{3, 1}, Case{5, 2}, Case{12, 4}, Case{40, 16}}) {
            SCOPED_TRACE(c.distance);
            press(20, 18);
            if (c.distance > 0) drag(c.distance);
            release();
            EXPECT_EQ(selected(), filled(20, 18, c.step));
        }
}

TEST_F(BlowTool, FindsTheBallAndIsOneUndoStep)
{
    press(30, 25);
    for (int distance = 1; distance < 60; distance += 4) drag(distance);
    release();
    long inside = 0, wrong = 0;
    for (int y = 0; y < kY; ++y)
        for (int x = 0; x < kX; ++x) {
            const double r = std::hypot(x - 30, y - 25);
            inside += r < 12;
            if (r < 12 || r > 18) wrong += viewer().getSelection()->isSet(x, y) != (r < 12);
        }
    EXPECT_GT(inside, 400);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(editor.gi.touches, (std::vector<TestGi::Touch>{{1, 0, 2, viewer().getSlice(), 0, 0}}));
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    editor.gi.undo();
    EXPECT_EQ(count(), 0);
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

TEST_F(BlowTool, EndsLikeARelease)
{
    struct Case
    {
        const char* shows;
        std::function<void()> end;
    };
    const Case cases[] = {
        {"the pointer leaves", [&] { send(McLeaveWindowEvent()); }},
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
        EXPECT_TRUE(editor.gi.touches.empty());
        EXPECT_FALSE(showsCurve(2));
        expectPictureIsWhatARedrawShows();
    }
    // The next gesture starts clean.
    editor.gi.setTool(GiBlowTool::kIndex);
    viewer().setOrientation(2);
    press(20, 18);
    drag(10);
    release();
    EXPECT_EQ(selected(), filled(20, 18, 4));
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
}

TEST_F(BlowTool, TakesItsSettingsAtThePress)
{
    QWidget* panel = tool->getWidget(nullptr);
    auto* tolerance = panel->findChild<QLineEdit*>("wToleranceEdit");
    auto* gaussWidth = panel->findChild<QLineEdit*>("wGaussWidthEdit");
    EXPECT_EQ(tolerance->text(), "35");
    EXPECT_EQ(gaussWidth->text(), "4");
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
