#include "hx/HxData.h"

#include "hx/HxField3.h"
#include "hx/HxFileAccess.h"
#include "hx/HxLattice3.h"
#include "hx/HxNumberText.h"
#include "hx/HxParamPath.h"
#include "mc/McElementType.h"

#include <algorithm>
#include <climits>

namespace {

/// The lattice of the object; null, with the complaint as result, if it has none.
HxLattice3* latticeFor(HxData& data, const HxScriptCall& call)
{
    auto* lattice = mcinterface_cast<HxLattice3>(&data);
    if (!lattice) call.error(McString("an object of class ") + data.getTypeId().name() + " has no voxels");
    return lattice;
}

int runDims(HxData& data, const HxScriptCall& call)
{
    const HxLattice3* lattice = latticeFor(data, call);
    if (!lattice) return TCL_ERROR;
    const unsigned long* n = lattice->dims();
    return call.result(McString::printf("%lu %lu %lu", n[0], n[1], n[2]));
}

int runBoundingBox(HxData& data, const HxScriptCall& call)
{
    const HxLattice3* lattice = latticeFor(data, call);
    return lattice ? call.result(6, lattice->coords()->boundingBox()) : TCL_ERROR;
}

int runVoxelSize(HxData& data, const HxScriptCall& call)
{
    const HxLattice3* lattice = latticeFor(data, call);
    if (!lattice) return TCL_ERROR;
    const McVec3f size = lattice->coords()->voxelSize();
    const float values[3] = {size.x, size.y, size.z};
    return call.result(3, values);
}

int runRange(HxData& data, const HxScriptCall& call)
{
    auto* field = dynamic_cast<HxField3*>(&data);
    if (!field)
        return call.error(McString("an object of class ") + data.getTypeId().name() + " has no values");
    double min, max;
    field->getRange(min, max);
    return call.result((hxNumberText(min) + " " + hxNumberText(max)).c_str());
}

int runValue(HxData& data, const HxScriptCall& call)
{
    const HxLattice3* lattice = latticeFor(data, call);
    if (!lattice) return TCL_ERROR;
    static const char* const kNames[3] = {"I", "J", "K"};
    McVec3i index;
    for (int axis = 0; axis < 3; axis++) {
        const long limit = static_cast<long>(std::min<unsigned long>(lattice->dims()[axis], INT_MAX));
        long number;
        if (!call.getIndex(2 + axis, limit, kNames[axis], number)) return TCL_ERROR;
        index[axis] = static_cast<int>(number);
    }
    const double value = lattice->getValue(index);
    return call.result(lattice->primType() == kMcFloat ? hxNumberText(static_cast<float>(value)).c_str()
                                                       : hxNumberText(value).c_str());
}

int runSave(HxData& data, const HxScriptCall& call)
{
    McString error;
    if (data.save(call.word(2), error)) return call.ok();
    return call.error(error);
}

int runParameters(HxData& data, const HxScriptCall& call)
{
    McString text;
    if (!call.has(3)) {
        if (!hxReadParameter(data.parameters, call.has(2) ? call.word(2) : "", text)) return call.error(text);
        return call.result(text);
    }
    if (!hxWriteParameter(data.parameters, call.word(2), call.word(3), text)) return call.error(text);
    data.touch(HxObject::kParametersChanged);
    return call.ok();
}

const HxCommand<HxData> kCommands[] = {
    {"dims", "dims", "Gives the number of voxels along x, y and z.", 0, 0, runDims},
    {"bbox", "bbox", "Gives the box through the centres of the outer voxels: xmin xmax ymin ymax zmin zmax.",
     0, 0, runBoundingBox},
    {"voxelSize", "voxelSize",
     "Gives the size of a voxel along x, y and z; for stacked slices the mean along z.", 0, 0, runVoxelSize},
    {"range", "range", "Gives the smallest and the largest value.", 0, 0, runRange},
    {"value", "value I J K", "Gives the value of a voxel, counted from 0.", 3, 3, runValue},
    {"save", "save FILE", "Writes the object to a file, whose form follows from its suffix.", 1, 1, runSave},
    {"parameters", "parameters ?PATH? ?VALUE?",
     "Reads or sets a parameter, such as Materials/Liver/Color; lists the entries of a bundle.", 0, 2,
     runParameters},
};

} // namespace

HxData::HxData() = default;

HxData::~HxData() = default;

McTypeId HxData::getClassTypeId()
{
    return hxClassType<HxData, HxObject>("HxData");
}

const char* HxData::getFilename() const
{
    return hasFile() ? filename.c_str() : getLabel();
}

bool HxData::save(const char* path, McString& error)
{
    if (!writeFile(path, error)) return false;
    setFilename(path);
    setModified(false);
    return true;
}

void HxData::setModified(bool on)
{
    if (modified == on) return;
    modified = on;
    emit modifiedChanged(on);
}

bool HxData::writeFile(const char* path, McString& error)
{
    return HxFileAccess::write(this, path, HxFileAccess::Form::bySuffix, error);
}

void HxData::touch(unsigned int mask)
{
    HxObject::touch(mask);
    setModified(true);
    emit dataObjectTouched(mask);
}

int HxData::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    int code;
    if (hxRunCommand(kCommands, *this, HxScriptCall(interp, wordCount, words), code)) return code;
    return HxObject::parse(interp, wordCount, words);
}

void HxData::commandHelp(McDArray<HxCommandHelp>& list) const
{
    HxObject::commandHelp(list);
    hxAppendHelp(kCommands, list);
}
