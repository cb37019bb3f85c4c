#pragma once

#include "hx/HxPort.h"

#include <vector>

/// A row of buttons. A press is kept until the owner has computed: compute() asks isNew(), then
/// getIndex().
class HxPortButtonList : public HxPort
{
    Q_OBJECT

public:
    HxPortButtonList(HxObject* owner, const char* name, int numButtons = 1);

    /// New buttons have an empty text.
    void setNum(int n);
    int getNum() const { return static_cast<int>(texts.size()); }

    using HxPort::getLabel;
    using HxPort::setLabel;
    /// Text of button i; a button beyond the end is made.
    void setLabel(int i, const char* text);
    /// Empty outside.
    const char* getLabel(int i) const;

    /// Presses a button: keeps its index and marks the port as new. Does not fire the owner.
    /// A button without a text can be pressed as well; a number below 0 does nothing.
    void hit(int i = 0);
    /// The button pressed last; -1 before the first press.
    int getIndex() const { return index; }

    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    bool run(const HxScriptCall& call, int& code) override;

private:
    std::vector<McString> texts;
    int index = -1;
};
