#pragma once

#include "hx/HxPackage.h"
#include "hx/HxResource.h"

#include <map>
#include <string>
#include <vector>

/// What one resource file of a package declares; its words are explained in HxPackage.
struct HxPackageFile
{
    std::vector<std::string> packages;
    std::map<std::string, std::string> packageOfClass;
    std::vector<HxPackage::Editor> editors;
    std::vector<HxPackage::Module> modules;
    std::vector<HxSubApplicationEntry> subApplications;

    /// Runs the file in an interpreter of its own, which can compute but not touch files or processes.
    /// Returns false with a sentence in `error` that names the file and the line.
    bool read(const char* path, std::string& error);
};
