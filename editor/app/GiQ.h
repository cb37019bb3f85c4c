#pragma once

#include "app/GiQToolbox.h"
#include "app/QxViewerPanel.h"
#include "core/Gi.h"
#include "hx/HxData.h" // whole, so that signals can carry it
#include "mc/McHandle.h"

#include <QList>
#include <QMenu>
#include <QMenuBar>
#include <QObject>
#include <QPointer>
#include <QSplitter>

#include <functional>
#include <initializer_list>

class GiResetOrientationTool;
class GiSetOrientationTool;
class HxColormap;
class HxGiEditor;
class HxLabelField3;
class HxObject;
class HxViewerBase;
class McHistogram;
class QAction;
class QComboBox;
class QWidget;
struct HxPreferences;

/// The editor's window side: what the core announces reaches the windows through it, and what the core
/// needs of them it asks here. It makes menus, toolbox and the three slice viewers, binds them to the
/// data objects, and takes its place in a viewer panel while it is active.
///
/// Three modes, fixed by the constructor:
///
///     0  in the host's main panel, menu bar and tool panel
///     1  inside a foreign window: a panel of its own and the toolbox side by side in a splitter
///     2  the sub-application's: toolbox and panel are handed out and shown as pages of the main window
///
/// Editing and being active are independent: an editor without data can stand in its panel, and one that
/// was left keeps its data. Main thread only.
class GiQ : public QObject, public Gi
{
    Q_OBJECT

public:
    /// Mode 0.
    explicit GiQ(HxGiEditor* editor);
    /// Mode 1. The splitter becomes a child of `parent`; the menus go into `bar`, which may be null.
    GiQ(HxGiEditor* editor, QWidget* parent, QMenuBar* bar);
    /// Mode 2. Toolbox and panel go into the main window's stacked layouts and to the caller.
    GiQ(HxGiEditor* editor, QWidget*& toolboxOut, QWidget*& viewerOut);
    ~GiQ() override;

    void setVolume(const unsigned long* dims, McTypedPointer data, HxLabelLattice3* lattice) override;
    /// The active tool's cursor, or an arrow, for every viewer.
    void updateCursor() override;
    void redraw() override;
    using Gi::redraw;
    void updateUndoSensitivity() override;
    void stateRestored() override;
    /// The row of the material list follows.
    void setCurrentTissue(int tissue) override;
    void sliceNumberChanged(GiViewer* viewer) override;
    void touchData(int selectionTouched, int labelsTouched, int orientation, int slice, int, int) override;
    void set3dMode(bool on) override;
    void setZoomMode(bool allViewers) override;
    /// The two masking switches are the toolbox's check boxes; their signals do the rest.
    void setMaskingEnabled(bool on) override;
    void setMaskingOverlay(bool on) override;
    bool maskingEnabled() const override;
    void setTool(int index) override;
    int getPickedVoxel(HxViewer* viewer, int x, int y, McVec3i& voxel, float& value) override;
    void setToolDataWindowMarker(float value) override;
    void clearToolDataWindowMarker() override;
    void setToolDataWindow(float min, float max, bool redrawAfter) override;
    void setToolDataWindowSliderTracking(bool on) override;
    bool toolDataWindowSliderTracking() override;
    void setZoomFactor(float zoom) override;
    void setDataWindow(float min, float max, bool redrawAfter) override;

    HxGiEditor* getEditor() const { return editor; }
    GiQToolbox* getToolbox() const { return toolbox; }
    QxViewerPanel* getPanel() const { return panel; }
    int getMode() const { return mode; }
    /// The splitter of mode 1, null in the others.
    QWidget* getWidget() const;
    /// Null: the grey ramp.
    HxColormap* getColormap() const { return colormap; }
    bool isInfoDisplayed() const { return infoDisplay != 0; }

    /// Puts the menus into the bar, or shows them again.
    void addMenu();
    void removeMenu();
    /// Enables or disables all entries; one without an operation in this build stays disabled.
    void setMenuEnabled(bool on);

