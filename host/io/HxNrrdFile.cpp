#include "io/HxNrrdFile.h"

#include "io/HxFileError.h"
#include "io/HxNumberText.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace {

constexpr char kMagic[] = "NRRD000";

// The voxels of a foreign file can follow a header without its end; reading all of them as text would
// take long. A parameter tree stays far below this.
constexpr std::size_t kLongestHeader = std::size_t(64) << 20;

const std::map<std::string, HxFileType>& typeNames()
{
    static const std::map<std::string, HxFileType> names = {
        {"signed char", HxFileType::int8},
        {"int8", HxFileType::int8},
        {"int8_t", HxFileType::int8},
        {"uchar", HxFileType::uint8},
        {"unsigned char", HxFileType::uint8},
        {"uint8", HxFileType::uint8},
        {"uint8_t", HxFileType::uint8},
        {"short", HxFileType::int16},
        {"short int", HxFileType::int16},
        {"signed short", HxFileType::int16},
        {"signed short int", HxFileType::int16},
        {"int16", HxFileType::int16},
        {"int16_t", HxFileType::int16},
        {"ushort", HxFileType::uint16},
        {"unsigned short", HxFileType::uint16},
        {"unsigned short int", HxFileType::uint16},
        {"uint16", HxFileType::uint16},
        {"uint16_t", HxFileType::uint16},
        {"int", HxFileType::int32},
        {"signed int", HxFileType::int32},
        {"int32", HxFileType::int32},
        {"int32_t", HxFileType::int32},
        {"uint", HxFileType::uint32},
        {"unsigned int", HxFileType::uint32},
        {"uint32", HxFileType::uint32},
        {"uint32_t", HxFileType::uint32},
        {"longlong", HxFileType::int64},
        {"long long", HxFileType::int64},
        {"long long int", HxFileType::int64},
        {"signed long long", HxFileType::int64},
        {"signed long long int", HxFileType::int64},
        {"int64", HxFileType::int64},
        {"int64_t", HxFileType::int64},
        {"ulonglong", HxFileType::uint64},
        {"unsigned long long", HxFileType::uint64},
        {"unsigned long long int", HxFileType::uint64},
        {"uint64", HxFileType::uint64},
        {"uint64_t", HxFileType::uint64},
        {"float", HxFileType::float32},
        {"double", HxFileType::float64},
    };
    return names;
}

