#include "hx/HxPackage.h"

#include "hx/HxDSO.h"
#include "hx/HxMessage.h"
#include "hx/HxPackageFile.h"
#include "hx/HxResource.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <map>
#include <utility>

namespace {

using InitFunction = void (*)();
using FinishFunction = void (*)();
using StampFunction = const char* (*)();

struct LoadedPackage
{
    std::string name;
    FinishFunction finish;
};

/// Everything that the packages have brought so far.
struct State
{
    std::vector<LoadedPackage> loaded; // in the order of loading
    std::vector<std::string> announced;
    std::map<std::string, std::string> packageOfClass;
    std::map<std::string, std::string> resourceFolderOfPackage;
    std::vector<std::string> addedLibraryFolders;
    std::vector<HxPackage::Editor> editors;
    std::vector<HxPackage::Module> modules;
};

State& state()
{
    static State theState;
    return theState;
}

std::string besideProgram(const char* relative)
{
    if (!QCoreApplication::instance()) return {};
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + "/" + relative).toStdString();
}

template <class Function>
Function symbol(const HxDSO& library, const std::string& name)
{
    return reinterpret_cast<Function>(library.getSymbol(name.c_str()));
}

} // namespace

bool HxPackage::isLoaded(const char* name)
{
    const auto& loaded = state().loaded;
    return std::any_of(loaded.begin(), loaded.end(),
                       [name](const LoadedPackage& package) { return package.name == name; });
}

bool HxPackage::load(const char* name, std::string& error)
{
    if (isLoaded(name)) return true;
    const std::string package = name;
    const std::string library = "lib" + package + ".so";

    HxDSO dso;
    if (dso.open(library.c_str()) != 0) {
        error = "Package " + package + ": " + dso.errorText() + ".";
        return false;
    }
    const std::string prefix = "vorelpackage_" + package;
    const auto stamp = symbol<StampFunction>(dso, prefix);
    const auto init = symbol<InitFunction>(dso, prefix + "_init");
    const auto finish = symbol<FinishFunction>(dso, prefix + "_finish");
    if (!stamp || !init || !finish) {
        const std::string missing = !stamp ? prefix : !init ? prefix + "_init" : prefix + "_finish";
        error = "Package " + package + ": " + library + " has no function " + missing + ".";
        return false;
    }
    const char* built = stamp();
    if (!built || std::string(built) != kHxPackageStamp) {
        error = "Package " + package + ": " + library + " was built for \"" + (built ? built : "") +
                "\", this program is \"" + kHxPackageStamp + "\".";
        return false;
    }
    // Listed before its init runs, so that an init that asks for a class of its own does not load it again.
    state().loaded.push_back({package, finish});
    init();
    return true;
}

bool HxPackage::loadForClass(const char* className, std::string& error)
{
    const auto found = state().packageOfClass.find(className);
    return found != state().packageOfClass.end() && load(found->second.c_str(), error);
}

void HxPackage::finishAll()
{
    while (!state().loaded.empty()) {
        const LoadedPackage last = state().loaded.back();
        state().loaded.pop_back();
        last.finish();
    }
}

bool HxPackage::readResourceFile(const char* path, std::string& error)
{
    HxPackageFile file;
    if (!file.read(path, error)) return false;

    State& s = state();
    const QString folder = QFileInfo(QString::fromUtf8(path)).absolutePath();
    for (const std::string& package : file.packages) {
        s.announced.push_back(package);
        s.resourceFolderOfPackage[package] = folder.toStdString() + "/" + package;
    }
    for (const auto& [className, package] : file.packageOfClass) s.packageOfClass[className] = package;
    s.editors.insert(s.editors.end(), file.editors.begin(), file.editors.end());
    s.modules.insert(s.modules.end(), file.modules.begin(), file.modules.end());
    for (const HxSubApplicationEntry& entry : file.subApplications)
        HxResource::mSubApplications.push_back(entry);
    return true;
}

int HxPackage::start()
{
    int failures = 0;
    std::string error;
    const auto report = [&] {
        HxMessage::getTheMsg()->printf("%s", error.c_str());
        ++failures;
    };
    for (const std::string& folder : resourceFolders()) {
        const QDir dir(QString::fromStdString(folder));
        for (const QString& name : dir.entryList({"*.rc.tcl"}, QDir::Files, QDir::Name))
            if (!readResourceFile(dir.filePath(name).toUtf8().constData(), error)) report();
    }
    for (const std::string& package : std::exchange(state().announced, {}))
        if (!load(package.c_str(), error)) report();
    return failures;
}

std::vector<std::string> HxPackage::resourceFolders()
{
    std::vector<std::string> folders;
    const QString given = qEnvironmentVariable("VOREL_RESOURCES");
    if (given.isEmpty()) {
        folders.push_back(besideProgram("../share/vorel"));
        return folders;
    }
    for (const QString& folder : given.split(':', Qt::SkipEmptyParts))
        folders.push_back(folder.toStdString());
    return folders;
}

std::vector<std::string> HxPackage::libraryFolders()
{
    std::vector<std::string> folders = state().addedLibraryFolders;
    folders.push_back(besideProgram("../lib"));
    return folders;
}

void HxPackage::addLibraryFolder(const char* path)
{
    state().addedLibraryFolders.push_back(path);
}

std::string HxPackage::resourceFolder(const char* package)
{
    const auto& folders = state().resourceFolderOfPackage;
    const auto found = folders.find(package);
    return found == folders.end() ? std::string() : found->second;
}

std::string HxPackage::findResource(const char* file)
{
    for (const auto& [package, folder] : state().resourceFolderOfPackage) {
        const std::string path = folder + "/" + file;
        if (QFileInfo::exists(QString::fromStdString(path))) return path;
    }
    return {};
}

const std::vector<HxPackage::Editor>& HxPackage::editors()
{
    return state().editors;
}

const std::vector<HxPackage::Module>& HxPackage::modules()
{
    return state().modules;
}
