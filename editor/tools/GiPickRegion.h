#pragma once

#include "core/GiAction.h"
#include "mc/McBox.h"
#include "mc/McHandle.h"
#include "mc/McVec.h"
#include "tools/GiSlicePattern.h"
#include "tools/GiTool.h"

#include <QCheckBox>
#include <QPointer>

#include <optional>

class McMemoryException;

/// Picks regions of equal label into the selection by a click, and moves or turns the selection by dragging.
///
/// A press beside the selection picks the connected region under the pointer, or every voxel of its label,
/// in the slice or in the volume. A press on the selection takes hold of it: the slice follows the pointer,
/// the other slices follow when the button goes up. What is dragged beyond the slice's edge comes back with
/// the pointer, as each motion starts from the state at the press; what lies there at the release is lost. A
/// drag is one step of undo; Escape takes it back, and its step with it. It ends early, with what it
/// has reached, when the viewer goes to another slice, the tool changes, or the release was lost; and it is
/// dropped when something else has changed the selection meanwhile.
class GiPickRegion : public GiTool
{
public:
    static constexpr int kIndex = 0; // in Gi's list of tools

    explicit GiPickRegion(Gi* owner);

    const char* getIconName() const override { return "SegPickRegionIcon.png"; }
    int handleEvent(GiFrameBuffer* frameBuffer, McEvent* event) override;
    bool isDragging() const override { return (flags & kDragging) != 0; }
    void init() override { dropDrag(); }
    void deselect(GiFrameBuffer* frameBuffer) override;
    void createWidget(QWidget* parent) override;
    const QCursor* getToolCursor() const override;

    /// The sum of all moves through all slices, in world units.
    const McVec3f& getTranslationVec() const { return translationVec; }
    void resetTranslationVec() { translationVec = McVec3f(); }

private:
    enum Cursor
    {
        kPick = 0,
        kMove = 1,
        kRotate = 2
    };
    static constexpr unsigned int kCursor = 3, kTranslating = 4, kRotating = 8, kUndoPending = 16;
    static constexpr unsigned int kDragging = kTranslating | kRotating;

    bool inAllSlices() const { return !allSlices || allSlices->isChecked(); }
    bool takesWholeLabel() const { return selectAll && selectAll->isChecked(); }
    unsigned int cursorState() const { return flags & kCursor; }

    void checkCursor(GiFrameBuffer& frameBuffer, const McEvent& event);
    void setCursor(unsigned int state);

    void pick(GiFrameBuffer& frameBuffer, const McEvent& event);
    void pickInSlice(GiFrameBuffer& frameBuffer, const McVec2i& pixel, const McEvent& event);
    void pickInVolume(const McEvent& event);

    void startDrag(GiFrameBuffer& frameBuffer, const McEvent& event, int button);
    int handleEventTranslate(GiFrameBuffer* frameBuffer, McEvent* event);
    int handleEventRotate(GiFrameBuffer* frameBuffer, McEvent* event);
    void translate3d();
    void rotate3d();
    void prepareChange(GiFrameBuffer& frameBuffer);
    void showChange(GiFrameBuffer& frameBuffer, const McBox2i& old, const McBox2i& now);
    bool endsDrag(const McEvent& event) const;
    bool isOurs() const;
    bool isInView() const;
    bool missedRelease(const GiFrameBuffer& frameBuffer, const McEvent& event) const;
    void settleDrag(const GiFrameBuffer& frameBuffer, const McEvent& event);
    void endDrag();
    void dropDrag();
    void cancelDrag();
    void giveUp(const McMemoryException& exception);

    QPointer<QCheckBox> allSlices, selectAll;
    unsigned int flags = 0;
    McVec2i dragStart;             // image pixel of the press
    McBox2i startBox;              // of the selection at the press; follows a move
    float rotation = 0;            // degrees, clockwise if rows run downward
    McVec3i pressVoxel;            // at the last button state
    McVec3f pressPoint, lastPoint; // world points of the press and of the last motion
    McVec3f translationVec;

    // Of the drag that goes on.
    GiFrameBuffer* dragBuffer = nullptr; // only compared: the viewer may be gone before the button is up
    int dragButton = 0;
    int orientation = 0, slice = 0;
    bool dragsVolume = false;    // "All slices" at the first motion
    McVec2i offset;              // of the last motion, in image pixels
    unsigned long dims[3] = {};  // of the selection
    McHandle<GiAction> undoStep; // the newest one since the drag changed something last; null: there was none
    GiSlicePattern pattern;      // the slice's selection before the first motion

    mutable std::optional<QCursor> shownCursor;
    mutable unsigned int shownState = kPick;
};
