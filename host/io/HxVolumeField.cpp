#include "io/HxVolumeField.h"

#include "hx/HxLabelField3.h"
#include "hx/HxMatDatabase.h"
#include "hx/HxOrientation.h"
#include "hx/HxStackedScalarField3.h"
#include "hx/HxUniformScalarField3.h"
#include "io/HxNumberText.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr char kSpacing[] = "Spacing";
constexpr char kOrigin[] = "Origin";

// The decimal number that a person would have written for a single-precision one.
double plainNumber(float v)
{
    double plain = v;
    hxParseNumber(hxNumberText(v), plain);
    return plain;
}

double stepsOf(unsigned long n)
{
    return n > 1 ? static_cast<double>(n - 1) : 1.0;
}

float boxEnd(double origin, double spacing, unsigned long n)
{
    return static_cast<float>(origin + spacing * stepsOf(n));
}

// The spacing of fewest digits that leads from the origin to the end of the box.
double plainSpacing(double origin, float end, unsigned long n)
{
    const double exact = (static_cast<double>(end) - origin) / stepsOf(n);
    if (!(exact > 0)) return 1;
    for (int digits = 1; digits < 17; ++digits) {
        char text[40];
        std::snprintf(text, sizeof text, "%.*e", digits - 1, exact);
        const double candidate = std::strtod(text, nullptr);
        if (boxEnd(origin, candidate, n) == end) return candidate;
    }
    return exact;
}

HxVolumeGeometry geometryOfBox(const HxLatticeCoords& coords)
{
    HxVolumeGeometry geometry;
    const float* box = coords.boundingBox();
    for (int k = 0; k < 3; ++k) {
        geometry.origin[k] = plainNumber(box[2 * k]);
        geometry.spacing[k] = plainSpacing(geometry.origin[k], box[2 * k + 1], coords.dims()[k]);
    }
    if (const float* z = coords.zPositions())
        for (unsigned long k = 0; k < coords.dims()[2]; ++k) geometry.zPositions.push_back(plainNumber(z[k]));
    return geometry;
}

bool isSame(const double* a, const double* b)
{
    return std::equal(a, a + 3, b);
}

// Present if it tells more than the box, else absent.
void keep(HxParamBundle& parameters, const char* name, const double* value, bool isNeeded)
{
    if (isNeeded)
        parameters.set(name, 3, value);
    else
        parameters.remove(name);
}

std::unique_ptr<HxLatticeCoords> makeCoords(const HxVolume& volume)
{
    const bool isStacked = !volume.geometry.zPositions.empty();
    return std::make_unique<HxLatticeCoords>(
        isStacked ? HxLatticeCoords::kStacked : HxLatticeCoords::kUniform, volume.dims);
}

} // namespace

std::unique_ptr<HxRegScalarField3> HxVolumeField::makeImage(HxVolume&& volume, const std::string& file)
{
    volume.toHostType(file);
    const int code = hxHostCode(volume.type);
    std::unique_ptr<HxRegScalarField3> field;
    if (volume.geometry.zPositions.empty()) {
        field = std::make_unique<HxUniformScalarField3>(volume.dims, code, volume.data(), true);
    } else {
        const std::vector<float> z(volume.geometry.zPositions.begin(), volume.geometry.zPositions.end());
        field = std::make_unique<HxStackedScalarField3>(volume.dims, code, z.data(), volume.data(), true);
    }
    static_cast<void>(volume.release());
    setGeometry(*field, volume.geometry);
    return field;
}

std::unique_ptr<HxLabelField3> HxVolumeField::makeLabels(HxVolume&& volume)
{
    auto lattice = std::make_unique<HxLabelLattice3>(makeCoords(volume).release(),
                                                     static_cast<unsigned char*>(volume.data()));
    static_cast<void>(volume.release());
    std::unique_ptr<HxLabelField3> field(lattice.release()->create());
    setGeometry(*field, volume.geometry);
    return field;
}

