#include "io/HxSegments.h"

#include "hx/HxMatDatabase.h"
#include "hx/HxParamBundle.h"
#include "io/HxFileError.h"
#include "io/HxNumberText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <set>
#include <sstream>

namespace {

constexpr int kLabels = 256;
constexpr char kLongName[] = "LongName";
constexpr char kSegmentId[] = "SegmentId";
constexpr char kSegmentTags[] = "SegmentTags";
constexpr char kDefaultTags[] = "Segmentation.Status:inprogress|";

// What write() says of the whole segmentation.
constexpr std::pair<const char*, const char*> kSegmentationPairs[] = {
    {"Segmentation_ContainedRepresentationNames", "Binary labelmap|"},
    // Two names of one property: programs changed it between their versions and read one of them.
    {"Segmentation_MasterRepresentation", "Binary labelmap"},
    {"Segmentation_SourceRepresentation", "Binary labelmap"},
    {"Segmentation_ReferenceImageExtentOffset", "0 0 0"},
};

// Colours pass through texts of other programs; less than half of one of 255 steps is no change.
constexpr float kColorTolerance = 0.0015F;

constexpr char kPrefix[] = "Segment";

std::string key(const std::string& number, const char* property)
{
    return kPrefix + number + "_" + property;
}

// The number of a segment in a key such as "Segment12_Name", empty for other keys.
std::string numberIn(const std::string& name)
{
    constexpr std::size_t kPrefixLength = sizeof kPrefix - 1;
    if (name.compare(0, kPrefixLength, kPrefix) != 0) return "";
    const auto end = name.find_first_not_of("0123456789", kPrefixLength);
    const bool isNumbered = end != kPrefixLength && end != std::string::npos && name[end] == '_';
    return isNumbered ? name.substr(kPrefixLength, end - kPrefixLength) : "";
}

// Rising; a program that deletes a segment leaves a gap.
std::vector<std::string> segmentNumbers(const HxNrrdFile& file)
{
    const auto isLess = [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    };
    std::set<std::string, decltype(isLess)> numbers(isLess);
    for (const auto& [name, text] : file.keyValues())
        if (const std::string number = numberIn(name); !number.empty()) numbers.insert(number);
    return std::vector<std::string>(numbers.begin(), numbers.end());
}

std::string textOf(const HxParamBundle& bundle, const char* name, const std::string& otherwise)
{
    McString text;
    return bundle.findString(name, text) ? text.str() : otherwise;
}

std::string defaultId(int label)
{
    return "Segment_" + std::to_string(label);
}

// What write() gives as the name and the colour of a material.

std::string segmentName(const HxParamBundle& material)
{
    return textOf(material, kLongName, material.getName());
}

void segmentColor(const HxParamBundle& material, float* rgb)
{
    if (material.findColor(rgb)) return;
    const McColor color = HxMatDatabase::getTheDatabase()->getColor(material.getName());
    rgb[0] = color.r;
    rgb[1] = color.g;
    rgb[2] = color.b;
}

// What a label without a segment is read as.
std::unique_ptr<HxParamBundle> madeMaterial(int label)
{
    auto material = std::make_unique<HxParamBundle>(McString::printf("Material%d", label));
    float rgb[3];
    segmentColor(*material, rgb);
    material->setColor(rgb);
    material->set("Id", label + 1);
    return material;
}

// A material that stands only for a gap in the numbers: whoever reads the labels without it makes it again.
bool isMade(const HxParamBundle& material, int label)
{
    const auto made = madeMaterial(label);
    if (std::strcmp(material.getName(), made->getName()) != 0 || material.nBundles() > 0) return false;
    for (int i = 0; i < material.nParameters(); ++i) {
        const HxParameter* expected = made->parameter(material.parameter(i)->getName());
        if (!expected || expected->text() != material.parameter(i)->text()) return false;
    }
    return true;
}

int numberOf(const HxNrrdFile& file, const std::string& name, int otherwise, int least, int most)
{
    const std::string* text = file.value(name);
    if (!text) return otherwise;
    int n = 0;
    if (!hxParseNumber(*text, n) || n < least || n > most)
        throw HxFileError(file.fileName(), name + " is \"" + text->substr(0, 40) +
                                               "\", not a whole number from " + std::to_string(least) +
                                               " to " + std::to_string(most));
    return n;
}

// Values of voxels to labels, one table per layer; -1 for a value that no segment has.
using LabelTable = std::array<int, kLabels>;

/// Gives every segment, and every value without one, a label of its own.
class LabelMap
{
public:
    LabelMap(const std::string& path, std::vector<HxSegment>& segments, int numLayers)
        : file(path), tables(static_cast<std::size_t>(numLayers))
    {
        for (LabelTable& table : tables) {
            table.fill(-1);
            table[0] = 0;
        }
        std::set<int> values;
        for (const HxSegment& s : segments) values.insert(s.label);
        const bool isDistinct = values.size() == segments.size() && !values.count(0);
        int next = 1;
        for (HxSegment& s : segments) {
            const int label = isDistinct || numLayers == 1 ? s.label : next++;
            if (label >= kLabels) failForMany();
            tables[static_cast<std::size_t>(s.layer)][static_cast<std::size_t>(s.label)] = label;
            used.insert(label);
            s.label = label;
        }
    }

