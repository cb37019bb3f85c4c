#include "hx/HxConnection.h"

#include "hx/HxObjectPool.h"

#include <algorithm>

namespace {

bool isOrOffers(HxObject* object, McTypeId type)
{
    return object->getTypeId().isDerivedFrom(type) || object->getInterface(type);
}

} // namespace

HxConnection::HxConnection(HxObject* owner, const char* name, McTypeId type)
    : HxPort(owner, name), types{type}
{
}

HxConnection::~HxConnection()
{
    setSource(nullptr, McTypeId());
}

void HxConnection::addType(McTypeId type)
{
    types.push_back(type);
}

bool HxConnection::accepts(HxObject* object) const
{
    return object && object != owner() &&
           std::any_of(types.begin(), types.end(), [&](McTypeId type) { return isOrOffers(object, type); });
}

void HxConnection::setSource(HxObject* source, McTypeId interfaceToUse)
{
    interfaceType = interfaceToUse;
    if (source == sourceObject) return;
    if (sourceObject) {
        std::vector<HxConnection*>& list = sourceObject->downstream;
        list.erase(std::remove(list.begin(), list.end(), this), list.end());
    }
    sourceObject = source;
    if (sourceObject) {
        sourceObject->downstream.push_back(this);
        seenTouch = sourceObject->touchNumber();
    }
    valueChanged();
}

bool HxConnection::connect(HxObject* source, McTypeId interfaceToUse)
{
    if (!source) {
        disconnect();
        return true;
    }
    if (!accepts(source) || (interfaceToUse.isValid() && !isOrOffers(source, interfaceToUse))) return false;
    setSource(source, interfaceToUse);
    return true;
}

void HxConnection::disconnect()
{
    setSource(nullptr, McTypeId());
}

void HxConnection::sourceGone()
{
    setSource(nullptr, McTypeId());
}

bool HxConnection::isSourceTouched() const
{
    return sourceObject && sourceObject->touchNumber() != seenTouch;
}

void HxConnection::clearNew()
{
    HxPort::clearNew();
    if (sourceObject) seenTouch = sourceObject->touchNumber();
}

int HxConnection::runConnect(const HxScriptCall& call)
{
    HxObject* object = HxObjectPool::getThePool()->find(call.word(3));
    if (!object) return call.error(McString("there is no object \"") + call.word(3) + "\"");
    if (connect(object)) return call.ok();
    if (object == owner()) return call.error("an object cannot be its own input");

    McString accepted;
    for (std::size_t i = 0; i < types.size(); i++) accepted += McString(i ? " or " : "") + types[i].name();
    return call.error(McString("\"") + getName() + "\" takes " + accepted + "; \"" + call.word(3) + "\" is " +
                      object->getTypeId().name());
}

bool HxConnection::run(const HxScriptCall& call, int& code)
{
    const McString command(call.word(2));
    if (command == "connect") {
        code = checkWords(call, 1, 1, "connect OBJECT") ? runConnect(call) : TCL_ERROR;
    } else if (command == "disconnect") {
        code = TCL_ERROR;
        if (checkWords(call, 0, 0, "disconnect")) {
            disconnect();
            code = call.ok();
        }
    } else if (command == "getValue") {
        code = checkWords(call, 0, 0, "getValue") ? call.result(sourceObject ? sourceObject->getLabel() : "")
                                                  : TCL_ERROR;
    } else {
        return false;
    }
    return true;
}

void HxConnection::commandHelp(McDArray<HxCommandHelp>& list) const
{
    appendHelp(list, "connect OBJECT", "Makes the object the input.");
    appendHelp(list, "disconnect", "Takes the input away.");
    appendHelp(list, "getValue", "Gives the name of the input, empty without one.");
}
