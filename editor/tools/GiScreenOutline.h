#pragma once

#include "mc/McVec.h"

/// A closed outline that a person has drawn over a 3D viewer, with the camera that it was drawn for. Screen
/// coordinates run from 0 to 1 over the viewport, from its lower left corner.
class GiScreenOutline
{
public:
    /// A matrix by rows; points are multiplied from the left, as rows.
    using Matrix = float[4][4];

    virtual ~GiScreenOutline() = default;

    /// Around any number of isSelected().
    virtual void startSelectionTest() = 0;
    virtual void stopSelectionTest() = 0;
    /// Whether a point of the screen lies inside; points beside the viewport do not.
    virtual bool isSelected(const McVec2f& screen) const = 0;

    /// The keys at the moment when the outline was closed.
    virtual bool wasCtrlDown() const = 0;
    virtual bool wasShiftDown() const = 0;

    virtual bool hasPerspectiveCamera() const = 0;
    /// Of a point in world coordinates. Called for parallel cameras only.
    virtual McVec2f projectToScreen(const McVec3f& world) const = 0;
    /// From the world to the camera, and from there to the screen. Called for perspective cameras only.
    virtual void getMatrices(Matrix& affine, Matrix& projection) const = 0;
};
