#include "hx/HxScriptCommands.h"

#include "hx/HxInterpreter.h"
#include "hx/HxScript.h"
#include "mc/McException.h"

#include <tcl.h>

#include <map>
#include <new>

namespace {

std::map<std::string, HxScriptCommands::Entry>& entries()
{
    static std::map<std::string, HxScriptCommands::Entry> all;
    return all;
}

// The border between Tcl, which is C, and the commands: nothing may be thrown across it.
int callCommand(ClientData data, Tcl_Interp* interp, int wordCount, const char* words[])
{
    const auto* entry = static_cast<const HxScriptCommands::Entry*>(data);
    try {
        // The copy keeps a command alive that replaces itself.
        const HxScriptCommands::Proc proc = entry->proc;
        return proc(interp, wordCount, words);
    } catch (const std::bad_alloc&) {
        Tcl_VaSetResult(interp, "%s: Not enough memory.", words[0]);
    } catch (const std::exception& exception) {
        Tcl_VaSetResult(interp, "%s: %s", words[0], exception.what());
    }
    return TCL_ERROR;
}

} // namespace

void HxScriptCommands::add(const char* name, const char* usage, const char* help, Proc proc)
{
    Entry& entry = entries()[name];
    entry = {name, usage, help, std::move(proc)};
    Tcl_CreateCommand(HxInterpreter::getTheInterpreter()->tcl(), name, callCommand, &entry, nullptr);
}

std::vector<const HxScriptCommands::Entry*> HxScriptCommands::all()
{
    std::vector<const Entry*> sorted;
    for (const auto& [name, entry] : entries()) sorted.push_back(&entry);
    return sorted;
}

const HxScriptCommands::Entry* HxScriptCommands::find(const char* name)
{
    const auto found = entries().find(name);
    return found == entries().end() ? nullptr : &found->second;
}

int HxScriptCommands::wrongArguments(Tcl_Interp* interp, const char* name)
{
    const Entry* entry = find(name);
    Tcl_VaSetResult(interp, "wrong # args: should be \"%s\"", entry ? entry->usage.c_str() : name);
    return TCL_ERROR;
}
