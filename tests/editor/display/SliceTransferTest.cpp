// Moving the selection into labels through the current viewer and in the volume, against plain
// references that walk voxel by voxel.

#include "TestEditor.h"

#include "hx/HxMessage.h"
#include "hx/HxSettingsMgr.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace {

using Labels = std::vector<unsigned char>;
using Touches = std::vector<TestGi::Touch>;

struct RandomEditor : TestEditor
{
    RandomEditor(unsigned long nx, unsigned long ny, unsigned long nz, unsigned seed, int materials,
                 double density)
        : TestEditor(nx, ny, nz), random(seed)
    {
        addMaterials(materials);
        std::uniform_int_distribution<int> label(0, materials - 1);
        std::bernoulli_distribution selected(density);
        for (unsigned long i = 0; i < size(); ++i) {
            labels()[i] = static_cast<unsigned char>(label(random));
            if (selected(random)) gi.selection->set(i);
        }
        gi.updateSelectionBoxes();
    }
    std::mt19937 random;
};

bool inSlice(unsigned long i, const unsigned long* dims, int orientation, int slice)
{
    const unsigned long p[3] = {i % dims[0], i / dims[0] % dims[1], i / dims[0] / dims[1]};
    return p[orientation] == static_cast<unsigned long>(slice);
}

/// What subtracting a set moves to: the most frequent other label around it, else inside it, else 0.
int referenceTarget(const Labels& labels, const std::vector<bool>& set, const unsigned long* dims, int tissue)
{
    std::map<int, long> counts;
    const long X = static_cast<long>(dims[0]), Y = static_cast<long>(dims[1]), Z = static_cast<long>(dims[2]);
    const long steps[6][3] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0}, {0, 1, 0}, {-1, 0, 0}, {1, 0, 0}};
    for (long z = 0; z < Z; ++z)
        for (long y = 0; y < Y; ++y)
            for (long x = 0; x < X; ++x) {
                if (!set[static_cast<size_t>(x + X * (y + Y * z))]) continue;
                for (const auto& s : steps) {
                    const long a = x + s[0], b = y + s[1], c = z + s[2];
                    if (a < 0 || b < 0 || c < 0 || a >= X || b >= Y || c >= Z) continue;
                    const auto n = static_cast<size_t>(a + X * (b + Y * c));
                    if (!set[n]) ++counts[labels[n]];
                }
            }
    const auto choose = [&] {
        int best = -1;
        long most = 0;
        for (const auto& [label, count] : counts)
            if (label != tissue && count > most) best = label, most = count;
        return best;
    };
    if (const int best = choose(); best >= 0) return best;
    for (size_t i = 0; i < labels.size(); ++i)
        if (set[i]) ++counts[labels[i]];
    return std::max(choose(), 0);
}

class Transfer : public testing::Test
{
protected:
    void SetUp() override
    {
        HxMessage::getTheMsg()->setSink([this](const char* text) { console.push_back(text); });
    }
    void TearDown() override
    {
        HxMessage::getTheMsg()->setSink({});
        HxSettingsMgr::getInstance()->useMemoryStore();
    }
    std::vector<std::string> console;
};

} // namespace

TEST_F(Transfer, AddInASliceOfEveryOrientationTouchesThatSliceAlone)
{
    for (int orientation = 0; orientation < 3; ++orientation) {
        RandomEditor editor(7, 5, 6, 11 + static_cast<unsigned>(orientation), 5, 0.4);
        GiViewer* viewer = editor.gi.activate(orientation);
        viewer->setSlice(3, false);
        editor.gi.lockTissue(2, 1);
        const Labels before = editor.copyOfLabels();
        const std::vector<bool> selected = editor.copyOfSelection();

        editor.gi.storeSelection(4, 0, 1);

        for (unsigned long i = 0; i < editor.size(); ++i) {
            const bool here = selected[i] && inSlice(i, editor.dims, orientation, 3);
            EXPECT_EQ(editor.labels()[i], here && before[i] != 2 ? 4 : before[i]) << "voxel " << i;
            EXPECT_EQ(editor.gi.selection->isSet(i), selected[i] && !inSlice(i, editor.dims, orientation, 3));
        }
        EXPECT_EQ(editor.gi.touches, (Touches{{1, 1, orientation, 3, 1, 0}}));
        EXPECT_EQ(viewer->getSelection()->modified, 0);

        editor.gi.undo();
        EXPECT_EQ(editor.copyOfLabels(), before);
        EXPECT_EQ(editor.copyOfSelection(), selected);
    }
}

