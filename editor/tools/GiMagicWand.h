#pragma once

#include "mc/McBox.h"
#include "mc/McDArray.h"
#include "mc/McVec.h"
#include "tools/GiTool.h"
#include "tools/MagicWandSeed.h"

#include <QCheckBox>
#include <QObject>
#include <QPointer>
#include <QToolButton>

class GiViewer;
class HxParamBundle;
class McBitfield;
template <class T>
class McData2D;

/// Selects the connected region around a clicked voxel whose values lie in the tools' window.
///
/// Each click leaves a seed, which remembers voxel, window and options. While a seed is active the region
/// follows the window and the panel. A seed is
///
///     new     active, and not in the label field's parameters yet
///     kept    stored there, not active
///     picked  stored and active; seedBackup is what it was
///
/// A selection that goes to a material keeps its seed. Seeds and limit lines live in the parameters of the
/// label data, and so in its file:
///
///     Seeds/Slice<z>/S<x>x<y>                 orientation, min, max (cut to whole numbers), flags
///     Limits/Slice<X|Y|Z><slice>/Limit<id>    x, y of each point; X is the XY plane, Y XZ, Z YZ
///
/// Regions in a slice end at its limit lines; those in the volume do not.
class GiMagicWand : public QObject, public GiTool
{
    Q_OBJECT

public:
    static constexpr int kIndex = 3; // in Gi's list of tools

    enum Cursor
    {
        kToolCursor = 0,
        kArrow = 1,
        kPencil = 2,
        kDelete = 3
    };
    enum Mode
    {
        kSeedMode = 0,
        kLimitMode = 1
    };
    /// What a region does to the selection.
    enum GrowCode
    {
        kReplace = 0,
        kAdd = 1,
        kSubtract = 2
    };

    explicit GiMagicWand(Gi* owner);
    /// Stores the panel's settings for the next session.
    ~GiMagicWand() override;

    const char* getIconName() const override { return "SegMagicWandIcon.png"; }
    void render(GiFrameBuffer* frameBuffer, const McBox2i& box) override;
    int handleEvent(GiFrameBuffer* frameBuffer, McEvent* event) override;
    void selectionNotify(int what) override;
    void select() override;
    void deselect(GiFrameBuffer* frameBuffer) override;
    const QCursor* getToolCursor() const override;
    void createWidget(QWidget* parent) override;
    void init() override;
    void dataWindowChanged(float min, float max) override;
    bool guardsSeeds() const override { return true; }
    /// Takes the regions of all other seeds of the current slice out of a selection of this slice.
    void lockInactiveSeeds(GiSelection2D& selection) override;

    /// Marks the region of a seed in its slice.
    ///
    /// bits     bit y * width + x; all earlier content goes
    /// box      of the region; the seed's pixel if nothing grows
    /// returns  the number of pixels, without those that only the interior adds
    /// throws   McMemoryException
    int grow2D(McBitfield& bits, McBox2i& box, const MagicWandSeed& seed) const;
    /// Grows a seed into the selection of the viewer and announces it. Memory that cannot be had is told to
    /// the user, here and in the volume.
    ///
    /// returns  false if it ended early: the selection has not changed then
    bool regionGrowing2D(GiFrameBuffer& frameBuffer, int code, const MagicWandSeed& seed);
    /// Grows from a voxel through the volume, by the window and the panel. The user can stop it.
    ///
    /// returns  false if it ended early: the selection has not changed then
    bool regionGrowing3D(int code, const McVec3i& voxel);
    /// What a click does, for a voxel that was picked in space and may lie in another slice.
    void regionGrowingVolPick(const McVec3i& voxel, float value, int code);

    /// Draws the marks in view anew; `erase`: what lies under them too.
    void redrawSeeds(int erase);

    // The state, as the undo actions record and restore it. Others only read.

    McDArray<MagicWandSeed> seeds;
    int currentSeed = -1; // the active one
    int seedIsStored = 0; // it was picked, and is not new
    MagicWandSeed seedBackup;
    McDArray<MagicWandLimit> limits;
    int mode = kSeedMode;
    float lastValue = 128; // of the image at the last click
    // kept: only picking a seed or undo changes it, so seeds that never had a material get none. The colour
    // of a mark tells where a seed came from, not where its region goes.
    int seedMaterial = 0;

    bool hasActiveSeed() const { return currentSeed >= 0 && currentSeed < seeds.size(); }
    /// Takes over window, options and material of a recorded state, without a new region.
    void restorePanel(float min, float max, const MagicWandSeed& options);
    /// The panel's three boxes and `seedMaterial`, in the fields that a seed has for them.
    MagicWandSeed panelOptions() const;

    /// The state of an undo action is in place.
    void endRestoring();

    void dropNewestLimit();
    /// index  its place in the list of lines
    void bringBackLimit(const MagicWandLimit& limit, int index);

