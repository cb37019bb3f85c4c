#include "io/hxStopIfInterrupted.h"

#include "hx/HxWorkArea.h"
#include "io/HxFileError.h"

void hxStopIfInterrupted(const std::string& file)
{
    if (HxWorkArea::getTheWorkArea()->interrupted()) throw HxFileError(file, "interrupted");
}
