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
    if (folder.empty()) {
        const std::vector<std::string> folders = HxPackage::resourceFolders();
        folder = (folders.empty() ? std::string() : folders.front() + "/") + package;
    }
    return folder + "/" + file;
}
