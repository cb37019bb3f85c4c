#pragma once

#include "core/GiNotice.h"
#include "display/GiViewer.h"
#include "display/GiWindowless.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxLatticeCoords.h"
#include "hx/HxUniformLabelField3.h"
#include "hx/HxViewerPanelBase.h"
#include "mc/McHandle.h"
#include "tools/GiTool.h"

#include <array>
#include <string>
#include <vector>

/// Records what a tool is told.
class RecordingTool : public GiTool
{
public:
    explicit RecordingTool(Gi* owner) : GiTool(owner) {}
    const char* getIconName() const override { return ""; }
    void init() override { calls.push_back("init"); }
    void select() override { calls.push_back("select"); }
    void deselect(GiFrameBuffer*) override { calls.push_back("deselect"); }
    void selectionNotify(int what) override { calls.push_back("notify " + std::to_string(what)); }

    std::vector<std::string> calls;
};

/// The core with three viewers and no window: what it announces is recorded.
class TestGi : public GiWindowless
{
public:
    using Touch = std::array<int, 6>;

    explicit TestGi(int numViewers = 3)
    {
        viewerPanel = &panel;
        for (int o = 0; o < numViewers; ++o) {
            auto* viewer = new GiViewer("viewer", this);
            viewer->ref();
            viewer->createShapes();
            viewer->setOrientation(o);
            viewers.append(viewer);
        }
        if (numViewers > 0) panel.setActiveViewer(viewers[numViewers - 1]);
    }
    ~TestGi() override { viewerPanel = nullptr; }

    void redraw() override
    {
        ++redraws;
        Gi::redraw();
    }
    void touchData(int a, int b, int c, int d, int e, int f) override
    {
        touches.push_back({a, b, c, d, e, f});
    }
    void updateUndoSensitivity() override { ++sensitivityUpdates; }
    void updateCursor() override { ++cursorUpdates; }
    void setToolDataWindow(float min, float max, bool) override
    {
        toolDataWindow[0] = min;
        toolDataWindow[1] = max;
    }
    void setToolDataWindowSliderTracking(bool on) override { tracking = on; }
    bool toolDataWindowSliderTracking() override { return tracking; }
    void setMaskingEnabled(bool on) override { masking = on; }
    bool maskingEnabled() const override { return masking; }

    /// Shows the viewer of an orientation, which becomes the current one.
    GiViewer* activate(int orientation)
    {
        panel.setActiveViewer(viewers[orientation]);
        return viewers[orientation];
    }

    HxViewerPanelBase panel;
    std::vector<Touch> touches;
    int redraws = 0;
    int sensitivityUpdates = 0;
    int cursorUpdates = 0;
    bool tracking = true;
    bool masking = false;
};

/// A label field over itself as image, bound to a TestGi.
class TestEditor
{
public:
    TestEditor(unsigned long nx, unsigned long ny, unsigned long nz, int numViewers = 3)
        : dims{nx, ny, nz}, field(new HxUniformLabelField3(dims)), gi(numViewers)
    {
        gi.materials = lattice()->materials();
        gi.setVolumeByte(dims, static_cast<int>(nx), labels(), lattice());
        gi.touches.clear();
        gi.redraws = 0;
    }

    HxLabelLattice3* lattice() { return field->labelLattice(); }
    unsigned char* labels() { return lattice()->getLabels(); }
    unsigned long size() const { return dims[0] * dims[1] * dims[2]; }
    std::vector<unsigned char> copyOfLabels() { return {labels(), labels() + size()}; }
    std::vector<bool> copyOfSelection() const
    {
        std::vector<bool> bits(size());
        for (unsigned long i = 0; i < size(); ++i) bits[i] = gi.selection->isSet(i);
        return bits;
    }
    void addMaterials(int n)
    {
        for (int i = lattice()->materials()->nBundles(); i < n; ++i)
            lattice()->materials()->insert(new HxParamBundle(("M" + std::to_string(i)).c_str()));
    }

    const unsigned long dims[3];
    McHandle<HxUniformLabelField3> field;
    TestGi gi;
};
