#pragma once

#include "mc/McHandle.h"

#include <string>
#include <vector>

class HxObject;
class QCursor;
class QIcon;
class HxSubApplication;
class McException;

/// A full-window mode that a package's resource file announced.
struct HxSubApplicationEntry
{
    HxSubApplicationEntry();
    ~HxSubApplicationEntry();
    HxSubApplicationEntry(const HxSubApplicationEntry&);
    HxSubApplicationEntry& operator=(const HxSubApplicationEntry&);

    std::string className;
    std::string title;
    std::string icon;                    ///< file in the package's resource folder, may be empty
    McHandle<HxSubApplication> instance; ///< null until made
};

/// Things that the program has by name: classes, sub-applications, its own address.
class HxResource
{
public:
    /// Filled from package resource files only; empty means that editors run in the normal window.
    static std::vector<HxSubApplicationEntry> mSubApplications;

    /// A new pool object of a class, with count 0; loads the class's package when needed. Null for an
    /// unknown class, one that has no objects of its own, and one that is no pool object.
    static HxObject* createObject(const char* className);

    /// Makes the instance of the entry of this class, if it has none yet. Null for a class without entry.
    static HxSubApplication* subApplication(const char* className);

    /// Reports an exception of the host: 0 in a modal error dialog; 1 on the console only, for event
    /// handlers, where a dialog would re-enter.
    static void handleException(const McException& exception, int consoleOnly = 0);

    /// An icon from the folders of the packages, or from the resource folders. A file beside it with "@2x"
    /// before its suffix serves screens of higher density. A missing file gives an empty icon, and one
    /// message on the console however often it is asked for. Empty, too, without a GUI application or a name.
    static QIcon readIcon(const char* file);

    /// A cursor likewise; the hot spot is in pixels of the file. `mask` names a file whose white parts are
    /// transparent; null: the file's own transparency. A missing file gives the arrow.
    static QCursor readCursor(const char* file, const char* mask, int hotX, int hotY);

    /// The name under which other processes of this machine reach this one.
    static const char* localHost() { return "127.0.0.1"; }
};
