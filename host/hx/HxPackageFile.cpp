#include "hx/HxPackageFile.h"

#include <QFile>
#include <QString>

#include <tcl.h>

#include <memory>

namespace {

/// One word of the resource file: how it is written, how many words follow, and what it keeps.
struct Word
{
    const char* name;
    const char* usage;
    int fewest;
    int most;
    void (*keep)(HxPackageFile&, const char** words, int count); // words after the name
};

constexpr int kAnyNumber = 1 << 20;

constexpr Word kWords[] = {
    {"package_library", "NAME", 1, 1,
     [](HxPackageFile& file, const char** words, int) { file.packages.emplace_back(words[0]); }},
    {"class", "CLASS LIBRARY", 2, 2,
     [](HxPackageFile& file, const char** words, int) { file.packageOfClass[words[0]] = words[1]; }},
    {"editor", "CLASS INTERFACE", 2, 2,
     [](HxPackageFile& file, const char** words, int) {
         file.editors.push_back({words[0], words[1]});
     }},
    {"module", "CLASS TYPE ?TYPE ...?", 2, kAnyNumber,
     [](HxPackageFile& file, const char** words, int count) {
         file.modules.push_back({words[0], {words + 1, words + count}});
     }},
    {"subApplication", "CLASS TITLE ?ICON?", 2, 3,
     [](HxPackageFile& file, const char** words, int count) {
         HxSubApplicationEntry entry;
         entry.className = words[0];
         entry.title = words[1];
         if (count == 3) entry.icon = words[2];
         file.subApplications.push_back(entry);
     }},
};

struct BoundWord
{
    const Word* word;
    HxPackageFile* file;
};

int runWord(ClientData data, Tcl_Interp* interp, int wordCount, const char* words[])
{
    const auto* bound = static_cast<const BoundWord*>(data);
    const int given = wordCount - 1;
    if (given < bound->word->fewest || given > bound->word->most) {
        Tcl_AppendResult(interp, "wrong # args: should be \"", bound->word->name, " ", bound->word->usage,
                         "\"", nullptr);
        return TCL_ERROR;
    }
    bound->word->keep(*bound->file, words + 1, given);
    return TCL_OK;
}

} // namespace

bool HxPackageFile::read(const char* path, std::string& error)
{
    QFile source(QString::fromUtf8(path));
    if (!source.open(QIODevice::ReadOnly)) {
        error = std::string(path) + ": " + source.errorString().toStdString() + ".";
        return false;
    }
    const QByteArray script = source.readAll();

    HxPackageFile declared;
    const std::unique_ptr<Tcl_Interp, decltype(&Tcl_DeleteInterp)> interp(Tcl_CreateInterp(),
                                                                          Tcl_DeleteInterp);
    Tcl_MakeSafe(interp.get());
    BoundWord bound[std::size(kWords)];
    for (std::size_t i = 0; i < std::size(kWords); ++i) {
        bound[i] = {&kWords[i], &declared};
        Tcl_CreateCommand(interp.get(), kWords[i].name, runWord, &bound[i], nullptr);
    }
    if (Tcl_EvalEx(interp.get(), script.constData(), static_cast<int>(script.size()), TCL_EVAL_GLOBAL) !=
        TCL_OK) {
        error = std::string(path) + ", line " + std::to_string(Tcl_GetErrorLine(interp.get())) + ": " +
                Tcl_GetStringResult(interp.get());
        return false;
    }
    *this = std::move(declared);
    return true;
}
