// The volume forms of the transfer between selection and labels: add, select, invert, replace and
// subtract, beside NumPy, OpenCV and the plain walk through the same bytes.

#include "BenchFloor.h"
#include "BenchMemory.h"
#include "BenchProgram.h"
#include "BenchPython.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "core/GiLabelTransfer.h"
#include "core/mcFloodFillWindow.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr int kRounds = 15;
constexpr int kTissue = 9;                // no label of the volume
constexpr unsigned char kPieceTissue = 2; // a label with a large piece through the centre

/// The volume that all cases start from.
class Scene
{
public:
    explicit Scene(const BenchOptions& given)
        : options(given),
          python(given.size),
          blobs(benchBlobs(given.size)),
          original(benchLabels(blobs)),
          labels(original)
    {
        benchSave(labelsFile(), original.data(), original.size());
    }

    std::string labelsFile() const { return options.work + "/labels.raw"; }
    std::string resultFile() const { return options.work + "/result.raw"; }
    unsigned long count() const { return options.voxels(); }

    void restore() { std::memcpy(labels.data(), original.data(), original.size()); }

    /// A contestant that finds the labels as they were at first.
    template <class Work>
    BenchRace::Round onFreshLabels(Work work)
    {
        return [this, work] {
            restore();
            return benchClockMs(work);
        };
    }

    /// Whether the result of a Python operation equals these bytes.
    bool pythonGives(const std::string& name, const void* expected, unsigned long bytes)
    {
        python.runMs(name);
        python.ask("save " + name + " " + resultFile());
        BenchLabels result(bytes);
        benchLoad(resultFile(), result.data(), bytes);
        return std::memcmp(result.data(), expected, bytes) == 0;
    }

    const BenchOptions options;
    BenchPython python;
    const BenchImage blobs;
    const BenchLabels original;
    BenchLabels labels;
    const unsigned long dims[3] = {options.size, options.size, options.size};
};

struct AddCase
{
    const char* name;
    McBitfield bits;
    std::vector<int> locked;
    bool isSparse;
    std::string note;
};

/// OpenCV's way: a table that maps each label, and a copy under a mask of bytes.
class OpenCvAdd
{
public:
    OpenCvAdd(const AddCase& add, unsigned long size)
        : table(1, 256, CV_8U), mask(static_cast<int>(size * size), static_cast<int>(size), CV_8U)
    {
        for (int label = 0; label < 256; ++label) table.at<unsigned char>(label) = kTissue;
        for (const int label : add.locked) table.at<unsigned char>(label) = static_cast<unsigned char>(label);
        for (unsigned long i = 0; i < add.bits.numBits(); ++i) mask.data[i] = add.bits.isSet(i) ? 255 : 0;
    }

    void run(BenchLabels& labels)
    {
        cv::Mat view(mask.rows, mask.cols, CV_8U, labels.data());
        cv::LUT(view, table, mapped);
        mapped.copyTo(view, mask);
    }

private:
    cv::Mat table, mask, mapped;
};

/// Goes through the bytes that an add must touch: all of the bits, and the labels from the first to the
/// last voxel of each run of the set, or all labels where the runs are shorter than a cache line.
class AddFloor
{
public:
    AddFloor(const McBitfield& bits, bool isSparse) : set(bits)
    {
        unsigned long runs = 0;
        bool wasSet = false;
        for (unsigned long i = 0; i < bits.numBits(); ++i) {
            const bool isSet = bits.isSet(i);
            runs += isSet && !wasSet;
            wasSet = isSet;
        }
        const unsigned long voxels = benchCount(bits);
        isSolid = voxels > 64 * runs;
        labelBytes = isSolid ? voxels / 8 * 8 : bits.numBits();
        if (isSparse) labelBytes = 0; // a few thousand lines
    }

