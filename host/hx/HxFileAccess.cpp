#include "hx/HxFileAccess.h"

#include "hx/HxBusyPass.h"
#include "hx/HxColormap.h"

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace {

HxFileAccess::Reader& theReader()
{
    static HxFileAccess::Reader reader;
    return reader;
}

HxFileAccess::Writer& theWriter()
{
    static HxFileAccess::Writer writer;
    return writer;
}

McString baseName(const McString& path)
{
    std::string text = path.str();
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    return text.substr(text.rfind('/') + 1);
}

HxData* loadColormap(const McString& path, McString& error)
{
    auto map = std::make_unique<HxColormap>();
    return map->readFile(path, error) ? map.release() : nullptr;
}

McString sentence(const char* path, const char* reason)
{
    return McString(path) + ": " + reason;
}

constexpr const char* kNoMemory = "there is not enough memory.";

} // namespace

void HxFileAccess::setReader(Reader reader)
{
    theReader() = std::move(reader);
}

void HxFileAccess::setWriter(Writer writer)
{
    theWriter() = std::move(writer);
}

HxData* HxFileAccess::load(const McDArray<McString>& paths, bool asLabels, McString& error)
{
    if (paths.isEmpty()) {
        error = "No file to read.";
        return nullptr;
    }
    const McString& first = paths[0];
    HxData* data = nullptr;
    const HxBusyPass busy(McString("Reading ") + baseName(first));
    try {
        if (paths.size() == 1 && HxColormap::isColormapFile(first)) {
            data = loadColormap(first, error);
        } else if (theReader()) {
            data = theReader()(paths, asLabels, error);
        } else {
            error = sentence(first, "there is no reader for data files.");
        }
    } catch (const std::bad_alloc&) {
        error = sentence(first, kNoMemory);
        return nullptr;
    } catch (const std::exception& exception) {
        error = sentence(first, exception.what());
        return nullptr;
    }
    if (!data) return nullptr;
    if (!data->hasFile()) data->setFilename(first);
    if (!*data->getLabel()) data->setLabel(baseName(first));
    data->setModified(false);
    return data;
}

bool HxFileAccess::write(HxData* data, const char* path, Form form, McString& error)
{
    if (!*path) {
        error = "The file has no name.";
        return false;
    }
    if (!theWriter()) {
        error = sentence(path, "there is no writer for data files.");
        return false;
    }
    const HxBusyPass busy(McString("Writing ") + baseName(path));
    try {
        return theWriter()(data, path, form, error);
    } catch (const std::bad_alloc&) {
        error = sentence(path, kNoMemory);
        return false;
    } catch (const std::exception& exception) {
        error = sentence(path, exception.what());
        return false;
    }
}

bool HxFileAccess::save(HxData* data, const char* path, McString& error)
{
    return data->save(path, error);
}

bool HxFileAccess::saveInOwnForm(HxData* data, const char* path, McString& error)
{
    return write(data, path, Form::own, error);
}
