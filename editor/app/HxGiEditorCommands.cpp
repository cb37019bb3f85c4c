// The script commands of the editor object. Scripts of many years drive editors with them, so every
// name, order, complaint and oddity is part of what users rely on.

#include "app/GiQ.h"
#include "app/GiQTissueList.h"
#include "app/GiQToolbox.h"
#include "app/GiSnapshot.h"
#include "app/HxGiEditor.h"
#include "app/HxGiSubApplication.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxMessage.h"
#include "hx/HxParamBundle.h"
#include "hx/HxScript.h"
#include "mc/McException.h"
#include "tools/GiCrossHairTool.h"
#include "tools/GiThreshold.h"

#include <QAbstractButton>
#include <QCheckBox>

#include <cstdlib>
#include <cstring>

namespace {

enum SelectMode
{
    kAdd = 0,
    kSubtract = 1,
    kReplace = 2
};

/// One call: `count` words, of which the first is the object and the second the command.
struct Call
{
    HxGiEditor& editor;
    GiQ& gi;
    Tcl_Interp* interp;
    int count;
    char** words;

    /// Never fails: text that is no number is 0, and what follows a number is not read.
    int number(int i) const { return static_cast<int>(std::strtol(words[i], nullptr, 10)); }

    int usage(const char* text) const
    {
        Tcl_VaSetResult(interp, "%s", text);
        return TCL_ERROR;
    }

    /// Complaints of some commands go to the console and leave the result empty.
    int consoleError(const char* text) const
    {
        HxMessage::getTheMsg()->printf("%s", text);
        return TCL_ERROR;
    }

    int wrongCount() const { return editor.cmdError(interp, 2, words[1]); }

