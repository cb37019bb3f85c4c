// The magic wand's seeds: how they come, stay and go, and what undo makes of it.

#include "editor/tools/WandEditor.h"

#include "core/GiSelection2D.h"
#include "hx/HxSettingsMgr.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace {

class MagicWandSeeds : public WandEditor
{
protected:
    /// Everything that a step of undo has to bring back.
    Lines state()
    {
        Lines s = stored("Seeds");
        std::sort(s.begin(), s.end()); // an entry that comes back may stand elsewhere
        const auto add = [&s](auto... numbers) {
            s.push_back(testing::PrintToString(std::tuple(numbers...)));
        };
        for (const MagicWandSeed& seed : wand.seeds)
            add(seed.min, seed.max, seed.orientation, seed.x, seed.y, seed.z, seed.is3D, seed.sameMaterial,
                seed.fillInterior, seed.material);
        add(wand.currentSeed, wand.hasActiveSeed() && wand.seedIsStored, wand.seedMaterial);
        add(editor.gi.toolDataWindow[0], editor.gi.toolDataWindow[1]);
        add(allSlices->isChecked(), sameMaterial->isChecked(), fillInterior->isChecked());
        for (int z = 0; z < kSlices; ++z)
            for (const std::string& row : rows(z)) s.push_back(row);
        for (unsigned long i = 0; i < editor.size(); i += kWidth)
            s.push_back(
                testing::PrintToString(std::vector<int>(editor.labels() + i, editor.labels() + i + kWidth)));
        return s;
    }
    void keep(int tissue = 1) { editor.gi.storeSelection(tissue, 0, 1); }
    void pickAt(int i, int j) { click(i, j); }
};

TEST_F(MagicWandSeeds, ASeriesOfClicksLeavesOneSeed)
{
    click(6, 1);
    EXPECT_EQ(rows(), (Rows{"...#####", "...#####", "....####", "...###.#"}));
    EXPECT_EQ(editor.gi.touches, (std::vector<TestGi::Touch>{{1, 0, 2, 1, 0, 0}}));
    editor.gi.set3dMode(!editor.gi.mode3D); // notices that are none of its business
    editor.gi.setZoomMode(!editor.gi.zoomAllViewers);
    EXPECT_EQ(wand.currentSeed, 0);
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    setWindow(1, 1);
    press(0, 3, kShift);
    EXPECT_EQ(rows(), (Rows{"########", "########", "###.####", "######.#"}));
    press(2, 0, kCtrl);
    EXPECT_EQ(rows(), (Rows{"...#####", "...#####", "....####", "...###.#"}));
    ASSERT_EQ(wand.seeds.size(), 1);
    EXPECT_EQ(wand.seeds[0].x, 2);
    EXPECT_EQ(wand.seeds[0].min, 1);
    keep();
    EXPECT_FALSE(wand.hasActiveSeed());
    EXPECT_EQ(stored("Seeds"), (Lines{"Slice0001/S0002x0000: 2 1 1 2"}));
    press(7, 0);
    EXPECT_EQ(wand.seeds.size(), 2);
    EXPECT_EQ(stored("Seeds").size(), 1u) << "the second one is not kept yet";
}

TEST_F(MagicWandSeeds, WhatAClickRefuses)
{
    setWindow(1, 1);
    click(6, 1); // the region of a value outside the window is empty
    EXPECT_EQ(rows(), (Rows{"........", "........", "........", "........"}));
    EXPECT_EQ(wand.seeds.size(), 1);
    editor.gi.undo();
    EXPECT_EQ(wand.seeds.size(), 0);

    const McVec2i inside = at(1, 1);
    editor.gi.valueUnderPointer = 1;
    for (const McVec2i& p : {McVec2i(-1, 5), McVec2i(5, -1), McVec2i(kWidth * kZoom, 5), McVec2i(5, 400)}) {
        send(buttonEvent(1, true, p.x, p.y));
        EXPECT_EQ(wand.seeds.size(), 0) << p.x << " " << p.y;
    }
    EXPECT_FALSE(editor.gi.canUndo());
    send(buttonEvent(3, true, inside.x, inside.y));
    EXPECT_EQ(wand.seeds.size(), 0);

    allSlices->setChecked(true);
    editor.gi.selection->set(0, 0, 0);
    click(6, 1);
    EXPECT_FALSE(editor.gi.selection->isSet()) << "nothing grows, but the old selection is replaced";
}

