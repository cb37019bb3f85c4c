// Magic wand: marks of seeds and limit lines over the slices.

#include "core/Gi.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "tools/GiMagicWand.h"

namespace {

struct Color
{
    int red, green, blue;
};

constexpr Color kActive{255, 64, 0}, kNoMaterial{255, 255, 0}, kLimit{0, 255, 0};

} // namespace

McBox2i GiMagicWand::markBox(const MagicWandSeed& seed, const GiFrameBuffer& frameBuffer) const
{
    const McVec2i c = markCentre(seed, frameBuffer);
    return McBox2i(c.x - kMarkReach, c.y - kMarkReach, c.x + kMarkReach, c.y + kMarkReach);
}

void GiMagicWand::render(GiFrameBuffer* frameBuffer, const McBox2i&)
{
    if (!(flags & kSelected) || !frameBuffer->viewer || !gi->imageSlices.data()) return;
    frameBuffer->setFunction(GiFrameBuffer::kDraw);
    // Also where redrawSeed asks for one: that is how marks go off the screen when they are hidden.
    for (int i = 0; !(flags & kSeedsHidden) && i < seeds.size(); ++i)
        if ((redrawSeed < 0 || redrawSeed == i) && isShown(seeds[i], *frameBuffer->viewer))
            renderSeed(*frameBuffer, i);
    if (redrawSeed < 0) renderLimits(*frameBuffer);
}

void GiMagicWand::renderSeed(GiFrameBuffer& frameBuffer, int i) const
{
    Color color = kNoMaterial;
    const int material = seeds[i].material;
    if (i == currentSeed) {
        color = kActive;
    } else if (material > 0 && material < materialColors.size()) {
        const McVec3f& own = materialColors[material];
        color = {static_cast<int>(own.x * 255), static_cast<int>(own.y * 255), static_cast<int>(own.z * 255)};
    }
    frameBuffer.setColor(color.red, color.green, color.blue);
    const McBox2i box = markBox(seeds[i], frameBuffer);
    frameBuffer.drawLine(box.xmin, box.ymin, box.xmax, box.ymax);
    frameBuffer.drawLine(box.xmin, box.ymax, box.xmax, box.ymin);
}

void GiMagicWand::renderLimits(GiFrameBuffer& frameBuffer) const
{
    frameBuffer.setFunction(GiFrameBuffer::kDraw);
    frameBuffer.setColor(kLimit.red, kLimit.green, kLimit.blue);
    for (const MagicWandLimit& limit : limits) {
        if (!isOnSlice(limit, *frameBuffer.viewer)) continue;
        for (int i = 0; i + 1 < limit.points.size(); ++i) {
            const McVec2i from = frameBuffer.zoomf(limit.points[i]);
            const McVec2i to = frameBuffer.zoomf(limit.points[i + 1]);
            frameBuffer.drawLine(from.x, from.y, to.x, to.y);
        }
    }
}

void GiMagicWand::redrawSeeds(int erase)
{
    for (int v = 0; v < gi->viewers.size(); ++v) {
        GiFrameBuffer* buffer = gi->viewers[v]->getFrameBuffer();
        if (!buffer || !buffer->viewer || !gi->imageSlices.data()) continue;
        McDArray<McBox2i> boxes;
        for (int i = 0; i < seeds.size(); ++i) {
            if (!isShown(seeds[i], *buffer->viewer)) continue;
            boxes.append(markBox(seeds[i], *buffer));
            if (!erase) continue;
            redrawSeed = i;
            buffer->render(boxes.last(), nullptr);
        }
        redrawSeed = -1;
        // Then what lies across: other marks and limit lines.
        for (const McBox2i& box : boxes) {
            buffer->setClipBox(box);
            render(buffer, box);
            buffer->paste(box);
        }
    }
}

/// Takes the mark of a seed that is gone off the screen.
void GiMagicWand::eraseMark(const MagicWandSeed& seed)
{
    for (int v = 0; v < gi->viewers.size(); ++v) {
        GiFrameBuffer* buffer = gi->viewers[v]->getFrameBuffer();
        if (!buffer || !buffer->viewer || !isShown(seed, *buffer->viewer)) continue;
        const McBox2i box = markBox(seed, *buffer);
        buffer->render(box, nullptr);
        buffer->paste(box);
    }
}
