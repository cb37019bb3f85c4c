#include "mc/McInterface.h"

McInterface::~McInterface() = default;

McInterfaceOwner::~McInterfaceOwner() = default;

McInterface* McInterfaceOwner::getInterface(McTypeId)
{
    return nullptr;
}
