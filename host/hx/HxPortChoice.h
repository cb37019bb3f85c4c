#pragma once

#include "hx/HxPort.h"

#include <vector>

/// One of n texts: the base of menus and radio boxes, which differ in their widget.
class HxPortChoice : public HxPort
{
    Q_OBJECT

public:
    HxPortChoice(HxObject* owner, const char* name, int numEntries);

    /// New entries have an empty text. An index beyond the new end moves to the last entry.
    void setNum(int n);
    int getNum() const { return static_cast<int>(texts.size()); }

    using HxPort::getLabel;
    using HxPort::setLabel;
    /// Text of entry i; an entry beyond the end is made.
    void setLabel(int i, const char* text);
    /// Empty outside.
    const char* getLabel(int i) const;

    /// From 0; 0 also for an empty choice. Setting limits the index to the entries.
    int getIndex() const { return index; }
    void setIndex(int i);
    int getValue() const { return index; }
    void setValue(int i) { setIndex(i); }

    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    bool run(const HxScriptCall& call, int& code) override;

private:
    std::vector<McString> texts;
    int index = 0;
};
