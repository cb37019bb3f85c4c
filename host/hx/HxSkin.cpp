#include "hx/HxSkin.h"

#include "hx/HxPackage.h"

HxSkin* HxSkin::getGlobalInstance()
{
    static HxSkin skin;
    return &skin;
}

McString HxSkin::getPathToHelpFile(const char* file, const char* package) const
{
    std::string folder = HxPackage::resourceFolder(package);
    if (folder.empty()) folder = HxPackage::resourceFolders().front() + "/" + package;
    return folder + "/" + file;
}
