#pragma once

struct Tcl_Interp;

/// The command `help ?WORD?`: without a word, all commands of the program, of each kind of data and of the
/// editors; for the name of an object, all commands that it answers; for the name of a command, its
/// explanation, whoever answers it and whether there is such an object or not.
int hxHelpCommand(Tcl_Interp* interp, int wordCount, const char* const* words);
