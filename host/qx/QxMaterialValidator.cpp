#include "qx/QxMaterialValidator.h"

#include <algorithm>

namespace {

bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control;
}

} // namespace

QValidator::State QxMaterialValidator::validate(QString& text, int&) const
{
    if (text.isEmpty()) return Intermediate;
    const bool hasControl = std::any_of(text.cbegin(), text.cend(), isControl);
    return hasControl || text.toUtf8().size() > maxBytes ? Invalid : Acceptable;
}

void QxMaterialValidator::fixup(QString& text) const
{
    text.removeIf(isControl);
}
