#pragma once

#include "core/Gi.h"

/// The core with no window around it: nobody listens, nothing is shown but what viewers draw into memory.
/// For programs that drive the editor from code, such as benchmarks and tests.
class GiWindowless : public Gi
{
public:
    ~GiWindowless() override { destroyMembers(); }

    void setDataWindow(float, float, bool) override {}
    void setToolDataWindow(float, float, bool) override {}
    void setToolDataWindowMarker(float) override {}
    void clearToolDataWindowMarker() override {}
    void setToolDataWindowSliderTracking(bool) override {}
    bool toolDataWindowSliderTracking() override { return true; }
    void setMaskingEnabled(bool) override {}
    bool maskingEnabled() const override { return false; }
    int getPickedVoxel(HxViewer*, int, int, McVec3i&, float&) override { return 0; }
};
