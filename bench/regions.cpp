// The magic wand: from the click to the picture, in a slice of 2048 x 2048 beside OpenCV, and in the volume
// beside scikit-image and SciPy.

#include "BenchEditor.h"
#include "BenchMemory.h"
#include "BenchProgram.h"
#include "BenchPython.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "mc/McEvent.h"
#include "tools/GiMagicWand.h"

#include <QApplication>
#include <QCheckBox>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kRounds = 9;
constexpr int kSide = 2048;
constexpr int kSteps = 120; // of a drag
constexpr double kFrameMs = 1000.0 / 60;

/// An editor with the wand in hand.
class Wand
{
public:
    template <class T>
    Wand(unsigned long nx, unsigned long ny, unsigned long nz, T* image) : editor(nx, ny, nz)
    {
        editor.setImage(image);
        editor.gi.imageLattice = editor.lattice();
        editor.gi.setTool(GiMagicWand::kIndex);
        tool = dynamic_cast<GiMagicWand*>(editor.gi.tools[GiMagicWand::kIndex]);
        allSlices = tool->getWidget(nullptr)->findChild<QCheckBox*>("wAllSlicesCheckBox");
        for (int o = 0; o < 3; ++o) {
            editor.buffer(o).setWindowSize(McVec2i(1200, 900));
            editor.viewer(o).setDataWindow(0, 4000, false);
        }
        editor.gi.setZoomFactor(1);
    }

    void setWindow(float min, float max)
    {
        editor.gi.toolDataWindow[0] = min;
        editor.gi.toolDataWindow[1] = max;
    }
    /// Brings a pixel of the XY slice to the middle of the window.
    void show(int x, int y)
    {
        const McVec2i at = editor.buffer(2).pixelCentre(x, y);
        editor.buffer(2).setOffset(McVec2i(at.x - 600, at.y - 450));
    }
    void click(int x, int y, float value)
    {
        const McVec2i at = editor.buffer(2).pixelCentre(x, y);
        editor.gi.valueUnderPointer = value;
        McMouseButtonEvent press;
        press.button = press.pressed = press.left = 1;
        press.x = at.x;
        press.y = at.y;
        editor.buffer(2).handleEvent(&press);
    }
    void forget()
    {
        editor.gi.clearSelection(true, false);
        editor.gi.clearUndo(1);
    }

    BenchEditor editor;
    GiMagicWand* tool;
    QCheckBox* allSlices;
};

/// A slice of large pieces with ragged borders: a plane of the blobs, four times as large, with noise.
template <class T>
std::vector<T> ragged(int divisor)
{
    constexpr int kFrom = 512, kScale = kSide / kFrom;
    const BenchImage blobs = benchBlobs(kFrom);
    const unsigned short* plane = &blobs[static_cast<std::size_t>(kFrom) * kFrom * (kFrom / 2)];
    std::vector<T> slice;
    unsigned int noise = 1;
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            noise = noise * 1664525 + 1013904223;
            const int v = plane[y / kScale * kFrom + x / kScale] + static_cast<int>(noise >> 27);
            slice.push_back(static_cast<T>(v / divisor));
        }
    return slice;
}

template <class T>
void benchSlice(const char* type, int divisor)
{
    std::vector<T> values = ragged<T>(divisor);
    Wand wand(kSide, kSide, 1, values.data());
    const int x = kSide / 2, y = kSide / 2;
    const T seed = values[static_cast<std::size_t>(y * kSide + x)];
    const auto reach = static_cast<float>(1200 / divisor);
    const float min = std::max(0.0f, static_cast<float>(seed) - reach),
                max = static_cast<float>(seed) + reach;
    wand.setWindow(min, max);

    cv::Mat view(kSide, kSide, cv::DataType<T>::type, values.data());
    cv::Mat mask(kSide + 2, kSide + 2, CV_8U);
    const auto openCv = [&] {
        mask.setTo(0);
        cv::floodFill(view, mask, cv::Point(x, y), cv::Scalar(), nullptr,
                      cv::Scalar(static_cast<double>(static_cast<float>(seed) - min)),
                      cv::Scalar(static_cast<double>(max - static_cast<float>(seed))),
                      4 | cv::FLOODFILL_MASK_ONLY | cv::FLOODFILL_FIXED_RANGE);
    };
    wand.show(x, y);
    BenchRace race;
    const int click = race.add([&] {
        wand.forget();
        return benchClockMs([&] { wand.click(x, y, static_cast<float>(seed)); });
    });
    McBitfield bits;
    McBox2i box;
    const int region =
        race.add([&] { return benchClockMs([&] { wand.tool->grow2D(bits, box, wand.tool->seeds[0]); }); });
    const int flood = race.add([&] { return benchClockMs(openCv); });
    const int picture = race.add([&] { return benchClockMs([&] { wand.editor.gi.redraw(); }); });
    race.run(kRounds);

    unsigned long count = 0;
    for (int j = 0; j < kSide; ++j)
        for (int i = 0; i < kSide; ++i) {
            const bool isSet = wand.editor.viewer(2).getSelection()->isSet(i, j);
            count += isSet;
            benchRequire(isSet == (mask.at<unsigned char>(j + 1, i + 1) != 0),
                         "OpenCV fills something else.");
        }
    char note[100];
    std::snprintf(note, sizeof note, "%.0f %% of the slice; picture of 1200 x 900 in both: %.2f",
                  100.0 * static_cast<double>(count) / (kSide * kSide), race.medianMs(picture));
    const std::string name = std::string("wand, slice of ") + type;
    benchPrint({name + ", click to picture", 1, race.medianMs(click), "OpenCV and picture",
                race.medianMs(flood) + race.medianMs(picture), 0, note});
    benchPrint(
        {name + ", the region", 1, race.medianMs(region), "OpenCV floodFill", race.medianMs(flood), 0, ""});

    std::vector<double> steps;
    for (int i = 0; i < kSteps; ++i) {
        const float wider = reach * static_cast<float>(i % 60) / 30;
        wand.setWindow(static_cast<float>(seed) - wider, static_cast<float>(seed) + wider);
        steps.push_back(benchClockMs([&] {
            wand.tool->dataWindowChanged(wand.editor.gi.toolDataWindow[0], wand.editor.gi.toolDataWindow[1]);
        }));
    }
    std::sort(steps.begin(), steps.end());
    std::snprintf(note, sizeof note, "worst %.2f; peer: a frame of 60 a second", steps.back());
    benchPrint({name + ", step of a drag", 1, steps[kSteps / 2], "a frame", kFrameMs, 0, note});
}

