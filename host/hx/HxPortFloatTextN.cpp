#include "hx/HxPortFloatTextN.h"

#include "hx/HxNumberText.h"

#include <algorithm>

HxPortFloatTextN::HxPortFloatTextN(HxObject* owner, const char* name) : HxPort(owner, name) {}

void HxPortFloatTextN::setRange(float min, float max)
{
    minimum = min;
    maximum = std::max(min, max);
    if (value < minimum || value > maximum) setValue(value);
    emit changed();
}

void HxPortFloatTextN::setValue(float newValue)
{
    if (!(newValue == newValue)) return;
    value = std::clamp(newValue, minimum, maximum);
    valueChanged();
}

bool HxPortFloatTextN::run(const HxScriptCall& call, int& code)
{
    const McString command(call.word(2));
    if (command == "getValue") {
        code = checkWords(call, 0, 0, "getValue") ? call.result(hxNumberText(value).c_str()) : TCL_ERROR;
    } else if (command == "setValue") {
        double wanted;
        code = TCL_ERROR;
        if (checkWords(call, 1, 1, "setValue X") && call.getReal(3, wanted)) {
            setValue(static_cast<float>(wanted));
            code = call.ok();
        }
    } else {
        return false;
    }
    return true;
}

void HxPortFloatTextN::commandHelp(McDArray<HxCommandHelp>& list) const
{
    appendHelp(list, "getValue", "Gives the number in the field.");
    appendHelp(list, "setValue X", "Puts a number into the field, limited to its range.");
}
