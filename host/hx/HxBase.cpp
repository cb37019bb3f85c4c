#include "hx/HxBase.h"

#include "hx/HxInterpreter.h"
#include "hx/HxNumberText.h"
#include "hx/HxObjectPool.h"
#include "mc/McException.h"
#include "mc/McHandle.h"

#include <exception>
#include <new>
#include <string>
#include <utility>

namespace {

std::function<void(SoNode*, bool)>& geomHandler()
{
    static std::function<void(SoNode*, bool)> handler;
    return handler;
}

/// Where the last suffix begins, its dot included; the length if there is none. A dot in front
/// makes a hidden file, not a suffix.
std::size_t suffixStart(const std::string& label)
{
    const std::size_t dot = label.rfind('.');
    return dot == label.npos || dot == 0 ? label.size() : dot;
}

/// "::" separates namespaces, and a command in a namespace that does not exist cannot be made.
std::string withoutNamespaces(const char* label)
{
    std::string clean(label ? label : "");
    for (std::size_t at = clean.find("::"); at != clean.npos; at = clean.find("::"))
        for (; at < clean.size() && clean[at] == ':'; at++) clean[at] = '_';
    return clean;
}

const HxCommand<HxBase> kCommands[] = {
    {"label", "label", "Gives the name of the object.", 0, 0,
     [](HxBase& self, const HxScriptCall& call) { return call.result(self.getLabel()); }},
    {"rename", "rename NAME", "Gives the object another name; the result is the name that it got.", 1, 1,
     [](HxBase& self, const HxScriptCall& call) {
         if (!*call.word(2)) return call.error("the new name is empty");
         self.setLabel(call.word(2));
         return call.result(self.getLabel());
     }},
    {"type", "type", "Gives the class of the object.", 0, 0,
     [](HxBase& self, const HxScriptCall& call) { return call.result(self.getTypeId().name()); }},
};

} // namespace

void HxCmdInfo::append(const char* commandName, void* data)
{
    for (const Entry& entry : entries)
        if (entry.name == commandName) return;
    entries.append(Entry{McString(commandName), data});
}

HxBase::HxBase() = default;

HxBase::~HxBase()
{
    unregisterCommand();
}

McTypeId HxBase::getClassTypeId()
{
    return McTypeId::declare<HxBase>("HxBase");
}

McTypeId HxBase::getTypeId() const
{
    return getClassTypeId();
}

bool HxBase::isTaken(const char* name) const
{
    Tcl_Interp* interp = HxInterpreter::getTheInterpreter()->tcl();
    const Tcl_Command holder = Tcl_FindCommand(interp, name, nullptr, TCL_GLOBAL_ONLY);
    if (holder && holder != command) return true;
    // A script can have redefined an object's command; its label stays taken all the same.
    const HxObject* member = HxObjectPool::getThePool()->find(name);
    return member && member != this;
}

McString HxBase::uniqueLabel(const McString& wanted) const
{
    const std::string clean = withoutNamespaces(wanted);
    const std::size_t suffix = suffixStart(clean);
    std::string unique = clean;
    for (int number = 2; isTaken(unique.c_str()); number++)
        unique = clean.substr(0, suffix) + hxNumberText(number) + clean.substr(suffix);
    return unique;
}

void HxBase::setLabel(const char* label)
{
    const McString wanted(label);
    const McString unique = wanted.isEmpty() ? wanted : uniqueLabel(wanted);
    if (unique == labelText) return;

    const McString old = std::exchange(labelText, unique);
    unregisterCommand();
    registerCommand();
    labelChanged(old);
}

void HxBase::labelChanged(const McString&) {}

void HxBase::registerCommand()
{
    if (labelText.isEmpty()) return;
    command = Tcl_CreateCommand(HxInterpreter::getTheInterpreter()->tcl(), labelText, runCommand, this,
                                commandGone);
}

void HxBase::unregisterCommand()
{
    if (command) Tcl_DeleteCommandFromToken(HxInterpreter::getTheInterpreter()->tcl(), command);
}

void HxBase::commandGone(ClientData self)
{
    static_cast<HxBase*>(self)->command = nullptr;
}

McString HxBase::composeLabel(const char* base, const char* suffix)
{
    const std::string text(base ? base : "");
    return McString(text.substr(0, suffixStart(text))) + "." + suffix;
}

int HxBase::runCommand(ClientData self, Tcl_Interp* interp, int wordCount, const char** words)
{
    auto* object = static_cast<HxBase*>(self);
    // The command can remove its own object from the pool. An object that nobody counts must not
    // be counted here either: it would go with this reference.
    const McHandle<HxBase> keep(object->refCount() > 0 ? object : nullptr);
    const HxScriptCall call(interp, wordCount, const_cast<char**>(words));
    try {
        return object->parse(interp, wordCount, call.allWords());
    } catch (const McException& exception) {
        return call.error(exception.what());
    } catch (const std::bad_alloc&) {
        return call.error("Not enough memory.");
    } catch (const std::exception& exception) {
        // Tcl is C: nothing may be thrown through it.
        return call.error(exception.what());
    }
}

int HxBase::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    const HxScriptCall call(interp, wordCount, words);
    if (wordCount < 2) return call.error("no command given");
    int code;
    if (hxRunCommand(kCommands, *this, call, code)) return code;
    return unknownCommand(call);
}

int HxBase::unknownCommand(const HxScriptCall& call) const
{
    McDArray<HxCommandHelp> list;
    commandHelp(list);
    HxCmdInfo names;
    for (const HxCommandHelp& known : list) names.append(known.name);
    for (int i = 0; i < cmdInfo.size(); i++) names.append(cmdInfo.name(i));

    McString message = McString("no command \"") + call.word(1) + "\"; it knows:";
    for (int i = 0; i < names.size(); i++) message += McString(i ? ", " : " ") + names.name(i);
    return call.error(message);
}

void HxBase::commandHelp(McDArray<HxCommandHelp>& list) const
{
    hxAppendHelp(kCommands, list);
}

int HxBase::cmdError(Tcl_Interp* interp, int, const char* name)
{
    const McString message = McString::printf("wrong # args for command \"%s\"", name);
    Tcl_SetObjResult(interp, Tcl_NewStringObj(message, message.length()));
    return TCL_ERROR;
}

void HxBase::showGeom(SoNode* root)
{
    if (geomHandler()) geomHandler()(root, true);
}

void HxBase::hideGeom(SoNode* root)
{
    if (geomHandler()) geomHandler()(root, false);
}

void HxBase::setGeomHandler(std::function<void(SoNode*, bool)> handler)
{
    geomHandler() = std::move(handler);
}

McInterface* HxBase::getInterface(McTypeId type)
{
    return McInterfaceOwner::getInterface(type);
}
