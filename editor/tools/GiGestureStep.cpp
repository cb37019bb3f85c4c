#include "tools/GiGestureStep.h"

#include "core/Gi.h"

void GiGestureStep::open(const Gi& gi)
{
    step = gi.undoActions.isEmpty() ? nullptr : gi.undoActions.last();
}

bool GiGestureStep::isNewest(const Gi& gi) const
{
    return step && !gi.undoActions.isEmpty() && gi.undoActions.last() == step.get();
}

void GiGestureStep::drop(Gi& gi)
{
    if (isNewest(gi)) {
        gi.undoActions.pop()->unref();
        gi.updateUndoSensitivity();
    }
    forget();
}
