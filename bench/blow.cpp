// The blow tool: its blur and its planes of speed beside OpenCV, the press that makes them, and a hand that
// drags the curve out and back, with all that is drawn anew.

#include "BenchEditor.h"
#include "BenchProgram.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "mc/McEvent.h"
#include "modules/LicImage.h"
#include "tools/GiBlowTool.h"
#include "tools/mcBlowSpeed.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kRounds = 200;
constexpr int kWidth = 4; // of the blur, as the tool starts with

/// A square slice of the blobs, as bytes.
std::vector<unsigned char> sliceOf(const BenchImage& blobs, unsigned long size)
{
    std::vector<unsigned char> slice(size * size);
    std::transform(blobs.begin(), blobs.begin() + static_cast<long>(slice.size()), slice.begin(),
                   [](int v) { return static_cast<unsigned char>(v / 16); });
    return slice;
}

void benchBlur(std::vector<unsigned char>& slice, int side)
{
    const cv::Mat picture(side, side, CV_8U, slice.data());
    cv::Mat theirs;
    LicImage ours(side, side, nullptr);
    for (const int width : {2, kWidth, 8}) {
        const int taps = 2 * width - 1;
        const auto blur = [&] { LicImage(side, side, slice.data()).gaussBlur(width, &ours); };
        const auto openCv = [&] {
            cv::GaussianBlur(picture, theirs, cv::Size(taps, taps), width / 2.0, 0, cv::BORDER_REPLICATE);
        };
        blur();
        openCv();
        for (int i = 0; i < side * side; ++i)
            benchRequire(std::abs(ours.data[i] - theirs.data[i]) <= 2, "the blur differs from OpenCV's.");
        BenchRace race;
        const int our = race.add([&] { return benchClockMs(blur); });
        const int their = race.add([&] { return benchClockMs(openCv); });
        race.run(kRounds);
        char name[80];
        std::snprintf(name, sizeof name, "blur of %d x %d, width %d", side, side, width);
        benchPrint({name, 1, race.medianMs(our), "OpenCV GaussianBlur", race.medianMs(their), 0,
                    std::to_string(taps) + " taps across, ours of 16 bits, theirs of 8"});
    }
}

/// Differences along x and y, as of a growing curve's planes but for the border.
void differences(const cv::Mat& plane, cv::Mat& dx, cv::Mat& dy)
{
    cv::Sobel(plane, dx, CV_32F, 1, 0, 1, 0.5, 0, cv::BORDER_REPLICATE);
    cv::Sobel(plane, dy, CV_32F, 0, 1, 1, 0.5, 0, cv::BORDER_REPLICATE);
}

void benchSpeed(std::vector<unsigned char>& slice, int side)
{
    const long n = static_cast<long>(side) * side;
    std::vector<float> slopes(slice.size()), speed(slice.size());
    std::vector<McVec2f> gradient(slice.size());
    const cv::Mat picture(side, side, CV_8U, slice.data());
    cv::Mat dx, dy, theirSpeed, theirX, theirY;
    const auto planes = [&] {
        mcAbsOfGradient(slice.data(), side, side, slopes.data());
        mcSpeedOfGradient(slopes.data(), n, speed.data());
        mcGradientOf(speed.data(), side, side, gradient.data());
    };
    const auto openCv = [&] {
        differences(picture, dx, dy);
        cv::magnitude(dx, dy, theirSpeed);
        cv::min(theirSpeed, 255, theirSpeed);
        theirSpeed += 1;
        cv::divide(1.0, theirSpeed, theirSpeed);
        differences(theirSpeed, theirX, theirY);
    };
    planes();
    openCv();
    for (int y = 2; y < side - 2; ++y)
        for (int x = 2; x < side - 2; ++x) {
            const McVec2f ours = gradient[static_cast<std::size_t>(y) * static_cast<std::size_t>(side) +
                                          static_cast<std::size_t>(x)];
            benchRequire(std::abs(ours.x - theirX.at<float>(y, x)) < 1e-5 &&
                             std::abs(ours.y - theirY.at<float>(y, x)) < 1e-5,
                         "the planes of speed differ from OpenCV's.");
        }
    BenchRace race;
    const int our = race.add([&] { return benchClockMs(planes); });
    const int their = race.add([&] { return benchClockMs(openCv); });
    race.run(kRounds);
    char name[80];
    std::snprintf(name, sizeof name, "planes of speed, %d x %d", side, side);
    benchPrint({name, 1, race.medianMs(our), "OpenCV Sobel and so on", race.medianMs(their), 0, ""});
}

