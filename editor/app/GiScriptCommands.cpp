#include "app/GiScriptCommands.h"

#include "app/GiMaterialView3D.h"
#include "app/GiQ.h"
#include "app/GiQTissueList.h"
#include "app/GiQTissueListItem.h"
#include "app/GiQToolbox.h"
#include "app/HxGiEditor.h"
#include "app/HxGiSubApplication.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxMatDatabase.h"
#include "hx/HxObjectPool.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"
#include "mc/McInterface.h"
#include "qx/HxColorEditor.h"

#include <algorithm>
#include <string>

#include <tcl.h>

namespace {

int fail(Tcl_Interp* interp, const std::string& text)
{
    Tcl_VaSetResult(interp, "%s", text.c_str());
    return TCL_ERROR;
}

// segment

std::string dimsText(const HxLattice& lattice)
{
    const unsigned long* n = lattice.dims();
    return std::to_string(n[0]) + " x " + std::to_string(n[1]) + " x " + std::to_string(n[2]);
}

/// The data object of a name, or null with the complaint as result.
HxData* findData(Tcl_Interp* interp, const char* name)
{
    HxObject* object = HxObjectPool::getThePool()->find(name);
    if (!object) {
        fail(interp, std::string("segment: there is no object \"") + name + "\".");
        return nullptr;
    }
    auto* data = dynamic_cast<HxData*>(object);
    if (!data) fail(interp, std::string("segment: \"") + name + "\" is not a data object.");
    return data;
}

/// An image that a script names is meant, so what does not fit is an error and no reason to search.
bool checkImage(Tcl_Interp* interp, HxData* labels, HxData* image)
{
    const auto* labelLattice = mcinterface_cast<HxLabelLattice3>(labels);
    const auto* imageLattice = mcinterface_cast<HxLattice3>(image);
    const std::string name = std::string("segment: \"") + image->getLabel() + "\"";
    if (!imageLattice) return fail(interp, name + " is not an image.") == TCL_OK;
    if (!HxGiEditor::isImageType(imageLattice->primType()))
        return fail(interp, name + " has voxels of a type that the editor does not show.") == TCL_OK;
    if (imageLattice->numDataVars() != 1)
        return fail(interp, name + " has " + std::to_string(imageLattice->numDataVars()) +
                                " values per voxel; an image has one.") == TCL_OK;
    if (!std::equal(labelLattice->dims(), labelLattice->dims() + 3, imageLattice->dims()))
        return fail(interp, name + " has " + dimsText(*imageLattice) + " voxels, the labels " +
                                dimsText(*labelLattice) + ".") == TCL_OK;
    return true;
}

/// The editor that shows the labels: that of the mode or, if the program was started without modes, one in
/// the normal window. Null if they could not be opened.
HxGiEditor* openLabels(HxData* labels, HxData* image)
{
    if (HxSubApplication::areSwitchedOff()) return HxGiEditor::openInWindow(labels, image);
    HxGiEditor::clearWindow();
    HxGiSubApplication* application = HxGiSubApplication::instance();
    application->open(labels, image);
    HxGiEditor* editor = application->getEditor();
    return editor->getLabelData() == labels ? editor : nullptr;
}

int segment(Tcl_Interp* interp, int count, const char* const* words)
{
    if (count != 2 && count != 3) return HxScriptCommands::wrongArguments(interp, "segment");
    HxData* labels = findData(interp, words[1]);
    if (!labels) return TCL_ERROR;
    const auto* lattice = mcinterface_cast<HxLabelLattice3>(labels);
    if (!lattice) return fail(interp, std::string("segment: \"") + words[1] + "\" is not a label field.");
    const unsigned long side = *std::max_element(lattice->dims(), lattice->dims() + 3);
    if (side > HxGiEditor::kLargestSide)
        return fail(interp, std::string("segment: \"") + words[1] + "\" has a side of " +
                                std::to_string(side) + " voxels; the editor takes sides up to " +
                                std::to_string(HxGiEditor::kLargestSide) + ".");
    HxData* image = nullptr;
    if (count == 3) {
        image = findData(interp, words[2]);
        if (!image || !checkImage(interp, labels, image)) return TCL_ERROR;
    }
    const HxGiEditor* editor = openLabels(labels, image);
    if (!editor) return fail(interp, std::string("segment: \"") + words[1] + "\" could not be opened.");
    Tcl_VaSetResult(interp, "%s", editor->getLabel());
    return TCL_OK;
}

// material

/// Everything below goes the way of the list's own widgets, so that list, tables and viewers agree.
GiQTissueList& tissueList(GiQ& gi)
{
    return *gi.getToolbox()->tissueList;
}

int materialLock(Tcl_Interp* interp, GiQ& gi, int index, const char* value)
{
    int lock;
    if (!value) {
        Tcl_VaSetResult(interp, "%d", gi.locked[index] ? 1 : 0);
        return TCL_OK;
    }
    if (Tcl_GetBoolean(interp, value, &lock) != TCL_OK)
        return fail(interp, std::string("material: \"") + value + "\" is neither 0 nor 1.");
    tissueList(gi).lock(index, lock != 0);
    return TCL_OK;
}

/// The long name is what people read; the bundle's own name is what it is found by.
int materialName(Tcl_Interp* interp, GiQ& gi, int index, const char* value)
{
    HxParamBundle* material = gi.materials->bundle(index);
    McString longName;
    const bool hasLongName = material->findString("LongName", longName);
    if (!value) {
        Tcl_VaSetResult(interp, "%s", hasLongName ? static_cast<const char*>(longName) : material->getName());
        return TCL_OK;
    }
    const McString name = HxParamBase::cleanName(value);
    if (!hasLongName && name.length() == 0)
        return fail(interp,
                    std::string("material: \"") + value + "\" has no character that a name may hold.");
    const HxParamBundle* other = hasLongName ? nullptr : gi.materials->bundle(name, 0);
    const bool isTaken = other && other != material;
    const int count = gi.materials->nBundles();
    tissueList(gi).item(index, GiQTissueList::kName)->setText(QString::fromUtf8(value));
    const bool hasMerged = gi.materials->nBundles() < count;
    if (isTaken && !hasMerged) // the question whether to merge the two was not answered so
        return fail(interp, std::string("material: there is a material \"") + static_cast<const char*>(name) +
                                "\" already.");
    // The name rule may have changed the text; a script that goes on with the name must know it.
    Tcl_VaSetResult(interp, "%s", hasLongName ? value : static_cast<const char*>(name));
    return TCL_OK;
}

int materialColor(Tcl_Interp* interp, GiQ& gi, int index, const char* value)
{
    HxParamBundle* material = gi.materials->bundle(index);
    float rgb[3];
    if (!value) {
        if (!material->findColor(rgb)) {
            const McColor color = HxMatDatabase::getTheDatabase()->getColor(material->getName());
            rgb[0] = color.r, rgb[1] = color.g, rgb[2] = color.b;
        }
        for (const float component : rgb) Tcl_VaAppendElement(interp, "%g", static_cast<double>(component));
        return TCL_OK;
    }
    int n = 0;
    const char** words = nullptr;
    bool valid = Tcl_SplitList(interp, value, &n, &words) == TCL_OK && n == 3;
    for (int i = 0; valid && i < 3; ++i) {
        double component;
        valid = Tcl_GetDouble(interp, words[i], &component) == TCL_OK && component >= 0 && component <= 1;
        if (valid) rgb[i] = static_cast<float>(component);
    }
    if (words) Tcl_Free(reinterpret_cast<char*>(words));
    if (!valid)
        return fail(interp,
                    std::string("material: \"") + value + "\" is no color; give three numbers from 0 to 1.");
    HxColorEditor::setNextAnswer(true, rgb[0], rgb[1], rgb[2]);
    tissueList(gi).editColor(index);
    return TCL_OK;
}

/// 0 hidden, else the way in which the slice viewers draw the material.
int materialStyle2D(Tcl_Interp* interp, GiQ& gi, int index, const char* value)
{
    constexpr int kLastStyle = 4;
    int style;
    if (value) {
        if (Tcl_GetInt(interp, value, &style) != TCL_OK || style < 0 || style > kLastStyle)
            return fail(interp, std::string("material: \"") + value + "\" is no style from 0 to 4.");
        tissueList(gi).itemOf(index)->setDrawStyle2D(static_cast<unsigned int>(style));
    }
    Tcl_VaSetResult(interp, "%d", gi.drawStyle2D[index]);
    return TCL_OK;
}

/// The view's own answer: with volume rendering on, its renderer keeps the flags.
bool isVisible3D(GiQ& gi, int index)
{
    GiMaterialView3D* view = tissueList(gi).getView3D();
    if (!view) return gi.visible3D[index] != 0;
    bool visible[GiMaterialView3D::kLabels] = {};
    view->get3DVisibility(visible);
    return visible[index];
}

int materialShow3D(Tcl_Interp* interp, GiQ& gi, int index, const char* value)
{
    int on;
    if (value) {
        if (Tcl_GetBoolean(interp, value, &on) != TCL_OK)
            return fail(interp, std::string("material: \"") + value + "\" is neither 0 nor 1.");
        if (!tissueList(gi).getView3D()) return fail(interp, "material: there is no 3D view.");
        tissueList(gi).itemOf(index)->setShow3D(on != 0);
        tissueList(gi).itemOf(index)->slotShow3D(on != 0);
    }
    Tcl_VaSetResult(interp, "%d", isVisible3D(gi, index) ? 1 : 0);
    return TCL_OK;
}

int material(Tcl_Interp* interp, int count, const char* const* words)
{
    if (count != 3 && count != 4) return HxScriptCommands::wrongArguments(interp, "material");
    GiQ* gi = HxGiEditor::activeGi();
    if (!gi) return fail(interp, "material: no label field is open; use segment first.");
    int index;
    if (Tcl_GetInt(interp, words[1], &index) != TCL_OK)
        return fail(interp, std::string("material: \"") + words[1] + "\" is not a number.");
    const int n = std::min(gi->materials->nBundles(), 256); // a label is a byte
    if (index < 0 || index >= n)
        return fail(interp, "material: there is no material " + std::to_string(index) + "; there are " +
                                std::to_string(n) + ", from 0.");
    // Who adds a material without a word leaves the list behind.
    if (!tissueList(*gi).itemOf(index)) tissueList(*gi).updateRows();
    const char* value = count == 4 ? words[3] : nullptr;
    const std::string what = words[2];
    if (what == "lock") return materialLock(interp, *gi, index, value);
    if (what == "name") return materialName(interp, *gi, index, value);
    if (what == "color") return materialColor(interp, *gi, index, value);
    if (what == "style2D") return materialStyle2D(interp, *gi, index, value);
    if (what == "show3D") return materialShow3D(interp, *gi, index, value);
    return fail(interp, "material: \"" + what + "\" is unknown; use lock, name, color, style2D or show3D.");
}

} // namespace

void giAddScriptCommands()
{
    HxScriptCommands::add("segment", "segment LABELS ?IMAGE?",
                          "Opens a label field for segmentation, over the given image or one that fits, in "
                          "the segmentation mode, or in the normal window of a program that was started with "
                          "--in-window; the editor answers under the name that is the result.",
                          segment);
    HxScriptCommands::add("material", "material INDEX lock|name|color|style2D|show3D ?VALUE?",
                          "Reads or sets the lock (0 or 1), the name, the color (three numbers from 0 to 1), "
                          "the style in slices "
                          "(0 hidden, 1 outline, 2 hatched, 3 dotted, 4 light dots) or whether the 3D view "
                          "shows it (0 or 1), of "
                          "a material of the open label field. A name that another material has merges the "
                          "two if the question is "
                          "answered so. Setting a name gives the name that the material got: letters, "
                          "digits and _-. stay, blanks become _, all else is dropped.",
                          material);
}
