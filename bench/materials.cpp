// The material list: deleting a material and finding its thickest slices, beside OpenCV. Deleting
// runs through the list of the real window, with all that follows of it.

#include "BenchFloor.h"
#include "BenchProgram.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "app/GiQ.h"
#include "app/GiQTissueList.h"
#include "app/GiQToolbox.h"
#include "app/HxGiEditor.h"
#include "app/HxGiSubApplication.h"
#include "app/HxMain.h"
#include "core/GiThickestSlices.h"
#include "core/giRemoveLabel.h"
#include "hx/HxClassRegistry.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxObjectPool.h"
#include "hx/HxUniformLabelField3.h"

#include <QApplication>

#include <opencv2/core.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 15;
constexpr int kRemoved = 2, kReplacement = 1;
constexpr const char* kNames[] = {"Exterior", "A", "B", "C", "D"};

/// Label field and main window, with the label field open for segmentation.
class Session
{
public:
    explicit Session(const BenchOptions& options) : original(benchLabels(benchBlobs(options.size)))
    {
        window.resize(1280, 800);
        window.show();
        const unsigned long dims[3] = {options.size, options.size, options.size};
        field = new HxUniformLabelField3(dims);
        for (const char* name : kNames) field->materials()->insert(new HxParamBundle(name));
        HxObjectPool::getThePool()->addObject(field);
        reset();
        HxGiSubApplication::instance()->open(field, nullptr);
        QApplication::processEvents();
    }
    ~Session()
    {
        HxSubApplication::leaveRunning();
        HxObjectPool::getThePool()->clear();
    }

    /// The labels as they were, and all materials.
    void reset()
    {
        std::copy(original.begin(), original.end(), labels());
        field->materials()->clear();
        for (const char* name : kNames) field->materials()->insert(new HxParamBundle(name));
        if (HxGiEditor* editor = HxGiSubApplication::instance()->getEditor())
            editor->getGi()->getToolbox()->setTissues(field->materials());
    }

    unsigned char* labels() { return field->labelLattice()->getLabels(); }
    GiQTissueList& list()
    {
        return *HxGiSubApplication::instance()->getEditor()->getGi()->getToolbox()->tissueList;
    }

    const BenchLabels original;
    HxMain window;
    HxUniformLabelField3* field;
};

/// What every label becomes.
std::vector<unsigned char> newLabels()
{
    std::vector<unsigned char> table(256);
    for (int v = 0; v < 256; ++v)
        table[static_cast<std::size_t>(v)] =
            static_cast<unsigned char>(v == kRemoved ? kReplacement : v - (v > kRemoved));
    return table;
}

void benchDelete(Session& session, int threads)
{
    BenchLabels ours = session.original, theirs = session.original;
    const auto n = static_cast<int>(session.field->lattice()->dims()[0]);
    cv::Mat view(n * n, n, CV_8U, theirs.data());
    std::vector<unsigned char> table = newLabels();
    const cv::Mat lut(1, 256, CV_8U, table.data());
    cv::setNumThreads(threads);
    const unsigned long slice = static_cast<unsigned long>(n) * static_cast<unsigned long>(n);

    BenchRace race;
    const int pass = race.add([&] {
        ours = session.original;
        return benchClockMs([&] {
            giRemoveLabel(ours.data(), slice, static_cast<unsigned long>(n), kRemoved, kReplacement, threads);
        });
    });
    const int whole = race.add([&] {
        session.reset();
        return benchClockMs([&] {
            session.list().removeTissue(kRemoved, kReplacement);
            QApplication::processEvents();
        });
    });
    const int openCv = race.add([&] {
        theirs = session.original;
        return benchClockMs([&] { cv::LUT(view, lut, view); });
    });
    const int floor =
        race.add([&] { return benchClockMs([&] { benchUpdate(ours.data(), ours.size(), threads); }); });
    race.run(kRounds);

    session.reset();
    session.list().removeTissue(kRemoved, kReplacement);
    benchRequire(std::equal(theirs.begin(), theirs.end(), session.labels()),
                 "the labels differ from OpenCV's.");
    const double update = race.medianMs(floor), peer = race.medianMs(openCv);
    benchPrint({"delete a material, the pass", threads, race.medianMs(pass), "OpenCV LUT in place", peer,
                update, ""});
    benchPrint({"delete a material, in the window", threads, race.medianMs(whole), "OpenCV LUT in place",
                peer, update, "with list and viewers"});
}

void benchLocate(const Session& session, int threads)
{
    const unsigned long* dims = session.field->lattice()->dims();
    const auto n = static_cast<int>(dims[0]);
    const cv::Mat view(n * n, n, CV_8U, const_cast<unsigned char*>(session.original.data()));
    GiThickestSlices found;
    cv::Mat mask, columns;
    const auto ours = [&] { found = giThickestSlices(session.original.data(), dims, kRemoved); };
    // One of the three axes, which the peer needs three passes for.
    const auto openCv = [&] {
        cv::compare(view, cv::Scalar(kRemoved), mask, cv::CMP_EQ);
        cv::reduce(mask, columns, 0, cv::REDUCE_SUM, CV_32S);
    };
    ours();
    openCv();
    cv::Point best;
    cv::minMaxLoc(columns, nullptr, nullptr, nullptr, &best);
    benchRequire(found.found && best.x == found.slice[0], "the thickest slice differs from OpenCV's.");

    BenchRace race;
    const int our = race.add([&] { return benchClockMs(ours); });
    const int their = race.add([&] { return benchClockMs(openCv); });
    const int floor = race.add([&] {
        return benchClockMs([&] { benchRead(session.original.data(), session.original.size(), threads); });
    });
    race.run(kRounds);
    benchPrint({"locate a material", threads, race.medianMs(our), "OpenCV, one axis of 3",
                race.medianMs(their), race.medianMs(floor), ""});
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return benchMain(argc, argv, [](const BenchOptions& options) {
        hxRegisterHostClasses();
        Session session(options);
        for (const int threads : {1, 2}) {
            benchSetThreads(threads);
            benchDelete(session, threads);
            benchLocate(session, threads);
        }
    });
}
