#pragma once

/// What the active tool is told after an operation that it did not start itself.
enum GiNotice
{
    kSelectionCleared = 0,
    kSelectionStored = 1,
    kMaterialReplaced = 2,
    kSelectionSubtracted = 3,
    kMode3DChanged = 4,
    kZoomModeChanged = 5,
};
