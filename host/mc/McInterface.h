#pragma once

#include "mc/McTypeId.h"

class McInterfaceOwner;

/// Base of the interfaces that a data object offers: a lattice, coordinates, a histogram.
class McInterface
{
public:
    virtual ~McInterface();

    /// The object that offers this interface.
    virtual McInterfaceOwner* owner() const = 0;
};

/// An object that offers interfaces. It owns them; they live as long as the object.
class McInterfaceOwner
{
public:
    virtual ~McInterfaceOwner();

    /// The object's interface of this type, or null. `type` is McTypeId::of<Interface>().
    virtual McInterface* getInterface(McTypeId type);
};

/// The object's interface of type T; null if it offers none or if there is no object.
template <class T>
T* mcinterface_cast(McInterfaceOwner* object)
{
    return object ? dynamic_cast<T*>(object->getInterface(McTypeId::of<T>())) : nullptr;
}
