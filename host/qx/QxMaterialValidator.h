#pragma once

#include <QValidator>

/// What may be typed as the name of a material: at most 64 bytes of UTF-8 without control characters. The
/// name rule of parameters cleans it afterwards. An empty text is not yet a name.
class QxMaterialValidator : public QValidator
{
    Q_OBJECT

public:
    static constexpr int kMaxBytes = 64;

    using QValidator::QValidator;

    State validate(QString& text, int& position) const override;
};
