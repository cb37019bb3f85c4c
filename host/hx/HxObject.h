#pragma once

#include "hx/HxBase.h"

#include <vector>

class HxConnection;
class HxPort;

/// A member of the object pool: data or module. Owns nothing but its own state; its ports and
/// connections are members of the derived class that register themselves here.
class HxObject : public HxBase
{
    Q_OBJECT

public:
    /// Bits of the touch mask. A listener that gets another bit treats it as "all".
    static constexpr unsigned int kParametersChanged = 1; ///< parameters or label
    static constexpr unsigned int kShapeChanged = 2;      ///< dims, coordinates or memory
    static constexpr unsigned int kValuesChanged = 4;     ///< the data values
    static constexpr unsigned int kAllChanged = 0xFFFFFFFFu;

    HxObject();
    ~HxObject() override;

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    /// Display only: a hidden object stays in the pool walk.
    void hideIcon();
    void showIcon();
    bool isIconHidden() const { return hidden; }

    bool isInPool() const { return inPool; }

    /// Records a change and bumps the touch number. Data objects also emit dataObjectTouched.
    virtual void touch(unsigned int mask = kAllChanged);
    unsigned int touchNumber() const { return touches; }

    /// Brings the object and all modules downstream of it up to date.
    virtual void fire();

    /// 1: fires the modules that are connected to this object; does not emit dataObjectTouched.
    virtual void notifyUpdate(int how);

    /// Ports and connections in the order of their creation.
    int numPorts() const { return static_cast<int>(ports.size()); }
    HxPort* port(int i) const;
    /// By script name; null if absent.
    HxPort* port(const char* name) const;

    /// Connections of other objects that have this one as their source.
    int numDownstream() const { return static_cast<int>(downstream.size()); }
    HxConnection* downstreamConnection(int i) const;

    int parse(Tcl_Interp* interp, int wordCount, char** words) override;
    void commandHelp(McDArray<HxCommandHelp>& list) const override;

    void notifyDelete() override;

protected:
    /// The pool tells each member of a newcomer (itself included) before it tells the listeners.
    virtual void memberAdded(HxObject* newcomer);
    /// The same for a member that has a new label.
    virtual void memberRenamed(HxObject* member);
    /// The same for a member that has just left the pool; this object itself is told last.
    virtual void memberRemoved(HxObject* member);

    void labelChanged(const McString& oldLabel) override;
    void fireDownstream();
    void disconnectDownstream();

private:
    friend class HxPort;
    friend class HxConnection;
    friend class HxObjectPool;

    bool hidden = false;
    bool inPool = false;
    unsigned int touches = 0;
    std::vector<HxPort*> ports;
    std::vector<HxConnection*> downstream;
};