    /// overwrites  whether labels may be written without a look at them
    void run(BenchLabels& labels, bool overwrites, int threads) const
    {
        benchRead(set.words(), set.numBits() / 8, threads);
        if (labelBytes == 0) return;
        if (overwrites && isSolid)
            benchWrite(labels.data(), labelBytes, threads);
        else
            benchUpdate(labels.data(), labelBytes, threads);
    }

private:
    const McBitfield& set;
    unsigned long labelBytes;
    bool isSolid;
};

void benchAdd(Scene& scene, const AddCase& add)
{
    const std::string bitsFile = scene.options.work + "/bits.raw";
    benchSave(bitsFile, add.bits.words(), scene.count() / 8);
    std::string open = "open add add " + bitsFile + " " + scene.labelsFile() + " " + std::to_string(kTissue);
    for (const int label : add.locked) open += " " + std::to_string(label);
    scene.python.ask(open);
    OpenCvAdd openCv(add, scene.options.size);
    const AddFloor floor(add.bits, add.isSparse);
    int locked[256] = {};
    for (const int label : add.locked) locked[label] = 1;

    scene.restore();
    giAddVoxels(add.bits, scene.labels.data(), scene.count(), kTissue, locked, 2);
    const BenchLabels expected = scene.labels;
    benchRequire(scene.pythonGives("add", expected.data(), expected.size()), "NumPy adds something else.");
    scene.restore();
    openCv.run(scene.labels);
    benchRequire(scene.labels == expected, "OpenCV adds something else.");

    for (const int threads : {1, 2}) {
        benchSetThreads(threads);
        cv::setNumThreads(threads);
        BenchRace race;
        const int ours = race.add(scene.onFreshLabels([&, threads] {
            giAddVoxels(add.bits, scene.labels.data(), scene.count(), kTissue, locked, threads);
        }));
        const int least = race.add(
            scene.onFreshLabels([&, threads] { floor.run(scene.labels, add.locked.empty(), threads); }));
        const int numPy = race.add([&] { return scene.python.runMs("add"); });
        const int lut = race.add(scene.onFreshLabels([&] { openCv.run(scene.labels); }));
        race.run(kRounds);
        benchPrint({add.name, threads, race.medianMs(ours), "NumPy labels[mask] = v", race.medianMs(numPy),
                    race.medianMs(least), add.note});
        benchPrint({add.name, threads, race.medianMs(ours), "OpenCV LUT, copyTo", race.medianMs(lut),
                    race.medianMs(least), ""});
    }
    scene.python.ask("close add");
}

void benchSelect(Scene& scene)
{
    constexpr int kSelected = 2;
    McBitfield bits(scene.count());
    giSelectTissue(bits, scene.original.data(), scene.count(), kSelected, 2, 2);
    scene.python.ask("open select select " + scene.labelsFile() + " " + std::to_string(kSelected));
    benchRequire(scene.pythonGives("select", bits.words(), scene.count() / 8),
                 "NumPy selects something else.");
    for (const int threads : {1, 2}) {
        benchSetThreads(threads);
        BenchRace race;
        const int ours = race.add([&] {
            return benchClockMs(
                [&] { giSelectTissue(bits, scene.original.data(), scene.count(), kSelected, 2, threads); });
        });
        const int least = race.add([&] {
            return benchClockMs([&] {
                benchRead(scene.original.data(), scene.count(), threads);
                benchWrite(bits.words(), scene.count() / 8, threads);
            });
        });
        const int numPy = race.add([&] { return scene.python.runMs("select"); });
        race.run(kRounds);
        benchPrint({"select a material in 3D", threads, race.medianMs(ours), "NumPy labels == v",
                    race.medianMs(numPy), race.medianMs(least), "read labels, write bits"});
    }
    scene.python.ask("close select");
}

