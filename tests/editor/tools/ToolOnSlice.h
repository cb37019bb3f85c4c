#pragma once

#include "editor/display/DrawnEditor.h"
#include "editor/tools/ViewerEvents.h"

#include <gtest/gtest.h>

#include <algorithm>
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

inline McKeyboardEvent keyEvent(int key, bool pressed)
{
    McKeyboardEvent event;
    event.key = key;
    event.released = !pressed;
    return event;
}

/// What boxes have drawn must be the whole picture.
inline void expectWholePictures(DrawnEditor& editor)
{
    for (int o = 0; o < 3; ++o) {
        const std::vector<unsigned int> left = pictureOf(editor.buffer(o));
        editor.buffer(o).render(nullptr);
        EXPECT_TRUE(pictureOf(editor.buffer(o)) == left) << "viewer " << o;
    }
}

/// A tool over a slice of 40 x 30 pixels of 4 x 4 on screen, in a dark volume of 8.
class ToolOnSlice : public testing::Test
{
protected:
    explicit ToolOnSlice(int toolIndex) : editor(40, 30, 8)
    {
        editor.gi.setVolumeByte(editor.dims, 40, image.data(), editor.lattice());
        editor.gi.setTool(toolIndex);
        editor.gi.setZoomFactor(4);
        editor.gi.clearUndo(1);
        editor.gi.touches.clear();
    }

    template <class Event>
    int send(Event event, int viewer = 2)
    {
        const int result = editor.buffer(viewer).handleEvent(&event);
        expectWholePictures(editor);
        return result;
    }
    GiMemoryFrameBuffer& buffer() { return editor.buffer(2); }
    bool isSet(int x, int y) { return editor.viewer(2).getSelection()->isSet(x, y); }
    long count(int viewer = 2)
    {
        const Pixels pixels = pixelsOf(editor.viewer(viewer));
        return std::count(pixels.begin(), pixels.end(), true);
    }
    long pixelsOfColor(unsigned int color, int viewer = 2)
    {
        const auto pixels = pictureOf(editor.buffer(viewer));
        return std::count(pixels.begin(), pixels.end(), color);
    }

    DrawnEditor editor;
    std::vector<unsigned char> image = std::vector<unsigned char>(40 * 30 * 8, 0);
};
