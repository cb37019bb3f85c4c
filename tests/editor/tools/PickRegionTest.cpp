// The pick tool: the regions that a click picks, and the selection that follows a drag.

#include "editor/core/RandomVolume.h"
#include "editor/tools/Allocations.h"
#include "editor/tools/ToolOnSlice.h"

#include "hx/HxMessage.h"
#include "tools/GiCrossHairTool.h"
#include "tools/GiPickRegion.h"

#include <QPixmap>

#include <cmath>
#include <numbers>

namespace {

using Voxels = std::vector<bool>;

/// The pick tool of an editor with three viewers, and a mouse that points at pixels of slices.
class Picker
{
public:
    Picker(unsigned long nx, unsigned long ny, unsigned long nz)
        : editor(nx, ny, nz), image(editor.size()), plain(nx, ny, nz, 11)
    {
        editor.gi.setVolumeByte(editor.dims, static_cast<int>(nx), image.data(), editor.lattice());
        editor.gi.setZoomFactor(3);
        editor.gi.setTool(GiPickRegion::kIndex);
        tool = dynamic_cast<GiPickRegion*>(editor.gi.currentTool);
        QWidget* panel = tool->getWidget(nullptr);
        allSlices = panel->findChild<QCheckBox*>("wAllSlicesCheckBox");
        selectAll = panel->findChild<QCheckBox*>("wSelectAllCheckBox");
    }

    void use(int orientation)
    {
        o = orientation;
        editor.gi.activate(o);
    }
    GiViewer& viewer() { return editor.viewer(o); }
    int width() { return static_cast<int>(viewer().getSelection()->width); }
    int height() { return static_cast<int>(viewer().getSelection()->height); }
    unsigned long voxel(int i, int j, int slice) const
    {
        return o == 2   ? plain.index(i, j, slice)
               : o == 1 ? plain.index(i, slice, j)
                        : plain.index(slice, i, j);
    }
    int sliceOf(unsigned long v) const
    {
        const unsigned long x = plain.dims[0],
                            at[3] = {v % x, v / x % plain.dims[1], v / (x * plain.dims[1])};
        return static_cast<int>(at[o]);
    }
    Voxels selected() { return asVector(editor.gi.selection->bits); }
    long count()
    {
        const Voxels all = selected();
        return std::count(all.begin(), all.end(), true);
    }

    template <class Event>
    int send(Event event, bool shift = false, bool ctrl = false)
    {
        event.shift = shift;
        event.ctrl = ctrl;
        const int taken = editor.buffer(o).handleEvent(&event);
        if (!tool->isDragging() || event.template as<McMotionEvent>()) checkPictures();
        return taken;
    }
    McVec2i at(int i, int j) { return editor.buffer(o).pixelCentre(i, j); }
    int press(int i, int j, bool shift = false, bool ctrl = false)
    {
        return send(buttonEvent(1, true, at(i, j).x, at(i, j).y), shift, ctrl);
    }
    int drag(int i, int j) { return send(motionEvent(1, at(i, j).x, at(i, j).y)); }
    int hover(int i, int j, bool shift = false, bool ctrl = false)
    {
        return send(motionEvent(0, at(i, j).x, at(i, j).y), shift, ctrl);
    }
    int pressEscape()
    {
        McKeyboardEvent event = keyEvent(McKeyboardEvent::kEscape, true);
        event.x = event.y = -100;
        return send(event);
    }
    int release() { return send(buttonEvent(1, false, 0, 0)); }
    void select(std::initializer_list<McVec3i> voxels)
    {
        for (const McVec3i& v : voxels) editor.gi.selection->set(v.x, v.y, v.z);
        showSelection();
    }
    void showSelection()
    {
        editor.gi.updateSelectionBoxes();
        editor.gi.redraw();
    }

    /// No box may leave out a selected pixel.
    void checkPictures()
    {
        expectWholePictures(editor);
        for (int k = 0; k < 3; ++k) {
            McBox2i tight;
            const GiSelection2D& slice = *editor.viewer(k).getSelection();
            slice.computeBoundingBox(tight);
            McBox2i box = slice.selectionBox;
            box.extendBy(tight);
            EXPECT_EQ(box, slice.selectionBox) << "viewer " << k;
        }
    }

