// The undo list of Gi: snapshots before a change, taken back newest first, within a fixed budget.

#include "core/Gi.h"
#include "core/GiAction.h"
#include "core/GiModifyLabel.h"
#include "core/GiModifySelection.h"
#include "core/GiMultiAction.h"
#include "core/GiOrientation.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxMessage.h"
#include "mc/McHandle.h"
#include "mc/McRawData2D.h"

#include <algorithm>

namespace {

constexpr unsigned int kInterpolated = 1u; // slice flag: filled by interpolation, no key slice
constexpr unsigned int kSliceFlags = 3u;

/// Takes an action out of a list and gives the list's reference back; nothing if the list has lost it.
void dropAction(McDArray<GiAction*>& actions, GiAction* action)
{
    GiAction** const found = std::find(actions.begin(), actions.end(), action);
    if (found == actions.end()) return;
    actions.remove(static_cast<int>(found - actions.begin()));
    action->unref();
}

} // namespace

void Gi::saveSliceSelection(int slice, int orientation, GiMultiAction& snapshot)
{
    if (!selection || selection->numBits() == 0 || orientation != giSliceAxis(orientation)) return;
    // Whatever is drawn into an interpolated slice makes it a key slice.
    McDArray<unsigned int>& flags = selection->sliceFlags[orientation];
    if (slice >= 0 && slice < flags.size()) flags[slice] &= ~kSliceFlags;
    McHandle<GiModifySelection> action(new GiModifySelection(this));
    action->saveSlice(selection, slice, orientation);
    snapshot.append(action);
}

void Gi::saveSliceLabels(int slice, int orientation, GiMultiAction& snapshot)
{
    int size[3];
    labelSlices.getDims(size, orientation);
    if (size[0] == 0 || size[1] == 0 || size[2] == 0) return;

    unsigned char* data;
    int xStride, yStride;
    getLabelSlice(orientation, slice, data, xStride, yStride);
    const auto save = [&](unsigned char* memory) {
        McRawData2D view;
        view.init(size[0], size[1], 1, xStride, yStride, memory);
        McHandle<GiModifyLabel> action(new GiModifyLabel(this));
        action->saveLabelSlice(view);
        snapshot.append(action);
    };
    save(data);
    if (unsigned char* weights = labelLattice ? labelLattice->getWeights() : nullptr)
        save(weights + (data - labelLattice->getLabels()));
}

// kept: the volume form neither saves the weights nor touches the slice flags, unlike the slice
// form. Volume operations do not write weights, and a volume operation on the selection treats
// interpolated and key slices alike.
void Gi::saveUndoInformationForVolume(int selectionChanges, int labelsChange, GiViewer*)
{
    McHandle<GiMultiAction> snapshot(new GiMultiAction);
    if (selectionChanges && selection && selection->numBits() > 0) {
        McHandle<GiModifySelection> action(new GiModifySelection(this));
        action->saveVolume(selection);
        snapshot->append(action);
    }
    if (labelsChange) {
        McHandle<GiModifyLabel> action(new GiModifyLabel(this));
        action->saveLabelVolume(labelSlices);
        snapshot->append(action);
    }
    addUndoAction(snapshot, false);
    updateUndoSensitivity();
}

void Gi::addUndoAction(GiAction* action, bool append)
{
    if (append && undoActions.size() > 0) {
        if (auto* newest = dynamic_cast<GiMultiAction*>(undoActions.last())) {
            newest->append(action);
            return;
        }
    }
    action->ref();
    dropActions(redoActions);
    undoActions.append(action);
    trimUndo();
    updateUndoSensitivity();
}

void Gi::trimUndo()
{
    long sum = 0;
    for (int i = 0; i < undoActions.size(); ++i) sum += undoActions[i]->getMemSize();
    // The newest entry stays however large it is: the change that it undoes is about to happen.
    while (sum > undoMemoryLimit && undoActions.size() > 1) {
        sum -= undoActions[0]->getMemSize();
        undoActions[0]->unref();
        undoActions.remove(0);
    }
}

void Gi::undo()
{
    const auto showRestored = [this] {
        markLabelRangeStale();
        updateSelectionBoxes();
        redraw();
        updateUndoSensitivity();
        stateRestored();
    };
    try {
        if (undoActions.size() > 0) {
            // Held, as what it restores may empty the list. It leaves the list when it is done: a step that
            // fails half-way can be tried again, and what it has restored already stays so.
            const McHandle<GiAction> newest(undoActions.last());
            newest->execute();
            // kept: an undone action is gone, redo does not get it. A snapshot holds one state only,
            // and a second snapshot for the way forward would double the cost of every undo.
            dropAction(undoActions, newest);
            if (newest->hasOldNumbers())
                HxMessage::getTheMsg()->printf("The labels that came back are older than the deletion of a "
                                               "material. They have the numbers of "
                                               "that time, which may be those of other materials by now.");
        }
    } catch (...) {
        showRestored();
        throw;
    }
    showRestored();
}

void Gi::redo()
{
    if (redoActions.size() > 0) {
        GiAction* newest = redoActions.last();
        newest->execute();
        markLabelRangeStale();
        redraw();
        redoActions.pop();
        undoActions.append(newest);
    }
    updateUndoSensitivity();
    stateRestored();
}

void Gi::clearUndo(int clearInterpolated)
{
    dropActions(undoActions);
    if (clearInterpolated && selection) {
        for (McDArray<unsigned int>& flags : selection->sliceFlags)
            for (int i = 0; i < flags.size(); ++i) flags[i] &= ~kInterpolated;
    }
    dropActions(redoActions);
    updateUndoSensitivity();
}

void Gi::dropActions(McDArray<GiAction*>& actions)
{
    for (int i = 0; i < actions.size(); ++i) actions[i]->unref();
    actions.clear();
}
