#pragma once

#include <string>
#include <vector>

/// A package is linked against one state of the host's headers; the host refuses one of another state. A
/// package `NAME`, library `libNAME.so`, has three functions of C linkage:
///
///     void vorelpackage_NAME_init();     // registers classes and commands
///     void vorelpackage_NAME_finish();   // at the end of the program
///     const char* vorelpackage_NAME();   // returns kHxPackageStamp
inline constexpr const char* kHxPackageStamp = "vorel-1 " __VERSION__;

/// Loads packages and reads the resource files that announce them.
///
/// A resource file is a Tcl script named NAME.rc.tcl. It knows these words beside those of plain Tcl, which
/// runs in an interpreter of its own without access to files:
///
///     package_library NAME             loads libNAME.so at start-up; the folder NAME beside the resource
///                                      file holds the package's icons, cursors and help pages
///     class CLASS LIBRARY              the package whose initialisation registers the class; loaded when an
///                                      object of the class is asked for
///     editor CLASS INTERFACE           an editor and the data interface that it edits
///     module CLASS TYPE ?TYPE ...?     a compute module and the classes or interfaces of its input
///     subApplication CLASS TITLE ?ICON?   a full-window mode, in the order of the list
///
/// A file with an error is refused whole.
class HxPackage
{
public:
    struct Editor
    {
        std::string className;
        std::string interfaceName;
    };

    struct Module
    {
        std::string className;
        std::vector<std::string> inputTypes;
    };

    /// Loads the library, checks its stamp and calls its init; a package that is loaded already is a
    /// success. Returns false with a sentence in `error`.
    static bool load(const char* name, std::string& error);

    static bool isLoaded(const char* name);

    /// Loads the package that a resource file names for this class. Returns true when it is loaded
    /// afterwards, false with `error` empty for a class of no package.
    static bool loadForClass(const char* className, std::string& error);

    /// Calls the finish function of each package, the last loaded first. Libraries stay in memory.
    static void finishAll();

    /// Takes in one resource file. Its package_library packages are loaded by loadAnnounced.
    static bool readResourceFile(const char* path, std::string& error);

    /// Reads all resource files of the resource folders, sorted by name, and loads the announced packages.
    /// What fails is reported on the console and skipped. Returns the number of failures.
    static int start();

    /// Folders with resource files: $VOREL_RESOURCES, a colon-separated list, alone if it is set; else
    /// ../share/vorel beside the folder of the program.
    static std::vector<std::string> resourceFolders();

    /// Folders that libraries are looked for in: those added, then ../lib beside the folder of the program.
    static std::vector<std::string> libraryFolders();
    static void addLibraryFolder(const char* path);

    /// Folder with the files of a package, empty when no resource file announced it.
    static std::string resourceFolder(const char* package);

    /// Path of a file of any announced package, empty when none has it.
    static std::string findResource(const char* file);

    static const std::vector<Editor>& editors();
    static const std::vector<Module>& modules();
};
