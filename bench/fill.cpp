// Flood fills in a volume of 16-bit values, beside scikit-image and ITK.

#include "BenchFloor.h"
#include "BenchProgram.h"
#include "BenchPython.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "core/mcFloodFill.h"

#include <itkConnectedThresholdImageFilter.h>
#include <itkImage.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kRounds = 7;
constexpr int kTolerance = 500;

using ItkImage = itk::Image<unsigned short, 3>;
using ItkMask = itk::Image<unsigned char, 3>;

/// The first voxel from the centre on whose value lies in the middle of the range.
unsigned long findSeed(const BenchImage& image, unsigned long size)
{
    for (unsigned long i = (size / 2 * size + size / 2) * size + size / 2; i < image.size(); ++i)
        if (std::abs(image[i] - 2000) < 100) return i;
    benchRequire(false, "the image has no seed.");
    return 0;
}

struct Window
{
    bool accepts(unsigned short value, int, int, int) const { return value >= min && value <= max; }

    unsigned short min, max;
};

/// The same bits from a mask of bytes.
McBitfield packed(const unsigned char* mask, unsigned long count)
{
    McBitfield bits(count);
    for (unsigned long i = 0; i < count; ++i)
        if (mask[i]) bits.set(i);
    return bits;
}

class ItkFill
{
public:
    ItkFill(const BenchImage& source, unsigned long size, const Window& window, const int* seed)
        : image(ItkImage::New())
    {
        ItkImage::RegionType region;
        region.SetSize({{size, size, size}});
        image->SetRegions(region);
        // The filter only reads.
        image->GetPixelContainer()->SetImportPointer(const_cast<unsigned short*>(source.data()),
                                                     source.size(), false);
        for (unsigned int axis = 0; axis < 3; ++axis) start[axis] = seed[axis];
        limits = window;
    }

    double runMs()
    {
        const auto filter = itk::ConnectedThresholdImageFilter<ItkImage, ItkMask>::New();
        filter->SetInput(image);
        filter->SetLower(limits.min);
        filter->SetUpper(limits.max);
        filter->SetReplaceValue(1);
        filter->SetSeed(start);
        const double ms = benchClockMs([&] { filter->Update(); });
        mask = filter->GetOutput();
        return ms;
    }

    ItkMask::Pointer mask;

private:
    ItkImage::Pointer image;
    ItkImage::IndexType start;
    Window limits;
};

void benchFill(const BenchOptions& options)
{
    const unsigned long size = options.size, count = options.voxels();
    const unsigned long dims[3] = {size, size, size};
    BenchImage image = benchBlobs(size);
    const unsigned long start = findSeed(image, size);
    const int seed[3] = {static_cast<int>(start % size), static_cast<int>(start / size % size),
                         static_cast<int>(start / size / size)};
    const int value = image[start];
    const Window window{static_cast<unsigned short>(value - kTolerance),
                        static_cast<unsigned short>(value + kTolerance)};

    const std::string imageFile = options.work + "/image.raw", resultFile = options.work + "/result.raw";
    benchSave(imageFile, image.data(), count * 2);
    BenchPython python(size);
    char open[500];
    std::snprintf(open, sizeof open, "open flood flood %s %d %d %d %d", imageFile.c_str(), seed[0], seed[1],
                  seed[2], kTolerance);
    python.ask(open);
    ItkFill itk(image, size, window, seed);

    const McFillWindow<unsigned short> fast{image.data(), window.min, window.max, nullptr, -1};
    const McData3D<unsigned short> data(image.data(), static_cast<int>(size), static_cast<int>(size),
                                        static_cast<int>(size));
    Window checker = window;
    McBitfield region, plain;
    BenchRace race;
    const int window3D = race.add([&] {
        region.resize(0);
        return benchClockMs(
            [&] { mcFloodFillWindow(fast, dims, seed[0], seed[1], seed[2], region, nullptr); });
    });
    const int template3D = race.add([&] {
        plain.resize(0);
        return benchClockMs([&] { mcFloodFill3D(data, checker, seed[0], seed[1], seed[2], plain, nullptr); });
    });
    BenchLabels target(count / 8);
    const int least = race.add([&] {
        return benchClockMs([&] {
            benchRead(image.data(), count * 2, 1);
            benchWrite(target.data(), count / 8, 1);
        });
    });
    const int skimage = race.add([&] { return python.runMs("flood"); });
    const int itkMs = race.add([&] { return itk.runMs(); });
    race.run(kRounds);

    // No time is told before all results are the same.
    benchRequire(plain == region, "the two floods differ.");
    benchRequire(packed(itk.mask->GetBufferPointer(), count) == region, "ITK fills something else.");
    python.ask("save flood " + resultFile);
    benchLoad(resultFile, plain.words(), count / 8);
    benchRequire(plain == region, "scikit-image fills something else.");

    char note[80];
    std::snprintf(note, sizeof note, "region: %.0f %% of the volume",
                  100.0 * static_cast<double>(benchCount(region)) / static_cast<double>(count));
    const struct
    {
        const char* name;
        int contestant;
    } kOurs[] = {{"flood a value window in 3D", window3D}, {"flood by a checker in 3D", template3D}};
    for (const auto& ours : kOurs) {
        const double ms = race.medianMs(ours.contestant);
        benchPrint(
            {ours.name, 1, ms, "scikit-image flood", race.medianMs(skimage), race.medianMs(least), note});
        benchPrint(
            {ours.name, 1, ms, "ITK ConnectedThreshold", race.medianMs(itkMs), race.medianMs(least), ""});
    }
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchFill);
}
