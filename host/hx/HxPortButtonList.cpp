#include "hx/HxPortButtonList.h"

#include <algorithm>

HxPortButtonList::HxPortButtonList(HxObject* owner, const char* name, int numButtons)
    : HxPort(owner, name), texts(std::max(numButtons, 0))
{
}

void HxPortButtonList::setNum(int n)
{
    texts.resize(std::max(n, 0));
    emit changed();
}

void HxPortButtonList::setLabel(int i, const char* text)
{
    if (i < 0) return;
    if (i >= getNum()) texts.resize(i + 1);
    texts[i] = text;
    emit changed();
}

const char* HxPortButtonList::getLabel(int i) const
{
    return i >= 0 && i < getNum() ? texts[i].c_str() : "";
}

void HxPortButtonList::hit(int i)
{
    // Whoever presses may know the button by its number alone: its text can be set later or never.
    if (i < 0) return;
    index = i;
    valueChanged();
}

bool HxPortButtonList::run(const HxScriptCall& call, int& code)
{
    const McString command(call.word(2));
    if (command == "getIndex") {
        code = checkWords(call, 0, 0, "getIndex") ? call.result(static_cast<long>(index)) : TCL_ERROR;
        return true;
    }
    const bool hits = command == "hit";
    if (!hits && !(command == "setIndex")) return false;

    long wanted = 0;
    code = TCL_ERROR;
    if (!checkWords(call, hits ? 0 : 1, 1, hits ? "hit ?I?" : "setIndex I")) return true;
    if (call.has(3) && !call.getIndex(3, getNum(), "button", wanted)) return true;
    hit(static_cast<int>(wanted));
    code = call.ok();
    return true;
}

void HxPortButtonList::commandHelp(McDArray<HxCommandHelp>& list) const
{
    appendHelp(list, "hit ?I?", "Presses button I, the first one without I; fire then does its work.");
    appendHelp(list, "setIndex I", "The same as hit.");
    appendHelp(list, "getIndex", "Gives the number of the button pressed last, -1 before the first press.");
}
