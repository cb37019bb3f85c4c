#include "hx/HxParamBase.h"

#include "hx/HxParamBundle.h"

#include <string>

namespace {

bool isLegal(char c)
{
    // Spelled out: the classes of <cctype> depend on the locale.
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.';
}

} // namespace

HxParamBase::HxParamBase(const char* name) : entryName(cleanName(name)) {}

HxParamBase::HxParamBase(const HxParamBase& other) : entryName(other.entryName), flagBits(other.flagBits) {}

McString HxParamBase::cleanName(const char* text)
{
    std::string clean;
    for (const char* c = text ? text : ""; *c; c++) {
        if (isLegal(*c))
            clean += *c;
        else if (*c == ' ')
            clean += '_';
    }
    return McString(clean);
}

void HxParamBase::setName(const char* newName)
{
    const McString wanted = cleanName(newName);
    entryName = parentBundle ? parentBundle->freeName(wanted, this) : wanted;
}

void HxParamBase::setFlag(unsigned int flag, int on)
{
    if (on)
        flagBits |= flag;
    else
        flagBits &= ~flag;
}
