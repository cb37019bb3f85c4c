// Operations on the selection as a whole: growing and shrinking beside OpenCV and ITK, holes beside SciPy,
// what all slices cost when few hold something, and the look for voxels that no viewer shows.

#include "BenchFloor.h"
#include "BenchMemory.h"
#include "BenchProgram.h"
#include "BenchPython.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "core/GiSelection3D.h"
#include "core/giFillSlices.h"
#include "core/giHasHiddenVoxels.h"
#include "filters/GiShapeFilter.h"

#include <itkBinaryCrossStructuringElement.h>
#include <itkBinaryDilateImageFilter.h>
#include <itkBinaryErodeImageFilter.h>
#include <itkImage.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <cstdio>
#include <random>

namespace {

constexpr int kRounds = 15;
constexpr unsigned char kSet = 255;

using Bytes = std::vector<unsigned char>;
using ItkMask = itk::Image<unsigned char, 3>;

Bytes asBytes(const McBitfield& bits)
{
    Bytes bytes(bits.numBits());
    for (unsigned long i = 0; i < bytes.size(); ++i) bytes[i] = bits.isSet(i) ? kSet : 0;
    return bytes;
}

void requireSame(const McBitfield& bits, const unsigned char* bytes, const char* peer)
{
    bool same = true;
    for (unsigned long i = 0; i < bits.numBits(); ++i) same = same && bits.isSet(i) == (bytes[i] != 0);
    benchRequire(same, std::string(peer) + " gives other voxels.");
}

double msToFloor(unsigned long bytes, BenchLabels& memory, int threads)
{
    return benchClockMs([&] { benchUpdate(memory.data(), bytes, threads); });
}

// Growing and shrinking

/// The six neighbours by OpenCV: a cross in each plane, and the planes before and behind.
class OpenCvStep
{
public:
    OpenCvStep(Bytes& source, unsigned long size, bool grows)
        : side(static_cast<int>(size)),
          grow(grows),
          in(source.data()),
          out(source.size()),
          cross(cv::getStructuringElement(cv::MORPH_CROSS, cv::Size(3, 3)))
    {
    }

    void run()
    {
        for (int z = 0; z < side; ++z) {
            cv::Mat result = plane(out.data(), z);
            if (grow)
                cv::dilate(plane(in, z), result, cross);
            else
                cv::erode(plane(in, z), result, cross);
            for (const int other : {z - 1, z + 1}) {
                if (other < 0 || other >= side) continue;
                if (grow)
                    cv::max(result, plane(in, other), result);
                else
                    cv::min(result, plane(in, other), result);
            }
        }
    }

    const unsigned char* result() const { return out.data(); }

private:
    cv::Mat plane(unsigned char* volume, int z) const
    {
        return {side, side, CV_8U, volume + static_cast<std::ptrdiff_t>(z) * side * side};
    }

    int side;
    bool grow;
    unsigned char* in;
    Bytes out;
    cv::Mat cross;
};

template <class Filter>
class ItkStep
{
public:
    ItkStep(Bytes& source, unsigned long size) : image(ItkMask::New())
    {
        ItkMask::RegionType region;
        region.SetSize({{size, size, size}});
        image->SetRegions(region);
        image->GetPixelContainer()->SetImportPointer(source.data(), source.size(), false);
        element.SetRadius(1);
        element.CreateStructuringElement();
    }

    double runMs()
    {
        const auto filter = Filter::New();
        filter->SetInput(image);
        filter->SetKernel(element);
        filter->SetForegroundValue(kSet);
        filter->SetBackgroundValue(0);
        const double ms = benchClockMs([&] { filter->Update(); });
        mask = filter->GetOutput();
        return ms;
    }