    DrawnEditor editor;
    std::vector<unsigned char> image;
    RandomVolume plain;
    GiPickRegion* tool;
    QCheckBox *allSlices, *selectAll;
    int o = 2;
};

// Neither rows nor the volume fill whole words.
class PickRegion : public testing::Test
{
protected:
    PickRegion() : p(37, 29, 11)
    {
        p.plain.drawLabels(3, 6);
        std::copy(p.plain.labels.begin(), p.plain.labels.end(), p.editor.labels());
    }
    int random(int n) { return p.plain.below(n); }
    void startTrial(int trial)
    {
        p.use(trial % 3);
        p.viewer().setFlip(random(2), random(2), random(2));
        for (int k = 0; k < 3; ++k) p.editor.viewer(k).setSlice(random(37), false);
        p.allSlices->setChecked(trial & 4);
        p.editor.gi.clearUndo(1);
        p.editor.gi.touches.clear();
    }
    /// The announcement of a pick or a drag in the viewer's slice.
    TestGi::Touch sliceTouch() { return {1, 0, p.o, p.viewer().getSlice(), 0, 0}; }

    Picker p;
};

TEST_F(PickRegion, picksWhatAPlainSearchFinds)
{
    for (int trial = 0; trial < 96; ++trial) {
        SCOPED_TRACE(trial);
        startTrial(trial);
        p.selectAll->setChecked(trial & 8);
        const bool shift = trial & 16, ctrl = trial & 32, volume = trial & 4;
        p.plain.drawSelection(p.editor.gi.selection->bits);
        const int i = random(p.width()), j = random(p.height()), slice = p.viewer().getSlice();
        const unsigned long seed = p.voxel(i, j, slice);
        if (!ctrl) p.editor.gi.selection->unset(seed); // a press on the selection is no pick
        p.editor.gi.updateSelectionBoxes();

        const auto accepts = [&](unsigned long v) {
            return p.plain.labels[v] == p.plain.labels[seed] && (volume || p.sliceOf(v) == slice);
        };
        Voxels region = p.plain.region(seed, accepts), expected = p.selected();
        for (unsigned long v = 0; v < region.size(); ++v) {
            if (p.selectAll->isChecked()) region[v] = accepts(v);
            const bool cleared = !shift && !ctrl && (volume || p.sliceOf(v) == slice);
            expected[v] = ctrl ? expected[v] && !region[v] : region[v] || (expected[v] && !cleared);
        }
        const Voxels before = p.selected();
        EXPECT_EQ(p.press(i, j, shift, ctrl), 1);
        ASSERT_TRUE(p.selected() == expected);
        const TestGi::Touch volumeTouch{1, 0, 0, -1, 0, 0};
        EXPECT_EQ(p.editor.gi.touches, std::vector<TestGi::Touch>{volume ? volumeTouch : sliceTouch()});
        p.release();
        EXPECT_EQ(p.editor.gi.undoActions.size(), 1);
        p.editor.gi.undo();
        EXPECT_TRUE(p.selected() == before);
    }
}

TEST_F(PickRegion, moveFollowsThePointerVoxelByVoxel)
{
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        startTrial(trial);
        p.plain.drawSelection(p.editor.gi.selection->bits);
        const int slice = p.viewer().getSlice(), i = random(p.width()), j = random(p.height());
        p.editor.gi.selection->set(p.voxel(i, j, slice));
        p.showSelection();
        const Voxels before = p.selected();
        const auto moved = [&](int di, int dj, bool volume) {
            Voxels result = before;
            for (unsigned long v = 0; v < result.size(); ++v)
                if (volume || p.sliceOf(v) == slice) result[v] = false;
            for (int s = 0; s < p.editor.gi.selection->getNumSlices(p.o); ++s)
                for (int y = std::max(0, dj); y < std::min(p.height(), p.height() + dj); ++y)
                    for (int x = std::max(0, di); x < std::min(p.width(), p.width() + di); ++x)
                        if (volume || s == slice)
                            result[p.voxel(x, y, s)] = before[p.voxel(x - di, y - dj, s)];
            return result;
        };
        EXPECT_EQ(p.press(i, j), 1);
        int di = 0, dj = 0;
        for (int k = 0; k < 4; ++k) {
            di = random(p.width()) - i;
            dj = random(p.height()) - j;
            EXPECT_EQ(p.drag(i + di, j + dj), 1);
            // What was out of the slice for a while is whole again: the pattern is that of the press.
            ASSERT_TRUE(p.selected() == moved(di, dj, false)) << di << " " << dj;
        }
        EXPECT_EQ(p.release(), 1);
        ASSERT_TRUE(p.selected() == moved(di, dj, p.allSlices->isChecked()));
        EXPECT_EQ(p.editor.gi.touches, std::vector<TestGi::Touch>{sliceTouch()});
        EXPECT_EQ(p.editor.gi.undoActions.size(), 1) << "a drag is one step";
        p.editor.gi.undo();
        EXPECT_TRUE(p.selected() == before);
    }
}

