#include "hx/HxResource.h"

#include "hx/HxClassRegistry.h"
#include "hx/HxMessage.h"
#include "hx/HxObject.h"
#include "hx/HxPackage.h"
#include "hx/HxSubApplication.h"
#include "mc/McException.h"

namespace {

/// Makes sure that the class is registered; a package that cannot be loaded is reported.
bool provideClass(const char* className)
{
    if (HxClassRegistry::contains(className)) return true;
    std::string error;
    if (!HxPackage::loadForClass(className, error) && !error.empty())
        HxMessage::getTheMsg()->printf("%s", error.c_str());
    return HxClassRegistry::contains(className);
}

} // namespace

// Here, where the class of the handle is complete.
HxSubApplicationEntry::HxSubApplicationEntry() = default;
HxSubApplicationEntry::~HxSubApplicationEntry() = default;
HxSubApplicationEntry::HxSubApplicationEntry(const HxSubApplicationEntry&) = default;
HxSubApplicationEntry& HxSubApplicationEntry::operator=(const HxSubApplicationEntry&) = default;

std::vector<HxSubApplicationEntry> HxResource::mSubApplications;

HxObject* HxResource::createObject(const char* className)
{
    // Asked before the object is made: an editor, say, would build its windows only to be thrown away.
    if (!provideClass(className) || !HxClassRegistry::isDerived(className, "HxObject")) return nullptr;
    return dynamic_cast<HxObject*>(HxClassRegistry::create(className));
}

HxSubApplication* HxResource::subApplication(const char* className)
{
    for (HxSubApplicationEntry& entry : mSubApplications) {
        if (entry.className != className) continue;
        if (!entry.instance && provideClass(className))
            entry.instance = dynamic_cast<HxSubApplication*>(HxClassRegistry::create(className));
        return entry.instance;
    }
    return nullptr;
}

void HxResource::handleException(const McException& exception, int consoleOnly)
{
    if (consoleOnly)
        HxMessage::getTheMsg()->printf("%s", exception.what());
    else
        HxMessage::getTheMsg()->error("%s", exception.what());
}
