#pragma once

#include "hx/HxData.h"

#include <QPixmap>

#include <vector>

/// A colour table over the values from 0 to 1, linear between its entries or in steps.
class HxColormap : public HxData
{
    Q_OBJECT

public:
    struct Color
    {
        float r = 0, g = 0, b = 0, a = 1; ///< 0 to 1
    };

    /// The grey ramp of 256 entries.
    HxColormap();

    static void initClass();
    static HxBase* createInstance();
    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    /// Colour as packed RGBA, red in the top byte. 0 to 1 runs over the table; below and above are
    /// the colours of underflow and overflow. NaN counts as below.
    virtual unsigned int packedColor(float u) const;

    /// A picture of the ramp, left to right; sharp on screens of more than one device pixel per unit.
    ///
    /// width, height  in device-independent pixels
    /// frame          strength of the line around it, from 0 (none) to 4 (solid)
    /// min, max       part of the table that is drawn; the same number twice: the whole table
    QPixmap getPixmap(int width, int height, int frame = 0, float min = 0, float max = 0) const;
    /// The same of any map; null: the grey ramp.
    static QPixmap getPixmap(const HxColormap* map, int width, int height, int frame = 0, float min = 0,
                             float max = 0);

    int numEntries() const { return static_cast<int>(table.size()); }
    Color entry(int i) const { return table[i]; }
    Color underflow() const { return below; }
    Color overflow() const { return above; }
    bool isInterpolating() const { return interpolating; }

    /// New table of at least one entry; underflow and overflow become its ends. Tells the
    /// listeners.
    void setTable(const std::vector<Color>& colors, bool interpolate = true);
    void setUnderflow(const Color& color);
    void setOverflow(const Color& color);

    /// Names of the maps that come with the host: "grey", "perceptual", "labels".
    static McDArray<McString> standardNames();
    /// A new map with that name as label; null for an unknown name. Not yet in the pool.
    static HxColormap* createStandard(const char* name);

    /// Whether the file starts as one that save() writes.
    static bool isColormapFile(const char* path);
    /// Replaces the table by the one in a file; false, with one sentence in `error`, and nothing
    /// changed if it cannot be read.
    bool readFile(const char* path, McString& error);

    int parse(Tcl_Interp* interp, int wordCount, char** words) override;
    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    bool writeFile(const char* path, McString& error) override;

private:
    std::vector<Color> table;
    Color below;
    Color above;
    bool interpolating = true;
};
