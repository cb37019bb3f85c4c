// Magic wand: limit lines, and the mode in which they are drawn and deleted.

#include "core/Gi.h"
#include "core/GiOrientation.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "mc/McData2D.h"
#include "mc/McEvent.h"
#include "mc/McHandle.h"
#include "tools/GiMagicWand.h"
#include "tools/MagicWandActions.h"

#include <QSignalBlocker>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int kLeft = 1, kAnyButton = 0;
constexpr unsigned char kLimitPixel = 255;

/// A coordinate without its fraction. Files may hold any number: beyond this distance, which keeps the sums
/// of the walk small, a line is bent.
long wholeCoordinate(float v)
{
    constexpr float kFarthest = 1 << 29;
    return static_cast<long>(std::clamp(v, -kFarthest, kFarthest));
}

/// The walk of Bresenham, "Algorithm for computer control of a digital plotter", IBM Systems Journal 4, 1965,
/// with its error term in closed form: so it starts where the line enters the frame, however far its ends
/// are.
///
/// Calls visit(x, y) for each pixel of the line with 0 <= x < width and 0 <= y < height.
template <class Visit>
void walkLine(const McVec2f& from, const McVec2f& to, int width, int height, const Visit& visit)
{
    if (std::isnan(from.x + from.y) || std::isnan(to.x + to.y)) return;
    long x0 = wholeCoordinate(from.x), y0 = wholeCoordinate(from.y);
    long x1 = wholeCoordinate(to.x), y1 = wholeCoordinate(to.y);
    if (x1 < x0) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const long dx = x1 - x0, dy = std::abs(y1 - y0), down = y1 < y0 ? -1 : 1;
    const auto rounded = [](long product, long divisor) {
        return divisor > 0 ? (2 * product + divisor) / (2 * divisor) : 0;
    };
    if (dx >= dy) {
        const long end = std::min<long>(x1, width - 1);
        for (long x = std::max(x0, 0l); x <= end; ++x) {
            const long y = y0 + down * rounded(dy * (x - x0), dx);
            if (y >= 0 && y < height) visit(x, y);
        }
        return;
    }
    const long top = std::max(std::min(y0, y1), 0l), bottom = std::min<long>(std::max(y0, y1), height - 1);
    for (long y = top; y <= bottom; ++y) {
        const long x = x0 + rounded(dx * std::abs(y - y0), dy);
        if (x >= 0 && x < width) visit(x, y);
    }
}

} // namespace

/// Copies every label into those pixels of an image of limits that no line covers.
void GiMagicWand::combineLimitsAndLabels(McDArray<unsigned char>& image, const MagicWandSeed& seed) const
{
    const McData2D<const unsigned char> labels = labelsForSeed(seed);
    if (!labels.data()) return;
    int size[3];
    gi->imageSlices.getDims(size, giSliceAxis(seed.orientation));
    for (int y = 0; y < size[1]; ++y)
        for (int x = 0; x < size[0]; ++x)
            if (unsigned char& pixel = image[x + y * size[0]]; pixel == 0) pixel = labels(x, y);
}

/// Draws the limits of the seed's slice into a byte image: 255 on a line, elsewhere 0 or, for a seed that
/// stays in its material, the label. Without limits the image stays as it is.
///
/// returns  the number of limits
int GiMagicWand::computeLimitSlice(McDArray<unsigned char>& image, const MagicWandSeed& seed) const
{
    const int orientation = giSliceAxis(seed.orientation);
    int size[3];
    gi->imageSlices.getDims(size, orientation);
    int onSlice = 0;
    for (const MagicWandLimit& limit : limits) {
        if (limit.orientation != seed.orientation || limit.slice != seed.coordinate(orientation)) continue;
        if (onSlice++ == 0) {
            image.clear();
            image.resize(size[0] * size[1]);
        }
        for (int i = 0; i + 1 < limit.points.size(); ++i)
            walkLine(limit.points[i], limit.points[i + 1], size[0], size[1],
                     [&](long x, long y) { image[static_cast<int>(x + y * size[0])] = kLimitPixel; });
    }
    if (onSlice > 0 && seed.sameMaterial) combineLimitsAndLabels(image, seed);
    return onSlice;
}

// The mode

void GiMagicWand::setLimitMode(bool on)
{
    if (on)
        setLimitMode(nullptr, nullptr);
    else
        setSeedMode();
}

void GiMagicWand::setLimitMode(const GiFrameBuffer* frameBuffer, const McEvent* event)
{
    if (mode == kLimitMode) return;
    mode = kLimitMode;
    flags &= ~(kDrawingLimit | kOpenedByControl);
    hoveredLimit = -1;
    firstNewLimit = limits.size();
    if (event)
        checkCursorLimitMode(*frameBuffer, *event);
    else
        setCursor(kPencil);
    if (!limitButton) return;
    const QSignalBlocker quiet(limitButton);
    limitButton->setChecked(true);
}

void GiMagicWand::setSeedMode()
{
    if (mode != kLimitMode) return;
    if (limitButton) {
        const QSignalBlocker quiet(limitButton);
        limitButton->setChecked(false);
    }
    mode = kSeedMode;
    setCursor(kToolCursor);
}

bool GiMagicWand::isOnSlice(const MagicWandLimit& limit, const GiViewer& viewer) const
{
    return limit.orientation == viewer.getOrientation() && limit.slice == viewer.getSlice();
}

