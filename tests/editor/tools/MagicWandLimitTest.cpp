// The magic wand's limit lines, and what of them and of seeds the label data holds.

#include "editor/tools/WandEditor.h"

#include <functional>
#include <utility>

namespace {

using MagicWandLimits = WandEditor;

TEST_F(MagicWandLimits, ALineBoundsTheRegionAndIsOneStepOfUndo)
{
    click(7, 0);
    key('l');
    EXPECT_EQ(wand.mode, GiMagicWand::kLimitMode);
    EXPECT_TRUE(limitButton->isChecked());
    drawLimit(5, 0, 5, 3);
    EXPECT_EQ(wand.mode, GiMagicWand::kSeedMode) << "one line, and regions are grown again";
    EXPECT_FALSE(limitButton->isChecked());
    EXPECT_EQ(rows(), (Rows{"......##", "......##", "......##", ".......#"}));
    ASSERT_EQ(wand.limits.size(), 1);
    EXPECT_EQ(wand.limits[0].id, 1);
    EXPECT_EQ(stored("Limits"), (Lines{"SliceX0001/Limit0001: 5.5 0.5 5.5 3.5"}));
    EXPECT_TRUE(editor.gi.labelData->isModified());
    editor.gi.undo();
    EXPECT_EQ(rows(), (Rows{"...#####", "...#####", "....####", "...###.#"}));
    EXPECT_TRUE(stored("Limits").empty());
    EXPECT_EQ(wand.limits.size(), 0);
}

TEST_F(MagicWandLimits, ManyLinesWhileControlIsHeld)
{
    const std::string first = "SliceX0001/Limit0001: 1.5 0.5 1.5 3.5",
                      second = "SliceX0001/Limit0002: 3.5 0.5 3.5 3.5",
                      third = "SliceX0001/Limit0003: 5.5 0.5 5.5 3.5";
    key(McKeyboardEvent::kControlLeft);
    drawLimit(1, 0, 1, 3, kCtrl);
    drawLimit(3, 0, 3, 3, kCtrl);
    EXPECT_EQ(wand.mode, GiMagicWand::kLimitMode);
    moveTo(1, 3, false, kCtrl);
    click(1, 3, kCtrl); // a line under the pointer is deleted
    drawLimit(5, 0, 5, 3, kCtrl);
    EXPECT_EQ(stored("Limits"), (Lines{second, third})) << "as many as before one went, and yet new";
    key(McKeyboardEvent::kControlLeft, false);
    EXPECT_EQ(wand.mode, GiMagicWand::kSeedMode);
    const std::pair<Lines, int> afterUndo[] = {{{second}, 2}, {{second, first}, 1}, {{first}, 1}};
    for (const auto& [lines, firstId] : afterUndo) {
        editor.gi.undo();
        EXPECT_EQ(stored("Limits"), lines);
        ASSERT_EQ(wand.limits.size(), static_cast<int>(lines.size()));
        EXPECT_EQ(wand.limits[0].id, firstId) << "a line that comes back has its old place";
    }
    editor.gi.undo();
    EXPECT_TRUE(stored("Limits").empty());
}

TEST_F(MagicWandLimits, APressMeetsTheLineThatIsThere)
{
    key('l');
    drawLimit(5, 0, 5, 3);
    key('l');
    moveTo(5, 3, false);
    editor.viewer(2).setSlice(2, false); // by the wheel
    press(5, 3);
    EXPECT_EQ(wand.limits.size(), 2) << "a new line, and the other slice keeps its own";
    release(5, 3);
    editor.viewer(2).setSlice(1, false);
    wand.setLimitMode(true); // by the button, and the pointer has not moved since
    press(5, 3);
    EXPECT_EQ(wand.limits.size(), 1);
    EXPECT_TRUE(stored("Limits").empty());
}

TEST_F(MagicWandLimits, ALineEndsWithItsSlice)
{
    key('l');
    press(1, 0);
    moveTo(1, 0);
    moveTo(1, 3);
    editor.viewer(2).setSlice(2, false); // by the wheel, with the button down
    moveTo(6, 3);
    release(6, 3);
    EXPECT_EQ(stored("Limits"), (Lines{"SliceX0001/Limit0001: 1.5 0.5 1.5 3.5"}));
    EXPECT_EQ(wand.mode, GiMagicWand::kSeedMode);
}

TEST_F(MagicWandLimits, KeptAClickWithoutADragIsAStepThatGrowsTheSeedAnew)
{
    click(7, 0);
    setWindow(1, 1);
    click(0, 0, kShift);
    EXPECT_EQ(rows(), (Rows{"########", "########", "###.####", "######.#"}));
    const int steps = editor.gi.undoActions.size();
    key('l');
    click(4, 2);
    EXPECT_EQ(editor.gi.undoActions.size(), steps + 1);
    EXPECT_EQ(rows(), (Rows{"###.....", "###.....", "###.....", "###....."}));
    EXPECT_EQ(wand.limits.size(), 1);
    EXPECT_TRUE(stored("Limits").empty()) << "nothing was drawn";
    setWindow(0, 255);
    click(0, 0);
    EXPECT_EQ(rows(), Rows(kHeight, "########")) << "and nothing bounds";
    editor.gi.undo();
    editor.gi.undo();
    EXPECT_EQ(wand.limits.size(), 0);
}

TEST_F(MagicWandLimits, KeptALineThatComesOrGoesGrowsTheActiveSeedAlone)
{
    const auto gather = [&] {
        setWindow(2, 2);
        click(7, 0);
        setWindow(1, 1);
        click(0, 0, kShift);
        return rows();
    };
    EXPECT_EQ(gather(), (Rows{"########", "########", "###.####", "######.#"}));
    key('l');
    drawLimit(1, 0, 1, 3);
    EXPECT_EQ(rows(), (Rows{"#.......", "#.......", "#.......", "#......."})) << "drawn";
    EXPECT_EQ(gather(), (Rows{"#..#####", "#..#####", "#...####", "#..###.#"}));
    key('l');
    moveTo(1, 3, false);
    click(1, 3);
    EXPECT_EQ(rows(), (Rows{"###.....", "###.....", "###.....", "###....."})) << "deleted";
    gather();
    key('l');
    drawLimit(1, 0, 1, 3);
    editor.gi.undo();
    EXPECT_EQ(rows(), (Rows{"###.....", "###.....", "###.....", "###....."})) << "undone";
}

TEST_F(MagicWandLimits, WhatEndsLimitMode)
{
    struct Case
    {
        const char* what;
        std::function<void()> act;
        int mode;
    };
    const Case cases[] = {
        {"the key L comes up", [&] { key('l', false); }, GiMagicWand::kLimitMode},
        {"any other key comes up", [&] { key('b', false); }, GiMagicWand::kSeedMode},
        {"a motion without Control, which opened it",
         [&] {
             wand.setLimitMode(false);
             key(McKeyboardEvent::kControlLeft);
             moveTo(3, 3, false, kCtrl);
             EXPECT_EQ(wand.mode, GiMagicWand::kLimitMode);
             moveTo(3, 3, false);
         },
         GiMagicWand::kSeedMode},
        {"a motion without Control, which did not", [&] { moveTo(3, 3, false); }, GiMagicWand::kLimitMode},
        {"another tool", [&] { editor.gi.setTool(-1); }, GiMagicWand::kSeedMode},
        {"and back", [&] { editor.gi.setTool(GiMagicWand::kIndex); }, GiMagicWand::kLimitMode},
        {"another data set", [&] { wand.init(); }, GiMagicWand::kSeedMode},
        {"a key goes down", [&] { key('b'); }, GiMagicWand::kLimitMode},
        {"a release with Control", [&] { release(1, 1, kCtrl); }, GiMagicWand::kLimitMode},
        {"a release", [&] { release(1, 1); }, GiMagicWand::kSeedMode},
        {"the button", [&] { limitButton->click(); }, GiMagicWand::kSeedMode},
        {"a release that went elsewhere",
         [&] {
             press(1, 1);
             moveTo(2, 2);
             moveTo(3, 3);
             moveTo(3, 3, false);
         },
         GiMagicWand::kSeedMode},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        wand.setLimitMode(true);
        c.act();
        EXPECT_EQ(wand.mode, c.mode);
        wand.setLimitMode(false);
    }
    EXPECT_EQ(stored("Limits").size(), 1u) << "the line without a release is kept";
    limitButton->click();
    EXPECT_EQ(wand.mode, GiMagicWand::kLimitMode);
}

TEST_F(MagicWandLimits, UndoWhileALineIsDrawnSparesTheOthers)
{
    key('l');
    drawLimit(1, 0, 1, 3);
    key('l');
    press(5, 0);
    moveTo(5, 0);
    editor.gi.undo();
    moveTo(5, 3);
    release(5, 3);
    ASSERT_EQ(wand.limits.size(), 1);
    EXPECT_EQ(wand.limits[0].points.size(), 2);
    EXPECT_EQ(stored("Limits").size(), 1u);
}

TEST_F(MagicWandLimits, EntriesOfAFile)
{
    const auto ints = [](std::initializer_list<int> list) { return std::vector<int>(list); };
    HxParamBundle* seeds = parameters().bundle("Seeds", 1);
    HxParamBundle* slice = seeds->bundle("Slice0001", 1);
    slice->set("S0002x0003", 4, ints({2, 10, -20, 0x0107 | 0xc}).data());
    slice->set("S0002x0004", 3, ints({2, 10, 20}).data());
    slice->set("S0002x0005", 5, ints({2, 10, 20, 2, 0}).data());
    slice->set("S0002x0006", 4, std::vector<float>{2, 10, 20, 2}.data());
    slice->set("S0002x0007", "2 10 20 2");
    slice->set("T0002x0008", 4, ints({2, 10, 20, 2}).data());
    slice->bundle("S0002x0009", 1);
    seeds->bundle("Piece0001", 1)->set("S0001x0001", 4, ints({2, 10, 20, 2}).data());
    seeds->bundle("Slice9999", 1)->set("S-001x70000", 4, ints({2, 0, 9, 2}).data());
    seeds->set("Slice0003", 7);
    HxParamBundle* limits = parameters().bundle("Limits", 1);
    limits->bundle("SliceX0001", 1)->set("Limit0007", 5, std::vector<double>{1, 2, 3, 4, 5}.data());
    limits->bundle("SliceY0002", 1)->set("Limit0001", 4, ints({1, 2, 3, 4}).data());
    limits->bundle("SliceQ0003", 1)->set("Limit0001", 2, std::vector<float>{1.5f, 2}.data());
    limits->bundle("SliceX0001", 1)->set("Limit0008", 1, std::vector<float>{1}.data());
    limits->bundle("SliceX0001", 1)->set("Limit0009", "1 2 3 4");
    limits->bundle("SliceX0001", 1)->set("Border0001", 4, ints({1, 2, 3, 4}).data());
    wand.init();

    ASSERT_EQ(wand.seeds.size(), 2);
    const MagicWandSeed& seed = wand.seeds[0];
    EXPECT_EQ((std::vector<int>{seed.orientation, seed.x, seed.y, seed.z, seed.is3D, seed.sameMaterial,
                                seed.fillInterior, seed.material}),
              (std::vector<int>{2, 2, 3, 1, 1, 1, 1, 1}));
    EXPECT_EQ(seed.min, 10);
    EXPECT_EQ(seed.max, -20);
    EXPECT_EQ(wand.seeds[1].voxel(), McVec3i(-1, 70000, 9999));
    ASSERT_EQ(wand.limits.size(), 3);
    EXPECT_EQ(wand.limits[0].id, 7);
    EXPECT_EQ(wand.limits[0].points, (McDArray<McVec2f>{McVec2f(1, 2), McVec2f(3, 4)}));
    EXPECT_EQ((std::vector<int>{wand.limits[0].orientation, wand.limits[1].orientation,
                                wand.limits[2].orientation}),
              (std::vector<int>{2, 1, 0}));
    McBitfield bits;
    McBox2i box;
    EXPECT_EQ(wand.grow2D(bits, box, wand.seeds[1]), 0) << "outside the volume nothing grows";
    editor.gi.redraw();
}

TEST_F(MagicWandLimits, ThousandsOfSeedsInAFile)
{
    HxParamBundle* slice = parameters().bundle("Seeds", 1)->bundle("Slice0001", 1);
    const int values[4] = {2, 1, 1, 2};
    for (int i = 0; i < 5000; ++i) slice->set(("S" + std::to_string(i) + "x0").c_str(), 4, values);
    wand.init();
    EXPECT_EQ(wand.seeds.size(), 5000);
    setWindow(2, 2);
    click(6, 2);
    editor.gi.subtractSelection(1, 0);
    editor.gi.redraw();
    EXPECT_EQ(wand.seeds.size(), 5000);
}

} // namespace
