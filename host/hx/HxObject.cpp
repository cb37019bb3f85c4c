#include "hx/HxObject.h"

#include "hx/HxCompModule.h"
#include "hx/HxConnection.h"
#include "hx/HxObjectPool.h"
#include "hx/HxPort.h"
#include "mc/McHandle.h"

#include <algorithm>
#include <cstring>

namespace {

const HxCommand<HxObject> kCommands[] = {
    {"fire", "fire", "Brings the object and all modules that depend on it up to date.", 0, 0,
     [](HxObject& self, const HxScriptCall& call) {
         self.fire();
         return call.ok();
     }},
    {"ports", "ports", "Lists the ports and connections of the object.", 0, 0,
     [](HxObject& self, const HxScriptCall& call) {
         McDArray<McString> names;
         for (int i = 0; i < self.numPorts(); i++) names.append(McString(self.port(i)->getName()));
         return call.result(names);
     }},
    {"touch", "touch ?MASK?",
     "Marks the object as changed. Bits: 1 parameters, 2 dimensions or coordinates, 4 values; all without "
     "MASK.",
     0, 1,
     [](HxObject& self, const HxScriptCall& call) {
         int mask = -1;
         if (call.has(2) && !call.getInt(2, mask)) return TCL_ERROR;
         self.touch(static_cast<unsigned int>(mask));
         return call.ok();
     }},
};

} // namespace

HxObject::HxObject() = default;

HxObject::~HxObject()
{
    disconnectDownstream();
}

McTypeId HxObject::getClassTypeId()
{
    return hxClassType<HxObject, HxBase>("HxObject");
}

void HxObject::notifyDelete()
{
    disconnectDownstream();
    HxBase::notifyDelete();
}

void HxObject::hideIcon()
{
    if (hidden) return;
    hidden = true;
    if (inPool) emit HxObjectPool::getThePool()->iconVisibilityChanged(this);
}

void HxObject::showIcon()
{
    if (!hidden) return;
    hidden = false;
    if (inPool) emit HxObjectPool::getThePool()->iconVisibilityChanged(this);
}

void HxObject::touch(unsigned int)
{
    touches++;
}

void HxObject::fire()
{
    fireDownstream();
}

void HxObject::notifyUpdate(int how)
{
    if (how == 1) fireDownstream();
}

void HxObject::fireDownstream()
{
    // A module that fires can connect and disconnect others, and objects can go, this one too: the list is
    // copied, and each entry must still be there when its turn comes.
    const McHandle<HxObject> keep(refCount() > 0 ? this : nullptr);
    const std::vector<HxConnection*> connections = downstream;
    for (HxConnection* connection : connections) {
        if (std::find(downstream.begin(), downstream.end(), connection) == downstream.end()) continue;
        if (auto* module = dynamic_cast<HxCompModule*>(connection->owner())) module->fire();
    }
}

void HxObject::disconnectDownstream()
{
    while (!downstream.empty()) downstream.back()->sourceGone();
}

HxPort* HxObject::port(int i) const
{
    return i >= 0 && i < numPorts() ? ports[i] : nullptr;
}

HxPort* HxObject::port(const char* name) const
{
    const auto at =
        std::find_if(ports.begin(), ports.end(), [&](HxPort* p) { return !std::strcmp(p->getName(), name); });
    return at != ports.end() ? *at : nullptr;
}

HxConnection* HxObject::downstreamConnection(int i) const
{
    return i >= 0 && i < numDownstream() ? downstream[i] : nullptr;
}

int HxObject::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    const HxScriptCall call(interp, wordCount, words);
    int code;
    if (hxRunCommand(kCommands, *this, call, code)) return code;
    if (call.has(1))
        if (HxPort* addressed = port(words[1])) return addressed->parse(call);
    return HxBase::parse(interp, wordCount, words);
}

void HxObject::commandHelp(McDArray<HxCommandHelp>& list) const
{
    HxBase::commandHelp(list);
    hxAppendHelp(kCommands, list);
    for (const HxPort* listed : ports) listed->commandHelp(list);
}

void HxObject::memberAdded(HxObject*) {}

void HxObject::memberRenamed(HxObject*) {}

void HxObject::memberRemoved(HxObject*) {}

void HxObject::labelChanged(const McString& oldLabel)
{
    if (inPool) HxObjectPool::getThePool()->memberRenamed(this, oldLabel);
}
