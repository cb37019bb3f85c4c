#include "qx/QxMaterialValidator.h"

#include <algorithm>

QValidator::State QxMaterialValidator::validate(QString& text, int&) const
{
    if (text.isEmpty()) return Intermediate;
    const bool hasControl =
        std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.category() == QChar::Other_Control; });
    return hasControl || text.toUtf8().size() > kMaxBytes ? Invalid : Acceptable;
}
