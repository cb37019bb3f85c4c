#include "hx/HxScript.h"

#include "hx/HxFormat.h"

#include <tcl.h>

void Tcl_VaSetResult(Tcl_Interp* interp, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = hxFormat(format, arguments);
    va_end(arguments);
    Tcl_SetObjResult(interp, Tcl_NewStringObj(text.data(), static_cast<int>(text.size())));
}

void Tcl_VaAppendElement(Tcl_Interp* interp, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = hxFormat(format, arguments);
    va_end(arguments);
    Tcl_AppendElement(interp, text.c_str());
}