    int labelOf(int layer, int value)
    {
        int& label = tables[static_cast<std::size_t>(layer)][static_cast<std::size_t>(value)];
        if (label < 0) {
            for (label = value; used.count(label); label = label % (kLabels - 1) + 1)
                if (used.size() >= kLabels - 1) failForMany();
            used.insert(label);
        }
        return label;
    }

private:
    [[noreturn]] void failForMany() const { throw HxFileError(file, "has more than 255 segments"); }

    std::string file;
    std::vector<LabelTable> tables;
    std::set<int> used;
};

std::string nameOfLabel(const std::vector<HxSegment>& segments, int label)
{
    for (const HxSegment& s : segments)
        if (s.label == label) return "\"" + s.name + "\"";
    return "label " + std::to_string(label);
}

void mergeLayer(const std::string& path, HxVolume& merged, const HxVolume& layer, int index, LabelMap& map,
                const std::vector<HxSegment>& segments)
{
    auto* to = static_cast<unsigned char*>(merged.data());
    const auto* from = static_cast<const unsigned char*>(layer.data());
    for (std::size_t i = 0; i < merged.count(); ++i) {
        if (from[i] == 0) continue;
        const int label = map.labelOf(index, from[i]);
        if (to[i] != 0)
            throw HxFileError(path, "the segments " + nameOfLabel(segments, to[i]) + " and " +
                                        nameOfLabel(segments, label) + " overlap at voxel " +
                                        merged.voxelName(i) + "; a label field holds one label per voxel");
        to[i] = static_cast<unsigned char>(label);
    }
}

/// Builds the new "Materials" out of segments and of the materials that were there.
class MaterialBuilder
{
public:
    MaterialBuilder(const std::vector<HxSegment>& list, const HxParamBundle* oldMaterials)
        : segments(list), old(oldMaterials)
    {
    }

    void build(int largest, HxParamBundle& materials)
    {
        int last = largest;
        for (const HxSegment& s : segments) last = std::max(last, s.label);
        for (int i = 0; old && i < old->nBundles(); ++i)
            if (!isMovedAway(i)) last = std::max(last, i);

        HxParamBundle fresh("Materials");
        for (int i = 0; old && i < old->nParameters(); ++i) fresh.insert(old->parameter(i)->clone());
        for (int label = 0; label <= last; ++label) {
            const HxSegment* segment = segmentAt(label);
            if (segment && label > 0)
                addSegment(*segment, fresh);
            else
                addOldOrNew(label, fresh);
        }
        materials.copy(fresh);
    }

private:
    const HxSegment* segmentAt(int label) const
    {
        const auto found = std::find_if(segments.begin(), segments.end(),
                                        [&](const HxSegment& s) { return s.label == label; });
        return found == segments.end() ? nullptr : &*found;
    }

    std::string idOf(int index) const { return textOf(*old->bundle(index), kSegmentId, defaultId(index)); }

    int oldIndexOf(const HxSegment& segment) const
    {
        for (int i = 1; old && i < old->nBundles(); ++i)
            if (idOf(i) == segment.id) return i;
        return -1;
    }

    bool isMovedAway(int index) const
    {
        const auto takesIt = [&](const HxSegment& s) { return s.id == idOf(index) && s.label != index; };
        return index > 0 && std::any_of(segments.begin(), segments.end(), takesIt);
    }