    /// Takes the panel over, unless that was done, and gives it back as it was.
    void onActivate();
    void onDeactivate();
    void onShow() {}
    /// Closes the panels of all filters.
    void onHide();
    void updateGeom3D() {}

    /// Forgets all data and undo information; the windows are empty then.
    void clear();
    /// Show the toolbox ready before any data is there.
    void preInit(float min, float max, const McHistogram& histogram);
    void preInitShowOnly();
    /// Every viewer of the panel, the foreign ones too.
    void redrawViewAll();
    /// No viewer leafs through its slices any more.
    void endBrowsing();
    /// Gives the keys to the active viewer, if it is one of the editor's.
    void focusViewer();
    /// One viewer alone, or all.
    void changeViewerLayout();
    /// Makes the viewer active and current; it must be one of the panel's.
    void activateViewer(HxViewerBase* viewer);

    /// Sets both sliders from the image: range, histogram, and the tool window on the upper three quarters.
    /// Gives back the window for the grey display: the one stored with the data, limited to the range.
    void initRangeSliders(HxData* image, float& min, float& max);
    /// Hands image memory to the entry of its element type.
    void setVolumeOfType(int hostType, const unsigned long* dims, void* data, HxLabelLattice3* lattice);
    void setColormap(HxColormap* map);
    /// Swaps the image under the same labels; selection and undo history stay.
    void setImageDataSet(HxData* image);
    /// Listens to changes of label and image data.
    void connectData();
    /// Materials changed elsewhere: the rows of the list and the colour table are read anew.
    void materialsChanged();

    /// Slices with a selection beside `current` along an orientation; `current` itself if there is none.
    int firstSliceWithSelection(int current, int orientation);
    int lastSliceWithSelection(int current, int orientation);
    int prevSliceWithSelection(int current, int orientation);
    int nextSliceWithSelection(int current, int orientation);

public slots:
    void setDataWindow(float min, float max);
    void toolDataWindowSliderChanged(float min, float max);
    /// A Qt::CheckState number; the one in between changes no viewer.
    void setEnableMask(int state);
    void setShowMask(int state);

    /// A data object was changed from outside.
    void slotDataTouched(unsigned int mask);
    void slot2DColormapTouched(unsigned int mask);

    /// The user chose an item of the toolbox's combo boxes, or "New".
    void setImageDataSA(int index);
    void setLabelDataSA(int index);
    void newLabelDataSA();
    void slotObjectAddedSA(HxObject* object);
    void slotObjectRemovedSA(HxObject* object);
    void slotObjectRenamedSA(HxObject* object, const char* oldName);

    /// Takes over how selections are drawn, if that was changed.
    void preferencesChanged(const HxPreferences& old, const HxPreferences& now);
    void readPreferences();
    /// Shows a style without storing it, for the dialog's live preview.
    void setSelectionDrawStyle(int style, int alpha);

    void menuUndo();
    void menuRedo();
    void menuClose();
    void menuUsersguide();
    void menuAction();
    void menuPluginFilter(QAction* action);
    void menuGreyImageChanged(QAction* action);
    void menuGradientImageChanged(QAction* action);
    void mapMenu();
    void configureOrientationPopup();
    void orientationChanged(QAction* action);
    void configureActivePopup();
    void activeViewerChanged(QAction* action);

    void growSelection2D();
    void growSelectionAll2D();
    void growSelection3D();
    void shrinkSelection2D();
    void shrinkSelectionAll2D();
    void shrinkSelection3D();
    void selectionEllipse();
    void selectionFill();
    void selectionFillAll();
    void selectionFillVolume();
    void selectionInvert2D();
    void selectionInvert3D();
    void showFirstSliceWithSelection();
    void showPrevSliceWithSelection();
    void showNextSliceWithSelection();
    void showLastSliceWithSelection();
    /// Tells whether the 3D selection reaches outside what the visible viewers show.
    void checkForHiddenSelection();

signals:
    /// 1: some selected voxels are in no visible slice; 0: none.
    void hiddenSelectionDetected(int direction);
    void selectionChanged();
    void labelsChanged(HxData* labelData);
    void colorChanged(HxData* labelData, int iMaterial);
    void materialRemoved(HxData* labelData, int iMaterial, const char* matName);
    void materialAdded(HxData* labelData);
    /// For listeners' sake; nothing emits it.
    void materialRenamed(HxData* labelData, const char* oldName, const char* newName);

private:
    struct MenuEntry;

