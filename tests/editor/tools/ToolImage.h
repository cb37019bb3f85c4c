#pragma once

#include "editor/display/DrawnEditor.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

/// An image of one element type with values that make the ends of a window matter: many equal ones, and for
/// types with more digits than a float some that differ by less than it can tell.
template <class T>
class ToolImage
{
public:
    ToolImage(DrawnEditor& editor, std::mt19937& random) : dims(editor.dims), values(editor.size())
    {
        for (T& v : values) v = value(random);
        bind(editor);
    }

    /// Whether a window accepts a voxel, by the words of the rule.
    bool accepts(unsigned long voxel, const float* window) const
    {
        using Compared = std::conditional_t<std::is_same_v<T, double>, double, float>;
        const auto v = static_cast<Compared>(values[voxel]);
        return v >= static_cast<Compared>(window[0]) && v <= static_cast<Compared>(window[1]);
    }

    /// The same for what compares floats whatever the type.
    bool acceptsAsFloat(unsigned long voxel, const float* window) const
    {
        const auto v = static_cast<float>(values[voxel]);
        return v >= window[0] && v <= window[1];
    }

    /// A window around the middle of the values; each fourth one has equal ends.
    static void chooseWindow(std::mt19937& random, float* window)
    {
        window[0] = static_cast<float>(value(random));
        window[1] = random() % 4 ? static_cast<float>(value(random)) : window[0];
        if (window[0] > window[1]) std::swap(window[0], window[1]);
    }

private:
    static T value(std::mt19937& random)
    {
        const auto step = static_cast<int>(random() % 9);
        if constexpr (std::is_floating_point_v<T>)
            return random() % 40 ? static_cast<T>(step * 0.1) : std::numeric_limits<T>::quiet_NaN();
        else if constexpr (sizeof(T) == 4)
            return static_cast<T>((1 << 24) + step);
        else
            return static_cast<T>(std::is_signed_v<T> ? step - 4 : step);
    }

    void bind(DrawnEditor& editor)
    {
        const int n = static_cast<int>(dims[0]);
        T* v = values.data();
        HxLabelLattice3* lattice = editor.lattice();
        if constexpr (std::is_same_v<T, unsigned char>) editor.gi.setVolumeByte(dims, n, v, lattice);
        if constexpr (std::is_same_v<T, short>) editor.gi.setVolumeShort(dims, n, v, lattice);
        if constexpr (std::is_same_v<T, unsigned short>)
            editor.gi.setVolumeUnsignedShort(dims, n, v, lattice);
        if constexpr (std::is_same_v<T, int>) editor.gi.setVolumeInt(dims, n, v, lattice);
        if constexpr (std::is_same_v<T, unsigned int>) editor.gi.setVolumeUnsignedInt(dims, n, v, lattice);
        if constexpr (std::is_same_v<T, float>) editor.gi.setVolumeFloat(dims, n, v, lattice);
        if constexpr (std::is_same_v<T, double>) editor.gi.setVolumeDouble(dims, n, v, lattice);
    }

    const unsigned long* dims;
    std::vector<T> values;
};

using ToolImageTypes = testing::Types<unsigned char, short, unsigned short, int, unsigned int, float, double>;

/// A viewer's slice shown anyhow: mirrored, zoomed, scrolled and masked, with any pixels selected.
struct RandomView
{
    int orientation;
    bool masks;
    float window[2]; // of the mask

    template <class T>
    static RandomView show(DrawnEditor& editor, std::mt19937& random)
    {
        constexpr float kZooms[] = {0.2f, 0.5f, 1, 1.7f, 3, 6, 21};
        const auto below = [&](unsigned int n) { return static_cast<int>(random() % n); };
        RandomView view{below(3), random() % 2 == 0, {}};
        ToolImage<T>::chooseWindow(random, view.window);
        GiViewer& viewer = editor.viewer(view.orientation);
        viewer.setFlip(below(2), below(2), below(2));
        viewer.setZoomFactor(kZooms[below(7)]);
        GiMemoryFrameBuffer& buffer = editor.buffer(view.orientation);
        buffer.setWindowSize(McVec2i(30 + below(90), 30 + below(90)));
        buffer.setOffset(McVec2i(below(40), below(40)));
        viewer.setMaskingEnabled(view.masks);
        viewer.setMaskingWindow(view.window[0], view.window[1], false);
        for (unsigned long i = 0; i < editor.gi.selection->numWords(); ++i)
            editor.gi.selection->bits.words()[i] = static_cast<unsigned int>(random());
        return view;
    }
};
