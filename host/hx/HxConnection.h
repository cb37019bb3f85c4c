#pragma once

#include "hx/HxPort.h"
#include "mc/McTypeId.h"

#include <functional>
#include <vector>

/// A link from an object to the data that it works on. Takes no reference: it is cleared when its
/// source leaves the pool or is deleted.
///
/// A type is a class of objects or an interface that they offer (HxLattice3 and its kin).
class HxConnection : public HxPort
{
    Q_OBJECT

public:
    HxConnection(HxObject* owner, const char* name, McTypeId type);
    ~HxConnection() override;

    /// Accepts objects of this type, too.
    void addType(McTypeId type);
    /// Whether connect() would take it: of an accepted type and not the owner itself.
    bool accepts(HxObject* object) const;

    /// Connects, null disconnects. False, and nothing changes, for an object of another type.
    /// An interface, if given, must be one that the object is or offers.
    virtual bool connect(HxObject* source, McTypeId interfaceToUse = McTypeId());
    virtual void disconnect();

    /// Null without.
    HxObject* source() const { return sourceObject; }
    /// The source as a class; null if there is none or it is of another class.
    template <class T>
    T* source() const
    {
        return dynamic_cast<T*>(sourceObject);
    }
    /// The interface asked for at connect(); empty if none was.
    McTypeId sourceInterface() const { return interfaceType; }

    /// The source was touched since the owner last computed. isNew() tells of other sources only,
    /// so that edited data do not reset ports that follow a new input.
    bool isSourceTouched() const;
    void clearNew() override;

    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    bool run(const HxScriptCall& call, int& code) override;
    /// Called by the source when it leaves the pool or dies.
    virtual void sourceGone();
    void setSource(HxObject* source, McTypeId interfaceToUse);

private:
    friend class HxObject;

    int runConnect(const HxScriptCall& call);

    std::vector<McTypeId> types;
    HxObject* sourceObject = nullptr;
    McTypeId interfaceType;
    unsigned int seenTouch = 0;
};
