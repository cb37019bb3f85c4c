#pragma once

#include "core/GiSelection3D.h"
#include "mc/McBitfield.h"
#include "mc/McBox.h"
#include "mc/McDArray.h"
#include "mc/McHandle.h"
#include "mc/McRawData3D.h"
#include "mc/McTypedData3D.h"
#include "mc/McTypedPointer.h"
#include "mc/McVec.h"

#include <functional>

class GiAction;
class GiCrossHairTool;
class GiFilter;
class GiFrameBuffer;
class GiProjector;
class GiSelection2D;
class GiTool;
class GiViewer;
class HxData;
class HxLabelLattice3;
class HxLattice3;
class HxParamBundle;
class HxRegScalarField3;
class HxViewer;
class HxViewerPanelBase;

/// The editor's heart: one edit of one label field over one image.
///
/// Owns the volume-wide selection, the tables of 256 materials, the slice viewers, tools, filters
/// and the undo list for as long as the editor exists. The volumes stay the host's: Gi sees them as
/// raw memory through `imageSlices` and `labelSlices`, which must keep its address from `setVolume`
/// until `labelLattice` is set to null again.
///
/// A window side derives from Gi and overrides the virtual operations; tools, filters and scripts
/// call Gi directly. Main thread only; parallel regions are joined before an operation returns.
///
/// Orientation: 0 YZ stacked along X, 1 XZ along Y, 2 XY along Z. Every other value counts as 0.
/// Voxel (x, y, z) has index x + X * (y + Y * z) in labels, selection and image alike.
///
/// The operations are defined where what they need lives: plain ones in core, those that speak to
/// viewers in display, those that speak to tools and filters in tools and filters. So core never
/// includes a layer above it.
class Gi
{
public:
    Gi();
    virtual ~Gi();
    Gi(const Gi&) = delete;
    Gi& operator=(const Gi&) = delete;

    /// Window of the grey display. `redraw` false: only stored.
    virtual void setDataWindow(float min, float max, bool redraw) = 0;
    /// Window of the tools and of masking; cut to integers over an image of whole numbers.
    virtual void setToolDataWindow(float min, float max, bool redraw) = 0;
    virtual void setToolDataWindowMarker(float value) = 0;
    virtual void clearToolDataWindowMarker() = 0;
    virtual void setToolDataWindowSliderTracking(bool on) = 0;
    virtual bool toolDataWindowSliderTracking() = 0;
    virtual void setMaskingEnabled(bool on) = 0;
    /// Shows what masking leaves out.
    virtual void setMaskingOverlay(bool) {}
    virtual bool maskingEnabled() const = 0;
    /// Draws every viewer anew.
    virtual void redraw();
    /// Makes tool `index` the active one; an index outside the list leaves no tool active.
    virtual void setTool(int index);
    virtual void updateCursor() {}
    /// Tools act on the volume instead of the slice.
    virtual void set3dMode(bool on);
    /// Zoom acts on all viewers at once.
    virtual void setZoomMode(bool allViewers);
    /// The one announcement that data changed. Orientation 0 and slice -1 stand for the volume.
    virtual void touchData(int selectionTouched, int labelsTouched, int orientation, int slice, int, int);
    virtual void setZoomFactor(float zoom);
    virtual void updateUndoSensitivity() {}
    /// Makes a material the one that tools and transfers act on.
    virtual void setCurrentTissue(int tissue) { currentTissue = tissue; }
    /// Undo or redo has brought back an earlier state; it is not announced by touchData().
    virtual void stateRestored() {}
    /// Voxel under pixel (x, y) of a 3D viewer; 0 if nothing is hit.
    virtual int getPickedVoxel(HxViewer* viewer, int x, int y, McVec3i& voxel, float& value) = 0;
    /// A viewer went to another slice: the cross hair follows.
    virtual void sliceNumberChanged(GiViewer* viewer);
    /// The cross hair was moved: the viewers follow.
    virtual void crossHairCB(GiCrossHairTool* tool);
    /// Binds image memory and label lattice of the given dims and shows the middle slices.
    /// throws McMemoryException if the selection cannot be had
    virtual void setVolume(const unsigned long* dims, McTypedPointer data, HxLabelLattice3* lattice);

    /// Typed entries to `setVolume`, one per element type of the image. `rowBytes` is not used.
    void setVolumeByte(const unsigned long* dims, int rowBytes, unsigned char* data,
                       HxLabelLattice3* lattice);
    void setVolumeShort(const unsigned long* dims, int rowBytes, short* data, HxLabelLattice3* lattice);
    void setVolumeUnsignedShort(const unsigned long* dims, int rowBytes, unsigned short* data,
                                HxLabelLattice3* lattice);
    void setVolumeInt(const unsigned long* dims, int rowBytes, int* data, HxLabelLattice3* lattice);
    void setVolumeUnsignedInt(const unsigned long* dims, int rowBytes, unsigned int* data,
                              HxLabelLattice3* lattice);
    void setVolumeFloat(const unsigned long* dims, int rowBytes, float* data, HxLabelLattice3* lattice);
    void setVolumeDouble(const unsigned long* dims, int rowBytes, double* data, HxLabelLattice3* lattice);

