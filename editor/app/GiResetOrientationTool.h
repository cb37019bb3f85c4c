#pragma once

#include "hx/HxViewerTool.h"

class Gi;

/// Brings all slice viewers home: the middle slice, the orientation of their place, and a zoom factor that
/// suits the size of the volume.
class GiResetOrientationTool : public HxViewerTriggerTool
{
public:
    explicit GiResetOrientationTool(Gi* owner);

    void onTrigger(HxViewerBase* viewer) override;
    /// Slice viewers alone.
    bool supportsViewer(HxViewerBase* viewer) override;

private:
    Gi* gi;
};
