#include "TestEditor.h"

#include "core/GiModifyLabel.h"
#include "core/GiMultiAction.h"
#include "mc/McMemoryException.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// An action of a given size that counts what happens to it.
struct FakeAction : GiAction
{
    FakeAction(long size, int& runCount, int& deathCount) : bytes(size), runs(runCount), deaths(deathCount) {}
    ~FakeAction() override { ++deaths; }
    void execute() override { ++runs; }
    long getMemSize() override { return bytes; }
    long bytes;
    int &runs, &deaths;
};

/// Fails as often as it is told, then runs.
struct FailingAction : FakeAction
{
    FailingAction(int failures, int& runCount, int& deathCount)
        : FakeAction(1, runCount, deathCount), left(failures)
    {
    }
    void execute() override
    {
        if (left-- > 0) throw McMemoryException(1);
        FakeAction::execute();
    }
    int left;
};

constexpr long kMiB = 1 << 20;

} // namespace

TEST(UndoList, DropsTheOldestBeyondTheBudgetButNeverTheNewest)
{
    TestEditor editor(3, 3, 3);
    int runs = 0, deaths = 0;
    editor.gi.addUndoAction(new FakeAction(20 * kMiB, runs, deaths), false);
    editor.gi.addUndoAction(new FakeAction(12 * kMiB, runs, deaths), false);
    EXPECT_EQ(editor.gi.undoActions.size(), 2) << "exactly the budget fits";
    editor.gi.addUndoAction(new FakeAction(1, runs, deaths), false);
    EXPECT_EQ(editor.gi.undoActions.size(), 2);
    EXPECT_EQ(deaths, 1);
    editor.gi.addUndoAction(new FakeAction(100 * kMiB, runs, deaths), false);
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    EXPECT_EQ(deaths, 3);
    editor.gi.undo();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(deaths, 4);
    EXPECT_EQ(editor.gi.canRedo(), 0) << "what is undone is gone";
}

TEST(UndoList, AppendJoinsAMultiActionAndNothingElse)
{
    TestEditor editor(3, 3, 3);
    int runs = 0, deaths = 0;
    editor.gi.addUndoAction(new FakeAction(1, runs, deaths), true);
    editor.gi.addUndoAction(new FakeAction(1, runs, deaths), true);
    EXPECT_EQ(editor.gi.undoActions.size(), 2) << "an empty list and a plain action fall through";
    editor.gi.addUndoAction(new GiMultiAction, false);
    editor.gi.addUndoAction(new FakeAction(1, runs, deaths), true);
    EXPECT_EQ(editor.gi.undoActions.size(), 3);
    editor.gi.undo();
    EXPECT_EQ(runs, 1);
    editor.gi.clearUndo(0);
    EXPECT_EQ(deaths, 3);
    EXPECT_EQ(editor.gi.canUndo(), 0);
}

TEST(UndoList, RedoMovesItsEntryBackAndNewStepsEmptyIt)
{
    TestEditor editor(3, 3, 3);
    int runs = 0, deaths = 0;
    auto* action = new FakeAction(1, runs, deaths);
    action->ref();
    editor.gi.redoActions.append(action);
    editor.gi.redo();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(editor.gi.canUndo(), 1);
    EXPECT_EQ(editor.gi.canRedo(), 0);

    auto* stale = new FakeAction(1, runs, deaths);
    stale->ref();
    editor.gi.redoActions.append(stale);
    editor.gi.addUndoAction(new GiMultiAction, true);
    EXPECT_EQ(editor.gi.canRedo(), 0);
    EXPECT_EQ(deaths, 1);
}

TEST(UndoList, AStepThatFailsIsShownAndStaysToBeTriedAgain)
{
    TestEditor editor(3, 3, 3);
    editor.gi.saveUndoInformationForVolume(1, 0, nullptr);
    editor.gi.selection->set(1, 1, 1);
    int runs = 0, deaths = 0;
    editor.gi.addUndoAction(new FailingAction(1, runs, deaths), true);
    editor.gi.redraws = editor.gi.sensitivityUpdates = 0;
    EXPECT_THROW(editor.gi.undo(), McMemoryException);
    EXPECT_FALSE(editor.gi.selection->isSet()) << "the first part is done";
    EXPECT_EQ(editor.gi.redraws, 1);
    EXPECT_EQ(editor.gi.sensitivityUpdates, 1);
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    EXPECT_EQ(deaths, 0);
    editor.gi.undo();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(deaths, 1);
    EXPECT_FALSE(editor.gi.canUndo());
}

