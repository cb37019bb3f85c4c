// The magic wand with "All slices": clicks, picks and the window in the volume, and growings that are
// stopped.

#include "editor/tools/WandEditor.h"

#include "hx/HxWorkArea.h"

namespace {

using MagicWandVolume = WandEditor;

TEST_F(MagicWandVolume, APickedSeedGrowsThroughAllSlices)
{
    const int values[4] = {2, 2, 2, 3};
    parameters().bundle("Seeds", 1)->bundle("Slice0001", 1)->set("S0006x0001", 4, values);
    wand.init();
    setWindow(1, 1);
    editor.gi.selection->set(0, 0, 0);
    press(6, 1);
    EXPECT_EQ(wand.seedIsStored, 1);
    EXPECT_TRUE(allSlices->isChecked());
    EXPECT_FALSE(fillInterior->isEnabled());
    const Rows region = {"...#####", "...#####", "....####", "...###.#"}, none(4, "........");
    for (int z = 0; z < kSlices; ++z) EXPECT_EQ(rows(z), z < 4 ? region : none) << z;
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    editor.gi.undo();
    EXPECT_EQ(rows(0), (Rows{"#.......", "........", "........", "........"}));
    EXPECT_EQ(rows(3), none);
}

TEST_F(MagicWandVolume, KeptUndoOfAClickLeavesTheSeeds)
{
    allSlices->setChecked(true);
    click(6, 1);
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    editor.gi.undo();
    EXPECT_FALSE(editor.gi.selection->isSet());
    EXPECT_EQ(wand.seeds.size(), 1);
    EXPECT_EQ(wand.currentSeed, 0);
}

TEST_F(MagicWandVolume, KeptInLimitModeTheWindowAddsToTheSelection)
{
    allSlices->setChecked(true);
    click(6, 1);
    editor.gi.selection->set(0, 0, 4);
    wand.setLimitMode(true);
    editor.gi.tracking = false;
    drag(2, 4);
    EXPECT_TRUE(editor.gi.selection->get(3, 2, 1)) << "of the wider window";
    EXPECT_TRUE(editor.gi.selection->get(0, 0, 4));
    wand.setLimitMode(false);
    editor.gi.tracking = false;
    drag(2, 2);
    EXPECT_FALSE(editor.gi.selection->get(3, 2, 1));
    EXPECT_FALSE(editor.gi.selection->get(0, 0, 4));
}

TEST_F(MagicWandVolume, APickInSpaceBesideTheVolumeIsNone)
{
    editor.gi.selection->set(0, 0, 1);
    for (const McVec3i& v : {McVec3i(0, 0, kSlices), McVec3i(-1, 0, 0), McVec3i(0, kHeight, 0)}) {
        wand.regionGrowingVolPick(v, 2, GiMagicWand::kReplace);
        EXPECT_TRUE(editor.gi.selection->get(0, 0, 1));
        EXPECT_FALSE(editor.gi.canUndo());
        EXPECT_EQ(wand.seeds.size(), 0);
    }
}

TEST(MagicWandRow, KeptInAVolumeOfOneRowTheSeedAloneIsSelected)
{
    DrawnEditor editor(200, 1, 1);
    std::vector<unsigned char> image(200, 5);
    editor.gi.setVolumeByte(editor.dims, 200, image.data(), editor.lattice());
    editor.gi.setToolDataWindow(5, 5, false);
    auto& wand = dynamic_cast<GiMagicWand&>(*editor.gi.tools[GiMagicWand::kIndex]);
    GiSelection3D& selection = *editor.gi.selection;
    for (const int x : {0, 64, 100, 127, 199}) {
        SCOPED_TRACE(x);
        const auto others = [&](bool set) {
            for (int i = 0; i < 200; ++i)
                if (i != x && selection.get(i, 0, 0) != set) return false;
            return true;
        };
        ASSERT_TRUE(wand.regionGrowing3D(GiMagicWand::kReplace, McVec3i(x, 0, 0)));
        EXPECT_TRUE(selection.get(x, 0, 0));
        EXPECT_TRUE(others(false));
        for (unsigned long i = 0; i < 200; ++i) selection.set(i);
        ASSERT_TRUE(wand.regionGrowing3D(GiMagicWand::kSubtract, McVec3i(x, 0, 0)));
        EXPECT_FALSE(selection.get(x, 0, 0));
        EXPECT_TRUE(others(true));
    }
}

TEST_F(MagicWandVolume, AGrowingThatIsStoppedChangesNothing)
{
    // Large enough that the fill looks whether it shall stop.
    DrawnEditor large(64, 64, 64);
    std::vector<unsigned char> plain(large.size(), 5);
    large.gi.setVolumeByte(large.dims, 64, plain.data(), large.lattice());
    GiMagicWand& tool = toolOf(large);
    tool.getWidget(nullptr)->findChild<QCheckBox*>("wAllSlicesCheckBox")->setChecked(true);
    large.gi.setTool(GiMagicWand::kIndex);
    large.gi.setToolDataWindow(5, 5, false);
    large.gi.selection->set(1, 2, 3);
    large.gi.valueUnderPointer = 5;
    HxWorkArea::getTheWorkArea()->interruptAfter(2);
    McMouseButtonEvent event = buttonEvent(1, true, 40, 40);
    large.buffer(2).handleEvent(&event);
    HxWorkArea::getTheWorkArea()->interruptAfter(0);
    EXPECT_TRUE(large.gi.selection->get(1, 2, 3));
    EXPECT_FALSE(large.gi.selection->get(30, 30, 30));
    EXPECT_FALSE(large.gi.canUndo()) << "no step for nothing";
    EXPECT_EQ(tool.seeds.size(), 1) << "a narrower window can still be tried from it";
    EXPECT_EQ(HxWorkArea::getTheWorkArea()->busyDepth(), 0);
    large.buffer(2).handleEvent(&event);
    EXPECT_TRUE(large.gi.selection->get(63, 63, 63));

    MagicWandSeed kept = tool.seeds[0]; // picking it is stopped, too
    kept.setVoxel(McVec3i(3, 3, kept.z));
    large.gi.setTool(-1);
    large.gi.setTool(GiMagicWand::kIndex);
    tool.seeds.append(kept);
    large.gi.selection->clear();
    large.gi.selection->set(1, 2, 3);
    large.gi.clearUndo(1);
    const McVec2i mark = large.buffer(2).pixelCentre(3, 3);
    McMouseButtonEvent pick = buttonEvent(1, true, mark.x, mark.y);
    HxWorkArea::getTheWorkArea()->interruptAfter(2);
    large.buffer(2).handleEvent(&pick);
    HxWorkArea::getTheWorkArea()->interruptAfter(0);
    EXPECT_TRUE(large.gi.selection->get(1, 2, 3));
    EXPECT_FALSE(large.gi.selection->get(30, 30, 30));
    EXPECT_FALSE(large.gi.canUndo());
    EXPECT_EQ(tool.seedIsStored, 1) << "picked all the same: a narrower window can be tried";
}

/// A work area's view that clicks as soon as something long begins.
class ImpatientHand : public HxWorkAreaView
{
public:
    explicit ImpatientHand(GiFrameBuffer& target) : buffer(target) {}
    void showBusy(const char* text) override
    {
        if (text) texts.push_back(text);
        McMouseButtonEvent event = buttonEvent(1, true, 5, 5);
        buffer.handleEvent(&event);
    }
    void showIdle() override {}
    void showText(const char*) override {}
    void showProgress(double) override {}
    bool poll() override { return false; }

    GiFrameBuffer& buffer;
    std::vector<std::string> texts;
};

TEST_F(MagicWandVolume, AClickWhileTheVolumeIsGrownIsSwallowed)
{
    allSlices->setChecked(true);
    ImpatientHand hand(buffer());
    HxWorkArea::getTheWorkArea()->setView(&hand);
    click(6, 1);
    HxWorkArea::getTheWorkArea()->setView(nullptr);
    EXPECT_EQ(hand.texts, (Lines{"3D region growing..."}));
    ASSERT_EQ(wand.seeds.size(), 1);
    EXPECT_EQ(wand.seeds[0].x, 6);
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    EXPECT_EQ(rows(3), (Rows{"...#####", "...#####", "....####", "...###.#"}));
}

} // namespace
