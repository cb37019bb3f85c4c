#pragma once

#include <QValidator>

/// What may be typed as the name of a material: at most 64 bytes of UTF-8 without control characters. The
/// name rule of parameters cleans it afterwards. An empty text is not yet a name. As a fixup, control
/// characters are dropped.
class QxMaterialValidator : public QValidator
{
    Q_OBJECT

public:
    static constexpr int kMaxBytes = 64;

    using QValidator::QValidator;

    /// For a name that is longer already: what it has may be corrected, but not grow.
    void setMaxBytes(qsizetype bytes) { maxBytes = bytes; }

    State validate(QString& text, int& position) const override;
    void fixup(QString& text) const override;

private:
    qsizetype maxBytes = kMaxBytes;
};