    int notAvailable() const
    {
        Tcl_VaSetResult(interp, "%s: not available yet", words[1]);
        return TCL_ERROR;
    }
};

int notAvailableWithoutWords(const Call& call)
{
    return call.count == 2 ? call.notAvailable() : call.wrongCount();
}

int smooth(const Call& call)
{
    if (call.count != 3 && call.count != 4) return call.usage("Usage: smooth kernel [allSlices]");
    return call.notAvailable();
}

int smoothAll(const Call& call)
{
    if (call.count != 3 && call.count != 4) return call.usage("Usage: smoothAll kernel [constrainLabels]");
    return call.notAvailable();
}

int setOrientation(const Call& call)
{
    if (call.count != 3) return call.wrongCount();
    if (GiViewer* viewer = call.gi.getCurrentViewer()) viewer->setOrientation(call.number(2));
    return TCL_OK;
}

int setSlice(const Call& call)
{
    if (call.count != 3) return call.wrongCount();
    if (GiViewer* viewer = call.gi.getCurrentViewer()) viewer->setSlice(call.number(2), true);
    return TCL_OK;
}

int fillHoles(const Call& call)
{
    if (call.count != 2 && call.count != 3) return call.usage("Usage: fillHoles [fillAll]");
    return call.notAvailable();
}

/// Commands without words that are an entry of the menu "Selection".
template <void (GiQ::*kOperation)()>
int selectionEntry(const Call& call)
{
    if (call.count != 2) return call.wrongCount();
    (call.gi.*kOperation)();
    return TCL_OK;
}

/// Makes word 2 the current material; an index that no material has is an error without a text.
int makeMaterialCurrent(const Call& call)
{
    const int index = call.number(2);
    if (!call.gi.materials || index < 0 || index >= call.gi.materials->nBundles()) return TCL_ERROR;
    call.gi.setCurrentTissue(index);
    return TCL_OK;
}

int selectMaterial(const Call& call)
{
    return call.count == 3 ? makeMaterialCurrent(call) : call.wrongCount();
}

int selectMaterial2(const Call& call)
{
    if (call.count != 3) return call.wrongCount();
    if (makeMaterialCurrent(call) != TCL_OK) return TCL_ERROR;
    call.gi.selectTissue(call.gi.currentTissue, kSelectReplace, 1);
    return TCL_OK;
}

int subtractMaterial2(const Call& call)
{
    if (call.count != 3) return call.consoleError("Usage: subtractMaterial2 idx");
    if (makeMaterialCurrent(call) != TCL_OK) return TCL_ERROR;
    call.gi.selectTissue(call.gi.currentTissue, kSelectSubtract, 1);
    return TCL_OK;
}

int snapshot(const Call& call)
{
    if (call.count != 4) return call.usage("Usage: snapshot [viewer id] [filename]");
    const int id = call.number(2);
    if (id < 0 || id >= call.gi.viewers.size()) return call.usage("Viewer id invalid");
    GiFrameBuffer* buffer = call.gi.viewers[id]->getFrameBuffer();
    if (!buffer) return TCL_ERROR;
    // kept: a file that cannot be written is no error. Scripts that leaf through a volume go on.
    return giWriteSnapshot(*buffer, call.words[3]) == GiSnapshotResult::kUnsupported ? TCL_ERROR : TCL_OK;
}

int setMaxAlpha(const Call& call)
{
    if (call.count != 3) return call.wrongCount();
    const GiViewer* viewer = call.gi.getCurrentViewer();
    // Any number is stored; a blend limits it to 0 to 255.
    if (viewer && viewer->getFrameBuffer()) viewer->getFrameBuffer()->selectionAlpha = call.number(2);
    call.gi.redraw();
    return TCL_OK;
}

// Where a usage text shows a flag in brackets, the presence of the word is the flag; "clear 0" is a
// clear in 3D.

int invertSelection(const Call& call)
{
    if (call.count != 2 && call.count != 3) return call.usage("Usage: invertSelection [3dMode]");
    call.gi.invertSelection(call.count == 3);
    return TCL_OK;
}

int clearSelection(const Call& call)
{
    if (call.count != 2 && call.count != 3) return call.usage("Usage: clear [3dMode]");
    call.gi.clearSelection(call.count == 3, true);
    return TCL_OK;
}

int replaceBySelection(const Call& call)
{
    if (call.count != 2 && call.count != 3) return call.usage("Usage: replace [3dMode]");
    call.gi.replaceBySelection(call.gi.currentTissue, call.count == 3);
    return TCL_OK;
}

int addSelection(const Call& call)
{
    if (call.count != 2 && call.count != 3) return call.usage("Usage: add [3dMode]");
    call.gi.storeSelection(call.gi.currentTissue, call.count == 3, 1);
    return TCL_OK;
}

int subtractSelection(const Call& call)
{
    if (call.count != 2 && call.count != 3) return call.usage("Usage: subtract [3dMode]");
    call.gi.subtractSelection(call.gi.currentTissue, call.count == 3);
    return TCL_OK;
}

int removeIslands(const Call& call)
{
    constexpr int kModes = 3;
    const bool valid = call.count == 3 || (call.count > 3 && call.number(3) >= 0 && call.number(3) < kModes);
    if (valid) return call.notAvailable();
    // kept: the usage lines count as success, unlike all other usage failures.
    for (const char* line : {"Usage: removeIslands size [mode] [fraction]", "\nSupported [mode]:",
                             "0 = Current slice only", "1 = All slices", "2 = 3D Mode"})
        HxMessage::getTheMsg()->printf("%s", line);
    return TCL_OK;
}

int undo(const Call& call)
{
    call.gi.undo();
    return TCL_OK;
}

int redo(const Call& call)
{
    call.gi.redo();
    return TCL_OK;
}

/// kept: words are not counted. Without a number, or with more than one, no tool is chosen, as with a number
/// that none has.
int setTool(const Call& call)
{
    constexpr int kNoTool = -1;
    call.gi.getToolbox()->setTool(call.count == 3 ? call.number(2) : kNoTool);
    return TCL_OK;
}

int setVolrenLevel(const Call& call)
{
    constexpr int kNoView = -1; // what is read where no 3D view exists
    Tcl_VaSetResult(call.interp, "%d", kNoView);
    return TCL_OK;
}

int getCrossHairLocationIndex(const Call& call)
{
    if (!call.gi.crossHair) return call.consoleError("Error: no crosshair found");
    const McVec3i& p = call.gi.crossHair->getPosition();
    for (int i = 0; i < 3; ++i) Tcl_VaAppendElement(call.interp, "%d", p[i]);
    return TCL_OK;
}

int setCrossHairLocationIndex(const Call& call)
{
    if (call.count != 5) return call.consoleError("Usage: setCrossHairLocationIndex i j k");
    for (int i = 0; i < call.gi.viewers.size(); ++i) {
        const int orientation = call.gi.viewers[i]->getOrientation();
        if (orientation >= 0 && orientation <= 2)
            call.gi.viewers[i]->setSlice(call.number(2 + orientation), true);
    }
    return TCL_OK;
}

/// kept: only i is checked in full; j and k only against being negative beyond the far end, which no
/// number is. Scripts step over the border in j and k and rely on silence there.
bool isCheckedVoxel(const Call& call)
{
    int dims[3];
    call.gi.selection->getDims(dims, 2);
    const auto accepted = [&](int axis) {
        const int p = call.number(2 + axis);
        if (axis == 0) return p >= 0 && p <= dims[axis] - 1;
        return p >= 0 || p <= dims[axis] - 1;
    };
    return accepted(0) && accepted(1) && accepted(2);
}

int toggleVoxel(const Call& call)
{
    if (call.count != 5) return call.consoleError("Usage: toggleVoxel i j k");
    if (!call.gi.selection) return TCL_OK;
    if (!isCheckedVoxel(call)) return call.consoleError("Error: voxel index does not exist");
    const int i = call.number(2), j = call.number(3), k = call.number(4);
    // kept: neither undo step nor signal. Scripts toggle voxels by the thousand.
    if (call.gi.selection->contains(i, j, k)) {
        if (call.gi.selection->get(i, j, k))
            call.gi.selection->unset(i, j, k);
        else
            call.gi.selection->set(i, j, k);
    }
    call.gi.redraw();
    return TCL_OK;
}

int isVoxelSelected(const Call& call)
{
    if (call.count != 5) return call.consoleError("Usage: isVoxelSelected i j k");
    if (!call.gi.selection) return TCL_OK;
    if (!isCheckedVoxel(call)) return call.consoleError("Error: voxel index does not exist");
    const int i = call.number(2), j = call.number(3), k = call.number(4);
    const bool set = call.gi.selection->contains(i, j, k) && call.gi.selection->get(i, j, k);
    Tcl_VaSetResult(call.interp, "%s", set ? "1" : "0");
    return TCL_OK;
}

int getToolDataWindow(const Call& call)
{
    if (call.count != 2) return call.consoleError("Usage: getToolDataWindow");
    float min, max;
    call.gi.getToolDataWindow(min, max);
    Tcl_VaSetResult(call.interp, "%g %g", static_cast<double>(min), static_cast<double>(max));
    return TCL_OK;
}

int setToolDataWindow(const Call& call)
{
    if (call.count != 4) return call.consoleError("Usage: setToolDataWindow min max");
    // kept: both words are read as whole numbers, so a fraction is cut off, also for real images.
    call.gi.setToolDataWindow(static_cast<float>(call.number(2)), static_cast<float>(call.number(3)), true);
    return TCL_OK;
}

int threshold(const Call& call)
{
    if (call.count != 4) return call.consoleError("Usage: threshold is3d sameMaterialOnly");
    QWidget* panel = call.gi.tools[GiThreshold::kIndex]->getWidget(nullptr);
    panel->findChild<QCheckBox*>("wAllSlicesCheckBox")->setChecked(call.number(2) != 0);
    panel->findChild<QCheckBox*>("wCurrentMaterialCheckBox")->setChecked(call.number(3) != 0);
    panel->findChild<QAbstractButton*>("wSelectButton")->click();
    return TCL_OK;
}

int newMaterial(const Call& call)
{
    if (call.count != 3) return call.consoleError("Usage: newMaterial name");
    call.gi.getToolbox()->tissueList->addMaterial(call.words[2]);
    return TCL_OK;
}

int deleteMaterial(const Call& call)
{
    if (call.count != 4) return call.consoleError("Usage: deleteMaterial removeIdx replaceIdx");
    call.gi.getToolbox()->tissueList->removeTissue(call.number(2), call.number(3));
    return TCL_OK;
}

struct Command
{
    const char* name;
    int (*run)(const Call&);
    const char* usage;
    const char* help;
};

constexpr Command kCommands[] = {
    {"smooth", smooth, "smooth KERNEL ?CURRENTSLICE?",
     "smooths the labels of all slices, or of the current one"},
    {"smoothAll", smoothAll, "smoothAll KERNEL ?CONSTRAIN?", "smooths the labels of all slices"},
    {"setOrientation", setOrientation, "setOrientation O", "current viewer: 0 YZ, 1 XZ, 2 XY"},
    {"setSlice", setSlice, "setSlice S", "shows a slice in the current viewer"},
    {"fillHoles", fillHoles, "fillHoles ?ALL?", "fills holes of materials in the slice, or in all slices"},
    {"selectMaterial", selectMaterial, "selectMaterial INDEX", "makes a material the current one"},
    {"selectMaterial2", selectMaterial2, "selectMaterial2 INDEX",
     "makes a material the current one and selects exactly its voxels"},
    {"growSelection3D", selectionEntry<&GiQ::growSelection3D>, "growSelection3D",
     "grows the selection by a voxel in 3D"},
    {"shrinkSelection3D", selectionEntry<&GiQ::shrinkSelection3D>, "shrinkSelection3D",
     "shrinks the selection by a voxel in 3D"},
    {"growSelectionAll2D", selectionEntry<&GiQ::growSelectionAll2D>, "growSelectionAll2D",
     "grows the selection in every slice"},
    {"shrinkSelectionAll2D", selectionEntry<&GiQ::shrinkSelectionAll2D>, "shrinkSelectionAll2D",
     "shrinks the selection in every slice"},
    {"smoothSelectionAllSlices", notAvailableWithoutWords, "smoothSelectionAllSlices",
     "smooths the selection in every slice"},
    {"fillSelection3D", selectionEntry<&GiQ::selectionFillVolume>, "fillSelection3D",
     "fills cavities of the selection in 3D"},
    {"fillAllSlices", selectionEntry<&GiQ::selectionFillAll>, "fillAllSlices",
     "fills holes of the selection in every slice"},
    {"snapshot", snapshot, "snapshot VIEWER FILE", "writes the picture of a viewer"},
    {"invertSelection", invertSelection, "invertSelection ?3D?",
     "inverts the slice's or the volume's selection"},
    {"removeIslands", removeIslands, "removeIslands SIZE ?MODE? ?FRACTION?",
     "removes small islands of materials"},
    {"undo", undo, "undo", "takes back the last change"},
    {"redo", redo, "redo", "repeats a change that was taken back"},
    {"setMaxAlpha", setMaxAlpha, "setMaxAlpha A", "weight of the selection's color, 0 to 255"},
    {"setTool", setTool, "setTool T", "makes a tool the active one"},
    {"clear", clearSelection, "clear ?3D?", "clears the slice's or the volume's selection"},
    {"replace", replaceBySelection, "replace ?3D?", "replaces the touched pieces of the current material"},
    {"add", addSelection, "add ?3D?", "adds the selection to the current material"},
    {"subtract", subtractSelection, "subtract ?3D?", "takes the selection out of the current material"},
    {"setVolrenLevel", setVolrenLevel, "setVolrenLevel ?LEVEL?", "resolution of the volume rendering"},
    {"getCrossHairLocationIndex", getCrossHairLocationIndex, "getCrossHairLocationIndex",
     "voxel of the cross hair"},
    {"setCrossHairLocationIndex", setCrossHairLocationIndex, "setCrossHairLocationIndex I J K",
     "moves all viewers to a voxel"},
    {"toggleVoxel", toggleVoxel, "toggleVoxel I J K", "selects a voxel or takes it out of the selection"},
    {"isVoxelSelected", isVoxelSelected, "isVoxelSelected I J K", "1 if the voxel is selected, else 0"},
    {"getToolDataWindow", getToolDataWindow, "getToolDataWindow", "the window of the tools"},
    {"setToolDataWindow", setToolDataWindow, "setToolDataWindow MIN MAX", "sets the window of the tools"},
    {"threshold", threshold, "threshold 3D SAMEMATERIAL", "selects the voxels inside the tools' window"},
    {"newMaterial", newMaterial, "newMaterial NAME", "adds a material"},
    {"deleteMaterial", deleteMaterial, "deleteMaterial INDEX REPLACEMENT",
     "removes a material; its voxels go to another"},
    {"subtractMaterial2", subtractMaterial2, "subtractMaterial2 INDEX",
     "makes a material the current one and takes its voxels out of the selection"},
};

} // namespace

