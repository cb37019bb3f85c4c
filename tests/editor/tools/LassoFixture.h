#pragma once

#include "editor/tools/ToolOnSlice.h"

#include "tools/GiLasso.h"

#include <cmath>
#include <string>
#include <vector>

/// Even-odd over all pixels, one by one. A centre on an edge counts, but not at the lower end of the polygon.
class PlainPolygon
{
public:
    explicit PlainPolygon(std::vector<McVec2f> outline) : points(std::move(outline)) {}

    enum Answer
    {
        kOutside,
        kInside,
        kTooClose // to an edge for floating point to tell
    };
    Answer at(int column, int row) const
    {
        const double x = column + 0.5, y = row + 0.5;
        int crossings = 0;
        for (std::size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
            const McVec2f &a = points[i], &b = points[j];
            const double ax = static_cast<double>(a.x), ay = static_cast<double>(a.y);
            const double bx = static_cast<double>(b.x), by = static_cast<double>(b.y);
            if ((ay <= y) == (by <= y)) continue;
            const double crossing = ax + (bx - ax) * (y - ay) / (by - ay);
            if (ax == bx && crossing == x) return kInside;
            if (std::fabs(crossing - x) < 1e-4) return kTooClose;
            crossings += crossing < x;
        }
        return crossings % 2 ? kInside : kOutside;
    }

private:
    std::vector<McVec2f> points;
};

/// What the selection has to be, pixel by pixel.
inline void expectPixels(GiViewer& viewer, const Pixels& before, const PlainPolygon& polygon,
                         const Keys& keys, const McBitfield* mask)
{
    const Pixels now = pixelsOf(viewer);
    const int width = static_cast<int>(viewer.getSelection()->width);
    for (int i = 0; i < static_cast<int>(now.size()); ++i) {
        const auto answer = polygon.at(i % width, i / width);
        if (answer == PlainPolygon::kTooClose) continue;
        const bool inside = answer == PlainPolygon::kInside;
        const auto n = static_cast<std::size_t>(i);
        const bool adds = inside && (!mask || mask->isSet(n));
        const bool expected = keys.ctrl ? before[n] && !inside : keys.shift ? before[n] || adds : adds;
        ASSERT_EQ(now[n], expected) << "pixel (" << i % width << ", " << i / width << ")";
    }
}

/// The lasso with its gestures.
class Lasso : public ToolOnSlice
{
protected:
    Lasso()
        : ToolOnSlice(GiLasso::kIndex),
          lasso(dynamic_cast<GiLasso*>(editor.gi.tools[GiLasso::kIndex])),
          clean(pictureOf(buffer()))
    {
    }

    // All at the centre of a pixel of the XY slice.
    int press(int x, int y, const Keys& keys = {}, int button = 1)
    {
        return send(with(buttonEvent(button, true, 4 * x + 2, 4 * y + 2), keys));
    }
    int release(int x, int y, const Keys& keys = {}, int button = 1)
    {
        return send(with(buttonEvent(button, false, 4 * x + 2, 4 * y + 2), keys));
    }
    int drag(int x, int y, const Keys& keys = {})
    {
        return send(with(motionEvent(1, 4 * x + 2, 4 * y + 2), keys));
    }
    int hover(int x, int y, const Keys& keys = {})
    {
        return send(with(motionEvent(0, 4 * x + 2, 4 * y + 2), keys));
    }
    /// As a hand makes it: the pointer comes along.
    void click(int x, int y, const Keys& keys = {})
    {
        hover(x, y, keys);
        press(x, y, keys);
        release(x, y, keys);
    }
    int pressEscape(int viewer = 2) { return send(keyEvent(McKeyboardEvent::kEscape, true), viewer); }
    int releaseAlt(bool leftIsHeld = false, int viewer = 2)
    {
        McKeyboardEvent event = keyEvent(McKeyboardEvent::kAltLeft, false);
        event.left = leftIsHeld;
        return send(event, viewer);
    }
    long orangePixels(int viewer = 2) { return pixelsOfColor(0xFFC000, viewer); }
    /// A square of 10 x 10 pixels from (5, 5) on, without its last side.
    void openSquare()
    {
        click(5, 5, kAlt);
        click(15, 5, kAlt);
        click(15, 15, kAlt);
        click(5, 15, kAlt);
    }
    bool isClean() { return !lasso->isDragging() && pictureOf(buffer()) == clean; }
    /// Selects pixels of the XY slice by hand.
    void mark(const McBox2i& box)
    {
        for (int y = box.ymin; y <= box.ymax; ++y)
            for (int x = box.xmin; x <= box.xmax; ++x) editor.viewer(2).getSelection()->set(x, y);
        editor.gi.updateSelectionBoxes();
        editor.gi.redraw();
    }
    QAbstractButton* widget(const char* name)
    {
        return lasso->getWidget(nullptr)->findChild<QAbstractButton*>(name);
    }

    GiLasso* lasso;
    std::vector<unsigned int> clean;
};
