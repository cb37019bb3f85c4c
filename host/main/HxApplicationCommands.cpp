#include "main/HxApplicationCommands.h"

#include "hx/HxInterpreter.h"
#include "hx/HxMatDatabase.h"
#include "hx/HxMessage.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"
#include "hx/HxScriptSocket.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxWorkArea.h"
#include "main/HxHelpCommand.h"

#include <tcl.h>

#include <cstring>
#include <string>

namespace {

constexpr int kLargestExitCode = 255;
constexpr int kLargestPort = 65535;

int fail(Tcl_Interp* interp, const McString& message)
{
    Tcl_VaSetResult(interp, "%s", message.c_str());
    return TCL_ERROR;
}

/// Reads a whole number of a range, or sets a message that names what it is for.
bool readInt(Tcl_Interp* interp, const char* word, const char* what, int low, int high, int& value)
{
    int read = 0;
    if (Tcl_GetInt(nullptr, word, &read) != TCL_OK || read < low || read > high) {
        Tcl_VaSetResult(interp, "%s must be a whole number from %d to %d, not \"%s\".", what, low, high,
                        word);
        return false;
    }
    value = read;
    return true;
}

int echo(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount < 2) return HxScriptCommands::wrongArguments(interp, "echo");
    std::string text = words[1];
    for (int i = 2; i < wordCount; ++i) text += std::string(" ") + words[i];
    HxMessage::getTheMsg()->echo(text.c_str());
    return TCL_OK;
}

int quit(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount > 2) return HxScriptCommands::wrongArguments(interp, "quit");
    int code = 0;
    if (wordCount == 2 && !readInt(interp, words[1], "The exit code", 0, kLargestExitCode, code))
        return TCL_ERROR;
    HxInterpreter::getTheInterpreter()->requestQuit(code);
    return TCL_OK;
}

int app(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount != 5 || std::strcmp(words[1], "send") != 0)
        return HxScriptCommands::wrongArguments(interp, "app");
    int port = 0;
    if (!readInt(interp, words[4], "The port", 1, kLargestPort, port)) return TCL_ERROR;
    if (port == HxInterpreter::getTheInterpreter()->port())
        return fail(interp, "app send: this is the program's own port; run the command itself.");
    McString answer;
    HxWorkArea* workArea = HxWorkArea::getTheWorkArea();
    workArea->busyOn("Waiting for an answer");
    const bool sent = HxScriptSocket::send(words[2], words[3], port, answer,
                                           [workArea] { return workArea->interrupted(); });
    workArea->busyOff();
    Tcl_VaSetResult(interp, "%s%s", sent ? "" : "app send: ", answer.c_str());
    return sent ? TCL_OK : TCL_ERROR;
}

int answer(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount < 2) return HxScriptCommands::wrongArguments(interp, "answer");
    constexpr int kLastButton = 2;
    std::vector<int> indices(static_cast<std::size_t>(wordCount - 1));
    for (int i = 1; i < wordCount; ++i)
        if (!readInt(interp, words[i], "A button's index", 0, kLastButton,
                     indices[static_cast<std::size_t>(i - 1)]))
            return TCL_ERROR;
    HxMessage::queueAnswers(indices);
    return TCL_OK;
}

int preference(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount < 2 || wordCount > 3) return HxScriptCommands::wrongArguments(interp, "preference");
    HxSettingsMgr* settings = HxSettingsMgr::getInstance();
    HxPreferences record = settings->getPreferences();
    McString error;
    if (wordCount == 3) {
        if (!record.set(words[1], words[2], error)) return fail(interp, error);
        settings->setPreferences(record, true);
    }
    McString value;
    if (!record.get(words[1], value, error)) return fail(interp, error);
    Tcl_VaSetResult(interp, "%s", value.c_str());
    return TCL_OK;
}

int materialColors(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount != 2) return HxScriptCommands::wrongArguments(interp, "materialColors");
    McString error;
    return HxMatDatabase::getTheDatabase()->load(words[1], error) ? TCL_OK : fail(interp, error);
}

} // namespace

void hxRegisterApplicationCommands()
{
    HxScriptCommands::add("echo", "echo TEXT ?TEXT ...?", "Prints the texts as one line.", echo);
    HxScriptCommands::add("quit", "quit ?CODE?",
                          "Ends the script and the program at once, with exit code 0 or the given one.",
                          quit);
    HxScriptCommands::add("app", "app send COMMAND HOST PORT",
                          "Runs a command, a single line, in another program of this kind that listens at a "
                          "port. The result is that of the command.",
                          app);
    HxScriptCommands::add("answer", "answer INDEX ?INDEX ...?",
                          "Answers the next modal questions by the index of their button, from 0. Without an "
                          "answer and without windows a question takes its escape button.",
                          answer);
    HxScriptCommands::add("preference", "preference NAME ?VALUE?",
                          "Reads or stores one preference by its field name, and tells its listeners. The "
                          "result is the value.",
                          preference);
    HxScriptCommands::add(
        "materialColors", "materialColors FILE",
        "Reads a file of names and colors, which materials of these names get from then on. "
        "Each line holds a name and three numbers from 0 to 1.",
        materialColors);
    HxScriptCommands::add(
        "help", "help ?WORD?",
        "Explains all commands of the program, the data objects and the editor, or one command, or all "
        "commands of one object.",
        hxHelpCommand);
    // Tcl's own exit would end the process in the middle of its objects.
    HxInterpreter::getTheInterpreter()->evalf("interp alias {} exit {} quit");
    // Lines of `puts` keep their order with those of `echo`, and none waits in a buffer when the program
    // ends.
    HxInterpreter::getTheInterpreter()->evalf("fconfigure stdout -buffering line");
}