TEST_F(Transfer, AddThatKeepsTheSelectionAnnouncesNothingInTheSliceForm)
{
    RandomEditor editor(7, 5, 6, 3, 4, 0.5);
    const auto selected = editor.copyOfSelection();
    editor.gi.storeSelection(1, 0, 0);
    EXPECT_TRUE(editor.gi.touches.empty());
    EXPECT_EQ(editor.copyOfSelection(), selected);

    editor.gi.viewers[0]->getSelection()->modified = 1;
    editor.gi.storeSelection(1, 1, 0);
    EXPECT_EQ(editor.gi.touches, (Touches{{1, 1, 0, -1, 0, 0}}));
    EXPECT_EQ(editor.copyOfSelection(), selected);
    EXPECT_EQ(editor.gi.viewers[0]->getSelection()->modified, 0);
}

TEST_F(Transfer, VolumeFormsEqualThePlainRulesForAnyNumberOfThreads)
{
    for (int threads = 1; threads <= 3; ++threads) {
        HxPreferences preferences = HxSettingsMgr::getInstance()->getPreferences();
        preferences.numThreads = threads;
        HxSettingsMgr::getInstance()->setPreferences(preferences, false);
        for (unsigned seed = 0; seed < 12; ++seed) {
            RandomEditor editor(31 + seed, 5, 7, seed, 3 + static_cast<int>(seed % 4),
                                seed % 3 == 0 ? 0.02 : 0.6);
            const Labels before = editor.copyOfLabels();
            const std::vector<bool> selected = editor.copyOfSelection();

            editor.gi.subtractSelection(1, 1);
            const int target = referenceTarget(before, selected, editor.dims, 1);
            for (unsigned long i = 0; i < editor.size(); ++i)
                ASSERT_EQ(editor.labels()[i], selected[i] && before[i] == 1 ? target : before[i])
                    << "seed " << seed << " voxel " << i;
            EXPECT_FALSE(editor.gi.selection->isSet());
            editor.gi.undo();
            ASSERT_EQ(editor.copyOfLabels(), before);
            ASSERT_EQ(editor.copyOfSelection(), selected);

            editor.gi.lockTissue(0, 1);
            editor.gi.storeSelection(2, 1, 1);
            for (unsigned long i = 0; i < editor.size(); ++i)
                ASSERT_EQ(editor.labels()[i], selected[i] && before[i] != 0 ? 2 : before[i]);
        }
    }
}

TEST_F(Transfer, LocksProtectAndSayWhy)
{
    RandomEditor editor(9, 4, 3, 5, 4, 0.5);
    const Labels before = editor.copyOfLabels();
    editor.gi.lockTissue(1, 1);

    editor.gi.storeSelection(1, 1, 1);
    EXPECT_EQ(editor.copyOfLabels(), before);
    EXPECT_EQ(editor.gi.canUndo(), 0) << "a refused store leaves no step";
    EXPECT_EQ(editor.gi.redraws, 0);
    EXPECT_TRUE(console.empty());

    editor.gi.subtractSelection(1, 1);
    EXPECT_EQ(console.back(), "Cannot subtract selected voxels from M1, because the material is locked!");
    EXPECT_EQ(editor.gi.canUndo(), 0);

    editor.gi.materials->bundle(1)->set("LongName", "left lung");
    editor.gi.subtractSelection(1, 0);
    EXPECT_EQ(console.back(),
              "Cannot subtract selected voxels from left lung, because the material is locked!");

    console.clear();
    editor.gi.lockTissue(9, 1);
    editor.gi.subtractSelection(9, 1);
    EXPECT_TRUE(console.empty()) << "a material without entry has no name to complain about";
}