void HxVolumeField::completeMaterials(HxLabelField3& field, int largestLabel)
{
    HxParamBundle& materials = *field.materials();
    if (materials.nBundles() == 0) {
        auto* exterior = new HxParamBundle("Exterior");
        exterior->setFlag(HxParamBase::kFixed, 1);
        materials.insert(exterior);
    }
    for (int label = materials.nBundles(); label <= largestLabel; ++label) {
        auto* material = new HxParamBundle(McString::printf("Material%d", label));
        materials.insert(material);
        const McColor color = HxMatDatabase::getTheDatabase()->getColor(material->getName());
        const float rgb[3] = {color.r, color.g, color.b};
        material->setColor(rgb);
        material->set("Id", label + 1);
    }
}

HxVolumeGeometry HxVolumeField::geometryOf(const HxRegScalarField3& field)
{
    const HxLatticeCoords& coords = *field.coords();
    const float* box = coords.boundingBox();
    HxVolumeGeometry geometry = geometryOfBox(coords);
    HxOrientation orientation;
    if (HxOrientation::read(field.parameters, orientation))
        std::copy(std::begin(orientation.directions), std::end(orientation.directions), geometry.directions);

    // What the parameters say about an axis holds unless its box has been changed since.
    double origin[3];
    double spacing[3];
    const bool hasOrigin = field.parameters.findReal(kOrigin, 3, origin) != 0;
    const bool hasSpacing = field.parameters.findReal(kSpacing, 3, spacing) != 0;
    for (int k = 0; k < 3; ++k) {
        if (hasOrigin && static_cast<float>(origin[k]) == box[2 * k]) {
            geometry.origin[k] = origin[k];
            geometry.spacing[k] = plainSpacing(origin[k], box[2 * k + 1], coords.dims()[k]);
        }
        if (hasSpacing && spacing[k] > 0 &&
            boxEnd(geometry.origin[k], spacing[k], coords.dims()[k]) == box[2 * k + 1])
            geometry.spacing[k] = spacing[k];
    }
    return geometry;
}

void HxVolumeField::setGeometry(HxRegScalarField3& field, const HxVolumeGeometry& geometry)
{
    HxLatticeCoords& coords = *field.coords();
    float box[6];
    for (int k = 0; k < 3; ++k) {
        box[2 * k] = static_cast<float>(geometry.origin[k]);
        box[2 * k + 1] = boxEnd(geometry.origin[k], geometry.spacing[k], coords.dims()[k]);
    }
    if (!geometry.zPositions.empty()) {
        const std::vector<float> z(geometry.zPositions.begin(), geometry.zPositions.end());
        coords.setZPositions(z.data());
        box[4] = z.front();
        box[5] = z.back();
    }
    coords.setBoundingBox(box);

    HxOrientation orientation;
    std::copy(std::begin(geometry.directions), std::end(geometry.directions), orientation.directions);
    std::copy(std::begin(geometry.origin), std::end(geometry.origin), orientation.origin);
    orientation.write(field.parameters);
    const HxVolumeGeometry plain = geometryOfBox(coords);
    keep(field.parameters, kOrigin, geometry.origin,
         !orientation.isIdentity() || !isSame(plain.origin, geometry.origin));
    double spacing[3];
    for (int k = 0; k < 3; ++k)
        spacing[k] = plainSpacing(geometry.origin[k], box[2 * k + 1], coords.dims()[k]);
    // Stacked fields keep no mean spacing: their positions say more.
    if (!geometry.zPositions.empty()) spacing[2] = geometry.spacing[2];
    keep(field.parameters, kSpacing, geometry.spacing, !isSame(spacing, geometry.spacing));
}

bool HxVolumeField::isGeometryParameter(const char* name)
{
    return !std::strcmp(name, kOrigin) || !std::strcmp(name, kSpacing) || !std::strcmp(name, "Directions");
}
