#include "core/GiModifyLabel.h"

#include "hx/HxSettingsMgr.h"
#include "mc/McMemoryException.h"

#include <algorithm>
#include <cstdlib>

namespace {

/// Runs step(slice) for each slice, one contiguous chunk of them per thread.
template <class Step>
void forEachSlice(int slices, const Step& step)
{
    const int threads = std::max(1, std::min(slices, HxSettingsMgr::getInstance()->numThreads()));
    const int chunk = (slices + threads - 1) / threads;
#pragma omp parallel for num_threads(threads) schedule(static, 1)
    for (int part = 0; part < threads; ++part)
        for (int s = part * chunk; s < std::min(slices, (part + 1) * chunk); ++s) step(s);
}

} // namespace

GiModifyLabel::GiModifyLabel(Gi* owner) : gi(owner) {}

GiModifyLabel::~GiModifyLabel()
{
    freeStreams();
}

void GiModifyLabel::freeStreams()
{
    for (char* stream : rleSlices) std::free(stream);
    rleSlices.clear();
    rleSize = 0;
}

void GiModifyLabel::saveLabelSlice(const McRawData2D& view)
{
    target = view;
    saved = view;
    saved.makeLocal();
}

void GiModifyLabel::saveLabelVolume(const McRawData3D& view)
{
    volume = view;
    freeStreams();
    rleSize = rleCompress();
}

void GiModifyLabel::execute()
{
    if (rleSlices.isEmpty())
        target.copyFrom(saved);
    else
        rleDecompress();
}

long GiModifyLabel::getMemSize()
{
    return rleSlices.isEmpty() ? static_cast<long>(saved.width()) * saved.height() : rleSize;
}

long GiModifyLabel::rleCompress()
{
    const unsigned long* dims = volume.dims();
    const int slices = static_cast<int>(dims[2]);
    const auto sliceBytes = static_cast<long>(dims[0] * dims[1]);
    const char* data = static_cast<const char*>(volume.data());
    rleSlices.resize(slices);

    // No exception may leave a thread: the size that could not be had is carried out by hand.
    long total = 0;
    unsigned long missingBytes = 0;
    bool failed = false;
    forEachSlice(slices, [&](int s) {
        try {
            const long bytes = rleCompress(data + s * sliceBytes, sliceBytes, rleSlices[s]);
#pragma omp atomic
            total += bytes;
        } catch (const McMemoryException& e) {
#pragma omp critical(giModifyLabelFailure)
            {
                failed = true;
                missingBytes = e.size();
            }
        }
    });
    if (failed) {
        freeStreams();
        throw McMemoryException(missingBytes);
    }
    return total;
}

long GiModifyLabel::rleCompress(const char* source, long size, char*& stream)
{
    unsigned char* encoded = nullptr;
    const long bytes = giRunLengthEncode(reinterpret_cast<const unsigned char*>(source), size, encoded);
    stream = reinterpret_cast<char*>(encoded);
    return bytes;
}

void GiModifyLabel::rleDecompress()
{
    forEachSlice(rleSlices.size(), [this](int s) {
        McRawData2D slice;
        volume.getSlice(2, s, slice, kMcViewSlice);
        // The streams fill their slices, so all of a slice may be written at any time.
        giRunLengthDecode(static_cast<unsigned char*>(slice.data()),
                          reinterpret_cast<const unsigned char*>(rleSlices[s]),
                          static_cast<long>(slice.width()) * slice.height());
    });
}

void GiModifyLabel::rleDecompress(unsigned char* slice, const unsigned char* stream)
{
    giRunLengthDecode(slice, stream);
}
