#pragma once

#include "io/HxNrrdFile.h"

#include <string>
#include <vector>

class HxParamBundle;

/// A segment as the per-segment keys of a .seg.nrrd file describe it.
struct HxSegment
{
    int label = 1; ///< value of its voxels in its layer; after reading, its label
    int layer = 0;
    std::string id;
    std::string name; ///< any text
    std::string tags;
    bool hasColor = false;
    float color[3] = {0, 0, 0};
};

/// The per-segment keys of .seg.nrrd files, which several segmentation programs share, and their way into
/// and out of a label field's materials.
///
/// A segment's name becomes the material's name by the name rule; the original stays in "LongName". ID and
/// tags of other programs stay in "SegmentId" and "SegmentTags" and are written again.
struct HxSegments
{
    /// Whether the keys make the file a segmentation.
    static bool arePresent(const HxNrrdFile& file);

    /// Whether write() makes a key of this name, or a segment of a file has it.
    static bool isKey(const std::string& name);

    /// The segments of the keys, by their numbers, without those of label 0.
    ///
    /// warnings  sentences added at the end
    /// throws    HxFileError
    static std::vector<HxSegment> read(const HxNrrdFile& file, std::vector<std::string>& warnings);

    /// Reads the voxels as labels, merges layers into one, and sets the segments' `label` to the result.
    ///
    /// largest  receives the largest label
    /// throws   HxFileError if segments overlap or need more than 255 labels
    static HxVolume readLabels(const HxNrrdFile& file, std::vector<HxSegment>& segments, int& largest);

    /// Makes "Materials" of the segments in label order; labels without a segment get a made name.
    ///
    /// Materials that are there already are our own form of the same segments: each goes, whole, to the
    /// label that its segment has now, and takes over name and colour if another program changed them.
    static void toMaterials(const std::vector<HxSegment>& segments, int largest, HxParamBundle& parameters);

    /// Adds the keys of all materials but the first, and of labels that have no material.
    static void write(const HxParamBundle& materials, const unsigned long* dims, const unsigned char* labels,
                      HxNrrdPairs& keyValues);
};
