// DICOM series: which files belong together, and where their slices lie.

#include "io/HxFileError.h"
#include "io/HxFileKind.h"
#include "io/HxItkFile.h"
#include "io/HxNaturalOrder.h"
#include "io/HxSliceSeries.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

// Part of the mean gap by which a slice may be off its place; scanners round positions.
constexpr double kGapTolerance = 0.01;

struct Slice
{
    std::unique_ptr<HxItkFile> file;
    double place = 0; // along the normal
    bool hasPosition = false;
    long number = 0; // the scanner's own count
};

using Series = std::vector<Slice>;

// Slices of another size or direction, such as a localizer, are a series of their own.
std::string seriesKey(const HxItkFile& file)
{
    std::string key = file.dicomText("0020|000e") + "|" + std::to_string(file.dims()[0]) + "x" +
                      std::to_string(file.dims()[1]);
    for (double d : file.geometry().directions) key += "|" + std::to_string(std::lround(d * 1000));
    return key;
}

Slice makeSlice(std::unique_ptr<HxItkFile> file)
{
    Slice slice;
    double normal[3];
    file->geometry().getAxis(2, normal);
    for (int x = 0; x < 3; ++x) slice.place += normal[x] * file->geometry().origin[x];
    slice.hasPosition = !file->dicomText("0020|0032").empty();
    slice.number = std::atol(file->dicomText("0020|0013").c_str());
    slice.file = std::move(file);
    return slice;
}

[[noreturn]] void failForSeveral(const std::map<std::string, Series>& all, const std::string& named)
{
    std::string list;
    for (const auto& [key, series] : all) {
        const HxItkFile& first = *series.front().file;
        const std::string title = first.dicomText("0008|103e");
        list += (list.empty() ? "" : "; ") + (title.empty() ? "untitled" : "\"" + title + "\"") + " with " +
                std::to_string(series.size()) + " slices of " + std::to_string(first.dims()[0]) + " x " +
                std::to_string(first.dims()[1]) + ", from " + first.path();
    }
    throw HxFileError(named,
                      "holds " + std::to_string(all.size()) + " series, load the files of one: " + list);
}

void sortByPosition(Series& series)
{
    std::sort(series.begin(), series.end(), [](const Slice& a, const Slice& b) {
        return a.place != b.place ? a.place < b.place : hxNaturalLess(a.file->path(), b.file->path());
    });
    const double length = series.back().place - series.front().place;
    const double least = 1e-3 * length / static_cast<double>(series.size());
    for (std::size_t i = 1; i < series.size(); ++i)
        if (series[i].place - series[i - 1].place <= least)
            throw HxFileError(series[i].file->path(),
                              "lies at the same position as " + series[i - 1].file->path());
}

void sortByNumber(Series& series)
{
    std::sort(series.begin(), series.end(), [](const Slice& a, const Slice& b) {
        return a.number != b.number ? a.number < b.number : hxNaturalLess(a.file->path(), b.file->path());
    });
}

// The decimals that a scanner writes, without the noise of the sum over all slices.
double rounded(double v)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.8g", v);
    return std::strtod(text, nullptr);
}

void placeSlices(const Series& series, HxVolumeGeometry& geometry)
{
    const double first = series.front().place;
    const double gap = (series.back().place - first) / static_cast<double>(series.size() - 1);
    bool isUniform = true;
    for (std::size_t i = 0; i < series.size(); ++i)
        isUniform &= std::abs(series[i].place - first - gap * static_cast<double>(i)) <= kGapTolerance * gap;
    geometry.spacing[2] = rounded(gap);
    if (isUniform) return;
    for (const Slice& slice : series)
        geometry.zPositions.push_back(geometry.origin[2] + rounded(slice.place - first));
}

// How far the last slice is shifted within its plane, as with a tilted gantry.
double sidewaysShift(const Series& series)
{
    const HxVolumeGeometry& a = series.front().file->geometry();
    const HxVolumeGeometry& b = series.back().file->geometry();
    double normal[3];
    a.getAxis(2, normal);
    const double along = series.back().place - series.front().place;
    double sum = 0;
    for (int x = 0; x < 3; ++x) {
        const double d = b.origin[x] - a.origin[x] - along * normal[x];
        sum += d * d;
    }
    return std::sqrt(sum);
}

} // namespace

HxVolume HxSliceSeries::readDicom(const std::vector<std::string>& files, const std::string& named,
                                  std::vector<std::string>& warnings)
{
    probeDicom(files);
    std::map<std::string, Series> all;
    for (const std::string& path : files) {
        auto file = std::make_unique<HxItkFile>(path, HxFileKind::dicom);
        const std::string key = seriesKey(*file);
        all[key].push_back(makeSlice(std::move(file)));
    }
    if (all.size() > 1) failForSeveral(all, named);
    Series& series = all.begin()->second;
    if (series.size() == 1) return series.front().file->read();

    const bool isPlaced =
        std::all_of(series.begin(), series.end(), [](const Slice& s) { return s.hasPosition; });
    if (isPlaced)
        sortByPosition(series);
    else
        sortByNumber(series);

    HxVolumeGeometry geometry = series.front().file->geometry();
    if (!isPlaced) {
        warnings.push_back("the slices have no positions; they are sorted by number");
    } else {
        placeSlices(series, geometry);
        if (sidewaysShift(series) > std::max(geometry.spacing[0], geometry.spacing[1]) / 2)
            warnings.push_back("the slices are shifted sideways (tilted gantry), which is not kept");
    }
    std::vector<std::unique_ptr<HxSliceFile>> sorted;
    for (Slice& slice : series) sorted.push_back(std::move(slice.file));
    HxVolume volume = join(sorted, named);
    volume.geometry = geometry;
    return volume;
}
