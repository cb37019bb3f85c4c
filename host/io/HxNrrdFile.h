#pragma once

#include "io/HxVoxelSource.h"

#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// Key/value pairs of a NRRD header, in file order; the values may hold any bytes but 0.
using HxNrrdPairs = std::vector<std::pair<std::string, std::string>>;

/// An NRRD file for reading: header at once, voxels on demand.
///
/// Attached and detached data, one file, a list or a numbered series of them; raw, gzip and text
/// encoding. The format: "Definition of NRRD File Format", teem project, versions 1 to 5.
/// Up to three axes are spatial. Further axes hold the layers of a segmentation, and are otherwise
/// accepted only with one entry.
class HxNrrdFile
{
public:
    /// Reads the header. throws HxFileError
    explicit HxNrrdFile(const std::string& path);

    const std::string& fileName() const { return path; }
    const HxNrrdPairs& keyValues() const { return pairs; }
    /// Null if absent.
    const std::string* value(const std::string& key) const;

    int numLayers() const { return static_cast<int>(layers); }

    /// All voxels of a file with one layer. throws HxFileError
    HxVolume readVolume() const;

    /// Hands each layer in turn to the caller, who may take or change it. throws HxFileError
    void readLayers(const std::function<void(int layer, HxVolume& volume)>& take) const;

private:
    struct Axis
    {
        unsigned long size = 0;
        std::string kind;
        double spacing = std::nan("");
        double min = std::nan("");
        bool isCell = false;
        bool hasDirection = false;
        double direction[3] = {0, 0, 0};
    };

    struct Reader; // parses header lines

    bool isComponent(const Axis& axis) const;
    void arrangeAxes();
    void computeGeometry();
    void checkData() const;
    HxVolume emptyVolume() const;
    [[noreturn]] void fail(const std::string& reason) const;

    std::string path;
    HxNrrdPairs pairs;
    std::vector<Axis> axes;
    HxFileType type = HxFileType::uint8;
    bool hasType = false;
    bool hasEndian = false;
    bool hasEncoding = false;
    std::string space;
    std::vector<double> spaceOrigin;
    HxVoxelSource source;

    // What arrangeAxes() and computeGeometry() find
    unsigned long dims[3] = {1, 1, 1};
    std::vector<int> spatialAxes;
    std::size_t layers = 1;
    bool layersAreFastest = false;
    HxVolumeGeometry geometry;
};
