#include "qx/HxColorEditor.h"

#include <QColorDialog>
#include <QGuiApplication>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

struct Answer
{
    bool ok;
    McColor color;
};

std::optional<Answer> nextAnswer;

/// On platforms without a screen a dialog would wait for ever.
bool canBeSeen()
{
    const QString platform = QGuiApplication::platformName();
    return platform != "offscreen" && platform != "minimal";
}

float limited(float component)
{
    return std::clamp(component, 0.0f, 1.0f);
}

} // namespace

void HxColorEditor::setColor(float r, float g, float b, float newAlpha)
{
    color = McColor(limited(r), limited(g), limited(b));
    alpha = newAlpha < 0 ? -1 : limited(newAlpha);
}

void HxColorEditor::setNextAnswer(bool ok, float r, float g, float b)
{
    nextAnswer = Answer{ok, McColor(limited(r), limited(g), limited(b))};
}

bool HxColorEditor::exec()
{
    if (const auto answer = std::exchange(nextAnswer, {})) {
        if (answer->ok) color = answer->color;
        return answer->ok;
    }
    if (!canBeSeen()) return false;

    const bool withAlpha = alphaEnabled && alpha >= 0;
    QColorDialog dialog(QColor::fromRgbF(color.r, color.g, color.b, withAlpha ? alpha : 1), parent);
    dialog.setOption(QColorDialog::ShowAlphaChannel, withAlpha);
    if (dialog.exec() != QDialog::Accepted) return false;

    const QColor chosen = dialog.selectedColor();
    color = McColor(float(chosen.redF()), float(chosen.greenF()), float(chosen.blueF()));
    if (withAlpha) alpha = float(chosen.alphaF());
    return true;
}