/// The bits of the selection are those of a file.
void requireSame(const GiSelection3D& selection, const std::string& file)
{
    McBitfield theirs(selection.numBits());
    benchLoad(file, theirs.words(), selection.numBits() / 8);
    benchRequire(theirs == selection.bits, "the peer fills something else.");
}

/// A click with "All slices", against a peer that was opened as "peer".
void benchVolume(Wand& wand, BenchPython& python, const BenchOptions& options, int x, int y, float value,
                 const char* name, const char* peer)
{
    wand.show(x, y);
    double mostMiB = 0;
    BenchRace race;
    const int ours = race.add([&] {
        wand.forget();
        benchForgetPeak();
        const double before = benchResidentMiB();
        const double ms = benchClockMs([&] { wand.click(x, y, value); });
        mostMiB = std::max(mostMiB, benchPeakMiB() - before);
        return ms;
    });
    const int theirs = race.add([&] { return python.runMs("peer"); });
    race.run(5, 15000);
    const std::string file = options.work + "/region.raw";
    python.ask("save peer " + file);
    requireSame(*wand.editor.gi.selection, file);
    char note[120];
    std::snprintf(note, sizeof note,
                  "%.0f %% of the volume; %.0f MiB beside %.0f of bits, undo step included",
                  100.0 * static_cast<double>(benchCount(wand.editor.gi.selection->bits)) /
                      static_cast<double>(options.voxels()),
                  mostMiB, static_cast<double>(options.voxels()) / 8 / 1048576);
    benchPrint({name, 1, race.medianMs(ours), peer, race.medianMs(theirs), 0, note});
    python.ask("close peer");
}

void benchBlobVolume(const BenchOptions& options)
{
    constexpr int kTolerance = 500;
    BenchImage blobs = benchBlobs(options.size);
    const unsigned long side = options.size;
    const int middle = static_cast<int>(side / 2);
    unsigned long start = (side / 2 * side + side / 2) * side;
    while (std::abs(blobs[start] - 2000) >= 100) ++start;
    const int x = static_cast<int>(start % side), value = blobs[start];
    const std::string file = options.work + "/image.raw";
    benchSave(file, blobs.data(), blobs.size() * 2);
    BenchPython python(side);
    python.ask("open peer flood " + file + " " + std::to_string(x) + " " +
               std::to_string(start / side % side) + " " + std::to_string(middle) + " " +
               std::to_string(kTolerance));
    Wand wand(side, side, side, blobs.data());
    wand.editor.viewer(2).setSlice(middle, false);
    wand.allSlices->setChecked(true);
    wand.setWindow(static_cast<float>(value - kTolerance), static_cast<float>(value + kTolerance));
    benchVolume(wand, python, options, x, static_cast<int>(start / side % side), static_cast<float>(value),
                "wand, volume of 16 bit", "scikit-image flood");
}

/// A brain, repeated until it fills the cube; the window holds its white matter.
void benchMri(const BenchOptions& options)
{
    constexpr int kLow = 90, kHigh = 130;
    const unsigned long side = options.size;
    const std::string file = options.work + "/mri.raw";
    BenchPython python(side);
    python.ask("atlas /usr/share/mricron/templates/ch2.nii.gz " + file);
    std::vector<unsigned char> mri(options.voxels());
    benchLoad(file, mri.data(), mri.size());
    constexpr int kX = 70, kY = 100, kZ = 90;
    const auto at = [&](int x) { return (kZ * side + kY) * side + static_cast<unsigned long>(x); };
    int x = kX;
    while (mri[at(x)] < kLow || mri[at(x)] > kHigh) ++x;
    python.ask("open peer label " + file + " " + std::to_string(x) + " " + std::to_string(kY) + " " +
               std::to_string(kZ) + " " + std::to_string(kLow) + " " + std::to_string(kHigh));
    Wand wand(side, side, side, mri.data());
    wand.editor.viewer(2).setSlice(kZ, false);
    wand.allSlices->setChecked(true);
    wand.setWindow(kLow, kHigh);
    benchVolume(wand, python, options, x, kY, mri[at(x)], "wand, MRI", "SciPy label");
}

void benchRegions(const BenchOptions& options)
{
    benchSetThreads(1);
    cv::setNumThreads(1);
    benchSlice<unsigned char>("bytes", 16);
    benchSlice<float>("float", 1);
    benchBlobVolume(options);
    benchMri(options);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen"); // the panel, without a display
    const QApplication application(argc, argv);
    return benchMain(argc, argv, benchRegions);
}
