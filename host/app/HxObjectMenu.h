#pragma once

class HxObject;
class HxWorkspace;
class QMenu;

/// Appends what can be done to an object to a menu: edit it, make something of it, save, rename, remove it.
/// Without an object the entries are there and disabled. The entries keep the object alive.
void hxFillObjectMenu(QMenu& menu, HxObject* object, HxWorkspace& workspace);

/// Opens the object in the first editor that a package announced for one of its interfaces, a label field in
/// the segmentation, say. Returns false when there is none; what else fails is told to the person.
bool hxEditObject(HxObject* object);

/// Whether there is an editor for the object.
bool hxCanEdit(HxObject* object);

/// Removes the object from the pool, after a question if its changes are not saved. False when cancelled.
bool hxRemoveByPerson(HxObject* object);
