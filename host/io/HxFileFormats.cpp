#include "io/HxFileFormats.h"

#include "hx/HxFileAccess.h"
#include "hx/HxRegScalarField3.h"
#include "io/HxFileError.h"
#include "io/HxFileReader.h"
#include "io/HxFileWriter.h"

namespace {

HxData* readData(const McDArray<McString>& paths, bool asLabels, McString& error)
{
    std::vector<std::string> names;
    for (int i = 0; i < paths.size(); ++i) names.push_back(paths[i].str());
    try {
        return hxReadFiles(names, asLabels);
    } catch (const HxFileError& failure) {
        error = failure.what();
        return nullptr;
    }
}

bool writeData(HxData* data, const char* path, HxFileAccess::Form form, McString& error)
{
    const auto* field = dynamic_cast<const HxRegScalarField3*>(data);
    if (!field) {
        error = McString(path) + ": only images and label fields can be saved in a volume file.";
        return false;
    }
    try {
        error = hxWriteFile(*field, path, form == HxFileAccess::Form::own);
        return true;
    } catch (const HxFileError& failure) {
        error = failure.what();
        return false;
    }
}

} // namespace

void hxRegisterFileFormats()
{
    HxFileAccess::setReader(readData);
    HxFileAccess::setWriter(writeData);
}
