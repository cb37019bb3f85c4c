#pragma once

#include "mc/McDArray.h"
#include "mc/McString.h"

#include <functional>

class HxData;

/// Reading and writing of data files, by whichever code registered for it.
///
/// The object model asks here, so that it does not depend on file formats. All functions report
/// with one sentence that names the file; an exception of the reader or writer becomes such a
/// report as well. They are busy phases, which the person can interrupt: an error like any other.
class HxFileAccess
{
public:
    /// Several paths, or a folder, are one series. `asLabels`: make a label field.
    using Reader = std::function<HxData*(const McDArray<McString>& paths, bool asLabels, McString& error)>;
    enum class Form
    {
        bySuffix,
        own ///< the one that keeps everything, whatever the suffix
    };
    using Writer = std::function<bool(HxData* data, const char* path, Form form, McString& error)>;

    static void setReader(Reader reader);
    static void setWriter(Writer writer);

    /// A new object with its label and file name set, not yet in the pool; the caller owns it.
    /// Null, with `error` set, on failure.
    static HxData* load(const McDArray<McString>& paths, bool asLabels, McString& error);

    /// False, with `error` set, on failure. Success sets the object's file name, and `error` to a sentence
    /// about what the file does not keep, which the console has, too; it is empty if the file keeps
    /// everything.
    static bool save(HxData* data, const char* path, McString& error);

    /// The same in our own form, whatever the suffix; the object's file name stays as it is.
    static bool saveInOwnForm(HxData* data, const char* path, McString& error);

private:
    friend class HxData;
    static bool write(HxData* data, const char* path, Form form, McString& error);
};
