#pragma once

#include "core/GiAction.h"
#include "core/GiRunLength.h"
#include "mc/McDArray.h"
#include "mc/McRawData2D.h"
#include "mc/McRawData3D.h"

class Gi;

/// Restores one slice, or the whole, of a volume of bytes: the labels, or their weights.
///
/// Holds raw views into the volume: it must not move while this exists. A slice is kept as it is;
/// a volume is kept run-length encoded, one stream per Z slice (see GiRunLength.h), compressed and
/// restored by several threads.
class GiModifyLabel : public GiAction
{
public:
    explicit GiModifyLabel(Gi* owner);
    ~GiModifyLabel() override;
    GiModifyLabel(const GiModifyLabel&) = delete;
    GiModifyLabel& operator=(const GiModifyLabel&) = delete;

    void saveLabelSlice(const McRawData2D& view);
    /// throws McMemoryException
    void saveLabelVolume(const McRawData3D& view);

    void execute() override;
    long getMemSize() override;
    void labelsRenumbered() override { oldNumbers = true; }
    bool hasOldNumbers() const override { return oldNumbers; }

    /// Compresses every slice of `volume`; returns the bytes of all streams.
    long rleCompress();
    /// Compresses `size` bytes into a new `malloc`ed stream of exactly the length that is returned.
    long rleCompress(const char* source, long size, char*& stream);
    /// Decodes every stream into its slice of `volume`.
    void rleDecompress();
    void rleDecompress(unsigned char* target, const unsigned char* stream);

private:
    void freeStreams();

    Gi* gi;
    McRawData2D target;
    McRawData2D saved;
    McRawData3D volume;
    McDArray<char*> rleSlices; // malloc'ed, owned
    long rleSize = 0;
    bool oldNumbers = false;
};
