#include "io/HxNrrdField.h"

#include "hx/HxLabelField3.h"
#include "io/HxAtomicFile.h"
#include "io/HxFileError.h"
#include "io/HxNumberText.h"
#include "io/HxParamText.h"
#include "io/HxSegments.h"
#include "io/HxVolumeField.h"
#include "io/hxWriteNrrd.h"

#include <sstream>

namespace {

constexpr char kForm[] = "Vorel_Form";
constexpr char kParameters[] = "Vorel_Parameters";
constexpr char kZPositions[] = "Vorel_ZPositions";
constexpr char kLabelForm[] = "labels";
constexpr char kImageForm[] = "image";
constexpr char kPairs[] = "NrrdPairs"; // the bundle of foreign pairs
constexpr char kBetween[] = ":=";

void readZPositions(const HxNrrdFile& file, HxVolume& volume, std::vector<std::string>& warnings)
{
    const std::string* text = file.value(kZPositions);
    if (!text) return;
    std::vector<double> positions;
    std::istringstream in(*text);
    for (std::string word; in >> word;) {
        double z = 0;
        const bool isNumber = hxParseNumber(word, z);
        if (!isNumber ||
            (!positions.empty() && static_cast<float>(z) <= static_cast<float>(positions.back())))
            throw HxFileError(file.fileName(), "its slice positions are not rising numbers");
        positions.push_back(z);
    }
    if (positions.size() == volume.dims[2]) {
        volume.geometry.zPositions = positions;
    } else {
        // Another program has cut or resampled the volume; what NRRD itself says about it holds.
        warnings.push_back("its " + std::to_string(positions.size()) + " slice positions do not fit " +
                           std::to_string(volume.dims[2]) + " slices and are ignored");
    }
}

void readParameters(const HxNrrdFile& file, HxParamBundle& parameters)
{
    const std::string* text = file.value(kParameters);
    if (text && !HxParamText::read(*text, parameters))
        throw HxFileError(file.fileName(), "its parameters (" + std::string(kParameters) + ") are damaged");
}

bool isOwnPair(const std::string& key)
{
    return key == kForm || key == kParameters || key == kZPositions || HxSegments::isKey(key);
}

// Keys may hold what names of parameters may not, so a pair is one text, as in the file.
void readForeignPairs(const HxNrrdFile& file, HxParamBundle& parameters)
{
    HxParamBundle kept(kPairs);
    for (const auto& [key, text] : file.keyValues())
        if (!isOwnPair(key))
            kept.set(McString::printf("Pair%d", kept.nParameters()), (key + kBetween + text).c_str());
    if (kept.nParameters() > 0)
        parameters.bundle(kPairs, 1)->copy(kept);
    else
        parameters.remove(kPairs); // what old parameters say of a pair that is gone
}

void writeForeignPairs(const HxParamBundle& parameters, HxNrrdPairs& pairs)
{
    const HxParamBundle* kept = parameters.bundle(kPairs);
    for (int i = 0; kept && i < kept->nParameters(); ++i) {
        const char* value = kept->parameter(i)->getString();
        const std::string text = value ? value : "";
        const auto end = text.find(kBetween);
        const bool isPair = end != std::string::npos && end > 0 && text[0] != '#';
        if (isPair && !isOwnPair(text.substr(0, end)))
            pairs.emplace_back(text.substr(0, end), text.substr(end + sizeof kBetween - 1));
    }
}

std::unique_ptr<HxRegScalarField3> readLabels(const HxNrrdFile& file, std::vector<std::string>& warnings)
{
    std::vector<HxSegment> segments = HxSegments::read(file, warnings);
    int largest = 0;
    HxVolume volume = HxSegments::readLabels(file, segments, largest);
    readZPositions(file, volume, warnings);
    const HxVolumeGeometry geometry = volume.geometry;
    std::unique_ptr<HxLabelField3> field = HxVolumeField::makeLabels(std::move(volume));
    readParameters(file, field->parameters);
    if (!segments.empty()) HxSegments::toMaterials(segments, largest, field->parameters);
    HxVolumeField::completeMaterials(*field, largest);
    readForeignPairs(file, field->parameters);
    HxVolumeField::setGeometry(*field, geometry); // the header knows it better than old parameters
    return field;
}

std::unique_ptr<HxRegScalarField3> readImage(const HxNrrdFile& file, bool asLabels,
                                             std::vector<std::string>& warnings)
{
    HxVolume volume = file.readVolume();
    readZPositions(file, volume, warnings);
    const HxVolumeGeometry geometry = volume.geometry;
    std::unique_ptr<HxRegScalarField3> field;
    if (asLabels) {
        const int largest = volume.toLabels(file.fileName());
        std::unique_ptr<HxLabelField3> labels = HxVolumeField::makeLabels(std::move(volume));
        readParameters(file, labels->parameters);
        HxVolumeField::completeMaterials(*labels, largest);
        field = std::move(labels);
    } else {
        field = HxVolumeField::makeImage(std::move(volume), file.fileName());
        readParameters(file, field->parameters);
    }
    readForeignPairs(file, field->parameters);
    HxVolumeField::setGeometry(*field, geometry);
    return field;
}

std::string zPositionsText(const HxVolumeGeometry& geometry)
{
    std::string text;
    for (double z : geometry.zPositions) text += (text.empty() ? "" : " ") + hxNumberText(z);
    return text;
}

} // namespace

std::unique_ptr<HxRegScalarField3> HxNrrdField::read(const std::string& path, bool asLabels,
                                                     std::vector<std::string>& warnings)
{
    const HxNrrdFile file(path);
    const std::string* form = file.value(kForm);
    const bool isLabelForm = form ? *form == kLabelForm : HxSegments::arePresent(file);
    return isLabelForm ? readLabels(file, warnings) : readImage(file, asLabels, warnings);
}

void HxNrrdField::write(const HxRegScalarField3& field, const std::string& path)
{
    const auto* labels = dynamic_cast<const HxLabelField3*>(&field);
    const HxLattice3& lattice = *field.lattice();
    const HxVolumeGeometry geometry = HxVolumeField::geometryOf(field);
    HxNrrdPairs pairs;
    pairs.emplace_back(kForm, labels ? kLabelForm : kImageForm);
    pairs.emplace_back(kParameters, HxParamText::write(field.parameters));
    if (!geometry.zPositions.empty()) pairs.emplace_back(kZPositions, zPositionsText(geometry));
    if (labels)
        HxSegments::write(*labels->materials(), lattice.dims(), labels->labelLattice()->getLabels(), pairs);

    writeForeignPairs(field.parameters, pairs);

    HxAtomicFile file(path);
    hxWriteNrrd(file, lattice.dims(), hxFileType(lattice.primType()), lattice.dataPtr(), geometry, pairs,
                labels != nullptr);
    file.commit();
}
