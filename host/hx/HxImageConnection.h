#pragma once

#include "hx/HxConnection.h"

class HxData;

/// "ImageData": the image that a label field belongs to. The image's label is kept as the string
/// parameter "ImageData" of the field, so that the link survives in the file and is taken up again
/// when an object of that label enters the pool.
class HxImageConnection : public HxConnection
{
    Q_OBJECT

public:
    explicit HxImageConnection(HxData* owner);

    bool connect(HxObject* source, McTypeId interfaceToUse = McTypeId()) override;
    /// Forgets the parameter, too; removal of the image from the pool does not.
    void disconnect() override;

    /// Connects to `candidate` if nothing is connected and it has the label of the parameter.
    void resolve(HxObject* candidate);
    /// Looks for the image in the whole pool.
    void resolveInPool();
    /// Keeps the parameter in step with the image's label.
    void renamed(HxObject* object);

private:
    HxData* field;
};
