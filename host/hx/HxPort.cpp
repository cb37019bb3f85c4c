#include "hx/HxPort.h"

#include "hx/HxObject.h"

#include <algorithm>

HxPort::HxPort(HxObject* owner, const char* name) : portOwner(owner), portName(name), portLabel(name)
{
    owner->ports.push_back(this);
}

HxPort::~HxPort()
{
    std::vector<HxPort*>& list = portOwner->ports;
    list.erase(std::remove(list.begin(), list.end(), this), list.end());
}

void HxPort::setLabel(const char* text)
{
    if (portLabel == text) return;
    portLabel = text;
    emit changed();
}

void HxPort::setVisible(bool on)
{
    if (visible == on) return;
    visible = on;
    emit changed();
}

void HxPort::valueChanged()
{
    isNewFlag = true;
    emit changed();
}

bool HxPort::checkWords(const HxScriptCall& call, int min, int max, const char* usage)
{
    const int given = call.wordCount() - 3;
    if (given >= min && given <= max) return true;
    hxWrongWordCount(call, McString(call.word(1)) + " " + usage);
    return false;
}

int HxPort::parse(const HxScriptCall& call)
{
    McDArray<HxCommandHelp> list;
    commandHelp(list);
    McString known;
    for (int i = 0; i < list.size(); i++) known += McString(i ? ", " : "") + list[i].usage;

    if (!call.has(2)) return call.error(McString("no command for the port; it knows: ") + known);
    int code;
    if (run(call, code)) return code;
    return call.error(McString("port \"") + portName + "\" has no command \"" + call.word(2) +
                      "\"; it knows: " + known);
}

void HxPort::appendHelp(McDArray<HxCommandHelp>& list, const char* usage, const char* text) const
{
    list.append(HxCommandHelp{portName, portName + " " + usage, McString(text)});
}
