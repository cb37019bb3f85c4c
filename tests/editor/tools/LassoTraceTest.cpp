// The lasso's auto trace: what a row of clicks selects, and what keeps the trace from going astray.

#include "editor/tools/LassoFixture.h"

#include <algorithm>
#include <random>

namespace {

/// The same gesture on an engine of its own, with all of the outline.
class PlainTrace
{
public:
    PlainTrace(GiViewer& viewer, IScissors::CostType type)
        : grey(viewer.getGreyImage()->grey,
               viewer.getGreyImage()->grey + viewer.getGreyImage()->width * viewer.getGreyImage()->height)
    {
        makeCosts(viewer, type);
    }

    void makeCosts(GiViewer& viewer, IScissors::CostType type)
    {
        engine.init(static_cast<int>(viewer.getGreyImage()->width),
                    static_cast<int>(viewer.getGreyImage()->height), grey.data(), type);
    }
    void start(int x, int y) { engine.start(x, y); }
    void fix(int x, int y)
    {
        for (int i = 0; i < 3; ++i) engine.next(x, y);
        finish(x, y);
        engine.restart(x, y);
        anchor = McVec2i(x, y);
    }
    /// Other costs from the last corner on.
    void renew(GiViewer& viewer, IScissors::CostType type)
    {
        makeCosts(viewer, type);
        engine.start(anchor.x, anchor.y);
    }
    void finish(int x, int y)
    {
        std::vector<McVec2f> stretch;
        while (engine.next(x, y))
            stretch.emplace_back(static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f);
        outline.insert(outline.end(), stretch.rbegin(), stretch.rend());
    }
    PlainPolygon polygon() const { return PlainPolygon(outline); }

    std::vector<McVec2f> outline;

private:
    std::vector<unsigned char> grey;
    IScissors engine;
    McVec2i anchor;
};

/// What LassoTrace::traceThreeCorners does.
struct PlainThreeCorners : PlainTrace
{
    explicit PlainThreeCorners(GiViewer& viewer, IScissors::CostType type = IScissors::kFollowEdges)
        : PlainTrace(viewer, type)
    {
        start(8, 6);
        fix(27, 6);
        fix(27, 21);
        fix(8, 21);
    }
};

class LassoTrace : public Lasso
{
protected:
    LassoTrace()
    {
        // A bright block from (8, 6) to (27, 21) with a speckled ground, in all slices.
        for (std::size_t i = 0; i < image.size(); ++i) {
            const std::size_t x = i % 40, y = i / 40 % 30;
            image[i] = static_cast<unsigned char>(
                x >= 8 && x <= 27 && y >= 6 && y <= 21 ? 200 : 20 + (x * 7 + y * 5) % 30);
        }
        for (int o = 0; o < 3; ++o) editor.viewer(o).setDataWindow(0, 255, true);
        widget("wAutoTraceCheckBox")->click();
        clean = pictureOf(buffer());
    }

