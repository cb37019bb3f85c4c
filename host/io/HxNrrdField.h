#pragma once

#include <memory>
#include <string>
#include <vector>

class HxRegScalarField3;

/// Fields in NRRD files, the one form that keeps everything.
///
/// Beside what NRRD itself and the keys of segmentations say, a file of ours has the pairs
///     Vorel_Form        "labels" or "image"
///     Vorel_Parameters  the whole parameter tree (HxParamText)
///     Vorel_ZPositions  a number per slice of a stacked field
/// Another program may change the segments and leave our pairs as they were: then its names and colours
/// win, and all else of a material follows its segment to the label that it has now. Pairs of other
/// programs stay in the parameter bundle "NrrdPairs", one text "key:=value" each, and are written again.
struct HxNrrdField
{
    /// An image, or a label field if the file is of our label form or a segmentation, or if asLabels is set.
    ///
    /// warnings  sentences added at the end
    /// throws    HxFileError
    static std::unique_ptr<HxRegScalarField3> read(const std::string& path, bool asLabels,
                                                   std::vector<std::string>& warnings);

    /// Labels are packed, images are not, for speed. throws HxFileError
    static void write(const HxRegScalarField3& field, const std::string& path);
};
