#pragma once

#include "hx/HxBase.h"
#include "mc/McHandle.h"
#include "mc/McString.h"

#include <vector>

class HxData;

/// Base of the editors that are attached to a data object. An attached editor is referenced by the host and
/// keeps its data object alive; it is detached when the data object leaves the pool.
class HxEditor : public HxBase
{
public:
    /// dataInterface: the interface that the editor works on.
    explicit HxEditor(McTypeId dataInterface);

    McTypeId getTypeId() const override;
    ~HxEditor() override;
    int parse(Tcl_Interp* interp, int wordCount, char** words) override;

    /// True if the object can be edited: it offers the declared interface.
    virtual bool typeCheck(HxData* data);
    virtual void startEditing(HxData* data) = 0;
    virtual void stopEditing() = 0;

    static void initClass();
    static McTypeId getClassTypeId();

    /// The label under which scripts speak to the editor while it edits; that of one at rest may be another.
    virtual const char* scriptName() const { return getLabel(); }

    /// What would be lost with the editor although its data are saved, as the end of the sentence "This will
    /// be lost: "; empty if nothing would.
    virtual McString unfinishedWork() const { return McString(); }

    /// The help page of this editor, a file of a package.
    void setHelpFile(const char* file, const char* package);
    McString helpPath() const { return helpFilePath; }

    /// Begins to edit: the object's former editor is detached, as is this one from its former object.
    /// Returns false, and changes nothing, when typeCheck refuses the object.
    bool attach(HxData* data);

    /// Ends the editing: stopEditing, then the object's editor entry is cleared and the host's reference
    /// dropped, which may delete the editor. Does nothing when the editor is not attached.
    void detach();

    /// The object that the editor is attached to, null when there is none.
    HxData* data() const;

    /// The editor that is attached to an object, null when there is none.
    static HxEditor* editorOf(const HxData* data);

    /// All editors that exist, attached or not, in the order of their making.
    static const std::vector<HxEditor*>& all();

    McTypeId dataInterface() const { return editedInterface; }

private:
    McTypeId editedInterface;
    McString helpFilePath;
    McHandle<HxData> attachedData;
    bool detaching = false; // stopEditing runs
};
