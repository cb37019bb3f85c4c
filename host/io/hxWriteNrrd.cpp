#include "io/hxWriteNrrd.h"

#include "io/HxAtomicFile.h"
#include "io/HxGzipWriter.h"
#include "io/HxNumberText.h"

namespace {

const char* typeName(HxFileType type)
{
    switch (type) {
    case HxFileType::int8:
        return "int8";
    case HxFileType::uint8:
        return "uint8";
    case HxFileType::int16:
        return "int16";
    case HxFileType::uint16:
        return "uint16";
    case HxFileType::int32:
        return "int32";
    case HxFileType::uint32:
        return "uint32";
    case HxFileType::int64:
        return "int64";
    case HxFileType::uint64:
        return "uint64";
    case HxFileType::float32:
        return "float";
    case HxFileType::float64:
        break;
    }
    return "double";
}

std::string vectorText(const double* v)
{
    return "(" + hxNumberText(v[0]) + "," + hxNumberText(v[1]) + "," + hxNumberText(v[2]) + ")";
}

std::string escaped(const std::string& text)
{
    std::string out;
    for (char c : text) {
        if (c == '\n')
            out += "\\n";
        else if (c == '\\')
            out += "\\\\";
        else
            out += c;
    }
    return out;
}

std::string headerText(const unsigned long* dims, HxFileType type, const HxVolumeGeometry& geometry,
                       const HxNrrdPairs& keyValues, bool gzip)
{
    std::string text = "NRRD0004\n";
    text += std::string("type: ") + typeName(type) + "\ndimension: 3\nspace: left-posterior-superior\nsizes:";
    for (int k = 0; k < 3; ++k) text += " " + std::to_string(dims[k]);
    text += "\nspace directions:";
    for (int k = 0; k < 3; ++k) {
        double v[3];
        geometry.getAxis(k, v);
        for (double& x : v) x *= geometry.spacing[k];
        text += " " + vectorText(v);
    }
    text += "\nkinds: domain domain domain\nendian: little\nencoding: ";
    text += gzip ? "gzip" : "raw";
    text += "\nspace origin: " + vectorText(geometry.origin) + "\n";
    for (const auto& [key, value] : keyValues) text += escaped(key) + ":=" + escaped(value) + "\n";
    return text + "\n";
}

} // namespace

void hxWriteNrrd(HxAtomicFile& file, const unsigned long* dims, HxFileType type, const void* voxels,
                 const HxVolumeGeometry& geometry, const HxNrrdPairs& keyValues, bool gzip)
{
    file.write(headerText(dims, type, geometry, keyValues, gzip));
    const std::size_t bytes = dims[0] * dims[1] * dims[2] * hxSizeOf(type);
    if (!gzip) return file.write(voxels, bytes);
    HxGzipWriter packed(file);
    packed.write(voxels, bytes);
    packed.finish();
}