    void commonInit();
    void createToolbox();
    void connectDataSetSwitch();

    void buildMenus();
    void buildSegmentationMenu();
    void buildOrientationMenu();
    void buildImageMenus();
    void buildSelectionMenu();
    void addEntries(QMenu* menu, std::initializer_list<MenuEntry> entries);
    void addPluginFilters();
    void readFlipPreference();
    void writeFlipPreference();
    QAction* orientationAction(int data) const;
    void enableActions(QMenu* menu, bool on);
    McDArray<HxData*> imagesOfThisSize() const;
    void useAsGradient(HxData* image);
    void forgetGradient();
    void gradientSourceTouched();

    void createViewers();
    void createViewerTools();
    void addShapes(GiViewer* viewer);
    void overrideTools(GiViewer* viewer);
    void flipViewers();
    QList<HxViewerBase*> visibleViewers() const;
    bool isOwnViewer(const HxViewerBase* viewer) const;
    /// To a slice that lies before, or behind, the current one; a finding on the other side is none.
    void goBack(int (GiQ::*find)(int current, int orientation));
    void goForth(int (GiQ::*find)(int current, int orientation));
    /// One undo step on the current slice's selection, or on the volume's, that shows and tells its outcome.
    void changeSlice(void (*change)(GiSelection2D&));
    void changeVolume(const char* text, const std::function<void()>& change);
    void changeAllSlices(const char* text, void (*change)(GiSelection3D&, int orientation));
    void announceSelection();
    void takePanel();
    void givePanelBack();
    void takeMainButton();
    void giveMainButtonBack();

    void disconnectData();
    void emptySliders();
    HxObject* comboObject(const QComboBox* box, int index) const;
    HxRegScalarField3* comboField(const QComboBox* box, int index) const;
    int matchingLabels(HxRegScalarField3* image) const;
    int matchingImage(HxRegScalarField3* labels) const;
    void insertItem(QComboBox* box, HxObject* object) const;
    HxLabelField3* makeLabelField(HxRegScalarField3* image) const;

    // Windows belong to their parents, so some may be gone before this is.
    QPointer<QxViewerPanel> panel;
    int infoDisplay = 1;
    HxGiEditor* editor;
    QPointer<QMenuBar> menuBar;
    QPointer<QSplitter> splitter;
    int mode;
    QPointer<QMenu> segmentationMenu;
    QPointer<QMenu> orientationMenu;
    QPointer<QMenu> activeMenu;
    QPointer<QMenu> greyImageMenu;
    QPointer<QMenu> gradientImageMenu;
    QPointer<QMenu> selectionMenu;
    QPointer<GiQToolbox> toolbox;
    McHandle<GiSetOrientationTool> orientationTools[3];
    McHandle<GiResetOrientationTool> resetTool;
    bool newLabelDataRunning = false;
    McHandle<HxColormap> colormap;
    QPointer<HxData> gradientSource; // the pool's image that the user chose as gradient image
    int formerLayout;
    int ownLayout;
    QList<McHandle<HxViewerBase>> formerViewers; // kept, so that they can come back
    QList<HxViewerBase*> registeredViewers;
    QList<QAction*> menuActions; // the menus' own entries in the bar
    QList<QAction*> deadActions; // entries whose operation is not part of this build
    QPointer<QAction> undoAction;
    unsigned char flips[3] = {0, 0, 0};
    bool scanSuspended = false;
};
