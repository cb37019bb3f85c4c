#include "hx/HxPortChoice.h"

#include <algorithm>

HxPortChoice::HxPortChoice(HxObject* owner, const char* name, int numEntries)
    : HxPort(owner, name), texts(std::max(numEntries, 0))
{
}

void HxPortChoice::setNum(int n)
{
    texts.resize(std::max(n, 0));
    if (index > 0 && index >= getNum()) setIndex(index);
    emit changed();
}

void HxPortChoice::setLabel(int i, const char* text)
{
    if (i < 0) return;
    if (i >= getNum()) texts.resize(i + 1);
    texts[i] = text;
    emit changed();
}

const char* HxPortChoice::getLabel(int i) const
{
    return i >= 0 && i < getNum() ? texts[i].c_str() : "";
}

void HxPortChoice::setIndex(int i)
{
    index = std::clamp(i, 0, std::max(getNum() - 1, 0));
    valueChanged();
}

bool HxPortChoice::run(const HxScriptCall& call, int& code)
{
    const McString command(call.word(2));
    const bool reads = command == "getIndex" || command == "getValue";
    if (!reads && !(command == "setIndex") && !(command == "setValue")) return false;

    code = TCL_ERROR;
    if (reads) {
        if (checkWords(call, 0, 0, command)) code = call.result(static_cast<long>(index));
        return true;
    }
    long wanted;
    if (checkWords(call, 1, 1, command + " I") && call.getIndex(3, getNum(), "entry", wanted)) {
        setIndex(static_cast<int>(wanted));
        code = call.ok();
    }
    return true;
}

void HxPortChoice::commandHelp(McDArray<HxCommandHelp>& list) const
{
    appendHelp(list, "getIndex", "Gives the number of the chosen entry, from 0.");
    appendHelp(list, "setIndex I", "Chooses entry I, from 0.");
    appendHelp(list, "getValue", "The same as getIndex.");
    appendHelp(list, "setValue I", "The same as setIndex.");
}
