#pragma once

#include "mc/McDArray.h"
#include "mc/McString.h"

class HxColormap;

/// The colour tables that come with the host:
/// "grey"        black to white
/// "perceptual"  dark violet over red to light yellow, even in lightness and strong in hue, so that
///               equal steps look equal and a grey print keeps the order
/// "labels"      256 steps without interpolation, neighbours far apart in hue; entry 0 is black
McDArray<McString> hxStandardColormapNames();

/// Makes the map's table the standard one; false for an unknown name.
bool hxSetStandardColormap(HxColormap& map, const char* name);
