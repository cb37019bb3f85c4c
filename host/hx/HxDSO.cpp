#include "hx/HxDSO.h"

#include "hx/HxPackage.h"

#include <QFileInfo>
#include <QString>

#include <dlfcn.h>

namespace {

/// The path in a package library folder, or the bare name for the system's search.
std::string locate(const std::string& fileName)
{
    if (fileName.find('/') != std::string::npos) return fileName;
    for (const std::string& folder : HxPackage::libraryFolders()) {
        const std::string path = folder + "/" + fileName;
        if (QFileInfo::exists(QString::fromStdString(path))) return path;
    }
    return fileName;
}

} // namespace

int HxDSO::open(const char* fileName)
{
    error.clear();
    handle = dlopen(locate(fileName).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle) return 0;
    const char* reason = dlerror();
    error = reason ? reason : "unknown reason";
    return -1;
}

void* HxDSO::getSymbol(const char* name) const
{
    // A null handle would make dlsym search the whole program.
    return handle ? dlsym(handle, name) : nullptr;
}
