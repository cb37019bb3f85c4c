#pragma once

#include "hx/HxEditor.h"
#include "mc/McVec.h"

#include <QPointer>

#include <memory>

class GiFrameBuffer;
class GiQ;
class GiQToolbox;
class HxLattice;
class HxLattice3;
class HxLatticeAccess;
class HxParamBundle;
class McEvent;
class McHistogram;
class McKeyboardEvent;
class McMotionEvent;
class QMenuBar;
class QWidget;

/// The editor as the host knows it: it is attached to a label field, binds it with an image to the
/// controller, and is the target of the script commands under the label "gi". It also holds the keys and
/// the pointer's answers that belong to no tool.
///
/// While sub-applications exist, the editor that the host makes is a stub without a controller; it
/// hands everything to the sub-application's own editor.
class HxGiEditor : public HxEditor
{
public:
    /// Spans of the volume flood fill keep their ends in 16 bits, so no side may be larger.
    static constexpr unsigned long kLargestSide = 32767;

    /// As the host makes it: in the host's windows, or a stub if there are sub-applications.
    HxGiEditor();
    /// Inside a foreign window; the menus go into `bar`, which may be null.
    HxGiEditor(QWidget* parent, QMenuBar* bar);
    /// The sub-application's own; gives back the two widgets that it shows.
    HxGiEditor(QWidget*& toolboxOut, QWidget*& viewerOut);

    static void initClass();
    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override;
    ~HxGiEditor() override;
    int parse(Tcl_Interp* interp, int wordCount, char** words) override;
    void commandHelp(McDArray<HxCommandHelp>& list) const override;
    bool typeCheck(HxData* data) override;
    void startEditing(HxData* labels) override;
    void stopEditing() override;

    /// Opens a pair in the host's normal window and gives back its editor, null if it could not be opened.
    /// Labels that are edited there already stay as they are, under another image if one is given.
    static HxGiEditor* openInWindow(HxData* labels, HxData* image);

    /// "gi" also for a stub: it hands over to the editor of that name.
    const char* scriptName() const override;
    /// A selection in any slice that was not added to a material.
    McString unfinishedWork() const override;

    /// Binds a pair. `image` may be null: then the image is the one connected to the field, one of
    /// the pool that fits, or the labels themselves. Nothing happens if the pair is bound already.
    void startEditing(HxData* labels, HxData* image);

    /// The sub-application is about to be left: the material list ends what is being typed.
    void notifyStop();

    /// The controller that scripts speak to: the sub-application's, else one that edits in the host's
    /// windows. Null if nothing is edited.
    static GiQ* activeGi();

    /// Detaches the editors in the host's normal window, which has room for one at a time.
    static void clearWindow();

    HxData* getLabelData() const;
    /// Show the window before any data is there.
    void preInit(float min, float max, const McHistogram& histogram);
    void preInitShowOnly();
    /// Whether the window is shown that way: no editing began or ended since.
    bool isPreInitialised() const { return preInitialised; }
    void setRescaleInterceptSlope(const HxParamBundle& bundle);
    /// Whether voxels of this host type can be shown and masked.
    static bool isImageType(int hostType);
    /// First component of a voxel; 0 for a null lattice or an unknown element type.
    float eval(HxLattice* lattice, const McVec3i& index);
    /// Pins the memory of an image until the next call or stopEditing.
    void* holdImage(HxLattice3* lattice);
    /// Null in a stub.
    GiQ* getGi() const { return gi.get(); }

    /// What every frame buffer delivers each event to, before its shapes. Always 0: the shapes see it, too.
    int handleEvent(GiFrameBuffer* frameBuffer, McEvent* event);
    static int handleEventCB(GiFrameBuffer* frameBuffer, McEvent* event, void* editor);

private:
    struct Pair;
    void init();
    bool isBound(HxData* labels, HxData* image) const;
    void repairMaterials(HxParamBundle& materials, int maxLabel);
    void findImage(Pair& pair);
    void bind(const Pair& pair);
    void releaseAccess();

    void activateViewer(GiFrameBuffer& frameBuffer);
    void showInfo(GiFrameBuffer& frameBuffer, const McMotionEvent& event);
    void handleKey(const McKeyboardEvent& event);

    std::unique_ptr<GiQ> gi;
    QPointer<GiQToolbox> toolbox;      // the controller's; a foreign window may take it along
    HxData* imageToOpen = nullptr;     // only while attach() runs: that of openInWindow()
    HxLatticeAccess* access = nullptr; // keeps the image memory in place while it is edited over
    bool preInitialised = false;
};
