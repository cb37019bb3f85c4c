#include "hx/HxClassRegistry.h"

#include "hx/HxColormap.h"
#include "hx/HxCompModule.h"
#include "hx/HxLineSet.h"
#include "hx/HxSpreadSheet.h"

void hxRegisterHostClasses()
{
    HxClassRegistry::add("HxBase", nullptr);
    HxClassRegistry::add("HxObject", "HxBase");
    HxClassRegistry::add("HxData", "HxObject");
    HxClassRegistry::add("HxCompModule", "HxObject");
    HxClassRegistry::add("HxEditor", "HxBase");
    HxClassRegistry::add("HxSubApplication", "HxBase");

    // Images and label fields are missing on purpose: without values there is nothing to make them of.
    HxColormap::initClass();
    HxLineSet::initClass();
    HxSpreadSheet::initClass();
    HxClassRegistry::add("HxColormap", "HxData", HxColormap::createInstance);
    HxClassRegistry::add("HxLineSet", "HxData", HxLineSet::createInstance);
    HxClassRegistry::add("HxSpreadSheet", "HxData", HxSpreadSheet::createInstance);
}
