// The window: how long a person waits for the first picture of a volume in memory, and for what a step of a
// slider or of a key shows. Painted into memory, without a display.

#include "BenchProgram.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "app/HxGiEditor.h"
#include "app/HxGiSubApplication.h"
#include "app/HxMain.h"
#include "app/QxViewerPanel.h"
#include "display/GiFrameBuffer.h"
#include "display/GiGreyImage.h"
#include "display/GiViewer.h"
#include "hx/HxClassRegistry.h"
#include "hx/HxObjectPool.h"
#include "hx/HxUniformLabelField3.h"
#include "hx/HxUniformScalarField3.h"
#include "qx/QxColormapFullRangeSlider.h"
#include "tools/GiBrush.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kSteps = 201;
constexpr int kStarts = 7;
constexpr int kFourViewers = 4;
constexpr int kMoves = 1000; // of one stroke
constexpr int kBrush = 1;    // its place in the list of tools

/// The image of the pool, labels over it, and the main window of usual size.
class Session
{
public:
    explicit Session(const BenchOptions& options)
    {
        window.resize(1920, 1080);
        window.show();
        const unsigned long dims[3] = {options.size, options.size, options.size};
        const BenchImage blobs = benchBlobs(options.size);
        auto* values = static_cast<unsigned short*>(std::malloc(blobs.size() * sizeof blobs[0]));
        std::copy(blobs.begin(), blobs.end(), values);
        constexpr int kUnsignedShort = 7;
        image = new HxUniformScalarField3(dims, kUnsignedShort, values, true);
        labels = new HxUniformLabelField3(dims);
        const BenchLabels pieces = benchLabels(blobs);
        std::copy(pieces.begin(), pieces.end(), labels->labelLattice()->getLabels());
        for (const char* name : {"Exterior", "A", "B", "C", "D"})
            labels->materials()->insert(new HxParamBundle(name));
        HxObjectPool::getThePool()->addObject(image);
        HxObjectPool::getThePool()->addObject(labels);
        QApplication::processEvents();
    }
    ~Session()
    {
        HxSubApplication::leaveRunning();
        HxObjectPool::getThePool()->clear();
    }

    GiQ& gi() const { return *HxGiSubApplication::instance()->getEditor()->getGi(); }

    /// From the wish to segment to the painted window. What was known about the values is forgotten before.
    double start()
    {
        HxSubApplication::leaveRunning();
        if (HxGiEditor* editor = HxGiSubApplication::instance()->getEditor()) editor->stopEditing();
        QApplication::processEvents();
        image->touchMinMax(0, -1, 0);
        labels->touchMinMax(0, -1, 0);
        return benchClockMs([this] {
            HxGiSubApplication::instance()->open(labels, image);
            QApplication::processEvents();
        });
    }

    HxMain window;
    HxUniformScalarField3* image;
    HxUniformLabelField3* labels;
};

struct Spread
{
    double median, worst; // the worst of a hundred
};

Spread spreadOf(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times[times.size() * 99 / 100]};
}

template <class Step>
void benchSteps(const char* operation, const Step& step)
{
    std::vector<double> times;
    for (int i = 0; i < kSteps; ++i) times.push_back(benchClockMs([&] { step(i); }));
    const Spread spread = spreadOf(times);
    char note[64];
    std::snprintf(note, sizeof note, "99 of 100 within %.1f ms", spread.worst);
    benchPrint({operation, 1, spread.median, "-", 0, 0, note});
}

QMouseEvent mouse(QEvent::Type type, const QWidget& widget, const QPointF& place, Qt::MouseButton button)
{
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    return {type, place, widget.mapToGlobal(place), button, held, Qt::NoModifier};
}

/// One stroke that circles in the viewer; what every move costs until all viewers show it.
void benchStroke(GiQ& gi, QWidget& widget, int pen, bool masks)
{
    auto* brush = static_cast<GiBrush*>(gi.tools[kBrush]);
    brush->setBrushSize(pen);
    gi.setMaskingEnabled(masks);
    const QPointF middle(widget.width() / 2.0, widget.height() / 2.0);
    const auto send = [&](QEvent::Type type, int i, Qt::MouseButton button) {
        const double angle = 0.02 * i, radius = 0.1 * i;
        QMouseEvent event =
            mouse(type, widget, middle + QPointF(radius * std::cos(angle), radius * std::sin(angle)), button);
        QApplication::sendEvent(&widget, &event);
        QApplication::processEvents();
    };
    send(QEvent::MouseButtonPress, 0, Qt::LeftButton);
    std::vector<double> times;
    for (int i = 1; i <= kMoves; ++i)
        times.push_back(benchClockMs([&] { send(QEvent::MouseMove, i, Qt::NoButton); }));
    send(QEvent::MouseButtonRelease, kMoves, Qt::LeftButton);
    const Spread spread = spreadOf(times);
    char name[64], note[64];
    std::snprintf(name, sizeof name, "brush %d by mouse, 3 viewers%s", pen, masks ? ", masked" : "");
    std::snprintf(note, sizeof note, "99 of 100 within %.2f ms", spread.worst);
    benchPrint({name, 1, spread.median, "-", 0, 0, note});
    gi.clearSelection(true, false);
    gi.setMaskingEnabled(false);
}

void benchWindow(const BenchOptions& options)
{
    benchSetThreads(1);
    Session session(options);
    benchPrint({"first picture, editor made", 1, session.start(), "-", 0, 0, "one start"});
    const GiFrameBuffer* shown = session.gi().viewers[2]->getFrameBuffer();
    benchRequire(shown->memory && session.gi().viewers[2]->getWidget()->isVisible(), "nothing is shown.");

    std::vector<double> starts;
    for (int i = 0; i < kStarts; ++i) starts.push_back(session.start());
    benchPrint({"first picture, editor there", 1, spreadOf(starts).median, "-", 0, 0, "median of 7"});

    session.gi().getPanel()->setLayoutNumber(kFourViewers);
    QApplication::processEvents();
    GiQToolbox& toolbox = *session.gi().getToolbox();
    benchSteps("data slider, 3 viewers", [&](int i) {
        toolbox.qxRangeSlider->setValue(static_cast<float>(100 + i), static_cast<float>(3000 + i));
        QApplication::processEvents();
    });
    toolbox.wEnableMaskingCheckBox->click();
    benchSteps("masking slider, 3 viewers", [&](int i) {
        toolbox.wMaskingWindowSlider->setValue(static_cast<float>(500 + i), 4000);
        QApplication::processEvents();
    });
    toolbox.wEnableMaskingCheckBox->click();
    QWidget* widget = session.gi().viewers[2]->getWidget();
    benchSteps("next slice by key, XY", [&](int) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
        QApplication::sendEvent(widget, &press);
        QApplication::processEvents();
    });

    session.gi().setTool(kBrush);
    for (const int pen : {25, 200})
        for (const bool masks : {false, true}) benchStroke(session.gi(), *widget, pen, masks);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return benchMain(argc, argv, [](const BenchOptions& options) {
        hxRegisterHostClasses();
        benchWindow(options);
    });
}
