// The magic wand's undo where other tools, other seeds of a voxel and missing memory come in, and what the
// file holds afterwards.

#include "editor/tools/FailingShape.h"
#include "editor/tools/WandEditor.h"

#include "core/GiSelection2D.h"
#include "hx/HxMessage.h"

namespace {

class MagicWandUndo : public WandEditor
{
protected:
    static constexpr int kOtherTool = 0;

    void keep() { editor.gi.storeSelection(1, 0, 1); }
    const std::string kInXY = "Slice0001/S0006x0001: 2 2 2 2";
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

TEST_F(MagicWandUndo, KeptOfTwoSeedsOnAVoxelTheLaterHasTheEntryUntilItIsUndone)
{
    click(6, 1);
    keep();
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY}));
    editor.gi.activate(1)->setSlice(1, false);
    setWindow(1, 2);
    press(6, 1, 0, 1);
    keep();
    EXPECT_EQ(stored("Seeds"), (Lines{"Slice0001/S0006x0001: 1 1 2 2"}));
    EXPECT_EQ(wand.seeds.size(), 2);
    editor.gi.undo();
    EXPECT_EQ(stored("Seeds"), (Lines{kInXY})) << "back to the other seed";
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

TEST_F(MagicWandUndo, KeptAClearedSeedComesBackWithTheWindowThatWasTriedADeletedOneWithout)
{
    struct Case
    {
        bool cleared;
        Lines taken, back;
    };
    for (const Case& c : {Case{false, {}, {kInXY}}, Case{true, {kInXY}, {"Slice0001/S0006x0001: 2 1 3 2"}}}) {
        SCOPED_TRACE(c.cleared);
        parameters().remove("Seeds");
        wand.init();
        setWindow(2, 2);
        click(6, 1);
        keep();
        press(6, 1);
        drag(1, 3);
        if (c.cleared)
            editor.gi.clearSelection(true, true);
        else
            key(McKeyboardEvent::kDelete);
        EXPECT_EQ(stored("Seeds"), c.taken);
        editor.gi.undo();
        EXPECT_EQ(stored("Seeds"), c.back);
        EXPECT_EQ(wand.currentSeed, 0);
        editor.gi.clearSelection(true, false);
    }
}

TEST_F(MagicWandUndo, ASeedThatLayOutsideIsPickedAtItsBorderAndLeavesTheFileUnderItsName)
{
    const auto prepare = [&] {
        parameters().remove("Seeds");
        const int values[4] = {2, 2, 2, 2};
        parameters().bundle("Seeds", 1)->bundle("Slice0001", 1)->set("S0070x0000", 4, values);
        wand.init();
        key('n');
        ASSERT_EQ(wand.currentSeed, 0);
        EXPECT_EQ(wand.seeds[0].x, kWidth - 1);
        EXPECT_EQ(rows(), (Rows{"...#####", "...#####", "....####", "...###.#"}));
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

TEST_F(MagicWandUndo, WithoutMemoryForARegionNothingIsLeftOfTheClick)
{
    std::vector<std::string> told;
    HxMessage::getTheMsg()->setSink([&](const char* text) { told.emplace_back(text); });
    const McHandle<FailingShape> shape(new FailingShape);
    buffer().addShape(shape);
    const auto expectUntouched = [&](const char* what, std::size_t messages) {
        SCOPED_TRACE(what);
        EXPECT_FALSE(shape->fails) << "it was met";
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

    shape->fails = true;
    press(0, 3);
    expectUntouched("click", 1);
    EXPECT_EQ(wand.seeds.size(), 1);
    shape->fails = true;
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
