#include "main/HxDataCommands.h"

#include "hx/HxClassRegistry.h"
#include "hx/HxFileAccess.h"
#include "hx/HxLabelField3.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxObjectPool.h"
#include "hx/HxOrientation.h"
#include "hx/HxRegScalarField3.h"
#include "hx/HxResource.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"

#include <tcl.h>

#include <cstring>
#include <vector>

namespace {

int addAndAnswer(Tcl_Interp* interp, const McHandle<HxObject>& object)
{
    HxObjectPool::getThePool()->addObject(object);
    Tcl_VaSetResult(interp, "%s", object->getLabel());
    return TCL_OK;
}

int load(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    int first = 1;
    const bool asLabels = first < wordCount && std::strcmp(words[first], "-labels") == 0;
    if (asLabels) ++first;
    if (first == wordCount) return HxScriptCommands::wrongArguments(interp, "load");

    McDArray<McString> paths;
    for (int i = first; i < wordCount; ++i) paths.append(words[i]);
    McString error;
    const McHandle<HxObject> data = HxFileAccess::load(paths, asLabels, error);
    if (!data) {
        Tcl_VaSetResult(interp, "%s", error.c_str());
        return TCL_ERROR;
    }
    return addAndAnswer(interp, data);
}

int create(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount < 2 || wordCount > 3) return HxScriptCommands::wrongArguments(interp, "create");
    const McHandle<HxObject> object = HxResource::createObject(words[1]);
    if (!object) {
        std::string known;
        for (const std::string& name : HxClassRegistry::creatable())
            if (HxClassRegistry::isDerived(name.c_str(), "HxObject"))
                known += (known.empty() ? "" : ", ") + name;
        Tcl_VaSetResult(interp, "create: no class \"%s\" to make objects of; there are %s.", words[1],
                        known.c_str());
        return TCL_ERROR;
    }
    if (wordCount == 3) object->setLabel(words[2]);
    return addAndAnswer(interp, object);
}

/// The image of this label, or null with a message.
HxRegScalarField3* findImage(Tcl_Interp* interp, const char* command, const char* label)
{
    HxObject* object = HxObjectPool::getThePool()->find(label);
    if (!object) {
        Tcl_VaSetResult(interp, "%s: no object \"%s\".", command, label);
        return nullptr;
    }
    auto* field = dynamic_cast<HxRegScalarField3*>(object);
    if (!field || dynamic_cast<HxLabelField3*>(object)) {
        Tcl_VaSetResult(interp, "%s: \"%s\" is not an image.", command, label);
        return nullptr;
    }
    return field;
}

/// The material that a person paints with first.
void addInside(HxLabelField3* labels)
{
    auto* inside = new HxParamBundle("Inside");
    inside->set("Color", "0.64 0 0.8");
    labels->materials()->insert(inside);
}

int newLabels(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount != 2) return HxScriptCommands::wrongArguments(interp, "newLabels");
    HxRegScalarField3* image = findImage(interp, words[0], words[1]);
    if (!image) return TCL_ERROR;

    auto* lattice = new HxLabelLattice3(image->coords()->clone());
    HxLabelField3* labels = lattice->create();
    const McHandle<HxObject> alive(labels);
    labels->setLabel(HxBase::composeLabel(image->getLabel(), "Labels"));
    lattice->clear();
    labels->touchMinMax(0, 0, 1);
    labels->imageConnection().connect(image);
    HxOrientation::copy(image->parameters, labels->parameters);
    addInside(labels);
    return addAndAnswer(interp, alive);
}

int objects(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount > 2) return HxScriptCommands::wrongArguments(interp, "objects");
    const char* pattern = wordCount == 2 ? words[1] : "*";
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i) {
        const char* label = pool->object(i)->getLabel();
        if (Tcl_StringMatch(label, pattern))
            Tcl_ListObjAppendElement(interp, list, Tcl_NewStringObj(label, -1));
    }
    Tcl_SetObjResult(interp, list);
    return TCL_OK;
}

int removeObjects(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount < 2) return HxScriptCommands::wrongArguments(interp, "remove");
    HxObjectPool* pool = HxObjectPool::getThePool();
    // Looked up first, so that a wrong name leaves all objects in place.
    std::vector<McHandle<HxObject>> found;
    for (int i = 1; i < wordCount; ++i) {
        HxObject* object = pool->find(words[i]);
        if (!object) {
            Tcl_VaSetResult(interp, "remove: no object \"%s\".", words[i]);
            return TCL_ERROR;
        }
        found.emplace_back(object);
    }
    for (const McHandle<HxObject>& object : found) pool->removeObject(object);
    return TCL_OK;
}

} // namespace

void hxRegisterDataCommands()
{
    HxScriptCommands::add("load", "load ?-labels? FILE ?FILE ...?",
                          "Reads a data file; several files, or a folder, are one series. -labels makes a "
                          "label field of an image of whole numbers from 0 to 255. The result is the new "
                          "object's name.",
                          load);
    HxScriptCommands::add("create", "create CLASS ?NAME?",
                          "Makes an object or a module. The result is its name, which has a number when NAME "
                          "is taken.",
                          create);
    HxScriptCommands::add("newLabels", "newLabels IMAGE",
                          "Makes an empty label field over an image, with the materials Exterior and Inside. "
                          "The result is its name.",
                          newLabels);
    HxScriptCommands::add("objects", "objects ?PATTERN?",
                          "Lists the names of all objects, or of those that match a pattern with * and ?.",
                          objects);
    HxScriptCommands::add("remove", "remove NAME ?NAME ...?",
                          "Removes objects. If one of the names is wrong, none is removed.", removeObjects);
}