    ItkMask::Pointer mask;

private:
    ItkMask::Pointer image;
    itk::BinaryCrossStructuringElement<unsigned char, 3> element;
};

using ItkCross = itk::BinaryCrossStructuringElement<unsigned char, 3>;
using ItkDilate = itk::BinaryDilateImageFilter<ItkMask, ItkMask, ItkCross>;
using ItkErode = itk::BinaryErodeImageFilter<ItkMask, ItkMask, ItkCross>;

template <class Itk>
void benchStep(const char* name, const McBitfield& start, unsigned long size, bool grow)
{
    Bytes bytes = asBytes(start);
    GiSelection3D selection;
    selection.resize(size, size, size);
    OpenCvStep openCv(bytes, size, grow);
    ItkStep<Itk> itk(bytes, size);
    BenchLabels floorMemory(start.numBits() / 8);
    for (const int threads : {1, 2}) {
        benchSetThreads(threads);
        cv::setNumThreads(threads);
        itk::MultiThreaderBase::SetGlobalDefaultNumberOfThreads(static_cast<unsigned int>(threads));
        BenchRace race;
        const int ours = race.add([&] {
            selection.copyFrom(start);
            return benchClockMs([&] {
                if (grow)
                    GiShapeFilter::dilate3D(selection, nullptr);
                else
                    GiShapeFilter::erode3D(selection, nullptr);
            });
        });
        const int theirs = race.add([&] { return benchClockMs([&] { openCv.run(); }); });
        const int itkMs = race.add([&] { return itk.runMs(); });
        const int least = race.add([&] { return msToFloor(floorMemory.size(), floorMemory, threads); });
        race.run(kRounds);
        requireSame(selection.bits, openCv.result(), "OpenCV");
        requireSame(selection.bits, itk.mask->GetBufferPointer(), "ITK");
        const double ms = race.medianMs(ours);
        benchPrint({name, threads, ms, "OpenCV by planes", race.medianMs(theirs), race.medianMs(least),
                    "38 % of the volume; floor: update the bits"});
        benchPrint({name, threads, ms, "ITK, 6 neighbours", race.medianMs(itkMs), race.medianMs(least), ""});
    }
}

// All slices

/// A ball's slices, one of `every` along an orientation.
McBitfield thinned(const McBitfield& ball, unsigned long size, int orientation, unsigned long every)
{
    McBitfield bits(ball.numBits());
    for (unsigned long i = 0; i < ball.numBits(); ++i) {
        const unsigned long p[3] = {i % size, i / size % size, i / size / size};
        if (p[orientation] % every == 0 && ball.isSet(i)) bits.set(i);
    }
    return bits;
}

void fillAllSlices(GiSelection3D& selection, int orientation)
{
    giFillSlices(selection, orientation, [](int) { return true; });
}

void benchSlices(const McBitfield& ball, unsigned long size)
{
    const struct
    {
        const char* name;
        void (*run)(GiSelection3D&, int);
    } kOperations[] = {{"grow all slices", GiShapeFilter::dilateSlices},
                       {"shrink all slices", GiShapeFilter::erodeSlices},
                       {"fill all slices", fillAllSlices}};
    benchSetThreads(1);
    GiSelection3D selection;
    selection.resize(size, size, size);
    for (const int orientation : {2, 1, 0}) {
        const char* const kPlanes[] = {"YZ", "XZ", "XY"};
        const McBitfield some = thinned(ball, size, orientation, 16);
        for (const auto& operation : kOperations) {
            BenchRace race;
            const auto timed = [&](const McBitfield& start) {
                return race.add([&] {
                    selection.copyFrom(start);
                    return benchClockMs([&] { operation.run(selection, orientation); });
                });
            };
            const int few = timed(some), all = timed(ball);
            race.run(5, 4000);
            benchPrint({std::string(operation.name) + ", " + kPlanes[orientation], 1, race.medianMs(few),
                        "ours, 16 times the slices", race.medianMs(all), 0, "1 of 16 slices holds voxels"});
        }
    }
}

// Holes

/// A ball with as many bubbles as random places give, some of which break through.
McBitfield bubbles(unsigned long size)
{
    McBitfield bits = benchBall(size, 0.45 * static_cast<double>(size));
    std::mt19937 random(5);
    const long n = static_cast<long>(size);
    for (int i = 0; i < 400; ++i) {
        const long c[3] = {static_cast<long>(random()) % n, static_cast<long>(random()) % n,
                           static_cast<long>(random()) % n};
        const long r = 3 + static_cast<long>(random() % 12);
        for (long z = std::max(c[2] - r, 0l); z < std::min(c[2] + r, n); ++z)
            for (long y = std::max(c[1] - r, 0l); y < std::min(c[1] + r, n); ++y)
                for (long x = std::max(c[0] - r, 0l); x < std::min(c[0] + r, n); ++x)
                    if ((x - c[0]) * (x - c[0]) + (y - c[1]) * (y - c[1]) + (z - c[2]) * (z - c[2]) < r * r)
                        bits.unset(static_cast<unsigned long>((z * n + y) * n + x));
    }
    return bits;
}

void benchHoles(const BenchOptions& options)
{
    const McBitfield start = bubbles(options.size);
    GiSelection3D selection;
    selection.resize(options.size, options.size, options.size);
    const std::string file = options.work + "/bubbles.raw", resultFile = options.work + "/filled.raw";
    benchSave(file, start.words(), start.numBits() / 8);
    BenchPython python(options.size);
    python.ask("open fill fill " + file);
    python.ask("open outside outside " + file);
    BenchLabels floorMemory(start.numBits() / 8);
    benchSetThreads(1);

    selection.copyFrom(start);
    benchForgetPeak();
    const double before = benchResidentMiB();
    selection.fillHoles();
    const double scratch = (benchPeakMiB() - before) * 1024 * 1024 * 8 / static_cast<double>(start.numBits());

    BenchRace race;
    const int ours = race.add([&] {
        selection.copyFrom(start);
        return benchClockMs([&] { selection.fillHoles(); });
    });
    const int scipy = race.add([&] { return python.runMs("fill"); });
    const int label = race.add([&] { return python.runMs("outside"); });
    const int least = race.add([&] { return msToFloor(floorMemory.size(), floorMemory, 1); });
    race.run(5, 4000);
    McBitfield theirs(start.numBits());
    for (const char* peer : {"fill", "outside"}) {
        python.ask(std::string("save ") + peer + " " + resultFile);
        benchLoad(resultFile, theirs.words(), start.numBits() / 8);
        benchRequire(theirs == selection.bits, std::string("SciPy fills other holes: ") + peer);
    }
    char note[80];
    std::snprintf(note, sizeof note, "scratch: %.2f bits per voxel", scratch);
    const double ms = race.medianMs(ours);
    benchPrint({"fill holes in 3D", 1, ms, "SciPy binary_fill_holes", race.medianMs(scipy),
                race.medianMs(least), note});
    benchPrint({"fill holes in 3D", 1, ms, "SciPy label of the outside", race.medianMs(label),
                race.medianMs(least), ""});
}

// Hidden voxels

void benchHidden(unsigned long size)
{
    const int middle = static_cast<int>(size / 2);
    const std::vector<GiShownSlice> shown = {{0, middle}, {1, middle}, {2, middle}};
    GiSelection3D selection;
    selection.resize(size, size, size);
    // Nothing is hidden, so that the look goes to the end.
    for (unsigned long i = 0; i < size; i += 7) {
        selection.set(middle, static_cast<int>(i), static_cast<int>(i * 5 % size));
        selection.set(static_cast<int>(i), middle, static_cast<int>(i * 3 % size));
        selection.set(static_cast<int>(i * 3 % size), static_cast<int>(i), middle);
    }
    BenchLabels floorMemory(selection.numBits() / 8);
    for (const int threads : {1, 2}) {
        benchSetThreads(threads);
        BenchRace race;
        bool hidden = false;
        const int ours =
            race.add([&] { return benchClockMs([&] { hidden = giHasHiddenVoxels(selection, shown); }); });
        const int copying = race.add([&] {
            return benchClockMs([&] {
                std::vector<GiSelection2D> saved;
                for (const GiShownSlice& s : shown) {
                    GiSelection2D view = selection.getSlice(s.slice, s.orientation);
                    saved.push_back(view);
                    saved.back().makeLocal();
                    view.clear();
                }
                benchRequire(!selection.isSet(), "a voxel lies outside the shown slices.");
                for (std::size_t i = 0; i < saved.size(); ++i)
                    selection.setSlice(&saved[i], shown[i].orientation, shown[i].slice);
            });
        });
        const int least = race.add([&] {
            return benchClockMs([&] { benchRead(floorMemory.data(), floorMemory.size(), threads); });
        });
        race.run(3 * kRounds);
        benchRequire(!hidden, "nothing is hidden.");
        benchPrint({"hidden voxels, 3 viewers, sparse", threads, race.medianMs(ours),
                    "slices out, scan, back", race.medianMs(copying), race.medianMs(least),
                    "floor: read the bits"});
    }
}

void benchSelection(const BenchOptions& options)
{
    const McBitfield ball = benchBall(options.size, 0.45 * static_cast<double>(options.size));
    benchStep<ItkDilate>("grow the selection in 3D", ball, options.size, true);
    benchStep<ItkErode>("shrink the selection in 3D", ball, options.size, false);
    benchSlices(ball, options.size);
    benchHoles(options);
    benchHidden(options.size);
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchSelection);
}
