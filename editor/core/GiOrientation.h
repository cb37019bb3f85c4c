#pragma once

/// The axis along which an orientation stacks its slices: 0 YZ along X, 1 XZ along Y, 2 XY along Z.
/// Every other number counts as 0; scripts may set any.
inline int giSliceAxis(int orientation)
{
    return orientation == 1 || orientation == 2 ? orientation : 0;
}

/// The axis that runs along a slice's width.
inline int giWidthAxis(int orientation)
{
    return giSliceAxis(orientation) == 0 ? 1 : 0;
}

/// The axis that runs along a slice's height.
inline int giHeightAxis(int orientation)
{
    return giSliceAxis(orientation) == 2 ? 1 : 2;
}
