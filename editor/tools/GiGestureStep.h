#pragma once

#include "core/GiAction.h"
#include "mc/McHandle.h"

class Gi;

/// The step of undo that a gesture has opened, for as long as the gesture runs. In between, keys can undo it
/// or put others on top of it; then the gesture may neither rely on it nor take it back.
class GiGestureStep
{
public:
    /// Takes the newest step, which the gesture has just opened.
    void open(const Gi& gi);
    /// The step stays in the list and is the gesture's no longer.
    void forget() { step = nullptr; }
    /// Whether there is a step, and it is still the newest one.
    bool isNewest(const Gi& gi) const;
    /// For a gesture that has changed nothing: takes the step out of the list if it is still the newest.
    /// Undoing it would seem to do nothing.
    void drop(Gi& gi);

private:
    McHandle<GiAction> step;
};
