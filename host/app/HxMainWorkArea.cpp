#include "app/HxMainWorkArea.h"

#include "hx/HxResource.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kProgressSteps = 1000;

} // namespace

HxMainWorkArea::HxMainWorkArea(QWidget* parent)
    : QWidget(parent),
      bar(new QProgressBar(this)),
      stop(new QToolButton(this)),
      apply(new QPushButton(tr("Apply"), this)),
      automatic(new QPushButton(tr("Auto"), this))
{
    setObjectName("workArea");
    bar->setObjectName("progress");
    bar->setRange(0, kProgressSteps);
    bar->setFormat(QString());
    bar->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // a long text must not widen the column
    stop->setObjectName("stop");
    stop->setIcon(HxResource::readIcon("HxStop.png"));
    stop->setText(tr("Stop"));
    stop->setToolTip(tr("Stop what is running (Escape)"));
    stop->setEnabled(false);
    stop->setFocusPolicy(Qt::NoFocus);
    apply->setObjectName("mainButton");
    automatic->setObjectName("neighbourButton");
    automatic->setCheckable(true);
    automatic->setToolTip(tr("Compute whenever a value changes"));

    auto* upper = new QHBoxLayout;
    upper->addWidget(bar, 1);
    upper->addWidget(stop);
    auto* lower = new QHBoxLayout;
    lower->addWidget(automatic);
    lower->addWidget(apply, 1);
    auto* column = new QVBoxLayout(this);
    column->addLayout(upper);
    column->addLayout(lower);

    connect(stop, &QToolButton::clicked, this, [this] { stopPressed = true; });
}

HxMainWorkArea::~HxMainWorkArea()
{
    if (busy) QApplication::restoreOverrideCursor();
}

QAbstractButton* HxMainWorkArea::mainButton()
{
    return apply;
}

QAbstractButton* HxMainWorkArea::neighbourButton()
{
    return automatic;
}

void HxMainWorkArea::showBusy(const char* text)
{
    stopPressed = false;
    busy = true;
    QApplication::setOverrideCursor(text ? Qt::BusyCursor : Qt::WaitCursor);
    if (!text) return;
    stop->setEnabled(true);
    showText(text);
}

void HxMainWorkArea::showIdle()
{
    busy = false;
    QApplication::restoreOverrideCursor();
    stop->setEnabled(false);
    bar->setFormat(QString());
    bar->setValue(0);

    droppedButtons = {};
    droppedKeys.clear();
    for (Held& each : held)
        if (each.receiver) QCoreApplication::postEvent(each.receiver, each.event.release());
    held.clear();
}

void HxMainWorkArea::showText(const char* text)
{
    // A percent sign of the text is none of the bar's own signs.
    bar->setFormat(QString::fromUtf8(text).replace('%', QChar(0xFF05)) + "  %p%");
    // An operation that never polls shows at least its beginning.
    if (isVisible()) bar->repaint();
}

void HxMainWorkArea::showProgress(double fraction)
{
    bar->setValue(static_cast<int>(fraction * kProgressSteps));
}

bool HxMainWorkArea::poll()
{
    if (!isVisible()) return stopPressed;
    qApp->installEventFilter(this);
    QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
    qApp->removeEventFilter(this);
    return stopPressed;
}

bool HxMainWorkArea::eventFilter(QObject* receiver, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Timer:
        // Those of windows paint; all others come again when the busy phase has ended.
        return !receiver->isWindowType();
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return holdBack(receiver, event);
    case QEvent::Wheel:
    case QEvent::NativeGesture:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::Close:
    case QEvent::Quit:
        return true;
    default:
        return false;
    }
}

/// Returns true for an event that is not to arrive now.
bool HxMainWorkArea::holdBack(QObject* receiver, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && stop->isEnabled()) stopPressed = true;
        droppedKeys.insert(static_cast<QKeyEvent*>(event)->key());
        return true;
    case QEvent::KeyRelease:
        if (!droppedKeys.erase(static_cast<QKeyEvent*>(event)->key())) hold(receiver, *event);
        return true;
    default:
        break;
    }

    if (isForStopButton(*event)) return false;
    const auto& mouse = static_cast<const QMouseEvent&>(*event);
    if (mouse.type() == QEvent::MouseButtonRelease) {
        if (!(droppedButtons & mouse.button())) hold(receiver, mouse);
        droppedButtons &= ~Qt::MouseButtons(mouse.button());
    } else if (mouse.type() != QEvent::MouseMove) {
        droppedButtons |= mouse.button();
    }
    return true;
}

bool HxMainWorkArea::isForStopButton(const QEvent& event) const
{
    const QPoint place = static_cast<const QMouseEvent&>(event).globalPosition().toPoint();
    return stop->isDown() || stop->rect().contains(stop->mapFromGlobal(place));
}

void HxMainWorkArea::hold(QObject* receiver, const QEvent& event)
{
    held.push_back({receiver, std::unique_ptr<QEvent>(event.clone())});
}
