// The threshold over a volume, beside OpenCV, and a stroke of the brush as a person draws it: one motion
// event after another through the frame buffer, with all that is drawn anew in three viewers.

#include "BenchEditor.h"
#include "BenchFloor.h"
#include "BenchProgram.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "mc/McEvent.h"
#include "tools/GiBrush.h"
#include "tools/giSelectWindow.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

constexpr int kRounds = 15;
constexpr int kEvents = 1000;
constexpr float kLow = 1500, kHigh = 2500; // a third of the blobs

/// One element type: all voxels in a window, as bits here and as bytes there.
template <class T>
void benchThreshold(const BenchOptions& options, const BenchImage& blobs, const char* type, int primType,
                    int divisor)
{
    std::vector<T> values(blobs.size());
    std::transform(blobs.begin(), blobs.end(), values.begin(),
                   [=](int v) { return static_cast<T>(v / divisor); });
    const float window[2] = {kLow / static_cast<float>(divisor), kHigh / static_cast<float>(divisor)};
    const auto side = static_cast<int>(options.size);
    cv::Mat view(side * side, side, cv::DataType<T>::type, values.data());
    cv::Mat mask(side * side, side, CV_8U);
    McBitfield bits(values.size());

    for (const int threads : {1, 2}) {
        cv::setNumThreads(threads);
        const auto ours = [&] {
            giSelectWindow(primType, values.data(), window, nullptr, -1, bits, threads);
        };
        const auto openCv = [&] {
            cv::inRange(view, cv::Scalar(static_cast<double>(window[0])),
                        cv::Scalar(static_cast<double>(window[1])), mask);
        };
        ours();
        openCv();
        for (unsigned long i = 0; i < values.size(); ++i)
            benchRequire(bits.isSet(i) == (mask.data[i] != 0), "the threshold differs from OpenCV's.");
        BenchRace race;
        const int our = race.add([&] { return benchClockMs(ours); });
        const int their = race.add([&] { return benchClockMs(openCv); });
        const int floor = race.add([&] {
            return benchClockMs([&] {
                benchRead(values.data(), values.size() * sizeof(T), threads);
                benchWrite(bits.words(), bits.numWords() * 4, threads);
            });
        });
        race.run(kRounds);
        benchPrint({std::string("threshold, ") + type, threads, race.medianMs(our), "OpenCV inRange",
                    race.medianMs(their), race.medianMs(floor), "OpenCV makes bytes; floor: read and write"});
    }
}

/// A hand that draws loops, about ten pixels an event.
std::vector<McVec2i> strokePlaces(const GiFrameBuffer& buffer)
{
    std::vector<McVec2i> places;
    const double cx = buffer.zoomedSize.x / 2, cy = buffer.zoomedSize.y / 2;
    for (int i = 0; i < kEvents; ++i) {
        const double t = i * 0.05;
        places.emplace_back(static_cast<int>(cx + 190 * std::sin(t)),
                            static_cast<int>(cy + 170 * std::cos(1.31 * t)));
    }
    return places;
}

/// The rule of the disc in its plain form: every pixel of every stamp.
class PlainStroke
{
public:
    PlainStroke(const GiFrameBuffer& frameBuffer, int penSize, McBitfield allowedPixels)
        : buffer(frameBuffer),
          size(penSize),
          allowed(std::move(allowedPixels)),
          pixels(static_cast<std::size_t>(buffer.originalSize.x * buffer.originalSize.y))
    {
    }

    void move(const McVec2i& from, const McVec2i& to)
    {
        const long dx = to.x - from.x, dy = to.y - from.y;
        const int n = static_cast<int>(std::hypot(static_cast<float>(dy), static_cast<float>(dx)));
        for (long i = 0; i < n; ++i)
            stamp(McVec2i(from.x + static_cast<int>(dx * i / n), from.y + static_cast<int>(dy * i / n)));
    }

    void stamp(const McVec2i& at)
    {
        const int half = size / 2, far = half - (2 * half + 1 > size ? 1 : 0), limit = size * size;
        const int c1 = std::min(buffer.dataColumn(at.x + far) + 1, buffer.originalSize.x - 1);
        const int r1 = std::min(buffer.dataRow(at.y + far) + 1, buffer.originalSize.y - 1);
        for (int r = std::max(buffer.dataRow(at.y - half) - 1, 0); r <= r1; ++r)
            for (int c = std::max(buffer.dataColumn(at.x - half) - 1, 0); c <= c1; ++c) {
                const McVec2i centre = buffer.pixelCentre(c, r);
                const int dx = centre.x - at.x, dy = centre.y - at.y;
                if (4 * (dx * dx + dy * dy) <= limit) mark(c, r);
            }
        mark(buffer.dataColumn(at.x), buffer.dataRow(at.y));
    }

