#include "hx/HxMatDatabase.h"

#include "hx/HxNumberText.h"

#include <QColor>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct Default
{
    const char* name;
    float rgb[3];
};

// What there is without the resource file, whose lines come on top.
constexpr Default kDefaults[] = {
    {"Exterior", {0.0f, 0.0f, 0.0f}}, {"Inside", {0.64f, 0.0f, 0.8f}}, {"Muscle", {0.78f, 0.24f, 0.2f}},
    {"Fat", {0.96f, 0.86f, 0.4f}},    {"Bone", {0.94f, 0.92f, 0.84f}}, {"Skin", {0.93f, 0.69f, 0.55f}},
};

/// 32-bit FNV-1a: Fowler, Noll and Vo, as in the IETF draft "The FNV Non-Cryptographic Hash".
std::uint32_t hashOf(const char* text)
{
    std::uint32_t hash = 2166136261u;
    for (const char* c = text; *c; c++) hash = (hash ^ static_cast<unsigned char>(*c)) * 16777619u;
    return hash;
}

McColor colorOfHue(int degrees)
{
    const QColor color = QColor::fromHsvF(static_cast<float>(degrees) / 360.0f, 0.8f, 0.9f);
    return McColor(color.redF(), color.greenF(), color.blueF());
}

bool readLine(const std::string& line, HxParamBundle& into)
{
    const std::vector<std::string> words = hxWords(line.c_str());
    if (words.empty() || words[0][0] == '#') return true;
    float rgb[3];
    if (words.size() != 4 || HxParamBase::cleanName(words[0].c_str()).isEmpty()) return false;
    for (int c = 0; c < 3; c++)
        if (!hxReadNumber(words[c + 1], rgb[c]) || rgb[c] < 0 || rgb[c] > 1) return false;
    into.bundle(words[0].c_str(), 1)->setColor(rgb);
    return true;
}

} // namespace

HxMatDatabase::HxMatDatabase()
{
    for (const Default& material : kDefaults) known.bundle(material.name, 1)->setColor(material.rgb);
}

HxMatDatabase* HxMatDatabase::getTheDatabase()
{
    static HxMatDatabase database;
    return &database;
}

McColor HxMatDatabase::getColor(const char* name) const
{
    float rgb[3];
    const HxParamBundle* material = known.bundle(name ? name : "");
    if (material && material->findColor(rgb)) return McColor(rgb[0], rgb[1], rgb[2]);
    return colorOfHue(static_cast<int>(hashOf(name ? name : "") % 360));
}

bool HxMatDatabase::load(const char* path, McString& error)
{
    std::ifstream file(path);
    if (!file) {
        error = McString(path) + ": the file cannot be opened.";
        return false;
    }
    HxParamBundle read(known);
    std::string line;
    for (int number = 1; std::getline(file, line); number++) {
        if (readLine(line, read)) continue;
        error = McString::printf("%s: line %d is not a name and three numbers from 0 to 1.", path, number);
        return false;
    }
    if (file.bad()) { // a folder, or a disk that fails
        error = McString(path) + ": the file cannot be read.";
        return false;
    }
    known.copy(read);
    return true;
}