    void addSegment(const HxSegment& segment, HxParamBundle& materials) const
    {
        const int from = oldIndexOf(segment);
        auto* material = from < 0 ? new HxParamBundle("") : new HxParamBundle(*old->bundle(from));
        const std::string made = "Material" + std::to_string(segment.label);
        const std::string name = segment.name.empty() ? made : segment.name;
        if (from < 0 || segmentName(*material) != name) {
            const McString legal = HxParamBase::cleanName(name.c_str());
            material->setName(legal.isEmpty() ? made.c_str() : legal.c_str());
            material->remove(kLongName);
        }
        if (from != segment.label) material->set("Id", segment.label + 1);
        setColor(segment, *material);
        if (segment.id != defaultId(segment.label)) material->set(kSegmentId, segment.id.c_str());
        if (textOf(*material, kSegmentTags, kDefaultTags) != segment.tags && !segment.tags.empty())
            material->set(kSegmentTags, segment.tags.c_str());
        materials.insert(material); // a taken name gets a number
        if (segmentName(*material) != name) material->set(kLongName, name.c_str());
    }

    static void setColor(const HxSegment& segment, HxParamBundle& material)
    {
        float now[3];
        segmentColor(material, now);
        const bool isSame = std::equal(now, now + 3, segment.color,
                                       [](float a, float b) { return std::abs(a - b) < kColorTolerance; });
        const bool isNew =
            material.find("Color") == nullptr && material.nBundles() + material.nParameters() <= 1;
        if (isNew && !segment.hasColor)
            material.setColor(now);
        else if (segment.hasColor && (isNew || !isSame))
            material.setColor(segment.color);
    }

    void addOldOrNew(int label, HxParamBundle& materials) const
    {
        if (old && label < old->nBundles() && !isMovedAway(label)) {
            materials.insert(new HxParamBundle(*old->bundle(label)));
            return;
        }
        auto material = std::make_unique<HxParamBundle>("Exterior");
        if (label == 0)
            material->setFlag(HxParamBase::kFixed, 1);
        else
            material = madeMaterial(label);
        materials.insert(material.release());
    }

    const std::vector<HxSegment>& segments;
    const HxParamBundle* old;
};

/// Boxes of all labels, in one pass over the runs of equal labels.
struct Extents
{
    struct Box
    {
        long min[3] = {0, 0, 0};
        long max[3] = {-1, -1, -1};
    };

    std::array<Box, kLabels> boxes;

    Extents(const unsigned long* dims, const unsigned char* labels)
    {
        const long nx = static_cast<long>(dims[0]);
        for (unsigned long z = 0; z < dims[2]; ++z)
            for (unsigned long y = 0; y < dims[1]; ++y, labels += nx)
                for (long x = 0; x < nx;) {
                    const unsigned char label = labels[x];
                    const long first = x;
                    while (x < nx && labels[x] == label) ++x;
                    extend(boxes[label], first, x - 1, static_cast<long>(y), static_cast<long>(z));
                }
    }

    static void extend(Box& box, long first, long last, long y, long z)
    {
        const long low[3] = {first, y, z};
        const long high[3] = {last, y, z};
        const bool isNew = box.max[2] < 0;
        for (int k = 0; k < 3; ++k) {
            box.min[k] = isNew ? low[k] : std::min(box.min[k], low[k]);
            box.max[k] = std::max(box.max[k], high[k]);
        }
    }

    bool has(int label) const { return boxes[static_cast<std::size_t>(label)].max[2] >= 0; }

    std::string text(int label) const
    {
        const Box& b = boxes[static_cast<std::size_t>(label)];
        std::ostringstream out;
        for (int k = 0; k < 3; ++k) out << (k ? " " : "") << b.min[k] << ' ' << b.max[k];
        return out.str();
    }
};

} // namespace

bool HxSegments::arePresent(const HxNrrdFile& file)
{
    const auto isOne = [](const auto& pair) {
        return !numberIn(pair.first).empty() || pair.first.compare(0, 13, "Segmentation_") == 0;
    };
    return std::any_of(file.keyValues().begin(), file.keyValues().end(), isOne);
}

bool HxSegments::isKey(const std::string& name)
{
    if (!numberIn(name).empty()) return true;
    const auto isIt = [&](const auto& pair) { return name == pair.first; };
    return std::any_of(std::begin(kSegmentationPairs), std::end(kSegmentationPairs), isIt);
}