TEST_F(PickRegion, rotationIsRigidAboutTheMiddleOfTheSliceInView)
{
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        startTrial(trial);
        const bool volume = p.allSlices->isChecked();
        const int slice = p.viewer().getSlice(), w = p.width(), h = p.height();
        const int slices = p.editor.gi.selection->getNumSlices(p.o);
        p.editor.gi.selection->clear();
        // Pieces that end anywhere, inside and outside the box of the slice in view.
        for (int k = 0; k < 60; ++k)
            p.editor.gi.selection->set(p.voxel(random(w), random(h), random(slices)));
        const int i = random(w), j = random(h);
        p.editor.gi.selection->set(p.voxel(i, j, slice));
        p.showSelection();
        const Voxels before = p.selected();
        McBox2i box;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                if (before[p.voxel(x, y, slice)]) box.extendBy(x, y);

        p.press(i, j, true);
        p.drag(random(w), random(h));
        const int toI = random(w), toJ = random(h);
        p.drag(toI, toJ);
        const double cx = box.xmin + box.width() * 0.5, cy = box.ymin + box.height() * 0.5;
        const double angle = std::atan2(toJ - cy, toI - cx) - std::atan2(j - cy, i - cx);
        // By the arithmetic of a turn: a pixel is what its centre came from. Near the border of two pixels
        // either may be right.
        const int px = box.xmin + box.width() / 2, py = box.ymin + box.height() / 2;
        const double c = std::cos(angle), s = std::sin(angle);
        const auto checkSlice = [&](int z) {
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    const double u = x + 0.5 - px, t = y + 0.5 - py;
                    const double fromX = c * u + s * t + px, fromY = c * t - s * u + py;
                    const double nearest = std::max(std::fabs(fromX - std::floor(fromX) - 0.5),
                                                    std::fabs(fromY - std::floor(fromY) - 0.5));
                    if (nearest > 0.49) continue;
                    const int sx = static_cast<int>(std::floor(fromX)),
                              sy = static_cast<int>(std::floor(fromY));
                    const bool inside = sx >= 0 && sy >= 0 && sx < w && sy < h;
                    ASSERT_EQ(p.editor.gi.selection->isSet(p.voxel(x, y, z)),
                              inside && before[p.voxel(sx, sy, z)])
                        << x << " " << y << " in slice " << z << " of " << slice;
                }
        };
        checkSlice(slice);
        p.release();
        EXPECT_EQ(p.editor.gi.undoActions.size(), 1);
        for (unsigned long v = 0; !volume && v < before.size(); ++v)
            ASSERT_TRUE(p.sliceOf(v) == slice || p.editor.gi.selection->isSet(v) == before[v]);
        for (int z = 0; volume && z < slices; ++z) checkSlice(z);
        p.editor.gi.undo();
        EXPECT_TRUE(p.selected() == before);
    }
}

