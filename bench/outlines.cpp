// Picking a region of an atlas with the mouse, and moving it through all slices, beside the flood fill alone
// with one pass over the region's box.

#include "BenchEditor.h"
#include "BenchProgram.h"
#include "BenchPython.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "core/GiBitRows.h"
#include "core/mcFloodFill.h"
#include "mc/McEvent.h"
#include "tools/GiPickRegion.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr int kRounds = 9;
constexpr int kLeft = 1;

/// A hand over the axial viewer.
class Hand
{
public:
    explicit Hand(GiMemoryFrameBuffer& target) : buffer(target) {}

    void button(bool pressed, const McVec2i& pixel)
    {
        McMouseButtonEvent event;
        event.button = kLeft;
        event.pressed = event.left = pressed;
        send(event, pixel);
    }
    void moveTo(const McVec2i& pixel)
    {
        McMotionEvent event;
        event.left = 1;
        send(event, pixel);
    }

private:
    void send(McEvent& event, const McVec2i& pixel)
    {
        const McVec2i at = buffer.pixelCentre(pixel.x, pixel.y);
        event.x = at.x;
        event.y = at.y;
        buffer.handleEvent(&event);
    }
    GiMemoryFrameBuffer& buffer;
};

struct Region
{
    const char* name;
    McVec3i seed;
};

/// A voxel in the middle of the largest structure, in the copy of the atlas that lies at the origin.
Region largestStructure(const BenchLabels& labels, unsigned long size)
{
    std::array<unsigned long, 256> counts{};
    for (const unsigned char label : labels) ++counts[label];
    const auto largest = std::max_element(counts.begin() + 1, counts.end()) - counts.begin();
    const auto found = std::find(labels.begin(), labels.end(), static_cast<unsigned char>(largest));
    const auto i = static_cast<unsigned long>(found - labels.begin());
    return {"a structure", McVec3i(static_cast<int>(i % size), static_cast<int>(i / size % size),
                                   static_cast<int>(i / size / size))};
}

class PickCase
{
public:
    PickCase(BenchEditor& benchEditor, const Region& region)
        : editor(benchEditor), name(region.name), seed(region.seed), hand(benchEditor.buffer(2))
    {
        editor.viewer(2).setSlice(seed.z, false);
    }

    /// drawsPictures  with all that the three viewers draw anew
    void run(bool drawsPictures)
    {
        for (int o = 0; o < 3; ++o) editor.buffer(o).flags = drawsPictures ? 0 : GiFrameBuffer::kRenderingOff;
        const McVec2i press(seed.x, seed.y), target(seed.x + 7, seed.y + 5);
        BenchRace race;
        const int picks = race.add([&] {
            startRound();
            return benchClockMs([&] { hand.button(true, press); });
        });
        hand.button(false, press);
        const int moves = race.add([&] {
            startRound();
            hand.button(true, press);
            hand.button(false, press);
            return benchClockMs([&] {
                hand.button(true, press);
                hand.moveTo(target);
                hand.button(false, target);
            });
        });
        const int floods = race.add([&] { return benchClockMs([&] { floodAndPass(); }); });
        race.run(kRounds);
        checkResults(press, target);
        char note[80];
        std::snprintf(note, sizeof note, "%.2f million voxels%s", static_cast<double>(count) / 1e6,
                      drawsPictures ? "; with three viewers" : "");
        const double peer = race.medianMs(floods);
        benchPrint({std::string("pick ") + name + " in 3D", 1, race.medianMs(picks), "flood fill, one pass",
                    peer, 0, note});
        benchPrint({std::string("move ") + name + " in all slices", 1, race.medianMs(moves),
                    "flood fill, one pass", peer, 0, note});
    }

private:
    void startRound()
    {
        editor.gi.clearUndo(1);
        editor.gi.selection->clear();
        editor.gi.updateSelectionBoxes();
    }

    void floodAndPass()
    {
        const auto side = static_cast<int>(editor.dims[0]);
        const McData3D<unsigned char> labels(editor.labels(), side, side, side);
        McEqualityChecker<unsigned char> same(labels(seed.x, seed.y, seed.z));
        int box[6];
        plain.resize(0);
        count = mcFloodFill3D(labels, same, seed.x, seed.y, seed.z, plain, box);
        copy.resize(plain.numBits());
        for (int z = box[4]; z <= box[5]; ++z)
            for (int y = box[2]; y <= box[3]; ++y) {
                const auto row =
                    (static_cast<unsigned long>(z) * editor.dims[1] + static_cast<unsigned long>(y)) *
                    editor.dims[0];
                giCopyBits(copy.words(), row + static_cast<unsigned long>(box[0]), plain.words(),
                           row + static_cast<unsigned long>(box[0]),
                           static_cast<unsigned long>(box[1] - box[0] + 1));
            }
    }

    void checkResults(const McVec2i& press, const McVec2i& target)
    {
        startRound();
        hand.button(true, press);
        hand.button(false, press);
        benchRequire(editor.gi.selection->bits == plain, "the pick differs from the flood fill.");
        hand.button(true, press);
        hand.moveTo(target);
        hand.button(false, target);
        const auto side = static_cast<int>(editor.dims[0]);
        const int dx = target.x - press.x, dy = target.y - press.y;
        const GiSelection3D& moved = *editor.gi.selection;
        for (int z = 0; z < side; ++z)
            for (int y = 0; y < side; ++y)
                for (int x = 0; x < side; ++x) {
                    const auto i = (static_cast<unsigned long>(z) * editor.dims[1] +
                                    static_cast<unsigned long>(std::max(0, y - dy))) *
                                       editor.dims[0] +
                                   static_cast<unsigned long>(std::max(0, x - dx));
                    const bool expected = x >= dx && y >= dy && plain.isSet(i);
                    benchRequire(moved.get(x, y, z) == expected, "the move differs from the plain one.");
                }
        startRound();
    }

    BenchEditor& editor;
    const char* name;
    const McVec3i seed;
    Hand hand;
    McBitfield plain, copy;
    unsigned long count = 0;
};

void benchOutlines(const BenchOptions& options)
{
    benchSetThreads(1);
    const std::string file = options.work + "/atlas.raw";
    BenchPython(options.size).ask("atlas /usr/share/mricron/templates/aal.nii.gz " + file);
    BenchEditor editor(options.size);
    BenchLabels image(options.voxels());
    editor.setImage(image.data());
    editor.gi.imageLattice = editor.lattice();
    benchLoad(file, editor.labels(), options.voxels());
    const BenchLabels labels(editor.labels(), editor.labels() + options.voxels());
    editor.gi.setTool(GiPickRegion::kIndex);
    for (const Region& region :
         {Region{"the background", McVec3i(0, 0, 8)}, largestStructure(labels, options.size)}) {
        PickCase pick(editor, region);
        pick.run(false);
        pick.run(true);
    }
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchOutlines);
}