void benchInvert(Scene& scene, McBitfield bits)
{
    const std::string bitsFile = scene.options.work + "/bits.raw";
    benchSave(bitsFile, bits.words(), scene.count() / 8);
    scene.python.ask("open invert invert " + bitsFile);
    bits.toggleAll();
    benchRequire(scene.pythonGives("invert", bits.words(), scene.count() / 8), "NumPy inverts otherwise.");
    for (const int threads : {1, 2}) {
        benchSetThreads(threads);
        BenchRace race;
        const int ours = race.add([&] { return benchClockMs([&] { bits.toggleAll(); }); });
        const int least = race.add(
            [&] { return benchClockMs([&] { benchUpdate(bits.words(), scene.count() / 8, threads); }); });
        const int numPy = race.add([&] { return scene.python.runMs("invert"); });
        race.run(3 * kRounds);
        benchPrint({"invert the selection in 3D", threads, race.medianMs(ours), "NumPy logical_not",
                    race.medianMs(numPy), race.medianMs(least), "read and write bits"});
    }
    scene.python.ask("close invert");
}

/// Replace and subtract of a ball in one large piece of a material, composed as the editor does it,
/// against a flood of that piece and one add of it.
class PieceBench
{
public:
    explicit PieceBench(Scene& given)
        : scene(given),
          selection(benchBall(given.options.size, 0.2 * static_cast<double>(given.options.size)))
    {
        const unsigned long side = scene.options.size;
        const auto centre =
            scene.original.begin() + static_cast<long>((side + 1) * side * (side / 2) + side / 2);
        const auto found = std::find(centre, scene.original.end(), kPieceTissue);
        const auto at = static_cast<unsigned long>(found - scene.original.begin());
        seed[0] = static_cast<int>(at % side);
        seed[1] = static_cast<int>(at / side % side);
        seed[2] = static_cast<int>(at / side / side);

        // One piece alone carries the material, so that both sides find the same region.
        scene.restore();
        pieceSize = markByFlood(piece);
        benchRequire(pieceSize > 0, "there is no piece of the material at the centre.");
        start = scene.original;
        for (unsigned long i = 0; i < scene.count(); ++i)
            if (start[i] == kPieceTissue && !piece.isSet(i)) start[i] = 0;
    }

    void run()
    {
        checkAgainstPlainLoops();
        const double scratchBits = measureScratch();
        for (const int threads : {1, 2}) {
            benchSetThreads(threads);
            BenchRace race;
            const int replaceMs = race.add(onStart([this, threads] { replace(threads); }));
            const int subtractMs = race.add(onStart([this, threads] { subtract(threads); }));
            const int peer = race.add(onStart([this, threads] { floodAndAdd(threads); }));
            race.run(kRounds);
            char note[100];
            std::snprintf(note, sizeof note, "piece: %.0f %% of the volume; scratch: %.2f bits per voxel",
                          100.0 * static_cast<double>(pieceSize) / static_cast<double>(scene.count()),
                          scratchBits);
            const char* const kPeer = "our flood and one add";
            benchPrint(
                {"replace in 3D", threads, race.medianMs(replaceMs), kPeer, race.medianMs(peer), 0, note});
            benchPrint(
                {"subtract in 3D", threads, race.medianMs(subtractMs), kPeer, race.medianMs(peer), 0, ""});
        }
    }

private:
    unsigned long markByFlood(McBitfield& region)
    {
        const McFillWindow<unsigned char> window{scene.labels.data(), kPieceTissue, kPieceTissue, nullptr,
                                                 -1};
        return mcFloodFillWindow(window, scene.dims, seed[0], seed[1], seed[2], region, nullptr);
    }

    template <class Work>
    BenchRace::Round onStart(Work work)
    {
        return [this, work] {
            scene.labels = start;
            return benchClockMs(work);
        };
    }

    int takeAway(const McBitfield& voxels, int threads)
    {
        unsigned char* const labels = scene.labels.data();
        const int target = giChooseTarget3D(voxels, labels, scene.dims, kPieceTissue, threads);
        giMoveVoxels(voxels, labels, scene.count(), kPieceTissue, target, threads);
        return target;
    }

