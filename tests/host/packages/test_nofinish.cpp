// A package that lacks its finish function.
#include "hx/HxInterpreter.h"
#include "hx/HxPackage.h"

extern "C" {

void vorelpackage_test_nofinish_init()
{
    HxInterpreter::getTheInterpreter()->evalf("incr test_nofinish_inits");
}

const char* vorelpackage_test_nofinish()
{
    return kHxPackageStamp;
}
}
