#pragma once

#include "mc/McHandle.h"

#include <vector>

class HxData;

/// The objects that a person sees in the workspace and that have changed since they were saved.
std::vector<McHandle<HxData>> hxUnsavedData();

/// Asks whether what editors hold and their data do not may be lost, in one question with Quit and Cancel.
/// Returns true when it may, or when there is nothing.
bool hxMayDropUnfinished();

/// Asks whether to save those of the objects that have changed, in one question with Save, Discard and
/// Cancel. Returns true when they may go: nothing has changed, all was saved, or the person discards it.
bool hxMayDrop(const std::vector<McHandle<HxData>>& objects);
