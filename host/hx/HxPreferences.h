#pragma once

#include "mc/McString.h"

#include <vector>

/// What a person can set once for all sessions. A plain value; HxSettingsMgr keeps the current one.
struct HxPreferences
{
    int selectionDrawStyle = 1;            ///< 0 to 4: how the selection is drawn in a slice
    int selectionAlpha = 96;               ///< 0 to 255: weight of the selection colour over the image
    McString selectionStyle3D = "Points2"; ///< "Points1", "Points2" or "Solid"
    bool anatomicalNames = false;          ///< "sagittal" instead of "YZ", and so on
    int numThreads = defaultNumThreads();  ///< in parallel loops; 0 counts as 1
    McString giOrientation;                ///< "%d %d %d %d": orientation and three flips
    McString giMagicWand;                  ///< "%g %g %d %d %d %d %g": the magic wand's last settings

    /// The smaller of 8 and the number of cores.
    static int defaultNumThreads();

    /// The names of all fields, as scripts use them.
    static std::vector<const char*> fieldNames();

    /// The field as text. Returns false with a sentence in `error` for an unknown field.
    bool get(const char* field, McString& value, McString& error) const;

    /// Sets a field from text. Returns false with a sentence in `error`, and changes nothing, for an unknown
    /// field or a value that the field does not take.
    bool set(const char* field, const char* value, McString& error);
};
