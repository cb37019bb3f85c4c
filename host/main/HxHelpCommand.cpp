#include "main/HxHelpCommand.h"

#include "hx/HxClassRegistry.h"
#include "hx/HxColormap.h"
#include "hx/HxEditor.h"
#include "hx/HxLineSet.h"
#include "hx/HxObjectPool.h"
#include "hx/HxPackage.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"
#include "hx/HxSpreadSheet.h"
#include "hx/HxUniformLabelField3.h"
#include "hx/HxUniformScalarField3.h"
#include "mc/McElementType.h"

#include <tcl.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace {

std::string explained(const std::string& usage, const std::string& text)
{
    return usage + "\n    " + text + "\n";
}

/// A kind of object, shown by one that never enters the pool.
struct Sample
{
    const char* title;
    McHandle<HxBase> object;
};

/// One of each class that has commands, so that these are explained before there is an object. A class comes
/// after those that it shares commands with.
std::vector<Sample> samples()
{
    const unsigned long dims[3] = {1, 1, 1};
    return {{"Images and label fields answer:", new HxUniformScalarField3(dims, kMcUnsignedChar)},
            {"Label fields also answer:", new HxUniformLabelField3(dims)},
            {"Color maps also answer:", new HxColormap},
            {"Line sets also answer:", new HxLineSet},
            {"Spread sheets also answer:", new HxSpreadSheet}};
}

/// The editors that stand; before the first one is opened, one of each announced class.
std::vector<McHandle<HxEditor>> editors()
{
    std::vector<McHandle<HxEditor>> all(HxEditor::all().begin(), HxEditor::all().end());
    if (!all.empty()) return all;
    for (const HxPackage::Editor& announced : HxPackage::editors()) {
        const McHandle<HxBase> made(HxClassRegistry::create(announced.className.c_str()));
        if (auto* editor = dynamic_cast<HxEditor*>(made.get())) all.emplace_back(editor);
    }
    return all;
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

/// A section with those commands that no section before explained. `shown` gathers them.
std::string section(const std::string& title, const std::string& name, const HxBase* speaker,
                    std::set<std::string>& shown)
{
    std::string text;
    const McDArray<HxCommandHelp> list = commandsOf(speaker);
    for (int i = 0; i < list.size(); ++i) {
        const std::string usage = name + " " + list[i].usage.c_str();
        const std::string entry = explained(usage, list[i].text.c_str());
        if (shown.insert(entry).second) text += entry;
    }
    return text.empty() ? text : "\n" + title + "\n" + text;
}

std::string helpOnAll()
{
    std::string text;
    for (const HxScriptCommands::Entry* entry : HxScriptCommands::all())
        text += explained(entry->usage, entry->help);
    text += "\nThe name of an object is a command, too; NAME stands for it here.\n";
    std::set<std::string> shown;
    for (const Sample& sample : samples()) text += section(sample.title, "NAME", sample.object, shown);
    for (const McHandle<HxEditor>& editor : editors())
        text +=
            section(std::string("The editor ") + editor->scriptName() + " answers:", "EDITOR", editor, shown);
    return text + "\n\"help NAME\" explains what one object answers, its ports included.";
}

std::string helpOnSpeaker(const HxBase* speaker, const char* name)
{
    std::string text;
    const McDArray<HxCommandHelp> list = commandsOf(speaker);
    for (int i = 0; i < list.size(); ++i)
        text += explained(std::string(name) + " " + list[i].usage.c_str(), list[i].text.c_str());
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

/// All commands of one object or editor; empty if there is none of this name.
std::string helpOnName(const std::string& name)
{
    for (const HxBase* speaker : speakers())
        if (speaker->getLabel() == name) return helpOnSpeaker(speaker, name.c_str());
    for (const McHandle<HxEditor>& editor : editors())
        if (editor->scriptName() == name) return helpOnSpeaker(editor, name.c_str());
    return {};
}

/// The commands of this name, of the program and of the objects; each explanation once.
std::string helpOnCommand(const char* word)
{
    std::vector<std::string> found;
    if (const HxScriptCommands::Entry* entry = HxScriptCommands::find(word))
        found.push_back(explained(entry->usage, entry->help));
    const std::vector<Sample> kinds = samples();
    std::vector<const HxBase*> all;
    const std::vector<McHandle<HxEditor>> allEditors = editors();
    for (const Sample& sample : kinds) all.push_back(sample.object);
    for (const McHandle<HxEditor>& editor : allEditors) all.push_back(editor);
    for (const HxBase* speaker : speakers()) all.push_back(speaker);
    for (const HxBase* speaker : all) {
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
        text = helpOnName(words[1]);
        if (text.empty()) text = helpOnCommand(words[1]);
        if (text.empty()) {
            Tcl_VaSetResult(interp, "help: no command or object \"%s\".", words[1]);
            return TCL_ERROR;
        }
    }
    Tcl_VaSetResult(interp, "%s", text.c_str());
    return TCL_OK;
}
