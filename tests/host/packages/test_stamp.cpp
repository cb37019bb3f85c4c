// A package that was built against other headers: its init must never run.
#include "hx/HxInterpreter.h"

extern "C" {

void vorelpackage_test_stamp_init()
{
    HxInterpreter::getTheInterpreter()->evalf("incr test_stamp_inits");
}

void vorelpackage_test_stamp_finish() {}

const char* vorelpackage_test_stamp()
{
    return "vorel-0 of long ago";
}
}
