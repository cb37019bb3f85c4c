#pragma once

#include "hx/HxViewerTool.h"

/// Turns a slice viewer to one orientation.
class GiSetOrientationTool : public HxViewerTriggerTool
{
public:
    explicit GiSetOrientationTool(int newOrientation);

    void onTrigger(HxViewerBase* viewer) override;
    /// Slice viewers alone.
    bool supportsViewer(HxViewerBase* viewer) override;

private:
    int orientation;
};
