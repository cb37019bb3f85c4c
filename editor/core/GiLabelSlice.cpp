#include "core/GiLabelSlice.h"

#include "core/mcFloodFill.h"

namespace {

/// The most frequent label other than `tissue`, the lowest on a tie; -1 if there is none.
int mostFrequent(const unsigned int* counts, int tissue)
{
    int best = -1;
    unsigned int bestCount = 0;
    for (int label = 0; label < 256; ++label) {
        if (label == tissue || counts[label] <= bestCount) continue;
        best = label;
        bestCount = counts[label];
    }
    return best;
}

} // namespace

void GiLabelSlice::addSelection(const GiSelection2D& selection, int tissue)
{
    const bool weighted = prob && prob2;
    const auto label = static_cast<unsigned char>(tissue);
    for (long y = 0; y < static_cast<long>(height); ++y) {
        for (long x = 0; x < static_cast<long>(width); ++x) {
            const bool selected = selection.isSet(static_cast<int>(x), static_cast<int>(y));
            if (!selected && !weighted) continue;
            unsigned char* const at = pixel(memory, x, y);
            if (locked && locked[*at]) continue;
            const bool isNew = selected && *at != label;
            if (isNew) *at = label;
            if (!weighted) continue;
            unsigned char* const p = pixel(prob, x, y);
            if (isNew || (selected && *p < 1) || (!selected && *p > 1)) {
                *p = 1;
                *pixel(prob2, x, y) = 0;
            }
        }
    }
}

int GiLabelSlice::chooseTarget(const GiSelection2D& selection, int tissue) const
{
    unsigned int counts[256] = {};
    // Without rows or columns inside the border these loops do nothing.
    for (int y = 1; y < static_cast<int>(height) - 1; ++y) {
        for (int x = 1; x < static_cast<int>(width) - 1; ++x) {
            if (!selection.isSet(x, y)) continue;
            // kept: the label that is counted lies one column to the left of the pixel that is
            // tested, and the slice's border pixels count nothing. People have learnt which
            // material a subtracted outline goes to, so the choice stays as it has always been;
            // the volume form counts the neighbours themselves.
            if (!selection.isSet(x - 1, y)) ++counts[*pixel(memory, x - 2, y)];
            if (!selection.isSet(x + 1, y)) ++counts[*pixel(memory, x, y)];
            if (!selection.isSet(x, y - 1)) ++counts[*pixel(memory, x - 1, y - 1)];
            if (!selection.isSet(x, y + 1)) ++counts[*pixel(memory, x - 1, y + 1)];
        }
    }
    int target = mostFrequent(counts, tissue);
    if (target >= 0) return target;

    for (int y = 0; y < static_cast<int>(height); ++y)
        for (int x = 0; x < static_cast<int>(width); ++x)
            if (selection.isSet(x, y)) ++counts[*pixel(memory, x, y)];
    target = mostFrequent(counts, tissue);
    return target >= 0 ? target : 0;
}

void GiLabelSlice::subtractSelection(const GiSelection2D& selection, const GiSelection2D& working, int tissue)
{
    const int target = chooseTarget(selection, tissue);
    // kept: a lock ends this without a word; only the volume form tells the user.
    if (locked && (locked[target] || locked[tissue & 255])) return;
    for (int y = 0; y < static_cast<int>(height); ++y) {
        for (int x = 0; x < static_cast<int>(width); ++x) {
            unsigned char* const at = pixel(memory, x, y);
            if (*at == tissue && working.isSet(x, y)) *at = static_cast<unsigned char>(target);
        }
    }
}

void GiLabelSlice::subtractSelection(GiSelection2D& selection, int tissue, const ReleasePixels& release)
{
    GiSelection2D working(selection);
    if (release) {
        // kept: a selection that has the slice's size already stays a view on its own bits here, so
        // pixels that are released leave the selection itself and are not subtracted later either.
        working.resize(static_cast<int>(width), static_cast<int>(height));
        working.copyData(selection);
        release(working);
    }
    subtractSelection(selection, working, tissue);
}

/// Marks the 4-connected pieces of `tissue` that hold a selected pixel.
void GiLabelSlice::markPieces(const GiSelection2D& selection, int tissue, McBitfield& region) const
{
    McData2D<unsigned char> labels(memory, static_cast<int>(width), static_cast<int>(height), xStride,
                                   static_cast<long>(yStride));
    McEqualityChecker<unsigned char> isTissue(static_cast<unsigned char>(tissue));
    for (int y = 0; y < static_cast<int>(height); ++y) {
        for (int x = 0; x < static_cast<int>(width); ++x) {
            if (!selection.isSet(x, y) || labels(x, y) != tissue) continue;
            if (region.isSet(static_cast<unsigned long>(y) * width + static_cast<unsigned long>(x))) continue;
            mcFloodFill2D(labels, isTissue, x, y, region, nullptr);
        }
    }
}

void GiLabelSlice::replaceBySelection(GiSelection2D& selection, int tissue, const ReleasePixels& release)
{
    GiSelection2D pieces;
    pieces.resize(static_cast<int>(width), static_cast<int>(height));
    markPieces(selection, tissue, pieces.localBits);
    if (release) release(pieces);
    subtractSelection(pieces, tissue, release);
    addSelection(selection, tissue);
}
