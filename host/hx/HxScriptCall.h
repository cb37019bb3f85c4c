#pragma once

#include "mc/McDArray.h"
#include "mc/McString.h"

#include <tcl.h>

/// One line of the help on a script command.
struct HxCommandHelp
{
    McString name;
    McString usage; ///< the command with its arguments, without the object's name
    McString text;  ///< one sentence
};

/// The words of one script command, with typed reading and uniform complaints.
///
/// Word 0 is the object, word 1 the command. The readers of arguments leave a message as result
/// and return false for what they cannot read; the command then returns TCL_ERROR.
class HxScriptCall
{
public:
    HxScriptCall(Tcl_Interp* interp, int wordCount, char** words)
        : interpreter(interp), count(wordCount), wordArray(words)
    {
    }

    Tcl_Interp* interp() const { return interpreter; }
    int wordCount() const { return count; }
    const char* word(int i) const { return wordArray[i]; }
    char** allWords() const { return wordArray; }
    bool has(int i) const { return i < count; }

    bool getInt(int i, int& out) const;
    /// An integer from 0 to limit - 1.
    bool getIndex(int i, long limit, const char* what, long& out) const;
    bool getReal(int i, double& out) const;

    int ok() const { return TCL_OK; }
    int result(const char* text) const;
    int result(long value) const;
    int result(double value) const;
    /// A Tcl list of numbers in their shortest exact form.
    int result(int n, const float* numbers) const;
    int result(const McDArray<McString>& list) const;
    /// Sets the message and gives TCL_ERROR. The object's name is put in front.
    int error(const McString& message) const;

private:
    Tcl_Interp* interpreter;
    int count;
    char** wordArray;
};

/// One script command of a class: how it is written, what it does, and the code.
template <class Owner>
struct HxCommand
{
    const char* name;
    const char* usage;
    const char* help;
    int minWords; ///< words after the command's own
    int maxWords;
    int (*run)(Owner&, const HxScriptCall&);
};

/// Looks up word 1 in a table and runs it.
/// returns false if the table does not have it; else true with the Tcl code in `code`
template <class Owner, int N>
bool hxRunCommand(const HxCommand<Owner> (&table)[N], Owner& owner, const HxScriptCall& call, int& code);

/// Appends a table's help lines.
template <class Owner, int N>
void hxAppendHelp(const HxCommand<Owner> (&table)[N], McDArray<HxCommandHelp>& list);

/// Complaint about the number of words, with the right form.
int hxWrongWordCount(const HxScriptCall& call, const char* usage);
/// Whether word 1 is this name.
bool hxIsCommand(const HxScriptCall& call, const char* name);

template <class Owner, int N>
bool hxRunCommand(const HxCommand<Owner> (&table)[N], Owner& owner, const HxScriptCall& call, int& code)
{
    for (const HxCommand<Owner>& command : table) {
        if (!hxIsCommand(call, command.name)) continue;
        const int given = call.wordCount() - 2;
        code = given < command.minWords || given > command.maxWords ? hxWrongWordCount(call, command.usage)
                                                                    : command.run(owner, call);
        return true;
    }
    return false;
}

template <class Owner, int N>
void hxAppendHelp(const HxCommand<Owner> (&table)[N], McDArray<HxCommandHelp>& list)
{
    for (const HxCommand<Owner>& command : table)
        list.append(HxCommandHelp{McString(command.name), McString(command.usage), McString(command.help)});
}