int HxGiEditor::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    if (!gi) {
        HxGiEditor* other = HxGiSubApplication::instance()->getEditor();
        return other && other != this ? other->parse(interp, wordCount, words)
                                      : HxEditor::parse(interp, wordCount, words);
    }
    if (wordCount < 2) return HxEditor::parse(interp, wordCount, words);
    for (const Command& entry : kCommands) {
        getCmdInfo().append(entry.name);
        if (std::strcmp(entry.name, words[1]) != 0) continue;
        try {
            return entry.run(Call{*this, *gi, interp, wordCount, words});
        } catch (const McMemoryException& e) {
            HxMessage::getTheMsg()->memError(e.size());
            Tcl_VaSetResult(interp, "%s: %s", words[1], e.what());
            return TCL_ERROR;
        } catch (const McException& e) {
            Tcl_VaSetResult(interp, "%s: %s", words[1], e.what());
            return TCL_ERROR;
        }
    }
    return HxEditor::parse(interp, wordCount, words);
}

void HxGiEditor::commandHelp(McDArray<HxCommandHelp>& list) const
{
    // The form without a session of its own hands all commands on, so it answers the same ones.
    HxEditor::commandHelp(list);
    for (const Command& entry : kCommands) list.append(HxCommandHelp{entry.name, entry.usage, entry.help});
}