void GiMagicWand::checkCursorLimitMode(const GiFrameBuffer& frameBuffer, const McEvent& event)
{
    hoveredLimit = -1;
    for (int i = 0; i < limits.size() && hoveredLimit < 0; ++i) {
        if (!isOnSlice(limits[i], *frameBuffer.viewer)) continue;
        for (const McVec2f& point : limits[i].points) {
            const McVec2i at = frameBuffer.zoomf(point);
            if (std::abs(event.x - at.x) > kMarkReach || std::abs(event.y - at.y) > kMarkReach) continue;
            hoveredLimit = i;
            break;
        }
    }
    setCursor(hoveredLimit >= 0 ? kDelete : kPencil);
}

// Events

int GiMagicWand::handleEventLimitMode(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    if (McMouseButtonEvent::isButtonReleaseEvent(&event, kAnyButton)) {
        if (!event.ctrl) setSeedMode();
        // kept: also a click without a drag, which leaves a line without points, has its step of undo and
        // grows the seed anew. Press and release are judged without looking at the way between.
        if (finishLimit()) update();
        return 1;
    }
    if (const auto* key = event.as<McKeyboardEvent>(); key && key->released && key->key != 'l') {
        setSeedMode();
        if (finishLimit()) {
            update();
            return 1;
        }
    }
    if (event.x < 0 || event.y < 0 || event.x >= frameBuffer.zoomedSize.x ||
        event.y >= frameBuffer.zoomedSize.y)
        return 0;
    if (McMouseButtonEvent::isButtonPressEvent(&event, kLeft)) {
        pressInLimitMode(frameBuffer, event);
        return 1;
    }
    if (!event.as<McMotionEvent>()) return 0;
    if (!(flags & kDrawingLimit)) {
        if ((flags & kOpenedByControl) && !event.ctrl)
            setSeedMode(); // the key came up elsewhere
        else
            checkCursorLimitMode(frameBuffer, event);
        return 0;
    }
    if (event.left && limits.size() > 0 && isOnSlice(limits.last(), *frameBuffer.viewer)) {
        extendLimit(frameBuffer, event);
    } else { // the release went elsewhere, or the wheel has brought another slice
        setSeedMode();
        finishLimit();
        update();
    }
    return 1;
}

/// Ends the line that is being drawn and stores it; whether any was drawn since limit mode began.
bool GiMagicWand::finishLimit()
{
    flags &= ~kDrawingLimit;
    if (limits.size() <= firstNewLimit) return false;
    saveLimit(limits.last());
    return true;
}

void GiMagicWand::pressInLimitMode(const GiFrameBuffer& frameBuffer, const McEvent& event)
{
    // The line that the last motion met may lie in another viewer or slice by now.
    checkCursorLimitMode(frameBuffer, event);
    if (hoveredLimit < 0) {
        beginLimit(*frameBuffer.viewer);
        return;
    }
    deleteHoveredLimit();
    if (!event.ctrl) setSeedMode();
    update();
    gi->redraw();
}

void GiMagicWand::beginLimit(const GiViewer& viewer)
{
    MagicWandLimit limit;
    for (const MagicWandLimit& other : limits) limit.id = std::max(limit.id, other.id);
    ++limit.id;
    limit.slice = viewer.getSlice();
    limit.orientation = viewer.getOrientation();
    limits.append(limit);
    flags |= kDrawingLimit;
    limit.id = MagicWandLimitAction::kNewest;
    const McHandle<MagicWandLimitAction> action(new MagicWandLimitAction(*this, limit, limits.size() - 1));
    gi->addUndoAction(action, false);
}

void GiMagicWand::deleteHoveredLimit()
{
    const MagicWandLimit limit = limits[hoveredLimit];
    const McHandle<MagicWandLimitAction> action(new MagicWandLimitAction(*this, limit, hoveredLimit));
    gi->addUndoAction(action, false);
    deleteLimit(limit);
    limits.remove(hoveredLimit);
    // Lines that are drawn from now on are still new ones.
    if (hoveredLimit < firstNewLimit) --firstNewLimit;
    hoveredLimit = -1;
}

void GiMagicWand::extendLimit(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    McDArray<McVec2f>& points = limits.last().points;
    const McVec2f point = frameBuffer.unzoomf(McVec2i(event.x, event.y));
    if (points.size() > 0 && points.last() == point) return;
    points.append(point);
    if (points.size() < 2) return;
    const McVec2i from = frameBuffer.zoomf(points[points.size() - 2]), to = frameBuffer.zoomf(point);
    McBox2i segment(from.x, from.y, from.x, from.y);
    segment.extendBy(to.x, to.y);
    frameBuffer.setClipBox(segment);
    renderLimits(frameBuffer);
    frameBuffer.paste(segment);
}

// Undo

void GiMagicWand::dropNewestLimit()
{
    flags &= ~kDrawingLimit;
    hoveredLimit = -1;
    if (limits.isEmpty()) return;
    deleteLimit(limits.last());
    limits.pop();
    firstNewLimit = std::min(firstNewLimit, limits.size());
}

void GiMagicWand::bringBackLimit(const MagicWandLimit& limit, int index)
{
    hoveredLimit = -1;
    // In its old place, since undo of a drawing takes the last one.
    index = std::clamp(index, 0, limits.size());
    limits.insert(index, 1);
    limits[index] = limit;
    saveLimit(limit);
    firstNewLimit = limits.size();
}
