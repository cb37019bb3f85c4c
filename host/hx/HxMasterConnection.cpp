#include "hx/HxMasterConnection.h"

#include "hx/HxCompModule.h"

HxMasterConnection::HxMasterConnection(HxObject* owner) : HxPort(owner, "master") {}

void HxMasterConnection::set(HxCompModule* module, int resultIndex)
{
    masterModule = module;
    slot = resultIndex;
    valueChanged();
}

void HxMasterConnection::disconnect()
{
    if (masterModule) masterModule->releaseResult(slot);
}

bool HxMasterConnection::run(const HxScriptCall& call, int& code)
{
    const McString command(call.word(2));
    if (command == "disconnect") {
        code = TCL_ERROR;
        if (checkWords(call, 0, 0, "disconnect")) {
            disconnect();
            code = call.ok();
        }
    } else if (command == "getValue") {
        code = checkWords(call, 0, 0, "getValue") ? call.result(masterModule ? masterModule->getLabel() : "")
                                                  : TCL_ERROR;
    } else {
        return false;
    }
    return true;
}

void HxMasterConnection::commandHelp(McDArray<HxCommandHelp>& list) const
{
    appendHelp(list, "disconnect", "Makes the object independent of the module that made it.");
    appendHelp(list, "getValue", "Gives the name of the module that made the object, empty without one.");
}
