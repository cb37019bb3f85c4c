#include "hx/HxPortDoIt.h"

HxPortDoIt::HxPortDoIt(HxObject* owner, const char* name) : HxPortButtonList(owner, name, 1)
{
    setLabel(0, "DoIt");
}
