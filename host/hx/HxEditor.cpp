#include "hx/HxEditor.h"

#include "hx/HxClassRegistry.h"
#include "hx/HxData.h"
#include "hx/HxObjectPool.h"
#include "hx/HxSkin.h"

#include <map>

namespace {

/// The host's references on attached editors.
std::map<const HxData*, McHandle<HxEditor>>& attachedEditors()
{
    static std::map<const HxData*, McHandle<HxEditor>> editors;
    return editors;
}

std::vector<HxEditor*>& existingEditors()
{
    static std::vector<HxEditor*> editors;
    return editors;
}

void detachRemovedData()
{
    HxObjectPool* pool = HxObjectPool::getThePool();
    QObject::connect(pool->notifier(), &HxObjectPool::objectRemoved, pool, [](HxObject* object) {
        if (HxEditor* editor = HxEditor::editorOf(dynamic_cast<HxData*>(object))) editor->detach();
    });
}

} // namespace

HxEditor::HxEditor(McTypeId dataInterface) : editedInterface(dataInterface)
{
    existingEditors().push_back(this);
}

HxEditor::~HxEditor()
{
    std::erase(existingEditors(), this);
}

const std::vector<HxEditor*>& HxEditor::all()
{
    return existingEditors();
}

McTypeId HxEditor::getClassTypeId()
{
    return McTypeId::declare<HxEditor, HxBase>("HxEditor");
}

McTypeId HxEditor::getTypeId() const
{
    return getClassTypeId();
}

void HxEditor::initClass()
{
    getClassTypeId();
    HxClassRegistry::add("HxEditor", "HxBase");
}

int HxEditor::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    return HxBase::parse(interp, wordCount, words);
}

bool HxEditor::typeCheck(HxData* data)
{
    return data && data->getInterface(editedInterface);
}

void HxEditor::setHelpFile(const char* file, const char* package)
{
    helpFilePath = HxSkin::getGlobalInstance()->getPathToHelpFile(file, package);
}

bool HxEditor::attach(HxData* newData)
{
    if (attachedData == newData && newData) return true;
    if (!typeCheck(newData)) return false;
    [[maybe_unused]] static const bool connected = (detachRemovedData(), true);

    const McHandle<HxEditor> alive(this); // detaching may drop the last other reference
    if (HxEditor* former = editorOf(newData)) former->detach();
    detach();
    attachedData = newData;
    attachedEditors()[newData] = this;
    startEditing(newData);
    return true;
}

void HxEditor::detach()
{
    // stopEditing may ask for the data and the entry, so both stay until it has returned; a detach that it
    // causes itself ends here.
    if (!attachedData || detaching) return;
    const McHandle<HxEditor> alive(this);
    const McHandle<HxData> formerData = attachedData;
    detaching = true;
    stopEditing();
    detaching = false;
    attachedEditors().erase(formerData.get());
    attachedData = nullptr;
}

HxData* HxEditor::data() const
{
    return attachedData;
}

HxEditor* HxEditor::editorOf(const HxData* data)
{
    const auto found = attachedEditors().find(data);
    return found == attachedEditors().end() ? nullptr : found->second.get();
}
