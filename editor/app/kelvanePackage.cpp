// The three functions by which the host finds this package.

#include "app/GiScriptCommands.h"
#include "app/GiViewCommands.h"
#include "app/GiWidgetCommands.h"
#include "app/HxGiEditor.h"
#include "app/HxGiSubApplication.h"
#include "hx/HxPackage.h"

extern "C" {

void vorelpackage_kelvane_init()
{
    static bool done = false;
    if (done) return;
    done = true;
    HxGiSubApplication::initClass();
    HxGiEditor::initClass();
    giAddScriptCommands();
    giAddViewCommands();
    giAddWidgetCommands();
}

void vorelpackage_kelvane_finish()
{
    static bool done = false;
    if (done) return;
    done = true;
    HxGiSubApplication::dropInstance();
}

const char* vorelpackage_kelvane()
{
    return kHxPackageStamp;
}
}
