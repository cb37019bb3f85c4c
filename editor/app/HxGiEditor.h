#pragma once

#include "hx/HxEditor.h"
#include "mc/McVec.h"

#include <memory>

class GiQ;
class HxLattice;
class HxLattice3;
class HxLatticeAccess;
class HxParamBundle;

/// The editor as the host knows it: it is attached to a label field, binds it with an image to the
/// controller, and is the target of the script commands under the label "gi".
///
/// While sub-applications exist, the editor that the host makes is a stub without a controller; it
/// hands everything to the sub-application's own editor.
class HxGiEditor : public HxEditor
{
public:
    /// Spans of the volume flood fill keep their ends in 16 bits, so no side may be larger.
    static constexpr unsigned long kLargestSide = 32767;

    /// Which of the two an editor is.
    enum Form
    {
        kStub,
        kOwnEditor
    };

    /// As the host makes it: a stub if there are sub-applications.
    HxGiEditor();
    explicit HxGiEditor(Form form);

    static void initClass();
    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override;
    ~HxGiEditor() override;
    int parse(Tcl_Interp* interp, int wordCount, char** words) override;
    void commandHelp(McDArray<HxCommandHelp>& list) const override;
    bool typeCheck(HxData* data) override;
    void startEditing(HxData* labels) override;
    void stopEditing() override;

    /// Binds a pair. `image` may be null: then the image is the one connected to the field, one of
    /// the pool that fits, or the labels themselves. Nothing happens if the pair is bound already.
    void startEditing(HxData* labels, HxData* image);

    HxData* getLabelData() const;
    void setRescaleInterceptSlope(const HxParamBundle& bundle);
    /// Whether voxels of this host type can be shown and masked.
    static bool isImageType(int hostType);
    /// First component of a voxel; 0 for a null lattice or an unknown element type.
    float eval(HxLattice* lattice, const McVec3i& index);
    /// Pins the memory of an image until the next call or stopEditing.
    void* holdImage(HxLattice3* lattice);
    /// Null in a stub.
    GiQ* getGi() const { return gi.get(); }

private:
    struct Pair;

    bool isBound(HxData* labels, HxData* image) const;
    void repairMaterials(HxParamBundle& materials, int maxLabel);
    void findImage(Pair& pair);
    void bind(const Pair& pair);
    void releaseAccess();

    std::unique_ptr<GiQ> gi;
    HxLatticeAccess* access = nullptr; // keeps the image memory in place while it is edited over
};
