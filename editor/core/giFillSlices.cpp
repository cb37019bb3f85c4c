#include "core/giFillSlices.h"

#include "core/GiColumnSlices.h"
#include "core/GiOrientation.h"
#include "core/giOccupiedSlices.h"

#include <vector>

namespace {

constexpr std::size_t kMostColumns = 64;  // taken out at a time, so that they stay in the cache
constexpr std::size_t kFewestColumns = 4; // fewer are faster one by one

using GoOn = std::function<bool(int)>;

/// The occupied ones of the slices from `begin` on, as many as fit in one walk; `end` is moved behind the
/// last slice that has been looked at.
std::vector<int> nextColumns(const std::vector<unsigned char>& occupied, int begin, int& end)
{
    std::vector<int> columns;
    const int n = static_cast<int>(occupied.size());
    for (end = begin; end < n && columns.size() < kMostColumns; ++end)
        if (occupied[static_cast<std::size_t>(end)]) columns.push_back(end);
    return columns;
}

/// Fills the slices from `begin` to `end` - 1. False if that was ended.
bool fillOneByOne(GiSelection3D& selection, int orientation, const std::vector<unsigned char>& occupied,
                  int begin, int end, const GoOn& goOn)
{
    GiSelection2D slice;
    for (int i = begin; i < end; ++i) {
        if (occupied[static_cast<std::size_t>(i)]) {
            selection.getSlice(&slice, orientation, i);
            slice.fillSelection(-1, -1, 0);
        }
        if (!goOn(i)) return false;
    }
    return true;
}

bool fillTogether(GiSelection3D& selection, const std::vector<int>& columns, int begin, int end,
                  const GoOn& goOn)
{
    GiColumnSlices slices(selection, columns);
    std::size_t next = 0;
    bool goes = true;
    for (int i = begin; i < end && goes; ++i) {
        if (next < columns.size() && columns[next] == i) slices.slice(next++).fillSelection(-1, -1, 0);
        goes = goOn(i);
    }
    slices.putBack();
    return goes;
}

} // namespace

void giFillSlices(GiSelection3D& selection, int orientation, const GoOn& goOn)
{
    const std::vector<unsigned char> occupied = giOccupiedSlices(selection, orientation);
    const int n = static_cast<int>(occupied.size());
    if (giSliceAxis(orientation) != 0) {
        fillOneByOne(selection, orientation, occupied, 0, n, goOn);
        return;
    }
    for (int begin = 0, end = 0; begin < n; begin = end) {
        const std::vector<int> columns = nextColumns(occupied, begin, end);
        const bool goes = columns.size() < kFewestColumns
                              ? fillOneByOne(selection, orientation, occupied, begin, end, goOn)
                              : fillTogether(selection, columns, begin, end, goOn);
        if (!goes) return;
    }
}