    /// The panel's active viewer if it is a slice viewer, else the last one found active, else the
    /// first; null without viewers.
    GiViewer* getCurrentViewer();
    int getCurrentOrientation();
    int getCurrentSlice();
    /// Slices of an orientation; a negative argument means the current one.
    int getNumSlices(int orientation);
    /// First label and byte steps of a slice.
    void getLabelSlice(int orientation, int slice, unsigned char*& data, int& xStride, int& yStride) const;
    void getCurrentLabelSlice(unsigned char*& data, int& xStride, int& yStride);
    void getDataWindow(float& min, float& max) const;
    void getToolDataWindow(float& min, float& max) const;
    /// Voxel of pixel (x, y) in the viewer's slice; a null viewer means the current one.
    McVec3i getPoint3D(int x, int y, GiViewer* viewer);

    /// Only the low 8 bits of `tissue` count.
    void lockTissue(int tissue, int lock) { locked[tissue & 255] = lock; }
    /// Marks (mode 0), unmarks (1) or marks alone (2) every voxel of a material, in the volume or in
    /// the current slice. Without label lattice the volume form does nothing.
    void selectTissue(int tissue, int mode, int in3D);
    /// 1 if a pixel of this material is selected in the current slice.
    int tissueSelected(int tissue);
    /// Brings every viewer to the slice that holds most of the material; the lowest one on a tie.
    void locateTissue(int tissue);
    /// Scale and bias from stored to shown values, from "DataWindowScale" and "DataWindowBias".
    void setRescaleInterceptSlope(const HxParamBundle* bundle);
    void initTools();
    /// The sum of all moves of the selection through all slices with the pick tool, in world units; zero
    /// without such a tool.
    McVec3f getPickingTranslation() const;
    void resetPickingTranslation();

    void zoomIn();
    void zoomOut();
    /// "2:1 ", "1:4 " and the like, trailing blank included; the text lives until the next call.
    const char* getZoomFactorText();
    /// Draws anew what a change inside `box`, in pixels of the source's slice, touches in each viewer.
    void redraw(const McBox2i& box, GiViewer* source);
    /// The part of `box`, in pixels of the source's slice, that lies in the target's slice;
    /// (1, 1, 0, 0) if none does.
    void projectBox(GiViewer* source, GiViewer* target, const McBox2i& box, McBox2i& result) const;

    /// Brings the box of every viewer's 2D selection up to date.
    void updateSelectionBoxes();
    /// The same after a change inside `box` of `viewer`: boxes only grow.
    void updateSelectionBoxes(McBox2i& box, GiViewer* viewer);

    /// Makes the gradient magnitude of the image by its element type: `gradientImage` shows it, and the
    /// hidden pool object "Default-GradientImage" owns it. The largest magnitude becomes 255, or 32765 over
    /// 16 bits. Nothing happens without image, or over one of double. What was generated before only loses
    /// its reference. throws McMemoryException over bytes; the other types print a message, and nothing has
    /// changed
    void generateGradientImage();
    void generateGradientByteImage();
    void generateGradientShortImage();
    void generateGradientUnsignedShortImage();
    void generateGradientIntImage();
    void generateGradientUnsignedIntImage();
    void generateGradientFloatImage();
    /// Generates it if there is none. Its data stay null where none can be made.
    McTypedData3D* getGradientImage3D();
    /// Takes the generated gradient out of the pool, and out of `gradientImage` if that shows it.
    void removeGradientField();

    /// The current slice as a lattice of its own, with the selection as a mask of 255 and 0 per pixel.
    ///
    /// lattice      a new lattice of the gradient (`useGradient` set) or of the image, one voxel thick in a
    /// box
    ///              from 0 to 1 along the slice's axis. The caller deletes it; it owns its memory
    /// mask         width x height bytes, which the caller gives back with free()
    /// throws       McMemoryException
    /// Without selection or data, `lattice` is the label lattice, which is not the caller's, and `mask` null.
    void getSliceLattice(HxLattice3*& lattice, unsigned char*& mask, int useGradient);
    /// The end of work on such a slice; the selection stays as it is.
    void updateSliceLattice(HxLattice3*& lattice, unsigned char*& mask);
    /// The pool's data objects of these dims that can serve as image: one component of an image's element
    /// type.
    void findImageDataSets(const unsigned long* dims, McDArray<HxData*>& result) const;
    /// Pixels of the viewer's slice whose value lies in its masking window; 0, and the mask stays as it was,
    /// if masking is off there. throws McMemoryException
    int getMask(GiFrameBuffer* frameBuffer, McBitfield& mask);
    /// Takes selection draw style and blend weight from the preferences and redraws.
    void readSelectionDrawStyle();
    static void crossHairCBs(GiCrossHairTool* tool, void* gi);

