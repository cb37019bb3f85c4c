#include "hx/HxImageConnection.h"

#include "hx/HxObjectPool.h"
#include "hx/HxRegScalarField3.h"

namespace {

constexpr const char* kImageData = "ImageData";

} // namespace

HxImageConnection::HxImageConnection(HxData* owner)
    : HxConnection(owner, kImageData, HxRegScalarField3::getClassTypeId()), field(owner)
{
}

bool HxImageConnection::connect(HxObject* source, McTypeId interfaceToUse)
{
    if (!HxConnection::connect(source, interfaceToUse)) return false;
    if (source) field->parameters.set(kImageData, source->getLabel());
    return true;
}

void HxImageConnection::disconnect()
{
    HxConnection::disconnect();
    field->parameters.remove(kImageData);
}

void HxImageConnection::resolve(HxObject* candidate)
{
    McString wanted;
    if (source() || !field->parameters.findString(kImageData, wanted)) return;
    if (wanted == candidate->getLabel() && accepts(candidate)) setSource(candidate, McTypeId());
}

void HxImageConnection::resolveInPool()
{
    McString wanted;
    if (source() || !field->parameters.findString(kImageData, wanted)) return;
    if (HxObject* candidate = HxObjectPool::getThePool()->find(wanted)) resolve(candidate);
}

void HxImageConnection::renamed(HxObject* object)
{
    if (object == source()) field->parameters.set(kImageData, object->getLabel());
}
