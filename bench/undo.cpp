// The undo snapshot of a label volume and its way back, beside LZ4 on the same slices and threads.

#include "BenchFloor.h"
#include "BenchProgram.h"
#include "BenchPython.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "core/GiModifyLabel.h"
#include "mc/McHandle.h"

#include <lz4.h>

#include <cstdio>
#include <cstring>

namespace {

constexpr int kRounds = 15;

/// What an undo list on LZ4 would keep: one block per slice, of exactly its length.
class Lz4Snapshot
{
public:
    Lz4Snapshot(BenchLabels& volume, unsigned long size)
        : labels(volume),
          sliceBytes(static_cast<int>(size * size)),
          slices(static_cast<int>(size)),
          blocks(size)
    {
    }

    void save(int threads)
    {
#pragma omp parallel num_threads(threads)
        {
            std::vector<char> room(static_cast<std::size_t>(LZ4_compressBound(sliceBytes)));
#pragma omp for schedule(static)
            for (int s = 0; s < slices; ++s) {
                const int bytes =
                    LZ4_compress_default(slice(s), room.data(), sliceBytes, static_cast<int>(room.size()));
                blocks[static_cast<std::size_t>(s)].assign(room.data(), room.data() + bytes);
            }
        }
    }

    void restore(int threads)
    {
#pragma omp parallel for num_threads(threads) schedule(static)
        for (int s = 0; s < slices; ++s) {
            const std::vector<char>& block = blocks[static_cast<std::size_t>(s)];
            LZ4_decompress_safe(block.data(), slice(s), static_cast<int>(block.size()), sliceBytes);
        }
    }

    void forget()
    {
        for (std::vector<char>& block : blocks) std::vector<char>().swap(block);
    }

    long bytes() const
    {
        long sum = 0;
        for (const std::vector<char>& block : blocks) sum += static_cast<long>(block.size());
        return sum;
    }

private:
    char* slice(int s)
    {
        return reinterpret_cast<char*>(labels.data()) + static_cast<long>(s) * sliceBytes;
    }

    BenchLabels& labels;
    const int sliceBytes, slices;
    std::vector<std::vector<char>> blocks;
};

std::string perVoxel(const char* whose, long bytes, unsigned long count)
{
    char text[80];
    std::snprintf(text, sizeof text, "%s: 1/%.1f byte per voxel", whose,
                  static_cast<double>(count) / static_cast<double>(bytes));
    return text;
}

void benchUndo(const BenchOptions& options)
{
    const std::string atlasFile = options.work + "/atlas.raw";
    BenchPython(options.size).ask("atlas /usr/share/mricron/templates/aal.nii.gz " + atlasFile);
    BenchLabels labels(options.voxels());
    benchLoad(atlasFile, labels.data(), labels.size());
    const BenchLabels original = labels;
    BenchLabels target(labels.size());
    McRawData3D view;
    const unsigned long dims[3] = {options.size, options.size, options.size};
    view.init(dims, 1, labels.data());
    Lz4Snapshot lz4(labels, options.size);
    McHandle<GiModifyLabel> action;

    for (const int threads : {1, 2}) {
        benchSetThreads(threads);
        BenchRace saving;
        const int save = saving.add([&] {
            action = new GiModifyLabel(nullptr);
            return benchClockMs([&] { action->saveLabelVolume(view); });
        });
        const int lz4Save = saving.add([&] {
            lz4.forget();
            return benchClockMs([&] { lz4.save(threads); });
        });
        const int readAll = saving.add(
            [&] { return benchClockMs([&] { benchRead(labels.data(), labels.size(), threads); }); });
        saving.run(kRounds);

        BenchRace restoring;
        const auto restored = [&](auto restore) {
            return [&, restore] {
                std::memset(labels.data(), 255, labels.size());
                const double ms = benchClockMs(restore);
                benchRequire(labels == original, "the snapshot does not come back.");
                return ms;
            };
        };
        const int back = restoring.add(restored([&] { action->execute(); }));
        const int lz4Back = restoring.add(restored([&] { lz4.restore(threads); }));
        const int writeAll = restoring.add(
            [&] { return benchClockMs([&] { benchWrite(target.data(), target.size(), threads); }); });
        restoring.run(kRounds);

        const std::string size = perVoxel("ours", action->getMemSize(), labels.size()) + ", " +
                                 perVoxel("LZ4", lz4.bytes(), labels.size());
        benchPrint({"undo snapshot of an atlas", threads, saving.medianMs(save), "LZ4",
                    saving.medianMs(lz4Save), saving.medianMs(readAll), size});
        benchPrint({"undo of an atlas", threads, restoring.medianMs(back), "LZ4", restoring.medianMs(lz4Back),
                    restoring.medianMs(writeAll), ""});
    }
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchUndo);
}
