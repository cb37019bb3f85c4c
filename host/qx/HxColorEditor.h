#pragma once

#include "mc/McColor.h"

class QWidget;

/// Asks the user for a colour. Modal.
class HxColorEditor
{
public:
    /// Opaque black, without a choice of opacity.
    explicit HxColorEditor(QWidget* parentWidget = nullptr) : parent(parentWidget) {}

    /// Whether opacity can be chosen, too.
    void setAlphaEnabled(bool on) { alphaEnabled = on; }

    /// Components from 0 to 1; alpha -1: unused, it stays -1.
    void setColor(float r, float g, float b, float alpha = -1);
    McColor getColor() const { return color; }
    float getAlpha() const { return alpha; }

    /// True when confirmed: the colour is then the chosen one, else it is as it was. Where no window can be
    /// seen nobody can confirm: false, unless an answer waits.
    bool exec();

    /// Answers the next exec() in place of the user; for scripts and tests.
    static void setNextAnswer(bool ok, float r, float g, float b);

private:
    QWidget* parent;
    McColor color;
    float alpha = -1;
    bool alphaEnabled = false;
};