TEST_F(MagicWandSeeds, MaskingRefusesValuesOutsideTheWindowAndLeavesTheWindowToTheMask)
{
    editor.gi.masking = true;
    editor.gi.selection->set(0, 3, 1);
    press(1, 1); // of value 1
    EXPECT_EQ(wand.seeds.size(), 0);
    EXPECT_FALSE(editor.gi.canUndo());
    EXPECT_TRUE(editor.gi.selection->get(0, 3, 1));
    press(6, 1);
    const Rows region = {"...#####", "...#####", "....####", "...###.#"};
    EXPECT_EQ(rows(), region);
    for (const bool all : {false, true}) {
        SCOPED_TRACE(all);
        editor.gi.tracking = false;
        allSlices->setChecked(all);
        EXPECT_FALSE(editor.gi.tracking) << "the slider's steps are the mask's business";
        drag(1, 9);
        EXPECT_TRUE(editor.gi.tracking);
        EXPECT_EQ(rows(), region);
        setWindow(2, 2);
    }
}

TEST_F(MagicWandSeeds, TheRegionFollowsWindowAndPanel)
{
    click(6, 1);
    drag(2, 4);
    EXPECT_EQ(rows(), (Rows{"...#####", "...#####", "...#####", "...#####"}));
    drag(2, 2);
    fillInterior->setChecked(true);
    EXPECT_EQ(rows(), (Rows{"...#####", "...#####", "....####", "...###.#"}))
        << "no hole is closed at the border";
    editor.labels()[7 + kWidth * kHeight] = 1;
    sameMaterial->setChecked(true);
    EXPECT_EQ(rows(), (Rows{"...####.", "...#####", "....####", "...###.#"}));
    EXPECT_EQ(wand.seeds[0].sameMaterial, 1);

    allSlices->setChecked(true);
    EXPECT_FALSE(fillInterior->isChecked());
    EXPECT_FALSE(fillInterior->isEnabled());
    EXPECT_EQ(rows(3), (Rows{"...#####", "...#####", "....####", "...###.#"}))
        << "label 1 lies in slice 1 only";
    allSlices->setChecked(false);
    EXPECT_TRUE(fillInterior->isEnabled());
    EXPECT_EQ(rows(3), (Rows{"........", "........", "........", "........"})) << "the volume was cleared";
    EXPECT_EQ(editor.gi.undoActions.size(), 3);
}

TEST_F(MagicWandSeeds, KeptARegionFollowsIntoTheSliceInView)
{
    click(6, 1);
    editor.viewer(2).setSlice(4, false);
    image[2 + kWidth * 3] = 2; // of slice 0, which nobody looks at
    drag(2, 3);
    EXPECT_EQ(rows(4), (Rows{"...#####", "...#####", "...#####", "...###.#"}));
    EXPECT_EQ(rows(1), (Rows{"...#####", "...#####", "....####", "...###.#"}));
}

