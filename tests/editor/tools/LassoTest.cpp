// The lasso by hand: outlines drawn, clicked and dragged, what they select, and what ends them.

#include "editor/tools/LassoFixture.h"
#include "editor/tools/ToolImage.h"

#include "tools/GiBrush.h"

#include <cmath>
#include <numbers>

namespace {

TEST(LassoOutline, selectsWhatAPointInPolygonTestSelects)
{
    std::mt19937 random(5);
    DrawnEditor editor(45, 37, 29);
    editor.setVoxelSize(1, 1.3f, 2.1f);
    const ToolImage<short> image(editor, random);
    editor.gi.setTool(GiLasso::kIndex);
    for (int trial = 0; trial < 150; ++trial) {
        SCOPED_TRACE(trial);
        const RandomView view = RandomView::show<short>(editor, random);
        GiViewer& viewer = editor.viewer(view.orientation);
        GiMemoryFrameBuffer& buffer = editor.buffer(view.orientation);
        const Pixels before = pixelsOf(viewer);
        McBitfield mask;
        editor.gi.getMask(&buffer, mask);

        // Corners by click and dragged points, also beside the slice; most outlines cross themselves. The
        // keys of the first press decide.
        const Keys keys{(random() & 1) != 0, random() % 3 == 0, false};
        std::vector<McVec2f> outline;
        const auto place = [&] {
            const McVec2i at(
                static_cast<int>(random() % static_cast<unsigned>(buffer.zoomedSize.x + 20)) - 10,
                static_cast<int>(random() % static_cast<unsigned>(buffer.zoomedSize.y + 20)) - 10);
            outline.emplace_back(static_cast<float>(buffer.dataColumn(at.x)) + 0.5f,
                                 static_cast<float>(buffer.dataRow(at.y)) + 0.5f);
            return at;
        };
        McVec2i at = place();
        const int corners = 1 + static_cast<int>(random() % 5);
        for (int i = 0; i < corners; ++i) {
            if (i > 0) at = place();
            const bool shift = i ? random() & 1 : keys.shift, ctrl = i ? random() & 1 : keys.ctrl;
            auto press = with(buttonEvent(1, true, at.x, at.y), {shift, ctrl, true});
            buffer.handleEvent(&press);
            if (i + 1 == corners) break;
            auto release = with(buttonEvent(1, false, at.x, at.y), kAlt);
            buffer.handleEvent(&release);
            auto hover = with(motionEvent(0, 7, 9), kAlt);
            buffer.handleEvent(&hover);
        }
        for (int i = 0; i < 6; ++i) {
            at = place();
            auto move = with(motionEvent(1, at.x, at.y), {false, i > 2, false});
            buffer.handleEvent(&move);
        }
        auto release = with(buttonEvent(1, false, at.x, at.y), {!keys.shift, !keys.ctrl, false});
        buffer.handleEvent(&release);
        expectPixels(viewer, before, PlainPolygon(outline), keys, view.masks ? &mask : nullptr);
        if (HasFatalFailure())
            FAIL() << "orientation " << view.orientation << ", zoom " << viewer.getZoomFactor();
        editor.gi.undo();
        ASSERT_EQ(pixelsOf(viewer), before);
    }
}

TEST_F(Lasso, altKeepsACornerPolygonOpenUntilItIsLetGo)
{
    openSquare();
    EXPECT_EQ(count(), 0);
    EXPECT_GT(orangePixels(), 0);
    EXPECT_EQ(lasso->getBoundingBox(), McBox2i(22, 22, 62, 62));
    EXPECT_EQ(releaseAlt(true), 0) << "not while a button is held";
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    EXPECT_EQ(releaseAlt(), 1);
    EXPECT_EQ(count(), 110) << "both sides count, and the upper edge";
    EXPECT_TRUE(isSet(5, 5) && isSet(15, 14) && !isSet(5, 15));
    EXPECT_EQ(editor.viewer(2).getSelection()->selectionBox, McBox2i(5, 5, 15, 14));
    EXPECT_EQ(editor.gi.touches, (std::vector<TestGi::Touch>{{1, 0, 2, 3, 0, 0}}));
    EXPECT_EQ(orangePixels(), 0);
    editor.gi.undo();
    EXPECT_EQ(count(), 0);
}

TEST_F(Lasso, withAltADragAddsPointsOnlyBehindTheSecondCorner)
{
    press(5, 5, kAlt);
    drag(25, 25, kAlt);
    release(25, 25, kAlt);
    press(15, 5, kAlt);
    drag(15, 10, kAlt);
    drag(15, 15, kAlt);
    drag(5, 15, kAlt);
    EXPECT_EQ(release(5, 15), 1) << "any release without Alt finishes";
    EXPECT_EQ(count(), 110);
    EXPECT_FALSE(isSet(20, 20));
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
}

TEST_F(Lasso, anyButtonBeginsAndOutlinesBelowTwoPointsSelectNothing)
{
    mark({20, 20, 20, 20});
    for (const int button : {1, 3}) {
        press(5, 5, {}, button);
        release(5, 5, {}, button);
    }
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(editor.gi.touches.empty());
    EXPECT_EQ(editor.gi.undoActions.size(), 2) << "a step is saved at the press";
    press(5, 5);
    drag(9, 5);
    release(9, 5);
    EXPECT_EQ(count(), 0) << "a flat outline has no inside, but replaces";
    editor.gi.undo();
    EXPECT_EQ(count(), 1);
}

TEST_F(Lasso, anotherViewerSwallowsWhatReachesItMeanwhile)
{
    openSquare();
    EXPECT_EQ(send(buttonEvent(1, true, 10, 10), 1), 1);
    EXPECT_EQ(send(motionEvent(1, 14, 14), 1), 1);
    EXPECT_EQ(send(buttonEvent(1, false, 14, 14), 1), 1);
    EXPECT_EQ(count(1), 0);
    EXPECT_EQ(orangePixels(1), 0);
    EXPECT_EQ(releaseAlt(false, 1), 1) << "the key is told to the viewer with the focus";
    EXPECT_EQ(count(), 110);
}

TEST_F(Lasso, theOutlineKeepsToItsPixelsWhenThePictureZoomsAndMoves)
{
    openSquare();
    editor.gi.setZoomFactor(9);
    buffer().setWindowSize(McVec2i(40, 40));
    buffer().setOffset(McVec2i(200, 100));
    EXPECT_EQ(lasso->getBoundingBox(), McBox2i(49, 49, 139, 139));
    releaseAlt();
    EXPECT_EQ(count(), 110);
}

TEST_F(Lasso, undoAndSliceChangeInMidGestureLoseNothing)
{
    mark({30, 20, 30, 20});
    openSquare();
    editor.gi.undo();
    releaseAlt();
    EXPECT_EQ(count(), 110);
    editor.gi.undo();
    EXPECT_EQ(count(), 1) << "the step that undo took away was saved again";

    openSquare();
    editor.viewer(2).setSlice(6, true);
    mark({31, 20, 31, 20});
    releaseAlt();
    EXPECT_EQ(count(), 110) << "the slice that is shown";
    editor.gi.undo();
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(isSet(31, 20));
}

TEST_F(Lasso, otherToolsPlanesDataAndEscapeEndTheGesture)
{
    const struct
    {
        const char* what;
        std::function<void()> happens;
    } kEnds[] = {
        {"tool", [&] { editor.gi.setTool(GiBrush::kIndex); }},
        {"data", [&] { editor.gi.initTools(); }},
        {"Escape", [&] { EXPECT_EQ(pressEscape(), 1); }},
        {"Escape, with the keys in another viewer", [&] { EXPECT_EQ(pressEscape(0), 1); }},
        {"orientation",
         [&] {
             editor.viewer(2).setOrientation(0);
             hover(1, 1);
             editor.viewer(2).setOrientation(2);
             editor.viewer(2).setZoomFactor(4);
         }},
    };
    for (const char* shape :
         {"wFreehandButton", "wEllipseButton", "wRectangleButton", "wAutoTraceCheckBox"}) {
        widget("wFreehandButton")->click();
        widget(shape)->click();
        for (const auto& end : kEnds) {
            SCOPED_TRACE(std::string(shape) + ", " + end.what);
            editor.gi.setTool(GiLasso::kIndex);
            press(5, 5);
            drag(15, 9);
            press(15, 9); // fixes a stretch of a trace, and adds a corner
            drag(9, 15);
            EXPECT_TRUE(lasso->isDragging());
            EXPECT_GT(orangePixels(), 0);
            end.happens();
            editor.gi.setTool(GiLasso::kIndex);
            EXPECT_TRUE(isClean());
            EXPECT_FALSE(editor.gi.canUndo()) << "nothing was changed";
            release(9, 15);
            EXPECT_EQ(count(), 0);
        }
    }
    widget("wAutoTraceCheckBox")->click();
    drag(3, 3);
    drag(9, 3);
    release(9, 9);
    EXPECT_EQ(count(), 0) << "moves without a press draw nothing";
}

TEST_F(Lasso, escapeKeepsTheStepsOfOthers)
{
    EXPECT_EQ(pressEscape(), 0) << "nothing is open";
    openSquare();
    editor.gi.invertSelection(0);
    pressEscape();
    EXPECT_FALSE(lasso->isDragging());
    EXPECT_EQ(editor.gi.undoActions.size(), 2) << "its own is not the newest";
    EXPECT_EQ(count(), 40 * 30);
}

// Ellipse and rectangle

/// The 32 points of the ellipse through the corners of a box.
std::vector<McVec2f> ellipseThrough(float cx, float cy, float a, float b)
{
    std::vector<McVec2f> points;
    for (int i = 0; i < 32; ++i) {
        const double t = i * 2 * std::numbers::pi / 32 + std::numbers::pi / 4, r = std::numbers::sqrt2;
        points.emplace_back(
            static_cast<float>(static_cast<double>(cx) + r * static_cast<double>(a) * std::cos(t)),
            static_cast<float>(static_cast<double>(cy) + r * static_cast<double>(b) * std::sin(t)));
    }
    return points;
}

// kept: a rectangle leaves out the row and column of its lower right end, and neither shape saves an undo
// step; see the lasso's shapes.
TEST_F(Lasso, ellipseAndRectangleFollowTheirGeometry)
{
    const struct
    {
        const char* button;
        bool fromCenter;
        std::vector<McVec2f> outline;
    } kShapes[] = {
        {"wEllipseButton", false, ellipseThrough(15, 20, 5, 7)},
        {"wEllipseButton", true, ellipseThrough(10, 13, 10, 14)},
        {"wRectangleButton", false, {{10, 13}, {20, 13}, {20, 27}, {10, 27}}},
        {"wRectangleButton", true, {{0, -1}, {20, -1}, {20, 27}, {0, 27}}},
    };
    for (const auto& shape : kShapes) {
        widget(shape.button)->click();
        for (const Keys& keys : {kNoKeys, kShift, kCtrl, Keys{true, true, false}}) {
            SCOPED_TRACE(std::string(shape.button) + (shape.fromCenter ? ", from the centre" : ""));
            editor.gi.selection->clear();
            mark({8, 15, 29, 15});
            const Pixels before = pixelsOf(editor.viewer(2));
            editor.gi.touches.clear();
            press(10, 13, {false, false, shape.fromCenter});
            drag(37, 2);
            drag(20, 27);
            EXPECT_GT(orangePixels(), 0);
            release(20, 27, keys);
            expectPixels(editor.viewer(2), before, PlainPolygon(shape.outline), keys, nullptr);
            EXPECT_EQ(orangePixels(), 0);
            EXPECT_EQ(editor.gi.touches.size(), 1u);
            EXPECT_FALSE(editor.gi.canUndo());
        }
    }
}

TEST_F(Lasso, aShapeEndsWithAnyButtonAndOnlyTheLeftOneStartsIt)
{
    widget("wRectangleButton")->click();
    press(10, 10, {}, 3);
    drag(20, 20);
    release(20, 20, {}, 3);
    EXPECT_EQ(count(), 0);
    press(10, 10);
    drag(20, 20);
    EXPECT_EQ(send(buttonEvent(1, false, 5, 5), 1), 1) << "another viewer does not end it";
    EXPECT_EQ(count(), 0);
    press(10, 20, {}, 3);
    release(20, 20, {}, 3);
    EXPECT_EQ(count(), 100);
}

TEST_F(Lasso, switchingTheShapeLeavesAGestureUnderWay)
{
    openSquare();
    widget("wEllipseButton")->click();
    EXPECT_TRUE(lasso->isDragging());
    widget("wFreehandButton")->click();
    releaseAlt();
    EXPECT_EQ(count(), 110);
}

TEST_F(Lasso, anOutlineGivenUpKeepsTheStepThatAShapeHasMadeUseOf)
{
    openSquare();
    widget("wRectangleButton")->click();
    press(20, 20);
    release(22, 22);
    editor.gi.setTool(GiBrush::kIndex);
    EXPECT_EQ(count(), 4);
    editor.gi.undo();
    EXPECT_EQ(count(), 0);
}

// kept: see the head of the lasso's shapes.
TEST_F(Lasso, aClickAsAShapeEmptiesTheSlice)
{
    for (const char* shape : {"wEllipseButton", "wRectangleButton"}) {
        widget(shape)->click();
        mark({20, 20, 22, 22});
        for (const Keys& keys : {kShift, kCtrl}) {
            press(5, 5, keys);
            release(5, 5, keys);
            EXPECT_EQ(count(), 9);
        }
        press(5, 5);
        release(5, 5);
        EXPECT_EQ(count(), 0);
        EXPECT_FALSE(editor.gi.canUndo());
    }
}

TEST_F(Lasso, cornersClickedBeforeAutoTraceIsCheckedAreFinishedByAlt)
{
    openSquare();
    widget("wAutoTraceCheckBox")->click();
    EXPECT_EQ(releaseAlt(false, 1), 1);
    EXPECT_EQ(count(), 110);
    EXPECT_FALSE(lasso->isDragging());
    EXPECT_EQ(releaseAlt(), 0) << "and without an outline the key is not for the tool";
}

TEST(LassoInThinSlices, everyGestureRunsThrough)
{
    for (const unsigned long n : {1ul, 2ul}) {
        DrawnEditor editor(n, 20, n);
        editor.gi.setVolumeByte(editor.dims, 1, editor.labels(), editor.lattice());
        editor.gi.setTool(GiLasso::kIndex);
        auto* lasso = dynamic_cast<GiLasso*>(editor.gi.tools[GiLasso::kIndex]);
        for (const char* name : {"wFreehandButton", "wEllipseButton", "wRectangleButton", "wFreehandButton",
                                 "wAutoTraceCheckBox"}) {
            lasso->getWidget(nullptr)->findChild<QAbstractButton*>(name)->click();
            for (int o = 0; o < 3; ++o) {
                GiMemoryFrameBuffer& buffer = editor.buffer(o);
                for (const McVec2i& at : {McVec2i(0, 0), McVec2i(3, 9), McVec2i(0, 5)}) {
                    auto press = buttonEvent(1, true, at.x, at.y);
                    auto move = motionEvent(1, at.x, at.y + 4);
                    auto release = buttonEvent(1, false, at.x, at.y);
                    buffer.handleEvent(&press);
                    buffer.handleEvent(&move);
                    buffer.handleEvent(&release);
                }
                auto end = buttonEvent(3, true, 1, 1);
                buffer.handleEvent(&end);
                auto release = buttonEvent(3, false, 1, 1);
                buffer.handleEvent(&release);
                EXPECT_FALSE(lasso->isDragging()) << name << ", orientation " << o;
            }
        }
    }
}

TEST_F(Lasso, thePanelEnablesWhatApplies)
{
    auto *trace = widget("wAutoTraceCheckBox"), *edges = widget("wTraceEdgesCheckBox");
    const auto state = [&] {
        return std::string(trace->isEnabled() ? "trace " : "- ") + (edges->isEnabled() ? "edges" : "-");
    };
    EXPECT_TRUE(widget("wFreehandButton")->isChecked() && widget("wInsideButton")->isChecked());
    EXPECT_TRUE(edges->isChecked() && !trace->isChecked());
    EXPECT_EQ(state(), "trace -");
    trace->click();
    EXPECT_EQ(state(), "trace edges");
    widget("wEllipseButton")->click();
    EXPECT_EQ(state(), "- -");
    widget("wFreehandButton")->click();
    EXPECT_EQ(state(), "trace edges");
    lasso->adaptToForeignWindow();
    EXPECT_TRUE(edges->isHidden());
    GiLasso::neuroTraceMode = 1;
    GiLasso another(&editor.gi);
    EXPECT_FALSE(another.getWidget(nullptr)->findChild<QAbstractButton*>("wTraceEdgesCheckBox")->isChecked());
    GiLasso::neuroTraceMode = 0;
}

} // namespace
