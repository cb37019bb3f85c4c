// The magic wand's undo where other tools, other seeds of a voxel and missing memory come in, and what the
// file holds afterwards.

#include "editor/tools/WandEditor.h"

#include "core/GiSelection2D.h"
#include "hx/HxMessage.h"
#include "mc/McMemoryException.h"

namespace {

class MagicWandUndo : public WandEditor
{
protected:
    static constexpr int kOtherTool = 0;

    void keep() { editor.gi.storeSelection(1, 0, 1); }
    /// Keeps a seed in the XY slice and then one in the XZ slice, both on voxel (6, 1, 1).
    void keepTwoOnAVoxel()
    {
        click(6, 1);
        keep();
        EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
        editor.gi.activate(1)->setSlice(1, false);
        setWindow(1, 2);
        press(6, 1, 0, 1);
        keep();
    }
    const std::string kInXY = "Slice0001/S0006x0001: 2 2 2 2", kInXZ = "Slice0001/S0006x0001: 1 1 2 2";
};

TEST_F(MagicWandUndo, UnderAnotherToolNoSeedBecomesActive)
{
    click(6, 1);
    setWindow(1, 1);
    click(0, 0);
    editor.gi.setTool(kOtherTool);
    editor.gi.undo();
    EXPECT_EQ(rows(), (Rows{"...#####", "...#####", "....####", "...###.#"}));
    EXPECT_EQ(wand.seeds.size(), 0);
    EXPECT_FALSE(wand.hasActiveSeed());
    editor.gi.selection->set(0, 3, 1); // the other tool's work
    editor.gi.setTool(GiMagicWand::kIndex);
    drag(0, 255);
    EXPECT_EQ(rows(), (Rows{"...#####", "...#####", "....####", "#..###.#"}));
    editor.gi.undo();
    EXPECT_EQ(rows(), (Rows{"........", "........", "........", "........"}));
    EXPECT_EQ(wand.seeds.size(), 0);
}

TEST_F(MagicWandUndo, UnderAnotherToolAKeptSeedStays)
{
    click(6, 1);
    keep();
    press(6, 1);
    press(0, 0);
    editor.gi.setTool(kOtherTool);
    editor.gi.undo();
    EXPECT_FALSE(wand.hasActiveSeed());
    ASSERT_EQ(wand.seeds.size(), 1);
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
}

TEST_F(MagicWandUndo, KeptOfTwoSeedsOnAVoxelTheLaterHasTheEntry)
{
    keepTwoOnAVoxel();
    EXPECT_EQ(stored("Seeds"), (Lines{kInXZ}));
    EXPECT_EQ(wand.seeds.size(), 2);
    wand.init();
    EXPECT_EQ(wand.seeds.size(), 1);
}

TEST_F(MagicWandUndo, AnEntryGoesBackToTheOtherSeedOfTheVoxel)
{
    keepTwoOnAVoxel();
    editor.gi.undo();
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
    EXPECT_EQ(wand.currentSeed, 1);
    editor.gi.undo();
    EXPECT_EQ(wand.seeds.size(), 1) << "the click is undone";
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
}

TEST_F(MagicWandUndo, ANewSeedThatMovesOnSparesTheSeedItWasOn)
{
    click(6, 1);
    keep();
    editor.gi.activate(1)->setSlice(1, false);
    press(6, 1, 0, 1);
    press(1, 2, 0, 1); // the new seed moves on
    editor.gi.undo();
    EXPECT_EQ(wand.seeds[wand.currentSeed].voxel(), McVec3i(6, 1, 1));
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
}

TEST_F(MagicWandUndo, ADeletedSeedComesBackAsItWasStored)
{
    click(6, 1);
    keep();
    press(6, 1);
    drag(1, 3);
    key(McKeyboardEvent::kDelete);
    EXPECT_TRUE(stored("Seeds").empty());
    editor.gi.undo();
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
    EXPECT_EQ(wand.seeds[0].min, 2);
    EXPECT_EQ(wand.currentSeed, 0);
}

TEST_F(MagicWandUndo, KeptAClearedSeedComesBackWithTheWindowThatWasTried)
{
    click(6, 1);
    keep();
    press(6, 1);
    drag(1, 3);
    editor.gi.clearSelection(true, true);
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
    editor.gi.undo();
    EXPECT_EQ(stored("Seeds"), (Lines{"Slice0001/S0006x0001: 2 1 3 2"}));
}

TEST_F(MagicWandUndo, ASeedThatLayOutsideLeavesTheFileUnderItsName)
{
    const auto prepare = [&] {
        parameters().remove("Seeds");
        const int values[4] = {2, 2, 2, 2};
        parameters().bundle("Seeds", 1)->bundle("Slice0001", 1)->set("S0070x0000", 4, values);
        wand.init();
        key('n');
        ASSERT_EQ(wand.currentSeed, 0);
    };
    prepare();
    key(McKeyboardEvent::kDelete);
    EXPECT_TRUE(stored("Seeds").empty());
    editor.gi.undo();
    EXPECT_EQ(stored("Seeds"), (Lines{"Slice0001/S0070x0000: 2 2 2 2"}));
    prepare();
    editor.gi.subtractSelection(1, 0);
    EXPECT_TRUE(stored("Seeds").empty());
}

TEST_F(MagicWandUndo, ALineThatComesBackHasItsOldPlace)
{
    key(McKeyboardEvent::kControlLeft);
    drawLimit(1, 0, 1, 3, kCtrl);
    drawLimit(5, 0, 5, 3, kCtrl);
    moveTo(1, 3, false, kCtrl);
    click(1, 3, kCtrl);
    const std::string first = "SliceX0001/Limit0001: 1.5 0.5 1.5 3.5",
                      second = "SliceX0001/Limit0002: 5.5 0.5 5.5 3.5";
    EXPECT_EQ(stored("Limits"), (Lines{second}));
    editor.gi.undo();
    EXPECT_EQ(stored("Limits"), (Lines{second, first}));
    ASSERT_EQ(wand.limits.size(), 2);
    EXPECT_EQ(wand.limits[0].id, 1);
    editor.gi.undo();
    EXPECT_EQ(stored("Limits"), (Lines{first})) << "the line that was drawn last";
    editor.gi.undo();
    EXPECT_TRUE(stored("Limits").empty());
}

/// Has no memory for its next picture.
class Short : public GiShape
{
public:
    void render(GiFrameBuffer*, const McBox2i&) override
    {
        if (isShort) {
            isShort = false;
            throw McMemoryException(4711);
        }
    }
    bool isShort = false;
};

TEST_F(MagicWandUndo, WithoutMemoryForARegionNothingIsLeftOfTheClick)
{
    std::vector<std::string> told;
    HxMessage::getTheMsg()->setSink([&](const char* text) { told.emplace_back(text); });
    const McHandle<Short> shape(new Short);
    buffer().addShape(shape);
    const auto expectUntouched = [&](const char* what, std::size_t messages) {
        SCOPED_TRACE(what);
        EXPECT_FALSE(shape->isShort) << "it was met";
        EXPECT_EQ(told.size(), messages);
        EXPECT_EQ(rows(), (Rows{"#.......", "........", "........", "........"}));
        EXPECT_FALSE(editor.gi.canUndo());
        EXPECT_FALSE(wand.hasActiveSeed());
    };
    click(6, 1);
    keep();
    editor.gi.clearUndo(1);
    editor.gi.selection->set(0, 0, 1);
    editor.gi.updateSelectionBoxes();

    shape->isShort = true;
    press(0, 3);
    expectUntouched("click", 1);
    EXPECT_EQ(wand.seeds.size(), 1);
    shape->isShort = true;
    press(6, 1);
    expectUntouched("pick", 2);
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
    HxMessage::getTheMsg()->setSink({});
}

TEST_F(MagicWandUndo, ARegionOfTheVolumeGoesFromAllViewersOfItself)
{
    allSlices->setChecked(true);
    click(6, 1);
    editor.gi.activate(0);
    editor.gi.touches.clear();
    editor.gi.redraws = 0;
    allSlices->setChecked(false);
    EXPECT_FALSE(editor.gi.selection->isSet());
    EXPECT_GT(editor.gi.redraws, 0);
    EXPECT_EQ(editor.gi.touches, (std::vector<TestGi::Touch>{{1, 0, 0, -1, 0, 0}}));
}

} // namespace
