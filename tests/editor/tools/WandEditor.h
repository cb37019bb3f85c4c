#pragma once

#include "editor/display/DrawnEditor.h"
#include "editor/tools/ViewerEvents.h"

#include "core/GiNotice.h"
#include "hx/HxParamBundle.h"
#include "tools/GiMagicWand.h"

#include <QCheckBox>
#include <QToolButton>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// The magic wand with its panel over a small image of bytes:
///
///     11122222
///     11122222     in every slice XY, and 9 in the last one
///     11132222
///     11122242
class WandEditor : public testing::Test
{
protected:
    static constexpr int kWidth = 8, kHeight = 4, kSlices = 5, kZoom = 10;

    WandEditor() : editor(kWidth, kHeight, kSlices), wand(toolOf(editor))
    {
        const std::string rows = "11122222"
                                 "11122222"
                                 "11132222"
                                 "11122242";
        for (int z = 0; z < kSlices; ++z)
            for (const char c : rows)
                image.push_back(static_cast<unsigned char>(z == kSlices - 1 ? 9 : c - '0'));
        for (const char* name : {"Exterior", "A", "B"})
            editor.lattice()->materials()->insert(new HxParamBundle(name));
        editor.gi.labelData = editor.field;
        editor.gi.setVolumeByte(editor.dims, kWidth, image.data(), editor.lattice());
        editor.gi.zoomAllViewers = true;
        editor.gi.setZoomFactor(kZoom);
        editor.viewer(2).setSlice(1, false);
        QWidget* panel = wand.getWidget(nullptr);
        allSlices = panel->findChild<QCheckBox*>("wAllSlicesCheckBox");
        sameMaterial = panel->findChild<QCheckBox*>("wSameMaterialCheckBox");
        fillInterior = panel->findChild<QCheckBox*>("wFillInteriorCheckBox");
        limitButton = panel->findChild<QToolButton*>("wLimitButton");
        editor.gi.setTool(GiMagicWand::kIndex);
        editor.gi.initTools();
        setWindow(2, 2);
        editor.gi.clearUndo(1);
        editor.gi.touches.clear();
    }

    static GiMagicWand& toolOf(DrawnEditor& owner)
    {
        return *dynamic_cast<GiMagicWand*>(owner.gi.tools[GiMagicWand::kIndex]);
    }
    void setWindow(float min, float max) { editor.gi.setToolDataWindow(min, max, true); }
    void drag(float min, float max)
    {
        setWindow(min, max);
        wand.dataWindowChanged(min, max);
    }

    GiFrameBuffer& buffer(int orientation = 2) { return editor.buffer(orientation); }
    McVec2i at(int i, int j, int orientation = 2) { return buffer(orientation).pixelCentre(i, j); }
    void send(McEvent&& event, int modifiers = 0, int orientation = 2)
    {
        event.ctrl = (modifiers & kCtrl) != 0;
        event.shift = (modifiers & kShift) != 0;
        buffer(orientation).handleEvent(&event);
    }
    void press(int i, int j, int modifiers = 0, int orientation = 2)
    {
        const McVec2i p = at(i, j, orientation);
        const McVec3i v = editor.gi.getPoint3D(i, j, editor.gi.viewers[orientation]);
        editor.gi.valueUnderPointer = image[static_cast<std::size_t>(v.x + kWidth * (v.y + kHeight * v.z))];
        send(buttonEvent(1, true, p.x, p.y), modifiers, orientation);
    }
    void release(int i, int j, int modifiers = 0)
    {
        const McVec2i p = at(i, j);
        send(buttonEvent(1, false, p.x, p.y), modifiers);
    }
    void moveTo(int i, int j, bool held = true, int modifiers = 0)
    {
        const McVec2i p = at(i, j);
        send(motionEvent(held ? 1 : 0, p.x, p.y), modifiers);
    }
    void click(int i, int j, int modifiers = 0)
    {
        press(i, j, modifiers);
        release(i, j, modifiers);
    }
    void drawLimit(int i0, int j0, int i1, int j1, int modifiers = 0)
    {
        press(i0, j0, modifiers);
        moveTo(i0, j0);
        moveTo(i1, j1);
        release(i1, j1, modifiers);
    }
    void key(int code, bool pressed = true, bool ctrl = false)
    {
        McKeyboardEvent event;
        event.key = code;
        event.released = !pressed;
        event.x = event.y = 1;
        send(std::move(event), ctrl ? kCtrl : 0);
    }

    std::vector<std::string> rows(int z = 1)
    {
        std::vector<std::string> drawing;
        for (int y = 0; y < kHeight; ++y) {
            std::string row;
            for (int x = 0; x < kWidth; ++x) row += editor.gi.selection->get(x, y, z) ? '#' : '.';
            drawing.push_back(row);
        }
        return drawing;
    }
    HxParamBundle& parameters() { return editor.field->parameters; }
    /// "Slice0001/S0002x0003: 2 10 20 2" and the like, in the order of the file.
    std::vector<std::string> stored(const char* kind)
    {
        std::vector<std::string> lines;
        const HxParamBundle* all = std::as_const(parameters()).bundle(kind);
        for (int i = 0; all && i < all->nBundles(); ++i)
            for (int k = 0; k < all->bundle(i)->nParameters(); ++k) {
                const HxParameter& entry = *all->bundle(i)->parameter(k);
                lines.push_back(std::string(all->bundle(i)->getName()) + "/" + entry.getName() + ": " +
                                entry.text().str());
            }
        return lines;
    }

    static constexpr int kShift = 1, kCtrl = 2;
    using Rows = std::vector<std::string>;
    using Lines = std::vector<std::string>;

    DrawnEditor editor;
    GiMagicWand& wand;
    std::vector<unsigned char> image;
    QCheckBox *allSlices, *sameMaterial, *fillInterior;
    QToolButton* limitButton;
};
