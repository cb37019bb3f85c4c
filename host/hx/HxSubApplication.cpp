#include "hx/HxSubApplication.h"

#include "hx/HxClassRegistry.h"
#include "hx/HxResource.h"
#include "hx/HxSkin.h"

namespace {

HxSubApplication* current = nullptr;
bool switchedOff = false;

std::function<void(HxSubApplication*)>& switchHandler()
{
    static std::function<void(HxSubApplication*)> handler;
    return handler;
}

} // namespace

HxSubApplication::~HxSubApplication()
{
    // onStop of the derived class is gone by now; what is left is not to dangle.
    if (current == this) current = nullptr;
}

McTypeId HxSubApplication::getClassTypeId()
{
    return McTypeId::declare<HxSubApplication, HxBase>("HxSubApplication");
}

McTypeId HxSubApplication::getTypeId() const
{
    return getClassTypeId();
}

void HxSubApplication::initClass()
{
    getClassTypeId();
    HxClassRegistry::add("HxSubApplication", "HxBase");
}

void HxSubApplication::onStart()
{
    if (switchHandler()) switchHandler()(this);
}

void HxSubApplication::onStop()
{
    if (switchHandler()) switchHandler()(nullptr);
}

void HxSubApplication::makeCurrent()
{
    if (current == this) return;
    leaveRunning();
    current = this;
    onStart();
}

void HxSubApplication::leaveRunning()
{
    if (!current) return;
    HxSubApplication* leaving = current;
    const McHandle<HxSubApplication> alive(leaving);
    leaving->onStop();
    if (current == leaving) current = nullptr; // unless onStop has already started another
}

HxSubApplication* HxSubApplication::running()
{
    return current;
}

bool HxSubApplication::hasSubApplications()
{
    return !HxResource::mSubApplications.empty();
}

void HxSubApplication::switchOff()
{
    HxResource::mSubApplications.clear();
    switchedOff = true;
}

bool HxSubApplication::areSwitchedOff()
{
    return switchedOff;
}

void HxSubApplication::setHelpFile(const char* file, const char* package)
{
    helpFilePath = HxSkin::getGlobalInstance()->getPathToHelpFile(file, package);
}

void HxSubApplication::setSwitchHandler(std::function<void(HxSubApplication*)> handler)
{
    switchHandler() = std::move(handler);
}
