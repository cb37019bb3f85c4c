#include "mc/McHandable.h"

#include <cassert>

McHandable::~McHandable() = default;

void McHandable::notifyDelete() {}

void McHandable::unref() const
{
    assert(count > 0);
    if (--count > 0) return;
    // Listeners may take and drop a reference while they are told; that must not delete a second time.
    count = 1;
    const_cast<McHandable*>(this)->notifyDelete();
    delete this;
}