class PickedBlob : public testing::Test
{
protected:
    PickedBlob() : p(20, 20, 20)
    {
        p.select({{8, 8, 9}, {9, 8, 9}, {8, 9, 9}, {9, 8, 3}});
        moved.assign(p.editor.size(), false);
        for (const auto& [x, y, z] :
             {McVec3i(11, 7, 9), McVec3i(12, 7, 9), McVec3i(11, 8, 9), McVec3i(12, 7, 3)})
            moved[p.plain.index(x, y, z)] = true;
        before = p.selected();
    }
    void startMove()
    {
        p.press(8, 8);
        p.drag(11, 7);
    }

    Picker p;
    Voxels before, moved;
};

TEST_F(PickedBlob, movesThroughTheVolumeAddUpInWorldUnits)
{
    p.editor.setVoxelSize(0.5f, 2, 1);
    startMove();
    p.release();
    EXPECT_EQ(p.editor.gi.getPickingTranslation(), McVec3f(1.5f, -2, 0));
    p.allSlices->click();
    p.press(11, 7);
    p.drag(0, 0);
    p.release();
    EXPECT_EQ(p.editor.gi.getPickingTranslation(), McVec3f(1.5f, -2, 0)) << "one slice is not the object";
    p.editor.gi.resetPickingTranslation();
    EXPECT_EQ(p.editor.gi.getPickingTranslation(), McVec3f());
}

/// The shape of the cursor, the two own ones by their hot spot's file.
TEST_F(PickedBlob, theCursorTellsWhatAPressWouldDo)
{
    const auto shown = [this] { return p.tool->getToolCursor()->pixmap().toImage(); };
    const struct
    {
        const char* what;
        int i, j;
        bool shift, ctrl, picks;
    } kRows[] = {{"beside", 2, 2, false, false, true},
                 {"on it", 8, 8, false, false, false},
                 {"on it, Control", 8, 8, false, true, true},
                 {"on it, Shift", 8, 8, true, false, false},
                 {"on it, both", 8, 8, true, true, true}};
    for (const auto& row : kRows) {
        EXPECT_EQ(p.hover(row.i, row.j, row.shift, row.ctrl), 0);
        EXPECT_EQ(p.tool->getToolCursor()->shape() == Qt::ArrowCursor, row.picks) << row.what;
    }
    p.hover(8, 8, true);
    const QImage turn = shown();
    p.hover(8, 8);
    const QImage hand = shown();
    EXPECT_FALSE(hand.isNull() || hand == turn);
    const McVec2i at = p.at(8, 8);
    const auto key = [&](int code, int released) {
        McKeyboardEvent event = keyEvent(code, !released);
        event.x = at.x;
        event.y = at.y;
        // The window system tells the state before the event.
        event.ctrl = code == McKeyboardEvent::kControlLeft && released;
        event.shift = code == McKeyboardEvent::kShift && released;
        p.editor.buffer(2).handleEvent(&event);
    };
    key(McKeyboardEvent::kShift, 0);
    EXPECT_EQ(shown(), turn) << "at once, without a move";
    key(McKeyboardEvent::kShift, 1);
    EXPECT_EQ(shown(), hand);
    // The pointer is over another viewer, which it told before.
    p.editor.buffer(2).setWindowSize(McVec2i(20, 20));
    p.editor.buffer(2).setOffset(McVec2i(40, 40));
    key(McKeyboardEvent::kControlLeft, 0);
    EXPECT_EQ(shown(), hand);
    p.editor.buffer(2).setWindowSize(McVec2i(60, 60));
    p.editor.buffer(2).setOffset(McVec2i(0, 0));
    key(McKeyboardEvent::kControlLeft, 0);
    EXPECT_EQ(p.tool->getToolCursor()->shape(), Qt::ArrowCursor);
    key(McKeyboardEvent::kControlLeft, 1);
    EXPECT_EQ(shown(), hand);
    p.select({{0, 0, 9}});
    p.hover(0, 0);
    EXPECT_EQ(shown(), hand);
    p.send(McLeaveWindowEvent()); // tells no position, which is not the pixel (0, 0)
    EXPECT_EQ(p.tool->getToolCursor()->shape(), Qt::ArrowCursor);
}

