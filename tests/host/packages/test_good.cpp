// A package as it should be. It tells what happened to it through Tcl variables.
#include "hx/HxClassRegistry.h"
#include "hx/HxColormap.h"
#include "hx/HxInterpreter.h"
#include "hx/HxPackage.h"

extern "C" {

void vorelpackage_test_good_init()
{
    HxInterpreter::getTheInterpreter()->evalf("incr test_good_inits");
    HxClassRegistry::add("TestGoodObject", "HxColormap", [] { return new HxColormap; });
}

void vorelpackage_test_good_finish()
{
    HxInterpreter::getTheInterpreter()->evalf("incr test_good_finishes");
}

const char* vorelpackage_test_good()
{
    return kHxPackageStamp;
}
}
