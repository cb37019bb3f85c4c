#include "app/HxObjectMenu.h"

#include "app/HxMain.h"
#include "app/HxUnsavedData.h"
#include "app/HxWorkspace.h"
#include "hx/HxClassRegistry.h"
#include "hx/HxCompModule.h"
#include "hx/HxEditor.h"
#include "hx/HxInterpreter.h"
#include "hx/HxLabelField3.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxPackage.h"
#include "hx/HxResource.h"
#include "hx/HxScriptCommands.h"
#include "mc/McException.h"

#include <QMenu>

#include <tcl.h>

namespace {

bool isOrOffers(HxObject& object, const std::string& typeName)
{
    const McTypeId type = McTypeId::fromName(typeName.c_str());
    return type.isValid() && (object.getTypeId().isDerivedFrom(type) || object.getInterface(type));
}

const HxPackage::Editor* findEditor(HxObject* object)
{
    if (!dynamic_cast<HxData*>(object)) return nullptr;
    for (const HxPackage::Editor& editor : HxPackage::editors())
        if (isOrOffers(*object, editor.interfaceName)) return &editor;
    return nullptr;
}

/// Makes the editor; null, with the complaint told, if its package does not come.
McHandle<HxEditor> makeEditor(const std::string& className)
{
    std::string error;
    if (!HxClassRegistry::contains(className.c_str())) HxPackage::loadForClass(className.c_str(), error);
    McHandle<HxBase> made(HxClassRegistry::create(className.c_str()));
    McHandle<HxEditor> editor(dynamic_cast<HxEditor*>(made.get()));
    if (!editor) HxMessage::getTheMsg()->error("There is no editor %s. %s", className.c_str(), error.c_str());
    return editor;
}

bool isImage(HxObject* object)
{
    return dynamic_cast<HxRegScalarField3*>(object) && !dynamic_cast<HxLabelField3*>(object);
}

/// Through the command that scripts use, so that both make the same.
void makeLabels(HxObject* image)
{
    Tcl_Obj* words[] = {Tcl_NewStringObj("newLabels", -1), Tcl_NewStringObj(image->getLabel(), -1)};
    Tcl_Obj* command = Tcl_NewListObj(2, words);
    Tcl_IncrRefCount(command);
    McString result;
    const int code = HxInterpreter::getTheInterpreter()->eval(Tcl_GetString(command), result);
    Tcl_DecrRefCount(command);
    if (code != TCL_OK)
        HxMessage::getTheMsg()->error("%s", result.c_str());
    else
        hxEditObject(HxObjectPool::getThePool()->find(result)); // without an editor they are just there
}

void makeModule(const std::string& className, HxObject* input, HxWorkspace& workspace)
{
    McHandle<HxObject> made(HxResource::createObject(className.c_str()));
    auto* module = dynamic_cast<HxCompModule*>(made.get());
    if (!module) {
        HxMessage::getTheMsg()->error("There is no module %s.", className.c_str());
        return;
    }
    module->portData.connect(input);
    HxObjectPool::getThePool()->addObject(module);
    workspace.select(module);
}

void fillModules(QMenu& menu, HxObject* object, HxWorkspace& workspace)
{
    QMenu* modules = menu.addMenu(HxResource::readIcon("HxModule.png"), QObject::tr("Compute"));
    if (object)
        for (const HxPackage::Module& module : HxPackage::modules())
            for (const std::string& type : module.inputTypes)
                if (isOrOffers(*object, type)) {
                    const McHandle<HxObject> input(object);
                    modules->addAction(QString::fromStdString(module.className), [module, input, &workspace] {
                        makeModule(module.className, input, workspace);
                    });
                    break;
                }
    modules->menuAction()->setEnabled(!modules->isEmpty());
}

} // namespace

bool hxCanEdit(HxObject* object)
{
    return findEditor(object) != nullptr;
}

bool hxEditObject(HxObject* object)
{
    const HxPackage::Editor* announced = findEditor(object);
    if (!announced) return false;
    try {
        const McHandle<HxEditor> editor = makeEditor(announced->className);
        if (editor && !editor->attach(dynamic_cast<HxData*>(object)))
            HxMessage::getTheMsg()->error("\"%s\" cannot be edited.", object->getLabel());
    } catch (const McException& exception) {
        HxResource::handleException(exception);
    }
    return true;
}

bool hxRemoveByPerson(HxObject* object)
{
    const McHandle<HxObject> alive(object);
    if (auto* data = dynamic_cast<HxData*>(object))
        if (!hxMayDrop({McHandle<HxData>(data)})) return false;
    HxObjectPool::getThePool()->removeObject(object);
    return true;
}

void hxFillObjectMenu(QMenu& menu, HxObject* object, HxWorkspace& workspace)
{
    const McHandle<HxObject> kept(object);
    const McHandle<HxData> data(dynamic_cast<HxData*>(object));
    const auto add = [&menu](const char* icon, const QString& text, bool enabled, auto&& run) {
        QAction* action = menu.addAction(icon ? HxResource::readIcon(icon) : QIcon(), text,
                                         std::forward<decltype(run)>(run));
        action->setEnabled(enabled);
        return action;
    };

    add("HxEdit.png", QObject::tr("Edit Labels"), hxCanEdit(object), [kept] { hxEditObject(kept); });
    add("HxLabels.png", QObject::tr("New Labels"), isImage(object) && HxScriptCommands::find("newLabels"),
        [kept] { makeLabels(kept); });
    fillModules(menu, object, workspace);
    menu.addSeparator();
    add("HxSave.png", QObject::tr("Save"), data, [data] { HxMain::getTheMain()->saveData(data); });
    add("HxSave.png", QObject::tr("Save As..."), data, [data] { HxMain::getTheMain()->saveDataAs(data); });
    add(nullptr, QObject::tr("Rename"), object, [kept, &workspace] { workspace.rename(kept); });
    menu.addSeparator();
    add("HxRemove.png", QObject::tr("Remove"), object, [kept] { hxRemoveByPerson(kept); });
}
