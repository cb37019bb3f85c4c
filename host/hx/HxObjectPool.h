#pragma once

#include "hx/HxObject.h"
#include "mc/McHandle.h"

/// The workspace: all data objects and modules, in the order of insertion.
///
/// The pool holds one reference on each member. Walks by index include hidden objects and are
/// safe against removal during the walk: object() gives null beyond the end. It is its own
/// notifier; the signals come on the main thread, after the pool is in its new state.
class HxObjectPool : public QObject
{
    Q_OBJECT

public:
    static HxObjectPool* getThePool();

    int size() const { return objects.size(); }
    /// Null outside.
    HxObject* object(int i) const;
    /// By label; null if absent.
    HxObject* find(const char* label) const;
    bool contains(const HxObject* object) const { return indexOf(object) >= 0; }

    /// Takes a reference. An object without a label is named by its class. A member is not added
    /// twice.
    void addObject(HxObject* object);
    /// Clears the connections to the object, tells the listeners while it still lives, then drops
    /// the reference. Nothing happens if it is not a member.
    void removeObject(HxObject* object);
    /// Removes all, the latest first.
    void clear();

    /// Asks whoever draws icons to refresh their viewer toggles.
    void updateViewerToggles();

    HxObjectPool* notifier() { return this; }

signals:
    void objectAdded(HxObject* object);
    /// The object is no longer in the walk.
    void objectRemoved(HxObject* object);
    void objectRenamed(HxObject* object, const char* oldName);
    void iconVisibilityChanged(HxObject* object);
    void viewerTogglesChanged();

private:
    friend class HxObject;

    HxObjectPool() = default;
    int indexOf(const HxObject* object) const;
    void memberRenamed(HxObject* object, const char* oldName);

    McDArray<McHandle<HxObject>> objects;
};
