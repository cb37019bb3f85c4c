#include "hx/HxPortIntTextN.h"

#include <algorithm>

HxPortIntTextN::HxPortIntTextN(HxObject* owner, const char* name) : HxPort(owner, name) {}

void HxPortIntTextN::setRange(int min, int max)
{
    minimum = min;
    maximum = std::max(min, max);
    if (value < minimum || value > maximum) setValue(value);
    emit changed();
}

void HxPortIntTextN::setValue(int newValue)
{
    value = std::clamp(newValue, minimum, maximum);
    valueChanged();
}

bool HxPortIntTextN::run(const HxScriptCall& call, int& code)
{
    const McString command(call.word(2));
    if (command == "getValue") {
        code = checkWords(call, 0, 0, "getValue") ? call.result(static_cast<long>(value)) : TCL_ERROR;
    } else if (command == "setValue") {
        int wanted;
        code = TCL_ERROR;
        if (checkWords(call, 1, 1, "setValue N") && call.getInt(3, wanted)) {
            setValue(wanted);
            code = call.ok();
        }
    } else {
        return false;
    }
    return true;
}

void HxPortIntTextN::commandHelp(McDArray<HxCommandHelp>& list) const
{
    appendHelp(list, "getValue", "Gives the whole number in the field.");
    appendHelp(list, "setValue N", "Puts a whole number into the field, limited to its range.");
}
