#pragma once

#include "hx/HxMasterConnection.h"
#include "hx/HxObject.h"
#include "hx/HxParamBundle.h"

/// A data object: parameters, a file, and the module that made it, if one did.
class HxData : public HxObject
{
    Q_OBJECT

public:
    HxData();
    ~HxData() override;

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    /// Everything that goes into the file beside the values. Who changes them calls touch().
    HxParamBundle parameters{"Parameters"};

    /// File that the data was read from or saved to; the label if there is none.
    const char* getFilename() const;
    bool hasFile() const { return !filename.isEmpty(); }
    void setFilename(const char* path) { filename = path; }

    /// Writes a file whose form follows from the suffix, and keeps its name as getFilename().
    /// returns false with one sentence in `error` that names the file; nothing is changed then
    bool save(const char* path, McString& error);

    /// Whether values, shape or parameters have changed since the object was read or saved. A new object
    /// counts as unchanged: there is nothing in it that somebody worked on.
    bool isModified() const { return modified; }
    void setModified(bool on);

    /// Link to the module that this object is a result of.
    HxMasterConnection& masterConnection() { return master; }

    void touch(unsigned int mask = kAllChanged) override;

    int parse(Tcl_Interp* interp, int wordCount, char** words) override;
    void commandHelp(McDArray<HxCommandHelp>& list) const override;

signals:
    /// Bits as in HxObject.
    void dataObjectTouched(unsigned int mask);
    /// Emitted when isModified() has another answer.
    void modifiedChanged(bool modified);

protected:
    /// Writes the file; the base takes the writer of HxFileAccess.
    virtual bool writeFile(const char* path, McString& error);

private:
    HxMasterConnection master{this};
    McString filename;
    bool modified = false;
};
