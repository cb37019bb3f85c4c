#pragma once

#include "hx/HxScriptCall.h"
#include "mc/McString.h"

#include <QObject>

class HxObject;

/// One control of an object: a value, a menu, a button or a connection, with its script commands.
///
/// A port is a member of the object that owns it and is listed there under its script name. It
/// holds the state alone; a widget follows changed() and writes through the setters.
class HxPort : public QObject
{
    Q_OBJECT

public:
    /// The label for people starts as the name.
    HxPort(HxObject* owner, const char* name);
    ~HxPort() override;

    HxObject* owner() const { return portOwner; }
    /// The script word.
    const char* getName() const { return portName; }

    void setLabel(const char* text);
    const char* getLabel() const { return portLabel; }

    void hide() { setVisible(false); }
    void show() { setVisible(true); }
    bool isVisible() const { return visible; }

    /// Marks the port as changed, as a new value does.
    void touch() { isNewFlag = true; }
    /// Changed since the owner last computed.
    virtual bool isNew() const { return isNewFlag; }
    virtual void clearNew() { isNewFlag = false; }

    /// Runs "OBJECT PORT COMMAND ...": word 2 is the command. TCL_OK or TCL_ERROR.
    int parse(const HxScriptCall& call);
    virtual void commandHelp(McDArray<HxCommandHelp>& list) const = 0;

signals:
    /// Value, texts, range or visibility are other than before.
    void changed();

protected:
    /// Serves word 2; false if the port has no such command.
    virtual bool run(const HxScriptCall& call, int& code) = 0;
    /// Checks the number of words after word 2; false leaves the complaint as result.
    static bool checkWords(const HxScriptCall& call, int min, int max, const char* usage);
    /// Appends one help line; the usage is without the port's name.
    void appendHelp(McDArray<HxCommandHelp>& list, const char* usage, const char* text) const;
    /// Marks as new and tells the widget.
    void valueChanged();

private:
    friend class HxObject;

    void setVisible(bool on);

    HxObject* portOwner;
    McString portName;
    McString portLabel;
    bool visible = true;
    bool isNewFlag = false;
};
