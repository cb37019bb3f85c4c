#pragma once

#include "app/HxGiEditor.h"
#include "hx/HxSubApplication.h"

class GiQToolbox;
class HxRegScalarField3;
class QWidget;

/// Segmentation as a full mode of the host, with an editor of its own. A singleton; it outlives its
/// stops, and leaving it keeps data and undo history for the next start.
class HxGiSubApplication : public HxSubApplication
{
public:
    static HxGiSubApplication* instance();
    /// Lets go of it at the end of the program; the editor is deleted and stores what it remembers.
    static void dropInstance();
    static void initClass();
    static HxBase* createInstance();
    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override;
    ~HxGiSubApplication() override;
    /// The labels that are edited; File/Save acts on them.
    HxData* currentData() override;
    void onStart() override;
    void onStop() override;

    /// Picks the pair for `data` and binds it; null data means the present pair or what the pool
    /// offers. `attached` is the editor that the host attached to the data, if any.
    void startEditing(HxData* data, HxGiEditor* attached);
    /// Enters the mode with exactly this pair. A null image stands for the present one, if these are
    /// the present labels, else for the one that is found.
    void open(HxData* labels, HxData* image);
    void stopEditing(HxGiEditor* attached);
    /// Fills the toolbox's two combo boxes, chooses label field and image for `data` in them, and starts
    /// the editing, if there is a label field.
    void initDataSets(HxData* data);
    /// Detaches an attached editor that edits other data.
    void checkOtherEditor(HxData* data);
    /// Null before the first start.
    HxGiEditor* getEditor() const { return ownEditor; }

private:
    HxGiSubApplication();

    void ensureEditor();
    GiQToolbox& toolbox() const;
    void showWidgets();
    void editPair(HxData* labels, HxData* image);
    HxRegScalarField3* presentImageOf(HxRegScalarField3* labels) const;
    HxRegScalarField3* fillLabelBox(HxRegScalarField3* labels);
    HxRegScalarField3* fillImageBox(HxRegScalarField3* labels, HxRegScalarField3* image);
    void showPairInBoxes();

    HxData* labelsToOpen = nullptr; // the pair that `open` was asked for, only while it runs
    HxData* imageToOpen = nullptr;
    McHandle<HxGiEditor> ownEditor;
    McHandle<HxGiEditor> attachedEditor;
    QWidget* toolboxWidget = nullptr;
    QWidget* viewerWidget = nullptr;
};
