// The editor's answers to pointer and keys that belong to no tool.

#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "app/HxGiEditor.h"
#include "app/HxMain.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxParamBundle.h"
#include "hx/HxResource.h"
#include "mc/McEvent.h"
#include "mc/McException.h"

#include <algorithm>

namespace {

using Key = McKeyboardEvent;

/// Who a key acts on.
struct Target
{
    GiQ& gi;
    GiQToolbox& toolbox;

    int is3D() const { return toolbox.selectionIs3D(); }
    int material() const { return gi.currentTissue; }

    void makeCurrent(int index) const { gi.setCurrentTissue(index); }
};

// Keys that go through the slices

/// A key that goes `step` slices on; with Control, if it has these, to the next or the outermost slice with a
/// selection on that side.
struct Walk
{
    int key;
    int step;
    void (GiQ::*toNextSelection)();
    void (GiQ::*toLastSelection)();
};

constexpr auto kPrevSelection = &GiQ::showPrevSliceWithSelection;
constexpr auto kFirstSelection = &GiQ::showFirstSliceWithSelection;
constexpr auto kNextSelection = &GiQ::showNextSliceWithSelection;
constexpr auto kLastSelection = &GiQ::showLastSliceWithSelection;

constexpr Walk kWalks[] = {
    {Key::kLeft, -1, kPrevSelection, kFirstSelection},
    {Key::kUp, -1, kPrevSelection, kFirstSelection},
    {Key::kTab, -1, kPrevSelection, kFirstSelection},
    {Key::kBackspace, -1, kPrevSelection, kFirstSelection},
    {Key::kRight, 1, kNextSelection, kLastSelection},
    {Key::kDown, 1, kNextSelection, kLastSelection},
    {' ', 1, kNextSelection, kLastSelection},
    {Key::kPageUp, -5, nullptr, nullptr},
    {Key::kPageDown, 5, nullptr, nullptr},
};

const Walk* walkOf(int key)
{
    const auto* walk =
        std::find_if(std::begin(kWalks), std::end(kWalks), [key](const Walk& w) { return w.key == key; });
    return walk == std::end(kWalks) ? nullptr : walk;
}

/// Goes to a slice of the current viewer, limited to those there are; `copy` takes the selection along.
void goToSlice(GiQ& gi, int slice, bool copy)
{
    GiViewer* viewer = gi.getCurrentViewer();
    const int last = gi.getNumSlices(viewer->getOrientation()) - 1;
    const int target = std::clamp(slice, 0, std::max(last, 0));
    if (copy) {
        gi.selection->copy(target, viewer->getSlice(), viewer->getOrientation());
        gi.updateSelectionBoxes();
        gi.touchData(1, 0, 0, -1, 0, 0);
    }
    viewer->setSlice(target, true);
    if (copy) gi.redraw(); // the others cut through the slice that was written
}

void walk(GiQ& gi, const Walk& w, const McKeyboardEvent& event)
{
    GiViewer* viewer = gi.getCurrentViewer();
    if (!viewer) return;
    const int slice = viewer->getSlice();
    const int end = w.step < 0 ? 0 : gi.getNumSlices(viewer->getOrientation()) - 1;
    if ((w.step == -1 || w.step == 1) && slice == end) return;
    if (GiFrameBuffer* buffer = viewer->getFrameBuffer()) buffer->setBrowsing(true);
    if (event.ctrl && w.toNextSelection)
        (gi.*(event.shift ? w.toLastSelection : w.toNextSelection))();
    else
        goToSlice(gi, slice + w.step, event.shift);
}

/// The key is up: the scan for hidden selections makes up for those that the browsing left out. Another
/// viewer may have become the current one while the key was down, and the first one must not go on browsing.
void endWalk(GiQ& gi)
{
    gi.endBrowsing();
    gi.checkForHiddenSelection();
}

// All other keys

void previousMaterial(const Target& t, const McKeyboardEvent&)
{
    if (t.material() > 0) t.makeCurrent(t.material() - 1);
}

void nextMaterial(const Target& t, const McKeyboardEvent&)
{
    const int count = t.gi.materials ? t.gi.materials->nBundles() : 0;
    if (t.material() < count - 1) t.makeCurrent(t.material() + 1);
}

void undo(const Target& t, const McKeyboardEvent&)
{
    t.gi.undo();
}

void zoom(const Target& t, const McKeyboardEvent& event)
{
    if (event.ctrl) return;
    if (event.shift)
        t.gi.zoomIn();
    else
        t.gi.zoomOut();
}

void chooseTool(const Target& t, const McKeyboardEvent& event)
{
    if (!event.shift && !event.ctrl) t.toolbox.setTool(event.key - '0');
}

void toggleCrossHair(const Target& t, const McKeyboardEvent&)
{
    t.toolbox.crossHair();
}

void store(const Target& t, const McKeyboardEvent& event)
{
    t.gi.storeSelection(t.material(), t.is3D(), !event.shift);
}

void subtract(const Target& t, const McKeyboardEvent&)
{
    t.gi.subtractSelection(t.material(), t.is3D());
}

void save(const Target& t, const McKeyboardEvent& event)
{
    if (HxMain* window = event.ctrl ? HxMain::getTheMain() : nullptr)
        window->saveData(t.gi.labelLattice->owner());
}

void subtractOrSave(const Target& t, const McKeyboardEvent& event)
{
    (event.ctrl ? save : subtract)(t, event);
}

void replace(const Target& t, const McKeyboardEvent&)
{
    t.gi.replaceBySelection(t.material(), t.is3D());
}

void clearSelection(const Target& t, const McKeyboardEvent&)
{
    t.gi.clearSelection(t.is3D() != 0, true);
}

void invertSelection(const Target& t, const McKeyboardEvent&)
{
    t.gi.invertSelection(t.is3D());
}

void fillSelection(const Target& t, const McKeyboardEvent&)
{
    t.gi.fillSelection(-1, -1, 0);
    t.gi.redraw();
}

void growSelection(const Target& t, const McKeyboardEvent&)
{
    t.gi.growSelection2D();
}

void toggle3dMode(const Target& t, const McKeyboardEvent&)
{
    t.gi.set3dMode(!t.gi.mode3D);
}

void changeLayout(const Target& t, const McKeyboardEvent&)
{
    t.gi.changeViewerLayout();
}

void redraw(const Target& t, const McKeyboardEvent&)
{
    t.gi.redraw();
}

void goToFirstSlice(const Target& t, const McKeyboardEvent& event)
{
    if (t.gi.getCurrentViewer()) goToSlice(t.gi, 0, event.shift);
}

void goToLastSlice(const Target& t, const McKeyboardEvent& event)
{
    if (t.gi.getCurrentViewer()) goToSlice(t.gi, t.gi.getNumSlices(-1) - 1, event.shift);
}

struct Command
{
    int key;
    /// Null: the operation is not part of this build, and the key does nothing.
    void (*act)(const Target&, const McKeyboardEvent&);
    bool repeats = false; // acts again while the key is held
};

constexpr int kControlS = 19, kControlBracket = 29; // characters that Control makes of "s" and "]"

constexpr Command kCommands[] = {
    {',', previousMaterial, true},
    {'.', nextMaterial, true},
    {'u', undo, true},
    {'z', zoom, true},
    {'e', nullptr}, // extrapolation of selections
    {'=', nullptr}, // interpolation of selections
    {'0', chooseTool},
    {'1', chooseTool},
    {'2', chooseTool},
    {'3', chooseTool},
    {'4', chooseTool},
    {'5', chooseTool},
    {'6', toggleCrossHair},
    {'a', store},
    {'+', store},
    {'-', subtract},
    {'s', subtractOrSave},
    {kControlS, save},
    {'r', replace},
    {'c', clearSelection},
    {'i', invertSelection},
    {'f', fillSelection},
    {'h', nullptr}, // filling of bone
    {'q', toggle3dMode},
    {'v', changeLayout},
    {kControlBracket, growSelection},
    {Key::kReturn, redraw},
    {Key::kHome, goToFirstSlice},
    {Key::kEnd, goToLastSlice},
};

/// In a foreign window the threshold tool has no key: those behind it have the digit before theirs. 0: no key
/// any more.
int embeddedKey(int key)
{
    switch (key) {
    case '4':
        return '5';
    case '5':
        return '6';
    case '6':
        return 0;
    default:
        return key;
    }
}

const char* materialName(HxParamBundle* materials, int label)
{
    const HxParamBundle* bundle = materials ? materials->bundle(label) : nullptr;
    return bundle ? bundle->getName() : "UNDEFINED";
}

} // namespace