std::vector<HxSegment> HxSegments::read(const HxNrrdFile& file, std::vector<std::string>& warnings)
{
    // Older files have a layer per segment, each of zeros and ones, and say nothing of layers and labels.
    const bool isLayered = file.numLayers() > 1;
    std::vector<HxSegment> segments;
    for (const std::string& i : segmentNumbers(file)) {
        const std::string* id = file.value(key(i, "ID"));
        const std::string* name = file.value(key(i, "Name"));
        if (!id && !name && !file.value(key(i, "LabelValue"))) continue;
        HxSegment s;
        int ownLayer = 0;
        if (isLayered && !hxParseNumber(i, ownLayer)) ownLayer = file.numLayers();
        s.layer = numberOf(file, key(i, "Layer"), ownLayer, 0, file.numLayers() - 1);
        s.label = numberOf(file, key(i, "LabelValue"), 1, 0, kLabels - 1);
        if (s.layer >= file.numLayers()) throw HxFileError(file.fileName(), "has more segments than layers");
        s.id = id ? *id : defaultId(s.label);
        s.name = name ? *name : "";
        if (const std::string* tags = file.value(key(i, "Tags"))) s.tags = *tags;
        if (const std::string* color = file.value(key(i, "Color"))) {
            std::istringstream numbers(*color);
            s.hasColor = static_cast<bool>(numbers >> s.color[0] >> s.color[1] >> s.color[2]);
        }
        if (s.label == 0)
            warnings.push_back("the segment \"" + (s.name.empty() ? s.id : s.name) +
                               "\" has the label 0, that of the exterior, and is left out");
        else
            segments.push_back(s);
    }
    return segments;
}

HxVolume HxSegments::readLabels(const HxNrrdFile& file, std::vector<HxSegment>& segments, int& largest)
{
    const std::string& path = file.fileName();
    LabelMap map(path, segments, file.numLayers());
    HxVolume merged;
    file.readLayers([&](int index, HxVolume& layer) {
        largest = layer.toLabels(path);
        if (file.numLayers() == 1) {
            merged = std::move(layer);
            return;
        }
        if (index == 0) {
            merged = HxVolume(path, layer.dims, HxFileType::uint8);
            merged.geometry = layer.geometry;
            std::memset(merged.data(), 0, merged.bytes());
        }
        mergeLayer(path, merged, layer, index, map, segments);
    });
    if (file.numLayers() > 1) largest = merged.toLabels(path);
    return merged;
}

void HxSegments::toMaterials(const std::vector<HxSegment>& segments, int largest, HxParamBundle& parameters)
{
    const HxParamBundle* old = parameters.bundle("Materials", 0);
    const std::unique_ptr<HxParamBundle> kept(old ? new HxParamBundle(*old) : nullptr);
    MaterialBuilder(segments, kept.get()).build(largest, *parameters.materials());
}

void HxSegments::write(const HxParamBundle& materials, const unsigned long* dims, const unsigned char* labels,
                       HxNrrdPairs& keyValues)
{
    const Extents extents(dims, labels);
    std::set<std::string> ids;
    int count = 0;
    for (int label = 1; label < kLabels; ++label) {
        const HxParamBundle* material = materials.bundle(label);
        if (!extents.has(label) && (!material || isMade(*material, label))) continue;
        const HxParamBundle made(McString::printf("Material%d", label));
        const HxParamBundle& m = material ? *material : made;
        std::string id = textOf(m, kSegmentId, defaultId(label));
        if (!ids.insert(id).second) ids.insert(id = defaultId(label) + "_" + id);
        float rgb[3];
        segmentColor(m, rgb);
        const std::string i = std::to_string(count++);
        keyValues.emplace_back(key(i, "ID"), id);
        keyValues.emplace_back(key(i, "Name"), segmentName(m));
        keyValues.emplace_back(key(i, "NameAutoGenerated"), "0");
        keyValues.emplace_back(key(i, "Color"), hxNumberText(rgb[0]) + " " + hxNumberText(rgb[1]) + " " +
                                                    hxNumberText(rgb[2]));
        keyValues.emplace_back(key(i, "ColorAutoGenerated"), "0");
        keyValues.emplace_back(key(i, "LabelValue"), std::to_string(label));
        keyValues.emplace_back(key(i, "Layer"), "0");
        keyValues.emplace_back(key(i, "Extent"), extents.text(label));
        keyValues.emplace_back(key(i, "Tags"), textOf(m, kSegmentTags, kDefaultTags));
    }
    for (const auto& [name, text] : kSegmentationPairs) keyValues.emplace_back(name, text);
}