TEST_F(Transfer, LockedTargetOfAVolumeSubtractionKeepsSelectionAndUndoStep)
{
    TestEditor editor(5, 5, 5);
    editor.addMaterials(3);
    std::fill(editor.labels(), editor.labels() + editor.size(), 2);
    editor.gi.selection->set(2, 2, 2);
    editor.labels()[2 + 5 * (2 + 5 * 2)] = 1;
    editor.gi.lockTissue(2, 1);
    const Labels before = editor.copyOfLabels();

    editor.gi.subtractSelection(1, 1);
    EXPECT_EQ(console.back(), "Cannot assign subtracted voxels to M2, because the material is locked!");
    EXPECT_EQ(editor.copyOfLabels(), before);
    EXPECT_TRUE(editor.gi.selection->isSet());
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    EXPECT_EQ(editor.gi.touches, (Touches{{1, 1, 0, -1, 1, 1}}));
}

TEST_F(Transfer, ReplaceInTheVolumeTakesTouchedPiecesBackAndLeavesTwoSteps)
{
    TestEditor editor(9, 1, 1);
    editor.addMaterials(3);
    const Labels start = {0, 1, 1, 1, 2, 1, 1, 0, 1};
    std::copy(start.begin(), start.end(), editor.labels());
    editor.gi.selection->set(3, 0, 0); // touches the first piece of 1
    editor.gi.selection->set(4, 0, 0);
    auto* tool = new RecordingTool(&editor.gi);
    tool->ref();
    editor.gi.tools[0]->unref();
    editor.gi.tools[0] = tool;
    editor.gi.setTool(0);
    tool->calls.clear();

    editor.gi.replaceBySelection(1, 1);
    // Around the piece at 1..3 stand one 0 and one 2: the lower label wins.
    EXPECT_EQ(editor.copyOfLabels(), (Labels{0, 0, 0, 1, 1, 1, 1, 0, 1}));
    EXPECT_EQ(editor.gi.undoActions.size(), 2);
    EXPECT_EQ(tool->calls, (std::vector<std::string>{"notify 1", "notify 2"}));
    EXPECT_FALSE(editor.gi.selection->isSet());

    editor.gi.undo();
    editor.gi.undo();
    EXPECT_EQ(editor.copyOfLabels(), start);
}

TEST_F(Transfer, ReplaceInTheVolumeOfALockedMaterialStillTakesThePiecesAway)
{
    TestEditor editor(6, 1, 1);
    editor.addMaterials(2);
    const Labels start = {0, 1, 1, 0, 0, 0};
    std::copy(start.begin(), start.end(), editor.labels());
    editor.gi.selection->set(2, 0, 0);
    editor.gi.selection->set(4, 0, 0);
    editor.gi.lockTissue(1, 1);
    editor.gi.replaceBySelection(1, 1);
    EXPECT_EQ(editor.copyOfLabels(), Labels(6, 0));
    EXPECT_TRUE(editor.gi.selection->isSet()) << "the store was refused";
}

TEST_F(Transfer, ReplaceInASliceKeepsOtherPiecesOfTheMaterial)
{
    TestEditor editor(7, 3, 2);
    editor.addMaterials(3);
    const Labels slice = {0, 0, 0, 0, 0, 0, 0, //
                          0, 1, 1, 0, 1, 1, 0, //
                          0, 0, 0, 0, 0, 0, 0};
    std::copy(slice.begin(), slice.end(), editor.labels());
    std::copy(slice.begin(), slice.end(), editor.labels() + slice.size());
    editor.gi.activate(2)->setSlice(1, false);
    editor.gi.viewers[2]->getSelection()->set(2, 1);
    editor.gi.viewers[2]->getSelection()->set(2, 2);

    editor.gi.replaceBySelection(1, 0);
    Labels expected = {0, 0, 0, 0, 0, 0, 0, //
                       0, 0, 1, 0, 1, 1, 0, //
                       0, 0, 1, 0, 0, 0, 0};
    expected.insert(expected.begin(), slice.begin(), slice.end());
    EXPECT_EQ(editor.copyOfLabels(), expected);
    EXPECT_EQ(editor.gi.touches, (Touches{{1, 1, 2, 1, 1, 0}}));
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
}

