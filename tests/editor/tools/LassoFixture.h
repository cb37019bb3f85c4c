#pragma once

#include "editor/display/DrawnEditor.h"
#include "editor/tools/ViewerEvents.h"

#include "tools/GiLasso.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using Pixels = std::vector<bool>;

inline Pixels pixelsOf(GiViewer& viewer)
{
    const GiSelection2D& slice = *viewer.getSelection();
    Pixels pixels;
    for (int y = 0; y < static_cast<int>(slice.height); ++y)
        for (int x = 0; x < static_cast<int>(slice.width); ++x) pixels.push_back(slice.isSet(x, y));
    return pixels;
}

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

struct Keys
{
    bool shift = false, ctrl = false, alt = false;
};

template <class Event>
Event with(Event event, const Keys& keys)
{
    event.shift = keys.shift;
    event.ctrl = keys.ctrl;
    event.alt = keys.alt;
    return event;
}

inline constexpr Keys kNoKeys, kAlt{false, false, true}, kShift{true, false, false},
    kCtrl{false, true, false};

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

/// The lasso over a slice of 40 x 30 pixels of 4 x 4 on screen, in a volume of 8.
class Lasso : public testing::Test
{
protected:
    Lasso() : editor(40, 30, 8)
    {
        editor.gi.setVolumeByte(editor.dims, 40, image.data(), editor.lattice());
        lasso = dynamic_cast<GiLasso*>(editor.gi.tools[GiLasso::kIndex]);
        editor.gi.setTool(GiLasso::kIndex);
        editor.gi.setZoomFactor(4);
        editor.gi.clearUndo(1);
        editor.gi.touches.clear();
        clean = pictureOf(buffer());
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
    void click(int x, int y, const Keys& keys)
    {
        hover(x, y, keys);
        press(x, y, keys);
        release(x, y, keys);
    }
    int pressEscape(int viewer = 2)
    {
        McKeyboardEvent event;
        event.key = McKeyboardEvent::kEscape;
        event.released = 0;
        return send(event, viewer);
    }
    int releaseAlt(bool leftIsHeld = false, int viewer = 2)
    {
        McKeyboardEvent event;
        event.key = McKeyboardEvent::kAltLeft;
        event.released = 1;
        event.left = leftIsHeld;
        return send(event, viewer);
    }
    template <class Event>
    int send(Event event, int viewer = 2)
    {
        const int result = editor.buffer(viewer).handleEvent(&event);
        // What boxes have drawn must be the whole picture.
        for (int o = 0; o < 3; ++o) {
            const std::vector<unsigned int> left = pictureOf(editor.buffer(o));
            editor.buffer(o).render(nullptr);
            EXPECT_TRUE(pictureOf(editor.buffer(o)) == left) << "viewer " << o;
        }
        return result;
    }
    GiMemoryFrameBuffer& buffer() { return editor.buffer(2); }
    bool isSet(int x, int y) { return editor.viewer(2).getSelection()->isSet(x, y); }
    long count(int viewer = 2)
    {
        const Pixels pixels = pixelsOf(editor.viewer(viewer));
        return std::count(pixels.begin(), pixels.end(), true);
    }
    long orangePixels(int viewer = 2)
    {
        const auto pixels = pictureOf(editor.buffer(viewer));
        return std::count(pixels.begin(), pixels.end(), 0xFFC000u);
    }
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

    DrawnEditor editor;
    std::vector<unsigned char> image = std::vector<unsigned char>(40 * 30 * 8, 0);
    GiLasso* lasso;
    std::vector<unsigned int> clean;
};
