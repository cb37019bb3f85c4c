#pragma once

#include "mc/McString.h"

class HxColormap;

/// Text files of colour tables. After a first line that names the form come "interpolate 0|1",
/// "below R G B A" and "above R G B A" where they are not the ends, and one line "R G B A" per
/// entry, all from 0 to 1. Lines that begin with '#' are skipped.

bool hxIsColormapFile(const char* path);

/// All report with one sentence that names the file; the map is unchanged then.
bool hxReadColormapFile(HxColormap& map, const char* path, McString& error);
bool hxWriteColormapFile(const HxColormap& map, const char* path, McString& error);