TEST_F(PickedBlob, otherButtonsAndPlacesDoNothing)
{
    auto right = buttonEvent(3, true, 10, 10);
    EXPECT_EQ(p.editor.buffer(2).handleEvent(&right), 0);
    auto outside = buttonEvent(1, true, -1, 10);
    EXPECT_EQ(p.editor.buffer(2).handleEvent(&outside), 0);
    outside.x = p.editor.buffer(2).zoomedSize.x;
    EXPECT_EQ(p.editor.buffer(2).handleEvent(&outside), 0);
    p.press(8, 8);
    p.release();
    EXPECT_TRUE(p.selected() == before);
    EXPECT_EQ(p.editor.gi.undoActions.size(), 0) << "nor does a click on it";
    const McVec2i at = p.at(8, 8);
    McMouseButtonEvent middle = buttonEvent(2, true, at.x, at.y);
    EXPECT_EQ(p.tool->handleEvent(&p.editor.buffer(2), &middle), 1);
    EXPECT_TRUE(p.tool->isDragging()) << "as a host with its own events may offer it";
    McMotionEvent turn = motionEvent(2, at.x + 9, at.y);
    p.tool->handleEvent(&p.editor.buffer(2), &turn);
    EXPECT_FALSE(p.selected() == before);
}

TEST_F(PickedBlob, aPressByTheButtonAlonePicksWhereItIs)
{
    p.editor.labels()[p.plain.index(18, 18, 9)] = 5;
    p.press(2, 2); // before, somewhere else
    p.release();
    const McVec2i at = p.at(18, 18);
    McMouseButtonEvent press = buttonEvent(1, true, at.x, at.y);
    press.left = 0; // as a host may leave it that fills in the button only
    p.editor.gi.selection->clear();
    p.showSelection();
    EXPECT_EQ(p.send(press), 1);
    EXPECT_EQ(p.count(), 1);
    EXPECT_TRUE(p.editor.gi.selection->get(18, 18, 9));
}

TEST_F(PickedBlob, aTurnThatFindsNoMemoryIsTakenBack)
{
    if (!Allocations::areSeen()) GTEST_SKIP() << "a checking allocator";
    p.select({{0, 0, 3}, {19, 19, 3}}); // another slice, larger than the one in view
    before = p.selected();
    p.press(8, 8, true);
    p.drag(12, 5);
    EXPECT_FALSE(p.selected() == before);
    std::string told;
    HxMessage::getTheMsg()->setSink([&](const char* text) { told += text; });
    McMouseButtonEvent release = buttonEvent(1, false, 0, 0);
    {
        const ShortOfMemory shortage(3000); // less than that slice's picture
        EXPECT_EQ(p.editor.buffer(2).handleEvent(&release), 1);
    }
    HxMessage::getTheMsg()->setSink({});
    EXPECT_NE(told.find("Not enough memory"), std::string::npos) << told;
    EXPECT_FALSE(p.tool->isDragging());
    EXPECT_TRUE(p.selected() == before);
    EXPECT_EQ(p.editor.gi.undoActions.size(), 0);
    p.checkPictures();
}

