#pragma once

/// What the material list tells and asks a 3D view of the materials.
class GiMaterialView3D
{
public:
    /// Labels that the tables below have room for.
    static constexpr int kLabels = 256;

    virtual ~GiMaterialView3D() = default;

    /// Hides a material, or shows it.
    virtual void setLabelClipped(int label, bool clipped) = 0;
    /// Whether a material has its own color. Switching it off and on again takes a new color over.
    virtual void setUseLabelColor(int label, bool on) = 0;

    /// Fill a table of kLabels flags with what is shown now.
    virtual void get3DVisibility(bool* visible) = 0;
    virtual void getUseLabelColor(bool* used) = 0;

    /// A material was deleted, and all above have gone down by one.
    virtual void updateLabels(int removed) = 0;
};