    bool isSet(int c, int r) const { return pixels[index(c, r)]; }

private:
    std::size_t index(int c, int r) const { return static_cast<std::size_t>(r * buffer.originalSize.x + c); }
    void mark(int c, int r)
    {
        if (allowed.numBits() == 0 || allowed.isSet(index(c, r))) pixels[index(c, r)] = 1;
    }

    const GiFrameBuffer& buffer;
    const int size;
    const McBitfield allowed; // empty: all
    std::vector<unsigned char> pixels;
};

double percentile(std::vector<double> times, double share)
{
    std::sort(times.begin(), times.end());
    return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
}

void benchStroke(BenchEditor& editor, int orientation, int size, bool masks)
{
    constexpr const char* kPlanes[3] = {"YZ", "XZ", "XY"};
    GiMemoryFrameBuffer& buffer = editor.buffer(orientation);
    GiViewer& viewer = editor.viewer(orientation);
    for (int o = 0; o < 3; ++o) {
        editor.viewer(o).setMaskingWindow(kLow, kHigh, false);
        editor.viewer(o).setMaskingEnabled(masks);
    }
    editor.gi.selection->clear();
    editor.gi.updateSelectionBoxes();
    editor.gi.redraw();
    auto* brush = dynamic_cast<GiBrush*>(editor.gi.tools[GiBrush::kIndex]);
    brush->setBrushSize(size);
    const std::vector<McVec2i> places = strokePlaces(buffer);

    McMouseButtonEvent press;
    press.button = 1;
    press.pressed = press.left = 1;
    press.x = places[0].x;
    press.y = places[0].y;
    buffer.handleEvent(&press);
    std::vector<double> ours;
    for (const McVec2i& place : places) {
        McMotionEvent motion;
        motion.left = 1;
        motion.x = place.x;
        motion.y = place.y;
        ours.push_back(benchClockMs([&] { buffer.handleEvent(&motion); }));
    }

    McBitfield allowed;
    if (masks) editor.gi.getMask(&buffer, allowed);
    PlainStroke plain(buffer, size, std::move(allowed));
    plain.stamp(places[0]);
    std::vector<double> plainTimes;
    for (std::size_t i = 1; i < places.size(); ++i)
        plainTimes.push_back(benchClockMs([&] { plain.move(places[i - 1], places[i]); }));
    for (int r = 0; r < buffer.originalSize.y; ++r)
        for (int c = 0; c < buffer.originalSize.x; ++c)
            benchRequire(viewer.getSelection()->isSet(c, r) == plain.isSet(c, r),
                         "the stroke differs from the rule.");
    for (int o = 0; o < 3; ++o) {
        const std::vector<unsigned int> left = benchPicture(editor.buffer(o));
        editor.viewer(o).redraw();
        benchRequire(left == benchPicture(editor.buffer(o)),
                     "the stroke leaves another picture than a redraw.");
    }
    char name[80], note[80];
    std::snprintf(name, sizeof name, "brush %d, %s%s", size, kPlanes[orientation], masks ? ", masked" : "");
    std::snprintf(note, sizeof note, "99th percentile %.2f, worst %.2f; paint included",
                  percentile(ours, 0.99), percentile(ours, 1));
    benchPrint({name, 1, percentile(ours, 0.5), "stamp by stamp", percentile(plainTimes, 0.5), 0, note});
    brush->clear(&buffer);
}

void benchTools(const BenchOptions& options)
{
    BenchImage blobs = benchBlobs(options.size);
    benchThreshold<unsigned char>(options, blobs, "bytes", 0, 16);
    benchThreshold<unsigned short>(options, blobs, "16 bit", 2, 1);
    benchThreshold<float>(options, blobs, "float", 5, 1);

    benchSetThreads(1);
    BenchEditor editor(options.size);
    editor.setImage(blobs.data());
    editor.gi.imageLattice = editor.lattice();
    editor.gi.setZoomFactor(2);
    const int middle = static_cast<int>(options.size) / 2;
    for (int o = 0; o < 3; ++o) {
        editor.viewer(o).setDataWindow(0, 4000, false);
        editor.viewer(o).setSlice(middle, false);
        editor.buffer(o).setWindowSize(McVec2i(600, 600));
        editor.buffer(o).setOffset(
            McVec2i((editor.buffer(o).zoomedSize.x - 600) / 2, (editor.buffer(o).zoomedSize.y - 600) / 2));
    }
    editor.gi.setTool(GiBrush::kIndex);
    for (const int size : {25, 200})
        for (const int orientation : {2, 0})
            for (const bool masks : {false, true}) benchStroke(editor, orientation, size, masks);
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchTools);
}