TEST_F(Transfer, SubtractInASliceEndsTheSelectionAlsoWhereALockForbidsTheMove)
{
    TestEditor editor(5, 5, 1);
    editor.addMaterials(2);
    editor.labels()[12] = 1;
    editor.gi.viewers[2]->getSelection()->set(2, 2);
    editor.gi.lockTissue(0, 1);
    editor.gi.subtractSelection(1, 0);
    EXPECT_EQ(editor.labels()[12], 1);
    EXPECT_FALSE(editor.gi.selection->isSet());
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    EXPECT_TRUE(console.empty());

    editor.gi.undo();
    editor.gi.lockTissue(0, 0);
    editor.gi.subtractSelection(1, 0);
    EXPECT_EQ(editor.labels()[12], 0);
    EXPECT_EQ(editor.gi.touches.back(), (TestGi::Touch{1, 1, 2, 0, 1, 1}));
}

TEST_F(Transfer, ProjectedStoreMarksTheWholeDepthAndClearsUndo)
{
    TestEditor editor(4, 3, 5);
    editor.addMaterials(3);
    editor.lattice()->createWeights();
    const Labels weights(editor.lattice()->getWeights(), editor.lattice()->getWeights() + editor.size());
    editor.gi.saveUndoInformationForVolume(1, 1, nullptr);
    editor.gi.lockTissue(0, 1); // locks of what is overwritten do not count here
    editor.gi.projectionMode = 1;
    GiViewer* viewer = editor.gi.activate(1); // XZ: pixel (i, j) is voxel (i, y, j)
    viewer->getSelection()->set(2, 4);
    editor.gi.storeSelection(2, 0, 0);
    for (unsigned long i = 0; i < editor.size(); ++i) {
        const bool hit = i % 4 == 2 && i / 12 == 4;
        EXPECT_EQ(editor.labels()[i], hit ? 2 : 0);
        EXPECT_EQ(editor.lattice()->getWeights()[i] == 1, hit || weights[i] == 1);
    }
    EXPECT_EQ(editor.gi.canUndo(), 0);
    EXPECT_FALSE(editor.gi.selection->isSet());
    EXPECT_TRUE(editor.gi.touches.empty());
}

TEST_F(Transfer, ClearInvertAndFillAnnounceThemselves)
{
    RandomEditor editor(6, 5, 4, 9, 2, 0.5);
    const auto selected = editor.copyOfSelection();
    editor.gi.activate(0)->setSlice(2, false);

    editor.gi.clearSelection(false, true);
    for (unsigned long i = 0; i < editor.size(); ++i)
        EXPECT_EQ(editor.gi.selection->isSet(i), selected[i] && !inSlice(i, editor.dims, 0, 2));
    editor.gi.undo();
    EXPECT_EQ(editor.copyOfSelection(), selected);

    editor.gi.invertSelection(1);
    for (unsigned long i = 0; i < editor.size(); ++i) EXPECT_NE(editor.gi.selection->isSet(i), selected[i]);
    editor.gi.invertSelection(0);
    for (unsigned long i = 0; i < editor.size(); ++i)
        EXPECT_EQ(editor.gi.selection->isSet(i), inSlice(i, editor.dims, 0, 2) ? selected[i] : !selected[i]);
    editor.gi.clearSelection(true, false);
    EXPECT_FALSE(editor.gi.selection->isSet());
    editor.gi.fillSelection(1, 1, 0);
    for (unsigned long i = 0; i < editor.size(); ++i)
        EXPECT_EQ(editor.gi.selection->isSet(i), inSlice(i, editor.dims, 0, 2));
    EXPECT_EQ(editor.gi.touches, (Touches{{1, 0, 0, 2, 1, 1},
                                          {1, 0, 0, -1, 0, 0},
                                          {1, 0, 0, 2, 0, 0},
                                          {1, 0, 0, -1, 1, 1},
                                          {1, 0, 0, -1, 0, 0}}));
}
