#include "hx/HxColormapFile.h"

#include "hx/HxColormap.h"
#include "hx/HxNumberText.h"
#include "hx/HxSafeFile.h"

#include <fstream>
#include <optional>
#include <span>

namespace {

using Color = HxColormap::Color;

constexpr const char* kFirstLine = "# Vorel colormap 1.0";

/// What the lines of a file say.
struct Content
{
    std::vector<Color> table;
    std::optional<Color> below;
    std::optional<Color> above;
    bool interpolate = true;
};

std::optional<Color> colorFrom(std::span<const std::string> words)
{
    float c[4];
    if (words.size() != 4) return std::nullopt;
    for (int i = 0; i < 4; i++)
        if (!hxReadNumber(words[i], c[i]) || c[i] < 0 || c[i] > 1) return std::nullopt;
    return Color{c[0], c[1], c[2], c[3]};
}

bool takeLine(const std::string& line, Content& content)
{
    const std::vector<std::string> words = hxWords(line.c_str());
    if (words.empty() || words[0][0] == '#') return true;
    const std::span<const std::string> rest(words.begin() + 1, words.end());
    if (words[0] == "interpolate") {
        content.interpolate = words.back() == "1";
        return words.size() == 2 && (words[1] == "0" || words[1] == "1");
    }
    if (words[0] == "below") return (content.below = colorFrom(rest)).has_value();
    if (words[0] == "above") return (content.above = colorFrom(rest)).has_value();
    const std::optional<Color> entry = colorFrom(words);
    if (entry) content.table.push_back(*entry);
    return entry.has_value();
}

std::string textOf(const Color& c)
{
    return hxNumberText(c.r) + " " + hxNumberText(c.g) + " " + hxNumberText(c.b) + " " + hxNumberText(c.a) +
           "\n";
}

bool beginsAsColormap(std::istream& file)
{
    std::string line;
    std::getline(file, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line == kFirstLine;
}

bool fail(const char* path, const McString& reason, McString& error)
{
    error = McString(path) + ": " + reason + ".";
    return false;
}

} // namespace

bool hxIsColormapFile(const char* path)
{
    // A volume has no line ends to stop at, so no more than the line's length is looked at.
    std::ifstream file(path, std::ios::binary);
    std::string begin(std::char_traits<char>::length(kFirstLine), '\0');
    file.read(begin.data(), static_cast<std::streamsize>(begin.size()));
    return file && begin == kFirstLine;
}

bool hxReadColormapFile(HxColormap& map, const char* path, McString& error)
{
    std::ifstream file(path);
    if (!file) return fail(path, "the file cannot be opened", error);
    if (!beginsAsColormap(file)) return fail(path, "the file holds no color table", error);

    Content content;
    std::string line;
    for (int number = 2; std::getline(file, line); number++)
        if (!takeLine(line, content))
            return fail(path, McString::printf("line %d is no color of four numbers from 0 to 1", number),
                        error);
    if (content.table.empty()) return fail(path, "the color table is empty", error);

    map.setTable(content.table, content.interpolate);
    if (content.below) map.setUnderflow(*content.below);
    if (content.above) map.setOverflow(*content.above);
    return true;
}

bool hxWriteColormapFile(const HxColormap& map, const char* path, McString& error)
{
    std::string text = std::string(kFirstLine) + "\n";
    text += map.isInterpolating() ? "interpolate 1\n" : "interpolate 0\n";
    text += "below " + textOf(map.underflow());
    text += "above " + textOf(map.overflow());
    for (int i = 0; i < map.numEntries(); i++) text += textOf(map.entry(i));
    return hxWriteFileSafely(path, text, error);
}
