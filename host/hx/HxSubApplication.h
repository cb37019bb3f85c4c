#pragma once

#include "hx/HxBase.h"
#include "mc/McString.h"

#include <functional>

class HxData;

/// Base of the full-window modes. At most one runs at a time; without one the normal window shows.
class HxSubApplication : public HxBase
{
public:
    McTypeId getTypeId() const override;
    ~HxSubApplication() override;

    /// Called when the mode is entered and left. The base versions switch the main window to the mode's
    /// pages and back; a derived class calls them last.
    virtual void onStart();
    virtual void onStop();

    /// The object that a person means by "save" in this mode, null when there is none.
    virtual HxData* currentData() { return nullptr; }

    static void initClass();
    static McTypeId getClassTypeId();

    /// Leaves the running mode and enters this one; does nothing when this one runs.
    void makeCurrent();

    /// Leaves the running mode, if there is one.
    static void leaveRunning();

    /// The mode that runs, null when none does. Set before onStart is called and cleared only after onStop
    /// has returned.
    static HxSubApplication* running();

    /// True when package resource files have announced any.
    static bool hasSubApplications();

    /// From now on there are none: editors open in the normal window. For the start of the program.
    static void switchOff();
    static bool areSwitchedOff();

    /// The help page of this mode, a file of a package.
    void setHelpFile(const char* file, const char* package);
    McString helpPath() const { return helpFilePath; }

    /// Called by the base versions of onStart, with the mode, and onStop, with null; the main window
    /// switches its pages here.
    static void setSwitchHandler(std::function<void(HxSubApplication*)> handler);

private:
    McString helpFilePath;
};