TEST_F(MagicWandSeeds, TrackingOfTheSlider)
{
    struct Case
    {
        const char* what;
        bool all, trackingBefore, trackingAfter, grows;
    };
    const Case cases[] = {{"a slice at each step", false, true, true, true},
                          {"a slice, first step", false, false, true, true},
                          {"the volume, first step of a drag", true, true, false, false},
                          {"the volume, release of the slider", true, false, true, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        allSlices->setChecked(c.all);
        setWindow(2, 2);
        click(6, 0);
        editor.gi.tracking = c.trackingBefore;
        drag(2, 4);
        EXPECT_EQ(editor.gi.tracking, c.trackingAfter);
        EXPECT_EQ(editor.gi.selection->get(6, 3, 1), c.grows);
        editor.gi.clearSelection(true, false);
    }
    allSlices->setChecked(false);
    EXPECT_TRUE(editor.gi.tracking);
    allSlices->setChecked(true);
    EXPECT_FALSE(editor.gi.tracking);
    editor.gi.setTool(-1);
    EXPECT_TRUE(editor.gi.tracking) << "as it was before the tool was chosen";
}

TEST_F(MagicWandSeeds, PickingASeedBringsItsWindowPanelAndMaterial)
{
    parameters()
        .bundle("Seeds", 1)
        ->bundle("Slice0001", 1)
        ->set("S0001x0001", 4, std::vector<int>{2, 1, 3, 0x206}.data());
    wand.init();
    ASSERT_EQ(wand.seeds.size(), 1);
    pickAt(1, 1);
    EXPECT_EQ(wand.currentSeed, 0);
    EXPECT_EQ(wand.seedIsStored, 1);
    EXPECT_EQ(editor.gi.toolDataWindow[1], 3);
    EXPECT_TRUE(sameMaterial->isChecked());
    EXPECT_EQ(editor.gi.currentTissue, 2);
    EXPECT_EQ(rows(), (Rows{"########", "########", "########", "######.#"}));
    drag(1, 1);
    EXPECT_EQ(wand.seeds[0].max, 1);
    setWindow(2, 2);
    press(6, 1);
    ASSERT_EQ(wand.seeds.size(), 2);
    EXPECT_EQ(wand.seeds[0].max, 3) << "a seed that was only looked at is as it was";
    EXPECT_EQ(wand.seeds[1].material, 2) << "new seeds have the material of the one picked last";
    pickAt(1, 1);
    EXPECT_EQ(wand.seeds.size(), 1) << "a new seed that was not kept goes";
    editor.gi.setTool(-1);
    EXPECT_FALSE(wand.hasActiveSeed());
    EXPECT_EQ(wand.seeds.size(), 1);
}

TEST_F(MagicWandSeeds, UndoBringsBackSeedsSelectionAndLabels)
{
    // Two kept seeds; a new one is active where the case says so.
    const auto prepare = [&](int active) {
        editor.gi.clearSelection(true, false);
        parameters().remove("Seeds");
        std::fill_n(editor.labels(), editor.size(), static_cast<unsigned char>(0));
        setWindow(1, 1);
        sameMaterial->setChecked(false);
        wand.init();
        press(0, 0);
        keep();
        setWindow(2, 2);
        press(6, 0);
        keep(2);
        if (active == 1) press(6, 0);
        if (active == 2) press(4, 2);
        editor.gi.clearUndo(1);
    };
    struct Case
    {
        const char* what;
        int active; // 0 none, 1 the second, picked, 2 a new one
        std::function<void()> act;
    };
    TestGi& gi = editor.gi;
    const Case cases[] = {
        {"a click with no active seed", 0, [&] { press(4, 1); }},
        {"a click with a picked seed", 1, [&] { press(4, 1); }},
        {"a click with a new seed", 2, [&] { press(7, 3, kShift); }},
        {"picking with none", 0, [&] { press(0, 0); }},
        {"picking another", 1, [&] { press(0, 0); }},
        {"picking while a new one is active", 2, [&] { press(0, 0); }},
        {"a new seed is kept", 2, [&] { gi.storeSelection(1, 0, 1); }},
        {"a new seed is kept, selection stays", 2, [&] { gi.storeSelection(1, 0, 0); }},
        {"a new seed is kept from the volume", 2, [&] { gi.storeSelection(1, 1, 1); }},
        {"a picked seed is kept", 1, [&] { gi.storeSelection(1, 0, 1); }},
        {"a new seed replaces", 2, [&] { gi.replaceBySelection(2, 0); }},
        {"a picked seed replaces", 1, [&] { gi.replaceBySelection(2, 0); }},
        {"a new seed subtracts", 2, [&] { gi.subtractSelection(2, 0); }},
        {"a picked seed subtracts", 1, [&] { gi.subtractSelection(2, 0); }},
        {"a picked seed subtracts in the volume", 1, [&] { gi.subtractSelection(2, 1); }},
        {"a new seed is cleared", 2, [&] { gi.clearSelection(false, true); }},
        {"a picked seed is cleared", 1, [&] { gi.clearSelection(true, true); }},
        {"a picked seed is deleted", 1, [&] { key(McKeyboardEvent::kDelete); }},
        {"a new seed is deleted", 2, [&] { key('x', true, true); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        prepare(c.active);
        const Lines before = state();
        EXPECT_EQ(wand.hasActiveSeed(), c.active > 0);
        c.act();
        EXPECT_NE(state(), before) << "something must happen";
        EXPECT_EQ(gi.undoActions.size(), 1);
        gi.undo();
        EXPECT_EQ(state(), before);
    }
}

TEST_F(MagicWandSeeds, KeptADeletedSeedComesBackAtTheEndAndInItsPlace)
{
    for (const int x : {0, 4}) {
        setWindow(x ? 2 : 1, x ? 2 : 1);
        press(x, 0);
        keep();
    }
    pickAt(0, 0);
    editor.gi.subtractSelection(1, 0);
    ASSERT_EQ(wand.seeds.size(), 1);
    editor.gi.undo();
    ASSERT_EQ(wand.seeds.size(), 2);
    EXPECT_EQ(wand.seeds[0].x, 0);
    EXPECT_EQ(wand.seeds[1].x, 0) << "in memory it stands for the one behind it";
    wand.init();
    EXPECT_EQ(stored("Seeds").size(), 2u);
    EXPECT_NE(wand.seeds[0].x, wand.seeds[1].x) << "the label data has lost nothing";
}

TEST_F(MagicWandSeeds, KeptTheIndexOfAPickIsNotCorrectedForTheNewSeedThatGoes)
{
    for (const int x : {0, 3, 6}) {
        MagicWandSeed seed;
        seed.orientation = 2;
        seed.x = x;
        seed.z = 1;
        wand.seeds.append(seed);
    }
    wand.currentSeed = 0; // new, before the others
    pickAt(3, 0);
    ASSERT_EQ(wand.seeds.size(), 2);
    EXPECT_EQ(wand.seeds[wand.currentSeed].x, 6);
    wand.currentSeed = 0;
    wand.seedIsStored = 0;
    pickAt(6, 0);
    EXPECT_EQ(wand.seeds.size(), 1);
    EXPECT_EQ(wand.currentSeed, -1) << "there is none behind it";
}

TEST_F(MagicWandSeeds, TheKeyNGoesThroughTheSeedsOfTheSlice)
{
    struct Place
    {
        int x, z, orientation;
        bool is3D;
    };
    const Place places[] = {
        {1, 1, 2, false}, {2, 3, 2, false}, {3, 1, 0, true}, {4, 1, 2, true}, {5, 1, 2, false}};
    for (const Place& p : places) {
        MagicWandSeed seed;
        seed.x = p.x;
        seed.z = p.z;
        seed.orientation = p.orientation;
        seed.is3D = p.is3D;
        wand.seeds.append(seed);
    }
    std::vector<int> picked;
    for (int i = 0; i < 4; ++i) {
        key('n');
        picked.push_back(wand.currentSeed);
    }
    EXPECT_EQ(picked, (std::vector<int>{0, 3, 4, 0})) << "of this slice and orientation, round the list";
}

TEST_F(MagicWandSeeds, RegionsOfOtherSeedsAreProtected)
{
    setWindow(1, 1);
    press(0, 0);
    keep();
    setWindow(1, 2);
    press(5, 1);
    keep();
    EXPECT_EQ(rows(), (Rows{"........", "........", "........", "........"}));
    pickAt(5, 1);
    editor.gi.subtractSelection(1, 0);
    const unsigned char* slice = editor.labels() + kWidth * kHeight;
    EXPECT_EQ(slice[0], 1) << "the first seed's region";
    EXPECT_EQ(slice[4], 0);
    EXPECT_EQ(wand.seeds.size(), 1);
}

TEST_F(MagicWandSeeds, ManySeedsOfOneRegionAndOthers)
{
    struct Place
    {
        int x, y;
        float min, max;
        bool fillInterior;
    };
    // The first two share a region; the third lies in it, but reaches further.
    const Place places[] = {
        {5, 1, 2, 2, false}, {6, 2, 2, 2, false}, {7, 2, 2, 3, false}, {6, 3, 4, 4, true}};
    for (const Place& p : places) {
        MagicWandSeed seed;
        seed.orientation = 2;
        seed.setVoxel(McVec3i(p.x, p.y, 1));
        seed.min = p.min;
        seed.max = p.max;
        seed.fillInterior = p.fillInterior;
        wand.seeds.append(seed);
    }
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) editor.gi.selection->set(x, y, 1);
    wand.lockInactiveSeeds(*editor.viewer(2).getSelection());
    EXPECT_EQ(rows(), (Rows{"###.....", "###.....", "###.....", "###....."}));
}

TEST_F(MagicWandSeeds, APickInSpaceGoesToItsSlice)
{
    editor.gi.selection->sliceFlags[2][3] = 1;
    editor.gi.selection->set(0, 0, 3);
    editor.gi.selection->set(0, 0, 1);
    wand.regionGrowingVolPick(McVec3i(6, 1, 3), 2, GiMagicWand::kReplace);
    EXPECT_EQ(editor.viewer(2).getSlice(), 3);
    EXPECT_EQ(rows(3), (Rows{"...#####", "...#####", "....####", "...###.#"}));
    EXPECT_FALSE(editor.gi.selection->get(0, 0, 1)) << "the slice in view was replaced, too";
    EXPECT_EQ(editor.gi.selection->sliceFlags[2][3], 0u) << "a key slice from now on";
    EXPECT_EQ(wand.seeds[0].z, 3);
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    editor.gi.undo();
    EXPECT_TRUE(editor.gi.selection->get(0, 0, 1));
    EXPECT_EQ(rows(3), (Rows{"#.......", "........", "........", "........"}));
    EXPECT_EQ(wand.seeds.size(), 0);
    allSlices->setChecked(true);
    wand.regionGrowingVolPick(McVec3i(6, 1, 3), 2, GiMagicWand::kAdd);
    EXPECT_TRUE(editor.gi.selection->get(6, 1, 0));
    EXPECT_TRUE(editor.gi.selection->get(0, 0, 3));
}

TEST(MagicWandSettings, OutliveTheToolButForAllSlices)
{
    HxSettingsMgr& settings = *HxSettingsMgr::getInstance();
    const HxPreferences before = settings.getPreferences();
    const auto stored = [&] { return settings.getPreferences().giMagicWand.str(); };
    const auto store = [&](const char* text) {
        HxPreferences preferences = before;
        preferences.giMagicWand = text;
        settings.setPreferences(preferences, false);
    };
    for (const auto& [text, expected] :
         {std::pair("", "0 0 1 1 0 0 128"), std::pair("7 8 1 0 1 1 12.5", "0 0 1 1 1 0 12.5"),
          std::pair("1 2 rubbish", "0 0 1 1 0 0 128")}) {
        store(text);
        {
            TestGi gi;
            auto* all = gi.tools[GiMagicWand::kIndex]->getWidget(nullptr)->findChild<QCheckBox*>(
                "wAllSlicesCheckBox");
            EXPECT_FALSE(all->isChecked()) << text;
            all->setChecked(true);
        }
        EXPECT_EQ(stored(), expected) << text;
    }
    store("7 8 1 0 1 1 12.5");
    {
        TestGi gi; // without a panel nobody sets anything
    }
    EXPECT_EQ(stored(), "7 8 1 0 1 1 12.5");
    settings.setPreferences(before, false);
}

} // namespace
