#include "hx/HxColormap.h"

#include "hx/HxColormapFile.h"
#include "hx/HxStandardColormaps.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <memory>
#include <string>

namespace {

unsigned int byteOf(float component)
{
    return static_cast<unsigned int>(std::lround(std::clamp(component, 0.0f, 1.0f) * 255.0f));
}

unsigned int packed(const HxColormap::Color& c)
{
    return byteOf(c.r) << 24 | byteOf(c.g) << 16 | byteOf(c.b) << 8 | byteOf(c.a);
}

float mixed(float a, float b, float t)
{
    return a + t * (b - a);
}

/// The ramp of a map, or of greys, as one row of device pixels.
QImage rampRow(const HxColormap* map, int pixels, float from, float to)
{
    QImage row(pixels, 1, QImage::Format_ARGB32);
    auto* colors = reinterpret_cast<QRgb*>(row.scanLine(0));
    for (int x = 0; x < pixels; ++x) {
        const float u =
            mixed(from, to, pixels > 1 ? static_cast<float>(x) / static_cast<float>(pixels - 1) : 0);
        const unsigned int grey = byteOf(u);
        const unsigned int rgba = map ? map->packedColor(u) : grey << 24 | grey << 16 | grey << 8 | 255;
        colors[x] = qRgba(rgba >> 24, rgba >> 16 & 255, rgba >> 8 & 255, rgba & 255);
    }
    return row;
}

int runColor(HxColormap& map, const HxScriptCall& call)
{
    double u;
    if (!call.getReal(2, u)) return TCL_ERROR;
    const unsigned int rgba = map.packedColor(static_cast<float>(u));
    return call.result(
        McString::printf("%u %u %u %u", rgba >> 24, rgba >> 16 & 255, rgba >> 8 & 255, rgba & 255));
}

int runLoad(HxColormap& map, const HxScriptCall& call)
{
    McString error;
    return map.readFile(call.word(2), error) ? call.ok() : call.error(error);
}

int runStandard(HxColormap& map, const HxScriptCall& call)
{
    if (!call.has(2)) return call.result(HxColormap::standardNames());
    if (hxSetStandardColormap(map, call.word(2))) return call.ok();
    return call.error(McString("there is no standard map \"") + call.word(2) + "\"");
}

const HxCommand<HxColormap> kCommands[] = {
    {"color", "color U", "Gives the color at U from 0 to 1, as red, green, blue and opacity from 0 to 255.",
     1, 1, runColor},
    {"load", "load FILE", "Takes the table from a file.", 1, 1, runLoad},
    {"standard", "standard ?NAME?", "Takes a standard table, or lists their names.", 0, 1, runStandard},
};

/// Whether a reader would take the file for a volume by its name.
bool hasVolumeSuffix(const char* path)
{
    std::string name(path);
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const char* suffix :
         {".nrrd", ".nhdr", ".nii", ".hdr", ".img", ".gz", ".mha", ".mhd", ".raw", ".tif", ".tiff", ".dcm",
          ".dicom", ".png", ".jpg", ".jpeg", ".bmp", ".vtk", ".mnc"})
        if (name.ends_with(suffix)) return true;
    return false;
}

} // namespace

HxColormap::HxColormap()
{
    hxSetStandardColormap(*this, "grey");
}

void HxColormap::initClass()
{
    getClassTypeId();
}

HxBase* HxColormap::createInstance()
{
    return new HxColormap;
}

McTypeId HxColormap::getClassTypeId()
{
    return hxClassType<HxColormap, HxData>("HxColormap");
}

unsigned int HxColormap::packedColor(float u) const
{
    // Written so that not-a-number counts as below.
    if (!(u >= 0)) return packed(below);
    if (u > 1) return packed(above);
    const int last = numEntries() - 1;
    const float place = u * static_cast<float>(last);
    if (!interpolating) return packed(table[std::lround(place)]);

    const int i = std::min(static_cast<int>(place), std::max(last - 1, 0));
    const Color& a = table[i];
    const Color& b = table[std::min(i + 1, last)];
    const float t = place - static_cast<float>(i);
    return packed({mixed(a.r, b.r, t), mixed(a.g, b.g, t), mixed(a.b, b.b, t), mixed(a.a, b.a, t)});
}

QPixmap HxColormap::getPixmap(const HxColormap* map, int width, int height, int frame, float min, float max)
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()) || width < 1 || height < 1) return {};
    if (min == max) {
        min = 0;
        max = 1;
    }
    const qreal density = qGuiApp->devicePixelRatio();
    QPixmap picture(QSize(qRound(width * density), qRound(height * density)));
    // The grey below shows how see-through the colours are.
    picture.fill(Qt::lightGray);

    QPainter painter(&picture);
    painter.drawImage(picture.rect(), rampRow(map, picture.width(), min, max));
    if (frame > 0) {
        painter.setPen(QColor(0, 0, 0, std::min(frame, 4) * 255 / 4));
        painter.drawRect(picture.rect().adjusted(0, 0, -1, -1));
    }
    painter.end();
    picture.setDevicePixelRatio(density);
    return picture;
}

QPixmap HxColormap::getPixmap(int width, int height, int frame, float min, float max) const
{
    return getPixmap(this, width, height, frame, min, max);
}

void HxColormap::setTable(const std::vector<Color>& colors, bool interpolate)
{
    if (colors.empty()) return;
    table = colors;
    interpolating = interpolate;
    below = table.front();
    above = table.back();
    touch(kValuesChanged);
}

void HxColormap::setUnderflow(const Color& color)
{
    below = color;
    touch(kValuesChanged);
}

void HxColormap::setOverflow(const Color& color)
{
    above = color;
    touch(kValuesChanged);
}

McDArray<McString> HxColormap::standardNames()
{
    return hxStandardColormapNames();
}

HxColormap* HxColormap::createStandard(const char* name)
{
    auto map = std::make_unique<HxColormap>();
    if (!hxSetStandardColormap(*map, name)) return nullptr;
    map->setLabel(name);
    return map.release();
}

bool HxColormap::isColormapFile(const char* path)
{
    return hxIsColormapFile(path);
}

bool HxColormap::readFile(const char* path, McString& error)
{
    if (!hxReadColormapFile(*this, path, error)) return false;
    setFilename(path);
    return true;
}

bool HxColormap::writeFile(const char* path, McString& error)
{
    if (hasVolumeSuffix(path)) {
        error = McString(path) + ": this suffix promises an image; save a color map as .colors.";
        return false;
    }
    return hxWriteColormapFile(*this, path, error);
}

int HxColormap::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    int code;
    if (hxRunCommand(kCommands, *this, HxScriptCall(interp, wordCount, words), code)) return code;
    return HxData::parse(interp, wordCount, words);
}

void HxColormap::commandHelp(McDArray<HxCommandHelp>& list) const
{
    HxData::commandHelp(list);
    hxAppendHelp(kCommands, list);
}