int HxGiEditor::handleEventCB(GiFrameBuffer* frameBuffer, McEvent* event, void* editor)
{
    return static_cast<HxGiEditor*>(editor)->handleEvent(frameBuffer, event);
}

int HxGiEditor::handleEvent(GiFrameBuffer* frameBuffer, McEvent* event)
{
    if (!gi || !gi->labelLattice) return 0;
    try {
        if (event->as<McMouseButtonEvent>())
            activateViewer(*frameBuffer);
        else if (const auto* motion = event->as<McMotionEvent>())
            showInfo(*frameBuffer, *motion);
        else if (const auto* key = event->as<McKeyboardEvent>())
            handleKey(*key);
    } catch (const McException& e) {
        HxResource::handleException(e, 1);
    }
    return 0;
}

void HxGiEditor::activateViewer(GiFrameBuffer& frameBuffer)
{
    GiViewer* viewer = frameBuffer.viewer;
    if (viewer && gi->viewerPanel && gi->viewerPanel->getActiveViewer() != viewer) gi->activateViewer(viewer);
}

void HxGiEditor::showInfo(GiFrameBuffer& frameBuffer, const McMotionEvent& event)
{
    const bool inside = event.x >= 0 && event.y >= 0 && event.x < frameBuffer.zoomedSize.x &&
                        event.y < frameBuffer.zoomedSize.y;
    if (!inside || !gi->isInfoDisplayed()) {
        toolbox->updateInfo();
        return;
    }
    const McVec3i voxel =
        gi->getPoint3D(frameBuffer.dataColumn(event.x), frameBuffer.dataRow(event.y), frameBuffer.viewer);
    const McVec3f position = gi->labelLattice->coords()->position(voxel.x, voxel.y, voxel.z);
    const unsigned long* dims = gi->labelLattice->dims();
    const unsigned long place =
        static_cast<unsigned long>(voxel.x) +
        dims[0] * (static_cast<unsigned long>(voxel.y) + dims[1] * static_cast<unsigned long>(voxel.z));
    const char* material = materialName(gi->materials, gi->labelLattice->getLabels()[place]);
    if (!gi->imageLattice) {
        toolbox->updateInfo(voxel, position, material);
        return;
    }
    gi->valueUnderPointer = eval(gi->imageLattice, voxel);
    toolbox->updateInfo(voxel, position, gi->valueUnderPointer, material);
}

void HxGiEditor::handleKey(const McKeyboardEvent& received)
{
    McKeyboardEvent event = received;
    if (gi->getWidget()) event.key = embeddedKey(event.key);
    const Walk* slices = walkOf(event.key);
    if (event.released) {
        if (slices && !event.autoRepeat) endWalk(*gi);
        return;
    }
    if (slices) {
        walk(*gi, *slices, event);
        return;
    }
    // Chords of the menus, which get here only while their entry is disabled: they must not fall back to
    // adding and subtracting.
    if (event.ctrl && (event.key == '+' || event.key == '-')) return;
    for (const Command& bound : kCommands) {
        if (bound.key != event.key) continue;
        if (bound.act && (bound.repeats || !event.autoRepeat)) bound.act({*gi, *toolbox}, event);
        return;
    }
}
