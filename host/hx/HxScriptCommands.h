#pragma once

#include <functional>
#include <string>
#include <vector>

struct Tcl_Interp;

/// The commands that host and packages add to the interpreter beside those of the objects, each with a usage
/// line and an explanation that `help` shows.
class HxScriptCommands
{
public:
    /// words[0] is the command's name. Returns TCL_OK or TCL_ERROR with the message as result.
    using Proc = std::function<int(Tcl_Interp* interp, int wordCount, const char* const* words)>;

    struct Entry
    {
        std::string name;
        std::string usage; ///< with the name, such as "remove NAME ?NAME...?"
        std::string help;  ///< one or two sentences
        Proc proc;
    };

    /// Registers a command with the interpreter; an older command of this name is replaced. An exception of
    /// the host that leaves `proc` becomes TCL_ERROR with its text.
    static void add(const char* name, const char* usage, const char* help, Proc proc);

    /// All commands, sorted by name.
    static std::vector<const Entry*> all();

    /// Null for a name that was not added.
    static const Entry* find(const char* name);

    /// Sets the complaint about a wrong word count, with the usage line of `name`, and returns TCL_ERROR.
    static int wrongArguments(Tcl_Interp* interp, const char* name);
};
