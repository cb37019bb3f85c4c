#include "hx/HxScriptCall.h"

#include "hx/HxNumberText.h"

#include <cstring>
#include <string>

bool HxScriptCall::getInt(int i, int& out) const
{
    if (hxReadNumber(word(i), out)) return true;
    error(McString("\"") + word(i) + "\" is not a whole number");
    return false;
}

bool HxScriptCall::getIndex(int i, long limit, const char* what, long& out) const
{
    long number;
    if (!hxReadNumber(word(i), number)) {
        error(McString("\"") + word(i) + "\" is not a whole number");
        return false;
    }
    if (number < 0 || number >= limit) {
        error(limit > 0 ? McString::printf("%s %ld is out of range 0 to %ld", what, number, limit - 1)
                        : McString::printf("%s %ld is out of range: there are none", what, number));
        return false;
    }
    out = number;
    return true;
}

bool HxScriptCall::getReal(int i, double& out) const
{
    if (hxReadNumber(word(i), out)) return true;
    error(McString("\"") + word(i) + "\" is not a number");
    return false;
}

int HxScriptCall::result(const char* text) const
{
    Tcl_SetObjResult(interpreter, Tcl_NewStringObj(text, -1));
    return TCL_OK;
}

int HxScriptCall::result(long value) const
{
    Tcl_SetObjResult(interpreter, Tcl_NewWideIntObj(value));
    return TCL_OK;
}

int HxScriptCall::result(double value) const
{
    return result(hxNumberText(value).c_str());
}

int HxScriptCall::result(int n, const float* numbers) const
{
    std::string list;
    for (int i = 0; i < n; i++) {
        if (i) list += ' ';
        list += hxNumberText(numbers[i]);
    }
    return result(list.c_str());
}

int HxScriptCall::result(const McDArray<McString>& list) const
{
    Tcl_Obj* object = Tcl_NewListObj(0, nullptr);
    for (const McString& text : list)
        Tcl_ListObjAppendElement(interpreter, object, Tcl_NewStringObj(text, text.length()));
    Tcl_SetObjResult(interpreter, object);
    return TCL_OK;
}

int HxScriptCall::error(const McString& message) const
{
    const bool isSentence = message.str().ends_with('.');
    const McString text = McString(word(0)) + ": " + message + (isSentence ? "" : ".");
    Tcl_SetObjResult(interpreter, Tcl_NewStringObj(text, text.length()));
    return TCL_ERROR;
}

int hxWrongWordCount(const HxScriptCall& call, const char* usage)
{
    return call.error(McString("wrong # args: should be \"") + call.word(0) + " " + usage + "\"");
}

bool hxIsCommand(const HxScriptCall& call, const char* name)
{
    return call.has(1) && std::strcmp(call.word(1), name) == 0;
}
