#include "mc/McElementType.h"

#include <array>

namespace {

struct Element
{
    const char* name;
    int size;
};

constexpr std::array<Element, 9> kElements{{{"unsigned char", 1},
                                            {"short", 2},
                                            {"int", 4},
                                            {"float", 4},
                                            {"double", 8},
                                            {nullptr, 0},
                                            {nullptr, 0},
                                            {"unsigned short", 2},
                                            {"unsigned int", 4}}};

} // namespace

bool mcIsElementCode(int code)
{
    return mcElementSize(code) > 0;
}

int mcElementSize(int code)
{
    return code >= 0 && code < int(kElements.size()) ? kElements[code].size : 0;
}

const char* mcElementName(int code)
{
    return mcIsElementCode(code) ? kElements[code].name : "unknown";
}
