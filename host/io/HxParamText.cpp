#include "io/HxParamText.h"

#include "hx/HxParamBundle.h"
#include "io/HxNumberText.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <tcl.h>
#include <vector>

namespace {

// Far beyond any tree that is made; a file that nests deeper would exhaust the stack.
constexpr int kDeepest = 100;

constexpr char kBundle[] = "b";

template <class T>
bool parseNumbers(const std::vector<std::string>& words, std::size_t first, std::vector<T>& out)
{
    for (std::size_t i = first; i < words.size(); ++i)
        if (!hxParseNumber(words[i], out.emplace_back())) return false;
    return true;
}

std::string valueText(const HxParameter& value)
{
    if (value.primType() == HxParameter::kString) return " " + HxParamText::quoted(value.getString());
    std::string text;
    for (int i = 0; i < value.dim(); ++i) {
        text += ' ';
        if (value.primType() == HxParameter::kInt)
            text += hxNumberText(value.getInt(i));
        else if (value.primType() == HxParameter::kFloat)
            text += hxNumberText(static_cast<float>(value.getReal(i)));
        else
            text += hxNumberText(value.getReal(i));
    }
    return text;
}

std::string entryHead(const std::string& kind, const HxParamBase& entry)
{
    return "{" + kind + " " + HxParamText::quoted(entry.getName()) + " " + std::to_string(entry.flags());
}

std::string entriesText(const HxParamBundle& bundle)
{
    std::string text;
    for (int i = 0; i < bundle.nParameters(); ++i) {
        const HxParameter& value = *bundle.parameter(i);
        text += (text.empty() ? "" : " ") + entryHead(std::to_string(value.primType()), value) +
                valueText(value) + "}";
    }
    for (int i = 0; i < bundle.nBundles(); ++i) {
        const HxParamBundle& child = *bundle.bundle(i);
        const std::string content = entriesText(child);
        text += (text.empty() ? "" : " ") + entryHead(kBundle, child) + (content.empty() ? "" : " ") +
                content + "}";
    }
    return text;
}

std::optional<std::vector<std::string>> splitList(const std::string& list)
{
    int count = 0;
    const char** elements = nullptr;
    if (Tcl_SplitList(nullptr, list.c_str(), &count, &elements) != TCL_OK) return std::nullopt;
    std::vector<std::string> words(elements, elements + count);
    Tcl_Free(reinterpret_cast<char*>(elements));
    return words;
}

bool addEntries(HxParamBundle& bundle, const std::vector<std::string>& words, std::size_t first, int depth);

std::unique_ptr<HxParamBase> makeEntry(const std::vector<std::string>& words, int depth)
{
    const char* name = words[1].c_str();
    if (words[0] == kBundle) {
        auto child = std::make_unique<HxParamBundle>(name);
        if (!addEntries(*child, words, 3, depth + 1)) return nullptr;
        return child;
    }
    int code = -1;
    hxParseNumber(words[0], code);
    auto value = std::make_unique<HxParameter>(name);
    const int count = static_cast<int>(words.size()) - 3;
    std::vector<int> ints;
    std::vector<float> floats;
    std::vector<double> doubles;
    if (code == HxParameter::kString && count == 1)
        value->setString(words[3].c_str());
    else if (code == HxParameter::kInt && parseNumbers(words, 3, ints))
        value->setInts(count, ints.data());
    else if (code == HxParameter::kFloat && parseNumbers(words, 3, floats))
        value->setFloats(count, floats.data());
    else if (code == HxParameter::kDouble && parseNumbers(words, 3, doubles))
        value->setDoubles(count, doubles.data());
    else
        return nullptr;
    return value;
}

bool addEntries(HxParamBundle& bundle, const std::vector<std::string>& words, std::size_t first, int depth)
{
    if (depth > kDeepest) return false;
    for (std::size_t i = first; i < words.size(); ++i) {
        const auto parts = splitList(words[i]);
        unsigned int flags = 0;
        if (!parts || parts->size() < 3 || !hxParseNumber((*parts)[2], flags)) return false;
        std::unique_ptr<HxParamBase> entry = makeEntry(*parts, depth);
        if (!entry) return false;
        entry->setFlag(flags, 1);
        bundle.insert(entry.release());
    }
    return true;
}

} // namespace

std::string HxParamText::write(const HxParamBundle& tree)
{
    return entriesText(tree);
}

bool HxParamText::read(const std::string& text, HxParamBundle& tree)
{
    const auto words = splitList(text);
    HxParamBundle found(tree.getName());
    if (!words || !addEntries(found, *words, 0, 0)) return false;
    tree.copy(found);
    return true;
}

std::string HxParamText::quoted(const std::string& text)
{
    if (text.empty()) return "{}";
    std::string out;
    for (char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 32 || byte == 127) { // three octal digits, lest a digit that follows is taken in
            char code[8];
            std::snprintf(code, sizeof code, "\\%03o", byte);
            out += code;
        } else {
            if (std::strchr(" \"#$;[\\]{}", c)) out += '\\';
            out += c;
        }
    }
    return out;
}
