#pragma once

struct Tcl_Interp;

/// Sets the result of `interp` to the formatted text.
///
/// The text is formatted as by printf and may have any length.
void Tcl_VaSetResult(Tcl_Interp* interp, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Appends the formatted text to the result of `interp` as one list element, quoted as a Tcl list needs it.
void Tcl_VaAppendElement(Tcl_Interp* interp, const char* format, ...) __attribute__((format(printf, 2, 3)));
