#include "main/HxHelpCommand.h"

#include "hx/HxEditor.h"
#include "hx/HxObjectPool.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"

#include <tcl.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::string explained(const std::string& usage, const std::string& text)
{
    return usage + "\n    " + text + "\n";
}

/// Everything that scripts can speak to: the pool's members and the editors.
std::vector<const HxBase*> speakers()
{
    std::vector<const HxBase*> all(HxEditor::all().begin(), HxEditor::all().end());
    const HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i) all.push_back(pool->object(i));
    return all;
}

McDArray<HxCommandHelp> commandsOf(const HxBase* speaker)
{
    McDArray<HxCommandHelp> list;
    speaker->commandHelp(list);
    return list;
}

std::string helpOnAll()
{
    std::string text;
    for (const HxScriptCommands::Entry* entry : HxScriptCommands::all())
        text += explained(entry->usage, entry->help);
    return text + "The name of each object is a command, too: \"help NAME\" explains what it answers.";
}

std::string helpOnSpeaker(const HxBase* speaker)
{
    std::string text;
    const McDArray<HxCommandHelp> list = commandsOf(speaker);
    for (int i = 0; i < list.size(); ++i)
        text +=
            explained(std::string(speaker->getLabel()) + " " + list[i].usage.c_str(), list[i].text.c_str());
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

/// The commands of this name, of the program and of the objects; each explanation once.
std::string helpOnCommand(const char* word)
{
    std::vector<std::string> found;
    if (const HxScriptCommands::Entry* entry = HxScriptCommands::find(word))
        found.push_back(explained(entry->usage, entry->help));
    for (const HxBase* speaker : speakers()) {
        const McDArray<HxCommandHelp> list = commandsOf(speaker);
        for (int i = 0; i < list.size(); ++i) {
            if (!(list[i].name == word)) continue;
            const std::string text =
                explained(std::string("NAME ") + list[i].usage.c_str(), list[i].text.c_str());
            if (std::find(found.begin(), found.end(), text) == found.end()) found.push_back(text);
        }
    }
    std::string text;
    for (const std::string& each : found) text += each;
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

} // namespace

int hxHelpCommand(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount > 2) return HxScriptCommands::wrongArguments(interp, words[0]);
    std::string text;
    if (wordCount == 1) {
        text = helpOnAll();
    } else {
        for (const HxBase* speaker : speakers())
            if (std::string(speaker->getLabel()) == words[1]) text = helpOnSpeaker(speaker);
        if (text.empty()) text = helpOnCommand(words[1]);
        if (text.empty()) {
            Tcl_VaSetResult(interp, "help: no command or object \"%s\".", words[1]);
            return TCL_ERROR;
        }
    }
    Tcl_VaSetResult(interp, "%s", text.c_str());
    return TCL_OK;
}