/// Gestures in the XY viewer, at zoom 1.
class BlowCase
{
public:
    BlowCase(BenchEditor& benched, const char* shownAs) : editor(benched), what(shownAs)
    {
        editor.gi.setTool(GiBlowTool::kIndex);
    }

    void run()
    {
        std::vector<double> presses, drags;
        const int side = static_cast<int>(editor.dims[0]);
        for (int gesture = 0; gesture < kGestures; ++gesture) {
            const McVec2i start(side / 2 + 37 * gesture, side / 2 - 23 * gesture);
            presses.push_back(benchClockMs([&] {
                button(true, start);
                drag(start, 3);
            }));
            for (int distance = 3; distance < kFarthest; distance += kStride)
                drags.push_back(benchClockMs([&] { drag(start, distance); }));
            for (int distance = kFarthest; distance > 0; distance -= kStride)
                drags.push_back(benchClockMs([&] { drag(start, distance); }));
            const std::vector<unsigned int> left = benchPicture(editor.buffer(2));
            editor.viewer(2).redraw();
            benchRequire(left == benchPicture(editor.buffer(2)),
                         "a drag leaves another picture than a redraw.");
            button(false, start);
        }
        report("blow tool, press to curve", presses);
        report("blow tool, a drag event", drags);
    }

private:
    static constexpr int kGestures = 5, kFarthest = 400, kStride = 5;

    void button(bool isPress, const McVec2i& at)
    {
        McMouseButtonEvent event;
        event.button = 1;
        event.pressed = event.left = isPress;
        event.x = at.x;
        event.y = at.y;
        editor.buffer(2).handleEvent(&event);
    }

    void drag(const McVec2i& start, int distance)
    {
        McMotionEvent event;
        event.left = 1;
        event.x = start.x + distance;
        event.y = start.y;
        editor.buffer(2).handleEvent(&event);
    }

    void report(const char* name, std::vector<double> times)
    {
        std::sort(times.begin(), times.end());
        const auto at = [&](double s) {
            return times[static_cast<std::size_t>(s * static_cast<double>(times.size() - 1))];
        };
        char note[80];
        std::snprintf(note, sizeof note, "99th percentile %.2f, worst %.2f; paint included", at(0.99),
                      times.back());
        benchPrint({std::string(name) + ", " + what, 1, at(0.5), "", 0, 0, note});
    }

    BenchEditor& editor;
    const char* what;
};

void benchBlow(const BenchOptions& options)
{
    benchSetThreads(1);
    cv::setNumThreads(1);
    const BenchImage blobs = benchBlobs(options.size);
    std::vector<unsigned char> slice = sliceOf(blobs, options.size);
    const int side = static_cast<int>(options.size);
    benchBlur(slice, side);
    benchSpeed(slice, side);

    // Slices of twice that size: four slices of the blobs side by side, and one that holds nothing.
    const unsigned long large = 2 * options.size;
    std::vector<unsigned char> volume(large * large * 2, 90);
    for (unsigned long y = 0; y < large; ++y)
        for (unsigned long x = 0; x < large; ++x)
            volume[x + large * y] = static_cast<unsigned char>(
                blobs[x % options.size +
                      options.size * (y % options.size + options.size * (x / options.size))] /
                16);
    BenchEditor editor(large, large, 2);
    editor.setImage(volume.data());
    editor.gi.imageLattice = editor.lattice();
    editor.setZoom(1);
    editor.viewer(2).setDataWindow(0, 255, false);
    editor.viewer(2).setSlice(0, false);
    BlowCase(editor, "blobs").run();
    editor.viewer(2).setSlice(1, false);
    BlowCase(editor, "flat").run();
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchBlow);
}