    void traceThreeCorners()
    {
        click(8, 6);
        click(27, 6);
        click(27, 21);
        click(8, 21);
    }
    void expectSelected(const PlainTrace& plain)
    {
        expectPixels(editor.viewer(2), Pixels(1200), plain.polygon(), {}, nullptr);
    }
    /// By the right button.
    void finishBoth(PlainTrace& plain, int x, int y)
    {
        hover(x, y);
        press(x, y, {}, 3);
        release(x, y, {}, 3);
        plain.finish(x, y);
        expectSelected(plain);
    }
};

TEST_F(LassoTrace, aClickNearTheFirstPointClosesTheOutline)
{
    for (const Keys& keys : {kNoKeys, kShift, kCtrl}) {
        editor.gi.selection->clear();
        mark({0, 10, 20, 11});
        const Pixels before = pixelsOf(editor.viewer(2));
        editor.gi.clearUndo(1);
        editor.gi.touches.clear();
        traceThreeCorners();
        hover(9, 12);
        EXPECT_GT(orangePixels(), 100);
        PlainThreeCorners plain(editor.viewer(2));
        const int x = static_cast<int>(plain.outline[0].x), y = static_cast<int>(plain.outline[0].y);
        hover(x, y, keys);
        press(x, y, keys);
        EXPECT_FALSE(lasso->isDragging());
        plain.finish(x, y);
        expectPixels(editor.viewer(2), before, plain.polygon(), keys, nullptr);
        EXPECT_EQ(orangePixels(), 0);
        EXPECT_EQ(editor.gi.undoActions.size(), 1);
        EXPECT_EQ(editor.gi.touches, (std::vector<TestGi::Touch>{{1, 0, 2, 3, 0, 0}}));
        editor.gi.undo();
        EXPECT_EQ(pixelsOf(editor.viewer(2)), before);
        release(x, y);
    }
}

TEST_F(LassoTrace, closesBelowFiveScreenPixels)
{
    traceThreeCorners();
    const PlainThreeCorners plain(editor.viewer(2));
    const McVec2i first(4 * static_cast<int>(plain.outline[0].x), 4 * static_cast<int>(plain.outline[0].y));
    send(buttonEvent(1, true, first.x + 3, first.y + 4));
    EXPECT_TRUE(lasso->isDragging()) << "at 5 the click fixes a stretch";
    send(buttonEvent(1, true, first.x, first.y + 4));
    EXPECT_FALSE(lasso->isDragging());
    EXPECT_GT(count(), 200);
}

TEST_F(LassoTrace, aWanderingPointerLeavesNoGapsOnScreen)
{
    std::mt19937 random(11);
    McVec2i at(20, 15);
    int numFixed = 0;
    for (int i = 0; i < 1500 && !HasFailure(); ++i) {
        const bool jumps = random() % 20 == 0;
        const auto step = [&] { return static_cast<int>(random() % 3) - 1; };
        at.x = std::clamp(jumps ? static_cast<int>(random() % 40) : at.x + step(), 0, 39);
        at.y = std::clamp(jumps ? static_cast<int>(random() % 30) : at.y + step(), 0, 29);
        hover(at.x, at.y); // send() compares with the picture drawn as a whole
        const bool wasTracing = lasso->isDragging();
        if (wasTracing && random() % 12 != 0) continue;
        press(at.x, at.y);
        release(at.x, at.y);
        numFixed += wasTracing && lasso->isDragging();
    }
    EXPECT_GT(numFixed, 50);
}

TEST_F(LassoTrace, theRightButtonFinishesAndLeavingAbandons)
{
    traceThreeCorners();
    PlainThreeCorners plain(editor.viewer(2));
    finishBoth(plain, 9, 14);
    const long selected = count();
    EXPECT_GT(selected, 200);

    const std::vector<unsigned int> before = pictureOf(buffer());
    traceThreeCorners();
    EXPECT_EQ(send(McLeaveWindowEvent(), 1), 0);
    EXPECT_TRUE(lasso->isDragging()) << "another viewer was left";
    EXPECT_EQ(send(McLeaveWindowEvent()), 0);
    EXPECT_FALSE(lasso->isDragging());
    EXPECT_EQ(pictureOf(buffer()), before);
    EXPECT_EQ(count(), selected);
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    EXPECT_EQ(press(3, 3, {}, 3), 0) << "only the left button starts";
}

TEST_F(LassoTrace, onTheBorderTheShownTraceIsWhatAClickMeans)
{
    click(8, 6);
    hover(20, 6);
    hover(20, -3);
    const std::vector<unsigned int> before = pictureOf(buffer());
    hover(0, 12);
    EXPECT_EQ(pictureOf(buffer()), before) << "no path ends there";
    press(0, 12);
    release(0, 12);
    press(0, 0, {}, 3);
    PlainTrace plain(editor.viewer(2), IScissors::kFollowEdges);
    plain.start(8, 6);
    plain.fix(20, 6);
    ASSERT_FALSE(lasso->isDragging());
    expectSelected(plain);
}

TEST_F(LassoTrace, theBoxesRenewTheCosts)
{
    traceThreeCorners();
    hover(9, 12);
    widget("wTraceEdgesCheckBox")->click();
    PlainThreeCorners plain(editor.viewer(2));
    plain.renew(editor.viewer(2), IScissors::kFollowBright); // what is fixed stays
    finishBoth(plain, 9, 14);

    // So does the data window, from which the costs are made.
    editor.viewer(2).setDataWindow(100, 140, true);
    traceThreeCorners();
    PlainThreeCorners other(editor.viewer(2), IScissors::kFollowBright);
    finishBoth(other, 9, 14);
}

TEST_F(LassoTrace, withoutAutoTraceAnOutlineGoesOnByHand)
{
    traceThreeCorners();
    hover(9, 12);
    widget("wAutoTraceCheckBox")->click();
    EXPECT_TRUE(lasso->isDragging());
    press(2, 25);
    release(2, 25);
    PlainThreeCorners plain(editor.viewer(2));
    plain.outline.emplace_back(2.5f, 25.5f);
    expectSelected(plain);
    editor.gi.undo();
    EXPECT_EQ(count(), 0);

    widget("wAutoTraceCheckBox")->click();
    click(8, 6);
    hover(20, 6);
    widget("wAutoTraceCheckBox")->click();
    EXPECT_FALSE(lasso->isDragging()) << "nothing was fixed";
    EXPECT_EQ(orangePixels(), 0);
}

TEST_F(LassoTrace, valuesThatChangeInPlaceChangeTheCosts)
{
    traceThreeCorners();
    send(McLeaveWindowEvent());
    std::rotate(image.begin(), image.begin() + 3, image.end());
    editor.viewer(2).setSlice(3, true);
    PlainThreeCorners plain(editor.viewer(2));
    traceThreeCorners();
    finishBoth(plain, 9, 14);
}

// kept: see GiLasso::initAutoTracing.
TEST(LassoTraceCosts, slicesOfOneNumberAndSizeShareTheirCosts)
{
    DrawnEditor editor(24, 24, 24);
    std::vector<unsigned char> image(24 * 24 * 24);
    for (std::size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<unsigned char>(i * 2654435761u >> 13);
    editor.gi.setVolumeByte(editor.dims, 24, image.data(), editor.lattice());
    for (int o = 0; o < 3; ++o) editor.viewer(o).setDataWindow(0, 255, true);
    editor.gi.setTool(GiLasso::kIndex);
    auto* lasso = dynamic_cast<GiLasso*>(editor.gi.tools[GiLasso::kIndex]);
    lasso->setAutoTrace(true); // makes the costs of the XY slice, the current one
    PlainTrace ofXY(editor.viewer(2), IScissors::kFollowEdges),
        ofXZ(editor.viewer(1), IScissors::kFollowEdges);
    const auto trace = [&] {
        GiMemoryFrameBuffer& buffer = editor.buffer(1);
        const auto at = [&](int i, int j) { return buffer.pixelCentre(i, j); };
        for (const McVec2i& p : {at(3, 3), at(20, 4), at(12, 20)}) {
            auto move = motionEvent(0, p.x, p.y);
            auto press = buttonEvent(1, true, p.x, p.y);
            buffer.handleEvent(&move);
            buffer.handleEvent(&press);
        }
        auto press = buttonEvent(3, true, at(5, 12).x, at(5, 12).y);
        buffer.handleEvent(&press);
    };
    for (PlainTrace* plain : {&ofXY, &ofXZ}) {
        plain->start(3, 3);
        plain->fix(20, 4);
        plain->fix(12, 20);
        plain->finish(5, 12);
    }
    EXPECT_NE(ofXY.outline.size(), ofXZ.outline.size()) << "the data do not tell them apart";
    trace();
    expectPixels(editor.viewer(1), Pixels(576), ofXY.polygon(), {}, nullptr);
    editor.viewer(1).setSlice(3, true);
    editor.viewer(2).setSlice(3, true); // what the scissors read stays, whatever the viewers show
    editor.viewer(1).setSlice(11, true);
    trace();
    expectPixels(editor.viewer(1), Pixels(576), ofXY.polygon(), {}, nullptr);
    editor.gi.initTools();
    trace();
    expectPixels(editor.viewer(1), Pixels(576), ofXZ.polygon(), {}, nullptr);
}

TEST_F(LassoTrace, staysOnItsPixelsAndInItsViewer)
{
    traceThreeCorners();
    send(motionEvent(0, 4, 4), 1);
    EXPECT_EQ(send(buttonEvent(1, true, 4, 4), 1), 1);
    EXPECT_EQ(orangePixels(1), 0);
    const McBox2i box = lasso->getBoundingBox();
    editor.gi.setZoomFactor(8);
    EXPECT_EQ(lasso->getBoundingBox(), McBox2i(2 * box.xmin, 2 * box.ymin, 2 * box.xmax, 2 * box.ymax));
    editor.gi.setZoomFactor(7);
    buffer().setWindowSize(McVec2i(60, 60));
    buffer().setOffset(McVec2i(60, 60));
    editor.gi.undo();
    editor.viewer(2).setSlice(5, true);
    auto finish = buttonEvent(3, true, 7 * 9 + 1, 7 * 14 + 1);
    buffer().handleEvent(&finish);
    PlainThreeCorners plain(editor.viewer(2));
    plain.finish(9, 14);
    expectSelected(plain);
    editor.gi.undo();
    EXPECT_EQ(count(), 0) << "the slice that was changed is brought back";
}

} // namespace
