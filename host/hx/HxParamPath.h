#pragma once

#include "mc/McString.h"

class HxParamBundle;

/// Script access to a parameter tree by paths such as "Materials/Liver/Color".

/// Reads: the text of a value, or a Tcl list of the names in a bundle (values first, then
/// sub-bundles). An empty path or null lists the root.
/// returns false with a message in `result` if the path leads nowhere
bool hxReadParameter(const HxParamBundle& root, const char* path, McString& result);

/// Writes: an existing value keeps its type code and refuses text that does not fit it; a new one
/// becomes ints, floats, doubles or a string by its text. Missing bundles on the way are made.
/// returns false with a message in `error`, and nothing is changed
bool hxWriteParameter(HxParamBundle& root, const char* path, const char* text, McString& error);