TEST_F(PickedBlob, aDragThatIsCutShortKeepsWhatItHasReached)
{
    // What a second press picks.
    p.editor.labels()[p.plain.index(18, 18, 9)] = p.editor.labels()[p.plain.index(9, 18, 18)] = 5;
    p.editor.gi.redraw();
    const struct
    {
        const char* what;
        std::function<void()> happens;
    } kRows[] = {
        {"another slice, then a move",
         [this] {
             p.viewer().setSlice(4, true);
             p.drag(2, 2);
         }},
        {"another tool", [this] { p.editor.gi.setTool(-1); }},
        {"a move without the button", [this] { p.hover(2, 2); }},
        {"a second press", [this] { p.press(18, 18, true); }},
        {"a press in another viewer",
         [this] {
             p.use(0);
             p.press(18, 18, true);
             p.use(2);
         }},
        {"the release over the cross hair",
         [this] {
             p.editor.gi.crossHair->setPosition(McVec3i(0, 0, 9));
             p.editor.gi.crossHair->setVisible(true);
             p.release();
             p.editor.gi.crossHair->setVisible(false);
         }},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.what);
        startMove();
        row.happens();
        EXPECT_FALSE(p.tool->isDragging());
        const Voxels now = p.selected();
        for (unsigned long v = 0; v < now.size(); ++v)
            EXPECT_TRUE(p.editor.labels()[v] == 5 || now[v] == moved[v]) << "voxel " << v;
        p.checkPictures();
        p.release();
        p.editor.gi.setTool(GiPickRegion::kIndex);
        p.viewer().setSlice(9, true);
        while (p.editor.gi.canUndo()) p.editor.gi.undo();
        ASSERT_TRUE(p.selected() == before);
    }
}

TEST_F(PickedBlob, escapeTakesADragBack)
{
    EXPECT_EQ(p.pressEscape(), 0) << "nothing is dragged";
    p.editor.gi.saveUndoInformationForVolume(1, 0, nullptr); // another's step
    for (const bool turns : {false, true}) {
        for (const bool all : {false, true}) {
            SCOPED_TRACE(std::string(turns ? "turned" : "moved") + (all ? ", all slices" : ", one slice"));
            p.allSlices->setChecked(all);
            for (const bool hasMoved : {true, false}) {
                p.press(8, 8, turns);
                if (hasMoved) p.drag(0, 15); // partly out of the slice
                EXPECT_EQ(p.selected() == before, !hasMoved);
                EXPECT_EQ(p.pressEscape(), 1);
                EXPECT_FALSE(p.tool->isDragging());
                p.drag(4, 15); // the button is still down
                p.release();
                EXPECT_TRUE(p.selected() == before);
                EXPECT_EQ(p.editor.gi.undoActions.size(), 1);
            }
        }
    }
    EXPECT_EQ(p.tool->getTranslationVec(), McVec3f());
}

TEST_F(PickedBlob, aDragIsDroppedWhenSomethingElseChangesTheSelection)
{
    const struct
    {
        const char* what;
        std::function<void()> happens;
    } kRows[] = {{"undo", [this] { p.editor.gi.undo(); }},
                 {"clear", [this] { p.editor.gi.clearSelection(true, true); }},
                 {"new data", [this] { p.editor.gi.initTools(); }},
                 {"no data", [this] {
                      p.editor.gi.labelLattice = nullptr;
                      p.drag(9, 9);
                      p.editor.gi.labelLattice = p.editor.lattice();
                  }}};
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.what);
        startMove();
        row.happens();
        const Voxels after = p.selected();
        p.drag(4, 15);
        p.release();
        EXPECT_TRUE(p.selected() == after);
        while (p.editor.gi.canUndo()) p.editor.gi.undo();
        ASSERT_TRUE(p.selected() == before);
    }
}

TEST(PickRegionInAStrip, picksMovesAndTurnsWhereSlicesAreOnePixelWide)
{
    Picker p(1, 9, 4);
    for (const int orientation : {0, 1, 2}) {
        SCOPED_TRACE(orientation);
        p.use(orientation);
        p.viewer().setSlice(0, true);
        p.press(0, 0);
        p.release();
        EXPECT_EQ(p.count(), 36);
        p.editor.gi.selection->clear();
        p.select({{0, 0, 0}});
        const McVec2i to(p.width() - 1, p.height() - 1);
        p.press(0, 0);
        p.drag(to.x, to.y);
        p.release();
        EXPECT_EQ(p.count(), 1);
        EXPECT_TRUE(p.editor.gi.selection->isSet(p.voxel(to.x, to.y, 0)));
        p.press(to.x, to.y, true);
        p.drag(0, 0);
        p.release();
        EXPECT_LE(p.count(), 1);
        p.editor.gi.selection->clear();
        p.showSelection();
    }
}

} // namespace