/// A step back that ends the binding, as a question to the user may.
struct ClearingAction : FakeAction
{
    ClearingAction(Gi& owner, int& runCount, int& deathCount) : FakeAction(1, runCount, deathCount), gi(owner)
    {
    }
    void execute() override
    {
        gi.clearUndo(1);
        FakeAction::execute();
    }
    Gi& gi;
};

TEST(UndoList, AStepMayEmptyTheList)
{
    TestEditor editor(3, 3, 3);
    int runs = 0, deaths = 0;
    editor.gi.addUndoAction(new FakeAction(1, runs, deaths), false);
    editor.gi.addUndoAction(new ClearingAction(editor.gi, runs, deaths), false);
    editor.gi.undo();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(deaths, 2);
    EXPECT_FALSE(editor.gi.canUndo());
}

TEST(UndoList, AnEmptyListStillRedraws)
{
    TestEditor editor(3, 3, 3);
    editor.gi.undo();
    EXPECT_EQ(editor.gi.redraws, 1);
}

TEST(UndoList, SliceSnapshotsRestoreLabelsWeightsAndSelectionInAllOrientations)
{
    std::mt19937 random(4);
    for (int orientation = 0; orientation < 3; ++orientation) {
        TestEditor editor(5, 7, 6);
        editor.lattice()->createWeights();
        unsigned char* weights = editor.lattice()->getWeights();
        for (unsigned long i = 0; i < editor.size(); ++i) {
            editor.labels()[i] = static_cast<unsigned char>(random());
            weights[i] = static_cast<unsigned char>(random());
            if (random() & 1) editor.gi.selection->set(i);
        }
        editor.gi.activate(orientation)->setSlice(2, false);
        McDArray<unsigned int>& flags = editor.gi.selection->sliceFlags[orientation];
        for (int i = 0; i < flags.size(); ++i) flags[i] = 7;
        const auto labels = editor.copyOfLabels();
        const auto selected = editor.copyOfSelection();
        const std::vector<unsigned char> weightsBefore(weights, weights + editor.size());

        editor.gi.saveUndoInformationForSlice(1, 1, nullptr);
        EXPECT_EQ(flags[2], 4u) << "the slice is a key slice from now on";
        EXPECT_EQ(flags[1], 7u);
        unsigned char* data;
        int xStride, yStride, width = editor.gi.selection->getWidth(orientation);
        editor.gi.getLabelSlice(orientation, 2, data, xStride, yStride);
        for (int y = 0; y < editor.gi.selection->getHeight(orientation); ++y)
            for (int x = 0; x < width; ++x) {
                unsigned char* p = data + x * xStride + y * yStride;
                *p ^= 255;
                weights[p - editor.labels()] ^= 255;
            }
        editor.gi.viewers[orientation]->getSelection()->invert();
        EXPECT_NE(editor.copyOfLabels(), labels);
        editor.gi.undo();
        EXPECT_EQ(editor.copyOfLabels(), labels);
        EXPECT_EQ(editor.copyOfSelection(), selected);
        EXPECT_EQ(std::vector<unsigned char>(weights, weights + editor.size()), weightsBefore);
    }
}

// kept: the volume form saves no weights and leaves the slice flags.
TEST(UndoList, VolumeSnapshotsLeaveWeightsAndSliceFlagsAlone)
{
    TestEditor editor(40, 9, 3);
    editor.lattice()->createWeights();
    editor.gi.selection->sliceFlags[2][1] = 3;
    editor.gi.selection->set(77);
    editor.gi.saveUndoInformationForVolume(1, 1, nullptr);
    EXPECT_EQ(editor.gi.selection->sliceFlags[2][1], 3u);
    editor.lattice()->getWeights()[5] = 9;
    editor.labels()[5] = 9;
    editor.gi.selection->clear();
    editor.gi.undo();
    EXPECT_EQ(editor.labels()[5], 0);
    EXPECT_EQ(editor.lattice()->getWeights()[5], 9);
    EXPECT_TRUE(editor.gi.selection->isSet(77));
}

TEST(UndoList, ClearForgetsInterpolationMarksOnlyWhenAsked)
{
    TestEditor editor(4, 4, 4);
    editor.gi.selection->sliceFlags[0][1] = 3;
    editor.gi.clearUndo(0);
    EXPECT_EQ(editor.gi.selection->sliceFlags[0][1], 3u);
    editor.gi.clearUndo(1);
    EXPECT_EQ(editor.gi.selection->sliceFlags[0][1], 2u);
}