std::string trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string lowered(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::string unescaped(const std::string& text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : 0;
        if (text[i] == '\\' && (next == 'n' || next == '\\')) {
            out += next == 'n' ? '\n' : '\\';
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::vector<std::string> words(const std::string& text)
{
    std::istringstream in(text);
    std::vector<std::string> all;
    for (std::string word; in >> word;) all.push_back(word);
    return all;
}

// Words of which each may stand in double quotes, as in `kinds` and `units`.
std::vector<std::string> quotedWords(const std::string& text)
{
    std::vector<std::string> all = words(text);
    for (std::string& word : all) word.erase(std::remove(word.begin(), word.end(), '"'), word.end());
    return all;
}

bool readLine(std::istream& in, std::string& line, std::size_t& total)
{
    line.clear();
    char buffer[4096];
    while (in.getline(buffer, sizeof buffer), in.gcount() > 0 || !in.fail()) {
        const bool isPart = in.fail() && !in.eof(); // the buffer was too short for the line
        line.append(buffer);
        total += static_cast<std::size_t>(in.gcount());
        if (!isPart) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            return true;
        }
        if (total > kLongestHeader) return false;
        in.clear();
    }
    return !line.empty();
}

double dot(const double* a, const double* b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void cross(const double* a, const double* b, double* out)
{
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

// Exact for a vector along an axis, so that its length survives a load and a save.
double lengthOf(const double* v)
{
    if (v[1] == 0 && v[2] == 0) return std::abs(v[0]);
    if (v[0] == 0 && v[2] == 0) return std::abs(v[1]);
    if (v[0] == 0 && v[1] == 0) return std::abs(v[2]);
    return std::sqrt(dot(v, v));
}

} // namespace

/// One run over the header's lines. The fields of the format are a table of names and functions.
struct HxNrrdFile::Reader
{
    HxNrrdFile& file;

    void parse(std::istream& in)
    {
        std::string line;
        std::size_t total = 0;
        readLine(in, line, total);
        if (line.compare(0, sizeof kMagic - 1, kMagic) != 0) file.fail("is no NRRD file");
        while (readLine(in, line, total)) {
            if (line.empty()) {
                if (file.source.files.empty()) {
                    file.source.files.push_back(file.path);
                    file.source.offset = static_cast<long long>(in.tellg());
                }
                return;
            }
            if (line[0] == '#') continue;
            parseLine(in, line, total);
        }
        if (total > kLongestHeader || file.source.files.empty()) file.fail("the NRRD header has no end");
    }

    void parseLine(std::istream& in, const std::string& line, std::size_t& total)
    {
        const auto fieldEnd = line.find(':');
        if (fieldEnd == std::string::npos)
            file.fail("\"" + line.substr(0, 40) + "\" is no line of an NRRD header");
        const std::string name = lowered(line.substr(0, fieldEnd));
        const auto known = fields().find(name);
        const bool isPair = line.compare(fieldEnd, 2, ":=") == 0;
        if (known != fields().end() && !isPair) {
            const std::string text = trimmed(line.substr(fieldEnd + 1));
            if (name == "data file" || name == "datafile")
                parseDataFile(in, text, total);
            else
                (this->*known->second)(text);
            return;
        }
        const auto pairEnd = line.find(":=");
        if (pairEnd == std::string::npos)
            file.fail("the NRRD header has an unknown field \"" + name.substr(0, 40) + "\"");
        file.pairs.emplace_back(unescaped(line.substr(0, pairEnd)), unescaped(line.substr(pairEnd + 2)));
    }

    using Field = void (Reader::*)(const std::string&);

    static const std::map<std::string, Field>& fields()
    {
        static const std::map<std::string, Field> table = {
            {"type", &Reader::parseType},
            {"dimension", &Reader::parseDimension},
            {"sizes", &Reader::parseSizes},
            {"encoding", &Reader::parseEncoding},
            {"endian", &Reader::parseEndian},
            {"kinds", &Reader::parseKinds},
            {"centers", &Reader::parseCenters},
            {"centerings", &Reader::parseCenters},
            {"spacings", &Reader::parseSpacings},
            {"axis mins", &Reader::parseMins},
            {"axismins", &Reader::parseMins},
            {"space", &Reader::parseSpace},
            {"space directions", &Reader::parseDirections},
            {"space origin", &Reader::parseOrigin},
            {"line skip", &Reader::parseLineSkip},
            {"lineskip", &Reader::parseLineSkip},
            {"byte skip", &Reader::parseByteSkip},
            {"byteskip", &Reader::parseByteSkip},
            {"data file", &Reader::skip},
            {"datafile", &Reader::skip},
            // Fields that tell nothing about the place and the meaning of the voxels
            {"content", &Reader::skip},
            {"number", &Reader::skip},
            {"block size", &Reader::skip},
            {"blocksize", &Reader::skip},
            {"min", &Reader::skip},
            {"max", &Reader::skip},
            {"old min", &Reader::skip},
            {"oldmin", &Reader::skip},
            {"old max", &Reader::skip},
            {"oldmax", &Reader::skip},
            {"axis maxs", &Reader::skip},
            {"axismaxs", &Reader::skip},
            {"thicknesses", &Reader::skip},
            {"labels", &Reader::skip},
            {"units", &Reader::skip},
            {"sample units", &Reader::skip},
            {"sampleunits", &Reader::skip},
            {"space dimension", &Reader::skip},
            {"space units", &Reader::skip},
            {"measurement frame", &Reader::skip},
        };
        return table;
    }

    void skip(const std::string&) {}

    void parseType(const std::string& text)
    {
        const auto found = typeNames().find(lowered(text));
        if (found == typeNames().end()) file.fail("the element type \"" + text + "\" is unknown");
        file.type = found->second;
        file.hasType = true;
    }

    void parseDimension(const std::string& text)
    {
        const long long n = number(text, "dimension");
        if (n < 1 || n > 16) file.fail("the NRRD header announces " + text + " dimensions");
        file.axes.resize(static_cast<std::size_t>(n));
    }

    void parseSizes(const std::string& text)
    {
        const std::vector<std::string> all = perAxis(text, "sizes");
        for (std::size_t i = 0; i < all.size(); ++i) {
            const long long n = number(all[i], "sizes");
            if (n < 1) file.fail("the NRRD header announces a size of " + all[i]);
            file.axes[i].size = static_cast<unsigned long>(n);
        }
    }

    void parseEncoding(const std::string& text)
    {
        using Encoding = HxVoxelSource::Encoding;
        static const std::map<std::string, Encoding> names = {
            {"raw", Encoding::raw},    {"gzip", Encoding::deflated}, {"gz", Encoding::deflated},
            {"ascii", Encoding::text}, {"text", Encoding::text},     {"txt", Encoding::text}};
        const auto found = names.find(lowered(text));
        if (found == names.end()) file.fail("the encoding \"" + text + "\" cannot be read");
        file.source.encoding = found->second;
        file.hasEncoding = true;
    }

    void parseEndian(const std::string& text)
    {
        if (lowered(text) != "little" && lowered(text) != "big")
            file.fail("the byte order \"" + text + "\" is unknown");
        file.source.isBigEndian = lowered(text) == "big";
        file.hasEndian = true;
    }

    void parseKinds(const std::string& text)
    {
        const std::vector<std::string> all = perAxis(text, "kinds");
        for (std::size_t i = 0; i < all.size(); ++i) file.axes[i].kind = lowered(all[i]);
    }

    void parseCenters(const std::string& text)
    {
        const std::vector<std::string> all = perAxis(text, "centers");
        for (std::size_t i = 0; i < all.size(); ++i) file.axes[i].isCell = lowered(all[i]) == "cell";
    }

    void parseSpacings(const std::string& text)
    {
        const std::vector<std::string> all = perAxis(text, "spacings");
        for (std::size_t i = 0; i < all.size(); ++i) file.axes[i].spacing = real(all[i], "spacings");
    }

    void parseMins(const std::string& text)
    {
        const std::vector<std::string> all = perAxis(text, "axis mins");
        for (std::size_t i = 0; i < all.size(); ++i) file.axes[i].min = real(all[i], "axis mins");
    }

    void parseSpace(const std::string& text)
    {
        file.space = lowered(text);
        if (file.space.find("time") != std::string::npos || file.space == "rast" || file.space == "last" ||
            file.space == "lpst")
            file.fail("the space \"" + text + "\" has more than three dimensions");
    }

    void parseDirections(const std::string& text)
    {
        if (file.axes.empty()) file.fail("the NRRD header gives space directions before the dimension");
        std::size_t axis = 0;
        for (std::size_t at = text.find_first_not_of(" \t"); at != std::string::npos; ++axis) {
            if (axis == file.axes.size()) file.fail("the NRRD header gives more space directions than axes");
            if (text[at] != '(') { // "none"
                at = text.find_first_not_of(" \t", std::min(text.find_first_of(" \t", at), text.size()));
                continue;
            }
            const auto end = text.find(')', at);
            if (end == std::string::npos) file.fail("the NRRD header has a space direction without its end");
            const std::vector<double> v = vector(text.substr(at, end - at + 1), "space directions");
            std::copy(v.begin(), v.end(), file.axes[axis].direction);
            file.axes[axis].hasDirection = true;
            at = text.find_first_not_of(" \t", end + 1);
        }
    }

    void parseOrigin(const std::string& text) { file.spaceOrigin = vector(text, "space origin"); }

    void parseLineSkip(const std::string& text)
    {
        file.source.lineSkip = number(text, "line skip");
        if (file.source.lineSkip < 0) file.fail("the NRRD header has a negative line skip");
    }

    void parseByteSkip(const std::string& text)
    {
        file.source.byteSkip = number(text, "byte skip");
        if (file.source.byteSkip < -1) file.fail("the NRRD header has a negative byte skip");
    }

    // One name, "LIST" with the names on the lines that follow, or "pattern min max step".
    void parseDataFile(std::istream& in, const std::string& text, std::size_t& total)
    {
        const std::vector<std::string> parts = words(text);
        if (!parts.empty() && parts[0] == "LIST") {
            for (std::string line; readLine(in, line, total) && !line.empty();)
                file.source.files.push_back(line);
        } else if (parts.size() >= 4 && text.find('%') != std::string::npos) {
            file.source.files =
                HxVoxelSource::numberedFiles(file.path, parts[0], number(parts[1], "data file"),
                                             number(parts[2], "data file"), number(parts[3], "data file"));
        } else if (!text.empty()) {
            file.source.files.push_back(text);
        }
        if (file.source.files.empty()) file.fail("the NRRD header names no data file");
    }

    std::vector<std::string> perAxis(const std::string& text, const char* field)
    {
        std::vector<std::string> all = quotedWords(text);
        if (file.axes.empty())
            file.fail(std::string("the NRRD header gives ") + field + " before the dimension");
        if (all.size() != file.axes.size())
            file.fail("the NRRD header gives " + std::to_string(all.size()) + " " + field + " for " +
                      std::to_string(file.axes.size()) + " dimensions");
        return all;
    }

    long long number(const std::string& text, const char* field)
    {
        long long n = 0;
        if (!hxParseNumber(text, n))
            file.fail("\"" + text.substr(0, 40) + "\" is no number for the field " + field);
        return n;
    }

    double real(const std::string& text, const char* field)
    {
        char* end = nullptr;
        const double v = std::strtod(text.c_str(), &end);
        if (text.empty() || *end != 0)
            file.fail("\"" + text.substr(0, 40) + "\" is no number for the field " + field);
        return v;
    }

    std::vector<double> vector(const std::string& text, const char* field)
    {
        std::string plain = text;
        std::replace_if(
            plain.begin(), plain.end(), [](char c) { return c == '(' || c == ')' || c == ','; }, ' ');
        std::vector<double> v;
        for (const std::string& word : words(plain)) v.push_back(real(word, field));
        if (v.empty() || v.size() > 3)
            file.fail("the NRRD header has a vector of " + std::to_string(v.size()) +
                      " numbers in the field " + field);
        for (double x : v)
            if (!std::isfinite(x))
                file.fail(std::string("the NRRD header has no finite numbers in the field ") + field);
        v.resize(3, 0.0);
        return v;
    }
};

HxNrrdFile::HxNrrdFile(const std::string& file) : path(file)
{
    source.header = path;
    std::ifstream in(path, std::ios::binary);
    if (!in) fail("cannot be opened");
    Reader{*this}.parse(in);
    if (!hasType) fail("the NRRD header has no element type");
    if (axes.empty()) fail("the NRRD header has no dimension");
    if (!hasEncoding) fail("the NRRD header has no encoding");
    for (const Axis& axis : axes)
        if (axis.size == 0) fail("the NRRD header has no sizes");
    arrangeAxes();
    computeGeometry();
}

const std::string* HxNrrdFile::value(const std::string& key) const
{
    for (const auto& [name, text] : pairs)
        if (name == key) return &text;
    return nullptr;
}

// An axis that says so, or that lies nowhere in a space in which others lie.
bool HxNrrdFile::isComponent(const Axis& axis) const
{
    static const char* const kComponentKinds[] = {
        "list",     "vector",           "point",  "time", "scalar", "stub", "normal",
        "gradient", "covariant-vector", "complex"};
    const auto isKind = [&](const char* kind) { return axis.kind == kind; };
    if (std::any_of(std::begin(kComponentKinds), std::end(kComponentKinds), isKind)) return true;
    if (axis.kind.find("color") != std::string::npos || axis.kind.find("vector") != std::string::npos ||
        axis.kind.find("matrix") != std::string::npos)
        return true;
    const auto lies = [](const Axis& a) { return a.hasDirection; };
    return !axis.hasDirection && std::any_of(axes.begin(), axes.end(), lies);
}

void HxNrrdFile::arrangeAxes()
{
    std::vector<int> componentAxes;
    for (int i = 0; i < static_cast<int>(axes.size()); ++i)
        (isComponent(axes[static_cast<std::size_t>(i)]) ? componentAxes : spatialAxes).push_back(i);
    while (spatialAxes.size() > 3) {
        componentAxes.push_back(spatialAxes.back());
        spatialAxes.pop_back();
    }
    if (spatialAxes.size() < 2)
        fail("the data have " + std::to_string(spatialAxes.size()) + " spatial dimensions");
    for (std::size_t k = 0; k < spatialAxes.size(); ++k)
        dims[k] = axes[static_cast<std::size_t>(spatialAxes[k])].size;

    int wide = 0;
    for (int i : componentAxes) {
        const Axis& axis = axes[static_cast<std::size_t>(i)];
        if (axis.size == 1) continue;
        if (++wide > 1) fail("the data have " + std::to_string(axes.size()) + " dimensions");
        layers = axis.size;
        layersAreFastest = i < spatialAxes.front();
        if (!layersAreFastest && i < spatialAxes.back()) fail("the components lie between the spatial axes");
    }
}

void HxNrrdFile::computeGeometry()
{
    const bool isRas = space == "right-anterior-superior" || space == "ras";
    const bool isLas = space == "left-anterior-superior" || space == "las";
    const double flip[3] = {isRas ? -1.0 : 1.0, isRas || isLas ? -1.0 : 1.0, 1.0};

    for (std::size_t k = 0; k < spatialAxes.size(); ++k) {
        const Axis& axis = axes[static_cast<std::size_t>(spatialAxes[k])];
        double unit[3] = {k == 0 ? 1.0 : 0.0, k == 1 ? 1.0 : 0.0, k == 2 ? 1.0 : 0.0};
        double& spacing = geometry.spacing[k];
        if (axis.hasDirection) {
            spacing = lengthOf(axis.direction);
            if (!(spacing > 0)) fail("a space direction has no length");
            for (int x = 0; x < 3; ++x)
                unit[x] = axis.direction[x] == 0 ? 0 : flip[x] * axis.direction[x] / spacing;
        } else if (std::isfinite(axis.spacing) && axis.spacing != 0) {
            spacing = std::abs(axis.spacing);
            if (axis.spacing < 0) unit[k] = -1;
        }
        geometry.setAxis(static_cast<int>(k), unit);
        if (std::isfinite(axis.min) && !axis.hasDirection)
            geometry.origin[k] = axis.min + (axis.isCell ? unit[k] * spacing / 2 : 0);
    }
    if (!spaceOrigin.empty())
        for (int x = 0; x < 3; ++x)
            geometry.origin[x] = flip[x] * spaceOrigin[static_cast<std::size_t>(x)] + 0.0;

    double axis[3][3];
    for (int k = 0; k < 3; ++k) geometry.getAxis(k, axis[k]);
    double normal[3];
    cross(axis[0], axis[1], normal);
    if (spatialAxes.size() == 2)
        geometry.setAxis(2, normal);
    else if (std::abs(dot(normal, axis[2])) < 1e-6)
        fail("the space directions span no volume");
}

void HxNrrdFile::checkData() const
{
    const bool isText = source.encoding == HxVoxelSource::Encoding::text;
    if (!hasEndian && !isText && hxSizeOf(type) > 1) fail("the NRRD header does not tell the byte order");
    source.check({dims[0], dims[1], dims[2], layers}, type);
}

HxVolume HxNrrdFile::emptyVolume() const
{
    HxVolume volume(path, dims, type);
    volume.geometry = geometry;
    return volume;
}

HxVolume HxNrrdFile::readVolume() const
{
    if (layers != 1)
        fail("the data have " + std::to_string(layers) +
             " components per voxel or time steps; only one can be read");
    checkData();
    HxVolume volume = emptyVolume();
    source.read(volume.data(), volume.count(), type);
    return volume;
}

void HxNrrdFile::readLayers(const std::function<void(int, HxVolume&)>& take) const
{
    if (layers == 1) {
        HxVolume volume = readVolume();
        take(0, volume);
        return;
    }
    checkData();
    const std::size_t size = hxSizeOf(type);
    const std::size_t perLayer = dims[0] * dims[1] * dims[2];
    const unsigned long allDims[3] = {perLayer, layers, 1};
    HxVolume all(path, allDims, type);
    source.read(all.data(), all.count(), type);
    const char* from = static_cast<const char*>(all.data());
    const std::size_t voxelStep = (layersAreFastest ? layers : 1) * size;
    const std::size_t layerStep = (layersAreFastest ? 1 : perLayer) * size;
    for (std::size_t l = 0; l < layers; ++l) {
        HxVolume volume = emptyVolume();
        char* to = static_cast<char*>(volume.data());
        for (std::size_t i = 0; i < perLayer; ++i)
            std::memcpy(to + i * size, from + l * layerStep + i * voxelStep, size);
        take(static_cast<int>(l), volume);
    }
}

void HxNrrdFile::fail(const std::string& reason) const
{
    throw HxFileError(path, reason);
}
