#include "app/GiViewCommands.h"

#include "app/GiQ.h"
#include "app/GiQFrameBuffer.h"
#include "app/GiSnapshot.h"
#include "app/GiViewEvents.h"
#include "app/HxGiEditor.h"
#include "display/GiViewer.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"

#include <QCoreApplication>
#include <QResizeEvent>

#include <algorithm>
#include <string>

#include <tcl.h>

namespace {

constexpr int kLargestWindow = 16384; // pixels a side

/// One call: word 1 is the viewer's number, word 2 says what of it, values follow.
struct Call
{
    Tcl_Interp* interp;
    GiQ& gi;
    GiViewer& viewer;
    int count;
    const char* const* words;

    int numValues() const { return count - 3; }

    int fail(const std::string& text) const
    {
        Tcl_VaSetResult(interp, "%s", ("view: " + text).c_str());
        return TCL_ERROR;
    }
    int wrongArguments() const { return HxScriptCommands::wrongArguments(interp, "view"); }

    /// Value `i` as a whole number between two ends; false with the complaint as result.
    bool number(int i, int low, int high, int& value) const
    {
        if (Tcl_GetInt(interp, words[3 + i], &value) == TCL_OK && value >= low && value <= high) return true;
        fail(std::string("\"") + words[3 + i] + "\" is no whole number from " + std::to_string(low) + " to " +
             std::to_string(high) + ".");
        return false;
    }
};

int orientation(const Call& call)
{
    int value;
    if (call.numValues() > 1) return call.wrongArguments();
    if (call.numValues() == 1) {
        if (!call.number(0, 0, 2, value)) return TCL_ERROR;
        call.viewer.setOrientation(value);
    }
    Tcl_VaSetResult(call.interp, "%d", call.viewer.getOrientation());
    return TCL_OK;
}

/// A number beyond the ends shows the first or last slice, as it does for `setSlice`.
int slice(const Call& call)
{
    if (call.numValues() > 1) return call.wrongArguments();
    if (call.numValues() == 1) {
        int value;
        if (Tcl_GetInt(call.interp, call.words[3], &value) != TCL_OK)
            return call.fail(std::string("\"") + call.words[3] + "\" is no whole number.");
        call.viewer.setSlice(value, true);
    }
    Tcl_VaSetResult(call.interp, "%d", call.viewer.getSlice());
    return TCL_OK;
}

int zoom(const Call& call)
{
    constexpr double kLeast = 1.0 / 1024, kMost = GiViewer::kLargestZoomFactor;
    if (call.numValues() > 1) return call.wrongArguments();
    if (call.numValues() == 1) {
        double value;
        if (Tcl_GetDouble(call.interp, call.words[3], &value) != TCL_OK ||
            !(value >= kLeast && value <= kMost))
            return call.fail(std::string("\"") + call.words[3] + "\" is no zoom factor from 1/1024 to 1024.");
        call.viewer.setZoomFactor(static_cast<float>(value));
    }
    Tcl_VaSetResult(call.interp, "%g", static_cast<double>(call.viewer.getZoomFactor()));
    return TCL_OK;
}

int flip(const Call& call)
{
    if (call.numValues() != 0 && call.numValues() != 3) return call.wrongArguments();
    if (call.numValues() == 3) {
        int value[3];
        for (int i = 0; i < 3; ++i)
            if (!call.number(i, 0, 1, value[i])) return TCL_ERROR;
        call.viewer.setFlip(value[0], value[1], value[2]);
        call.viewer.redraw();
    }
    const int bits = call.viewer.getFlip();
    Tcl_VaSetResult(call.interp, "%d %d %d", bits & 1, bits >> 1 & 1, bits >> 2 & 1);
    return TCL_OK;
}

int size(const Call& call)
{
    if (call.numValues() != 2) return call.wrongArguments();
    McVec2i sides;
    if (!call.number(0, 1, kLargestWindow, sides.x) || !call.number(1, 1, kLargestWindow, sides.y))
        return TCL_ERROR;
    auto* buffer = qobject_cast<GiQFrameBuffer*>(call.viewer.getWidget());
    if (!buffer) return call.fail("this viewer has no window.");
    const QSize former = buffer->size();
    buffer->resize(sides.x, sides.y);
    // A widget that is not shown hears of its size when it is, which may be never.
    QResizeEvent event(buffer->size(), former);
    if (!buffer->isVisible()) QCoreApplication::sendEvent(buffer, &event);
    const McVec2i picture(std::min(sides.x, buffer->zoomedSize.x), std::min(sides.y, buffer->zoomedSize.y));
    if (!(buffer->memSize == picture)) return call.fail("there is not enough memory for this size.");
    return TCL_OK;
}

int snapshot(const Call& call)
{
    if (call.numValues() != 1) return call.wrongArguments();
    GiFrameBuffer* buffer = call.viewer.getFrameBuffer();
    const auto result = buffer ? giWriteSnapshot(*buffer, call.words[3]) : GiSnapshotResult::kUnsupported;
    if (result == GiSnapshotResult::kWritten) return TCL_OK;
    if (result == GiSnapshotResult::kUnsupported) return call.fail("this viewer has no picture to write.");
    return call.fail(
        std::string(call.words[3]) +
        " could not be written; its folder must exist and its suffix be that of an image, as .png.");
}

int event(const Call& call)
{
    std::string error;
    if (giSendViewEvent(call.gi, call.viewer, call.numValues(), call.words + 3, error)) return TCL_OK;
    return call.fail(error);
}

struct Entry
{
    const char* name;
    int (*run)(const Call&);
};

constexpr Entry kEntries[] = {
    {"orientation", orientation}, {"slice", slice}, {"zoom", zoom}, {"flip", flip}, {"size", size},
    {"snapshot", snapshot},       {"event", event}};

int view(Tcl_Interp* interp, int count, const char* const* words)
{
    if (count < 3) return HxScriptCommands::wrongArguments(interp, "view");
    const auto fail = [interp](const std::string& text) {
        Tcl_VaSetResult(interp, "%s", ("view: " + text).c_str());
        return TCL_ERROR;
    };
    GiQ* gi = HxGiEditor::activeGi();
    if (!gi) return fail("no label field is open; use segment first.");
    int index;
    if (Tcl_GetInt(interp, words[1], &index) != TCL_OK || index < 0 || index >= gi->viewers.size())
        return fail(std::string("there is no viewer \"") + words[1] + "\"; there are " +
                    std::to_string(gi->viewers.size()) + ", from 0.");
    for (const Entry& entry : kEntries)
        if (entry.name == std::string(words[2]))
            return entry.run({interp, *gi, *gi->viewers[index], count, words});
    return fail(std::string("\"") + words[2] +
                "\" is unknown; use orientation, slice, zoom, flip, size, snapshot or event.");
}

} // namespace

void giAddViewCommands()
{
    HxScriptCommands::add(
        "view", "view N orientation|slice|zoom|flip|size|snapshot|event ?VALUE ...?",
        "Reads or sets orientation (0 YZ, 1 XZ, 2 XY), slice, zoom factor or flips (X Y Z, each 0 or 1) of "
        "slice viewer N, sets the size of its window (W H), or writes its picture (FILE). Events go through "
        "the viewer's window: press, release or move at the image pixel I J, with left, middle or right and "
        "shift, ctrl, alt; key NAME, as a, Left, PageUp, Return or space, with the same modifiers; wheel "
        "DELTA, "
        "120 a notch; leave.",
        view);
}