    /// Adds the selection to a material; locked labels under it stay.
    void storeSelection(int tissue, int in3D, int clearAfter);
    /// Takes back every piece of the material that the selection touches, then adds the selection.
    void replaceBySelection(int tissue, int in3D);
    /// Moves the selected voxels of a material to the neighbouring material.
    void subtractSelection(int tissue, int in3D);
    /// The volume form of it on any set of voxels; 0 if the target is locked (nothing has changed).
    int subtractSelection3D(const McBitfield& voxels, int tissue);
    void clearSelection(bool in3D, bool saveUndo);
    void invertSelection(int in3D);
    void fillSelection(int x, int y, int mode);

    /// Snapshot of the viewer's slice before a change; a null viewer means the current one.
    /// throws McMemoryException
    void saveUndoInformationForSlice(int selectionChanges, int labelsChange, GiViewer* viewer);
    /// Snapshot of the volume before a change; the viewer has no effect. throws McMemoryException
    void saveUndoInformationForVolume(int selectionChanges, int labelsChange, GiViewer* viewer);
    /// Takes one reference on the action. `append`: joins the newest entry if that is a multi action.
    void addUndoAction(GiAction* action, bool append);
    void undo();
    void redo();
    int canUndo() const { return undoActions.size() > 0; }
    int canRedo() const { return redoActions.size() > 0; }
    void clearUndo(int clearInterpolated);

    /// What the active tool holds back from a slice transfer; empty if it holds back nothing.
    std::function<void(GiSelection2D&)> seedGuard();

    McDArray<GiViewer*> viewers; // one reference each
    unsigned char drawStyle2D[256];
    unsigned char selectionDrawStyle;
    unsigned char lastDrawStyle2D[256];
    unsigned char visible3D[256];
    unsigned char materialColors[256][3];
    unsigned char selectionColor[3];
    GiCrossHairTool* crossHair = nullptr; // one reference
    HxData* imageData = nullptr;
    HxParamBundle* materials = nullptr; // one sub-bundle per material, in label order
    HxLabelLattice3* labelLattice = nullptr;
    HxData* labelData = nullptr;
    HxLattice3* imageLattice = nullptr;
    int coordinateDigits = 1;
    int dataDigits = 0;
    McDArray<GiAction*> undoActions; // oldest first, one reference each
    McDArray<GiAction*> redoActions;
    int undoMemoryLimit = 33554432; // bytes
    McDArray<GiFilter*> filters;    // one reference each; an entry may be null
    McDArray<GiFilter*> pluginFilters;
    McDArray<GiTool*> tools; // by fixed index, one reference each; an entry may be null
    GiTool* currentTool = nullptr;
    GiTool* panTool = nullptr;
    int primType = 0; // 0 byte, 1 short, 2 unsigned short, 3 int, 4 unsigned int, 5 float, 6 double
    float dataWindow[2] = {-200, 200};
    float toolDataWindow[2] = {0, 200};
    int locked[256];
    int currentTissue = 0;
    bool mode3D = false;
    bool zoomAllViewers = true;
    int sliceSyncBusy = 0; // set while cross hair and viewers adjust each other
    McTypedData3D imageSlices;
    McTypedData3D gradientImage;
    McHandle<HxRegScalarField3> gradientField;
    float dataWindowScale = 1;
    float dataWindowBias = 0;
    float valueUnderPointer = 0;
    McRawData3D labelSlices;
    GiSelection3D* selection = nullptr; // one reference
    GiViewer* lastViewer = nullptr;
    int projectionMode = 0;
    GiProjector* projector = nullptr;
    HxViewerPanelBase* viewerPanel = nullptr;

protected:
    /// The ordered teardown; the destructor of the deriving class calls it while its own
    /// overrides still stand.
    void destroyMembers();

private:
    void createTools();
    void leaveTool();
    void createFilters();
    void destroyTools();
    void destroyFilters();
    void destroyViewers();
    /// Tells the active tool, if any; see GiNotice.
    void notifyTool(int what);

    void bindVolume(int editorType, const unsigned long* dims, void* data, int hostType,
                    HxLabelLattice3* lattice);
    void resetMaterialColors();
    void computeCoordinateDigits();
    template <class T>
    void makeGradientImage(float largest);
    template <class T>
    void tryGradientImage(float largest);
    void keepGradientImage(void* data, int hostType);
    void showMiddleSlices(const unsigned long* dims);
    /// For changes of labels that are not announced by touchData: the next question for the range of
    /// values must not get an old answer.
    void markLabelRangeStale();
    void dropActions(McDArray<GiAction*>& actions);
    void trimUndo();
    void saveSliceSelection(int slice, int orientation, class GiMultiAction& snapshot);
    void saveSliceLabels(int slice, int orientation, class GiMultiAction& snapshot);

    /// The 2D selection of the current viewer; null without viewer or selection.
    GiSelection2D* currentSelection();
    void clearModifiedFlags();
    void clearVolumeSelection();
    void storeProjected(int tissue);
    void printLocked(const char* format, int tissue) const;
    void subtractSlice(int tissue);
    void subtractVolume(int tissue);
    void replaceSlice(int tissue);
    void replaceVolume(int tissue);
};
