#pragma once

#include "hx/HxScriptCall.h"
#include "mc/McDArray.h"
#include "mc/McHandable.h"
#include "mc/McInterface.h"
#include "mc/McString.h"
#include "mc/McTypeId.h"

#include <QObject>

#include <functional>
#include <tcl.h>

class SoNode;

/// Declares a class with its whole chain of bases, for its getClassTypeId().
template <class T, class Base>
McTypeId hxClassType(const char* name)
{
    Base::getClassTypeId();
    return McTypeId::declare<T, Base>(name);
}

/// Command names that an object reports besides those of its help table.
///
/// append() drops a name that is there already, and keeps the order of first appearance.
class HxCmdInfo
{
public:
    void append(const char* name, void* data = nullptr);
    int size() const { return entries.size(); }
    const char* name(int i) const { return entries[i].name; }
    void* data(int i) const { return entries[i].data; }

private:
    struct Entry
    {
        McString name;
        void* data = nullptr;
    };
    McDArray<Entry> entries;
};

/// A named thing that scripts can speak to: the base of data objects, modules and editors.
///
/// The label is a Tcl command as long as the object lives; its words go to parse(). Labels are
/// unique among all commands of the interpreter, so an object never takes the name of another
/// object or of a command.
class HxBase : public QObject, public McHandable, public McInterfaceOwner
{
    Q_OBJECT

public:
    HxBase();
    ~HxBase() override;

    static McTypeId getClassTypeId();
    virtual McTypeId getTypeId() const;

    /// Registers or renames the Tcl command. A name that is taken gets the smallest free number
    /// from 2 on before its suffix: "a.nrrd", "a2.nrrd". Colons that would make a namespace
    /// become '_'. An empty or null label removes the command.
    void setLabel(const char* label);
    /// Never null.
    const char* getLabel() const { return labelText; }

    /// Label of an object that is made from another: the base without its last suffix, a dot and
    /// the suffix. "brain.nrrd" and "Labels" give "brain.Labels".
    static McString composeLabel(const char* base, const char* suffix);

    /// Runs one script command: word 0 is the label, word 1 the command. Leaves the result or the
    /// message in the interpreter and returns TCL_OK or TCL_ERROR. Derived classes serve their own
    /// commands and hand all others to their base.
    virtual int parse(Tcl_Interp* interp, int wordCount, char** words);

    /// Usage and explanation of all commands; derived classes append to their base's list.
    virtual void commandHelp(McDArray<HxCommandHelp>& list) const;

    /// Sets the complaint about the number of words as result and returns TCL_ERROR. The number of
    /// leading words that the complaint is about is not used.
    int cmdError(Tcl_Interp* interp, int leadingWords, const char* command);

    HxCmdInfo& getCmdInfo() { return cmdInfo; }

    /// Puts a scene graph into, or takes it out of, the scenes of the 3D viewers. Nothing happens
    /// while there are no viewers.
    void showGeom(SoNode* root);
    void hideGeom(SoNode* root);
    /// Installed by whoever owns the 3D viewers; null takes it away.
    static void setGeomHandler(std::function<void(SoNode* root, bool show)> handler);

    McInterface* getInterface(McTypeId type) override;

protected:
    /// Called after the label has changed.
    virtual void labelChanged(const McString& oldLabel);

private:
    static int runCommand(ClientData self, Tcl_Interp* interp, int wordCount, const char** words);
    static void commandGone(ClientData self);
    McString uniqueLabel(const McString& wanted) const;
    bool isTaken(const char* name) const;
    void registerCommand();
    void unregisterCommand();
    int unknownCommand(const HxScriptCall& call) const;

    McString labelText;
    HxCmdInfo cmdInfo;
    Tcl_Command command = nullptr;
};