    // Into and out of the parameters of the label data; nothing without an image.
    void saveSeed(const MagicWandSeed& seed);
    /// A kept seed of another orientation on the same voxel, which has the same name, takes the entry over.
    void deleteSeed(const MagicWandSeed& seed);
    void saveLimit(const MagicWandLimit& limit);
    void deleteLimit(const MagicWandLimit& limit);

public slots:
    /// Limit lines are drawn and deleted, or regions are grown.
    void setLimitMode(bool on);
    /// Grows the active seed anew.
    void update();
    /// "All slices" was switched.
    void update3D();

protected:
    QCursor makeCursor() const override;

private:
    int handleEventSeedMode(GiFrameBuffer& frameBuffer, const McEvent& event);
    int handleEventLimitMode(GiFrameBuffer& frameBuffer, const McEvent& event);

    // Seeds
    bool isShown(const MagicWandSeed& seed, const GiViewer& viewer) const;
    McVec2i markCentre(const MagicWandSeed& seed, const GiFrameBuffer& frameBuffer) const;
    McBox2i markBox(const MagicWandSeed& seed, const GiFrameBuffer& frameBuffer) const;
    int seedAt(const GiFrameBuffer& frameBuffer, const McEvent& event) const;
    void checkCursor(const GiFrameBuffer& frameBuffer, const McEvent& event);
    void setCursor(Cursor kind);
    bool checkForClickOnSeedPoint(const GiFrameBuffer& frameBuffer, const McEvent& event);
    int nextSeed(const GiViewer& viewer) const;
    void selectSeed(int i);
    bool isInWindow(float value) const;
    void click(GiFrameBuffer& frameBuffer, const McEvent& event);
    void beginSeed();
    void fillSeed(int orientation, const McVec3i& voxel, float value);
    void deleteActiveSeed();
    void deleteActiveEntry();
    void removeActiveSeed();
    void dropActiveSeed();
    void recordClick(int secondSeed);
    void checkRange(MagicWandSeed& seed) const;
    float imageValue(const McVec3i& voxel) const;
    void eraseMark(const MagicWandSeed& seed);

    // Growing
    bool regrow();
    bool isGrowing3D() const { return isChecked(allSlices); }
    GiViewer* viewerOf(int orientation) const;
    void growInto(GiFrameBuffer& frameBuffer, int code, const MagicWandSeed& seed);
    template <class T>
    bool markVolume(const T* values, const McVec3i& voxel, McBitfield& region, int* box) const;
    template <class T>
    int markSlice(const T* values, const MagicWandSeed& seed, McBitfield& bits, int* box) const;
    McData2D<const unsigned char> labelsForSeed(const MagicWandSeed& seed) const;

    // Limits
    void combineLimitsAndLabels(McDArray<unsigned char>& image, const MagicWandSeed& seed) const;
    int computeLimitSlice(McDArray<unsigned char>& image, const MagicWandSeed& seed) const;
    void setLimitMode(const GiFrameBuffer* frameBuffer, const McEvent* event);
    void setSeedMode();
    void checkCursorLimitMode(const GiFrameBuffer& frameBuffer, const McEvent& event);
    bool finishLimit();
    void pressInLimitMode(const GiFrameBuffer& frameBuffer, const McEvent& event);
    void beginLimit(const GiViewer& viewer);
    void deleteHoveredLimit();
    void extendLimit(GiFrameBuffer& frameBuffer, const McEvent& event);
    bool isOnSlice(const MagicWandLimit& limit, const GiViewer& viewer) const;

    // Drawing
    void renderSeed(GiFrameBuffer& frameBuffer, int i) const;
    void renderLimits(GiFrameBuffer& frameBuffer) const;

    // Parameters
    void initSeeds();
    void readSeeds(const HxParamBundle& slice, int z);
    void initLimits();
    void readLimits(const HxParamBundle& slice, int number, int orientation);
    void readMaterialColors();

    // Panel
    static bool isChecked(const QPointer<QCheckBox>& box) { return box && box->isChecked(); }
    void showOptions(const MagicWandSeed& options);
    void readSettings();
    void writeSettings() const;

    QPointer<QCheckBox> allSlices, sameMaterial, fillInterior;
    QPointer<QToolButton> limitButton;
    Cursor cursorKind = kToolCursor;
    int redrawSeed = -1; // the one seed that render() draws; -1: all
    int flags = 0;       // kDrawingLimit and so on
    int grown3D = 0;     // the last growing was one of the volume
    int hoveredLimit = -1;
    int firstNewLimit = 0;  // those from here on were drawn since limit mode began
    bool isRunning = false; // a growing of the volume
    McDArray<McVec3f> materialColors;
    int savedTracking = 1;

    static constexpr int kDrawingLimit = 2, kSelected = 4, kSeedsHidden = 8,
                         kOpenedByControl = 16; // in `flags`
    static constexpr int kMarkReach = 3;        // screen pixels, of marks and of clicks on them
};