    int replace(int threads)
    {
        McBitfield region;
        giMarkPieces(selection, scene.labels.data(), scene.dims, kPieceTissue, region);
        const int target = takeAway(region, threads);
        giAddVoxels(selection, scene.labels.data(), scene.count(), kPieceTissue, nullptr, threads);
        return target;
    }

    int subtract(int threads) { return takeAway(selection, threads); }

    void floodAndAdd(int threads)
    {
        McBitfield region;
        markByFlood(region);
        giAddVoxels(region, scene.labels.data(), scene.count(), kTissue, nullptr, threads);
    }

    void checkAgainstPlainLoops()
    {
        scene.labels = start;
        const int target = replace(2);
        bool same = true;
        for (unsigned long i = 0; i < scene.count(); ++i)
            same = same && scene.labels[i] == (selection.isSet(i) ? kPieceTissue
                                               : piece.isSet(i)   ? target
                                                                  : start[i]);
        benchRequire(same, "replace gives something else than plain loops over the flooded piece.");
        scene.labels = start;
        const int other = subtract(2);
        for (unsigned long i = 0; i < scene.count(); ++i)
            same = same &&
                   scene.labels[i] == (selection.isSet(i) && start[i] == kPieceTissue ? other : start[i]);
        benchRequire(same, "subtract gives something else than plain loops.");
    }

    double measureScratch()
    {
        scene.labels = start;
        benchForgetPeak();
        const double before = benchResidentMiB();
        replace(1);
        return (benchPeakMiB() - before) * 1024 * 1024 * 8 / static_cast<double>(scene.count());
    }

    Scene& scene;
    const McBitfield selection;
    McBitfield piece;
    BenchLabels start; // only one piece carries the material
    unsigned long pieceSize = 0;
    int seed[3] = {};
};

void benchFloors(Scene& scene)
{
    BenchLabels target(scene.count());
    for (const bool ofLabels : {true, false}) {
        const unsigned long bytes = ofLabels ? scene.count() : scene.count() / 8;
        for (const int threads : {1, 2}) {
            BenchRace race;
            const auto clocked = [](auto work) { return [work] { return benchClockMs(work); }; };
            race.add(clocked([&, threads, bytes] { benchRead(scene.labels.data(), bytes, threads); }));
            race.add(clocked([&, threads, bytes] { benchWrite(target.data(), bytes, threads); }));
            race.add(clocked(
                [&, threads, bytes] { benchCopy(target.data(), scene.labels.data(), bytes, threads); }));
            race.add(clocked([&, threads, bytes] { benchUpdate(target.data(), bytes, threads); }));
            race.run(kRounds);
            const char* const kNames[] = {"read", "write", "copy", "read and write in place"};
            for (int i = 0; i < 4; ++i) {
                char note[64];
                std::snprintf(note, sizeof note, "%.3g MiB, %.1f GiB/s",
                              static_cast<double>(bytes) / (1 << 20),
                              static_cast<double>(bytes) / (1 << 30) / race.medianMs(i) * 1000);
                benchPrint({std::string("floor: ") + kNames[i] + (ofLabels ? " labels" : " bits"), threads, 0,
                            "", 0, race.medianMs(i), note});
            }
        }
    }
}

void benchTransfer(const BenchOptions& options)
{
    Scene scene(options);
    benchFloors(scene);
    const double radius = 0.45 * static_cast<double>(options.size);
    benchAdd(scene, {"add a ball in 3D", benchBall(options.size, radius), {}, false, "38 % of the volume"});
    benchAdd(scene, {"add a ball in 3D, a label locked", benchBall(options.size, radius), {3}, false, ""});
    benchAdd(scene, {"add 50 % noise in 3D", benchNoise(options.size), {}, false, ""});
    benchAdd(scene,
             {"add sparse voxels in 3D", benchSparse(options.size), {}, true, "1 voxel in 1,000 words"});
    benchSelect(scene);
    benchInvert(scene, benchBall(options.size, radius));
    PieceBench(scene).run();
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchTransfer);
}
