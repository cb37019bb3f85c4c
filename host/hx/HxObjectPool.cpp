#include "hx/HxObjectPool.h"

#include <vector>

HxObjectPool* HxObjectPool::getThePool()
{
    // Never deleted: its members end with the process, at a time when what they need is gone.
    static HxObjectPool* const pool = new HxObjectPool;
    return pool;
}

HxObject* HxObjectPool::object(int i) const
{
    return i >= 0 && i < size() ? objects[i].get() : nullptr;
}

HxObject* HxObjectPool::find(const char* label) const
{
    for (const McHandle<HxObject>& member : objects)
        if (McString(label) == member->getLabel()) return member;
    return nullptr;
}

int HxObjectPool::indexOf(const HxObject* object) const
{
    for (int i = 0; i < size(); i++)
        if (objects[i].get() == object) return i;
    return -1;
}

void HxObjectPool::addObject(HxObject* object)
{
    if (!object || object->inPool) return;
    if (!*object->getLabel()) object->setLabel(object->getTypeId().name());
    const McHandle<HxObject> keep(object);
    objects.append(keep);
    object->inPool = true;

    for (int i = 0; i < size(); i++) objects[i]->memberAdded(object);
    emit objectAdded(object);
}

void HxObjectPool::removeObject(HxObject* object)
{
    const int at = indexOf(object);
    if (at < 0) return;
    // Lives until the end of this function, whatever the listeners do.
    const McHandle<HxObject> keep(object);
    objects.remove(at);
    object->inPool = false;

    object->disconnectDownstream();
    for (int i = 0; i < size(); i++) objects[i]->memberRemoved(object);
    object->memberRemoved(object);
    emit objectRemoved(object);
}

void HxObjectPool::clear()
{
    while (size() > 0) removeObject(objects.last());
}

void HxObjectPool::updateViewerToggles()
{
    emit viewerTogglesChanged();
}

void HxObjectPool::memberRenamed(HxObject* object, const char* oldName)
{
    for (int i = 0; i < size(); i++) objects[i]->memberRenamed(object);
    emit objectRenamed(object, oldName);
}
