#include "app/QxViewerPanel.h"

#include "app/HxController.h"
#include "hx/HxResource.h"
#include "hx/HxViewerBase.h"
#include "hx/HxViewerTool.h"

#include <QActionGroup>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <span>

namespace {

constexpr int kSingle = 1;
constexpr int kTwoByTwo = 4;
constexpr int kLargeAndTwo = 5;
constexpr int kFreePlace = 3; // lower right, after the three that go by name
constexpr int kFrameWidth = 2;

constexpr const char* kPlaceNames[] = {"A0_UpperLeft", "A1_UpperRight", "A2_LowerLeft"};

/// A tool of the panel that has nothing to do for a viewer that does not bring its own replacement.
class PanelTool : public HxViewerTriggerTool
{
public:
    using HxViewerTriggerTool::HxViewerTriggerTool;
    bool supportsViewer(HxViewerBase*) override { return false; }
    void onTrigger(HxViewerBase*) override {}
};

/// Moves what a viewer shows; without a replacement a viewer has nothing that could be moved.
class TranslateTool : public HxViewerModalTool
{
public:
    TranslateTool() : HxViewerModalTool("Translate") {}
    bool supportsViewer(HxViewerBase*) override { return false; }
};

/// 0 to 2, or kFreePlace for a widget that bears none of the names.
int placeOf(const QWidget* widget)
{
    const auto* end = std::end(kPlaceNames);
    const auto* found = std::find(std::begin(kPlaceNames), end, widget->objectName());
    return static_cast<int>(found - std::begin(kPlaceNames));
}

} // namespace

/// The place of one viewer, with a frame that marks the active one.
class QxViewerPanel::Place : public QWidget
{
public:
    explicit Place(QWidget* parent) : QWidget(parent)
    {
        auto* inside = new QVBoxLayout(this);
        inside->setContentsMargins(kFrameWidth, kFrameWidth, kFrameWidth, kFrameWidth);
    }

    void setMarked(bool on)
    {
        if (marked == on) return;
        marked = on;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Mid));
        if (!marked) return;
        const QRect inner = rect().adjusted(kFrameWidth, kFrameWidth, -kFrameWidth, -kFrameWidth);
        painter.setClipRegion(QRegion(rect()) - inner);
        painter.fillRect(rect(), palette().color(QPalette::Highlight));
    }

private:
    bool marked = false;
};

QxViewerPanel::QxViewerPanel(QWidget* parent) : QWidget(parent)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    bar = new QToolBar(this);
    bar->setObjectName("viewerTools");
    column->addWidget(bar);
    makeTools();
    makeLayoutChoice();
    makeGrid();
    column->addLayout(grid, 1);
    reconfigure();
}

QxViewerPanel::~QxViewerPanel()
{
    // The widgets belong to their viewers, which may live on.
    for (int i = 0; i < numViewers(); ++i)
        if (QWidget* widget = viewer(i)->getWidget(); widget && isAncestorOf(widget)) {
            widget->disconnect(this);
            widget->setParent(nullptr);
        }
}

QxViewerPanel* QxViewerPanel::getThePanel()
{
    return HxController::panel(0);
}

void QxViewerPanel::makeTools()
{
    addTool(new TranslateTool, "HxTranslate.png", tr("Move"), tr("Move the picture with the mouse"));
    bar->addSeparator();
    addTool(new PanelTool("ViewYZ"), "HxViewYZ.png", tr("YZ"), tr("Show YZ slices (sagittal)"));
    addTool(new PanelTool("ViewXZ"), "HxViewXZ.png", tr("XZ"), tr("Show XZ slices (coronal)"));
    addTool(new PanelTool("ViewXY"), "HxViewXY.png", tr("XY"), tr("Show XY slices (axial)"));
    bar->addSeparator();
    addTool(new PanelTool("Home"), "HxHome.png", tr("Home"), tr("Back to the first view"));
    bar->addSeparator();
}

void QxViewerPanel::addTool(HxViewerTool* tool, const char* icon, const QString& text,
                            const QString& explanation)
{
    tool->setIconFile(icon);
    registerTool(tool);
    QAction* action = bar->addAction(HxResource::readIcon(icon), text, this, [this, tool] {
        pressTool(tool);
        updateTools();
    });
    action->setObjectName(tool->getName());
    action->setToolTip(explanation);
    buttons.push_back({tool, action});
}

void QxViewerPanel::makeLayoutChoice()
{
    struct Choice
    {
        int number;
        const char* icon;
        const char* text;
        const char* explanation;
    };
    static constexpr Choice kChoices[] = {
        {kSingle, "HxLayout1.png", QT_TR_NOOP("One"), QT_TR_NOOP("Show the active viewer alone")},
        {kTwoByTwo, "HxLayout4.png", QT_TR_NOOP("Four"), QT_TR_NOOP("Show four viewers")},
        {kLargeAndTwo, "HxLayout5.png", QT_TR_NOOP("Three"),
         QT_TR_NOOP("Show a large viewer beside two small ones")},
    };
    layoutChoice = new QActionGroup(this);
    for (const Choice& choice : kChoices) {
        QAction* action = bar->addAction(HxResource::readIcon(choice.icon), tr(choice.text));
        action->setObjectName(QString("Layout%1").arg(choice.number));
        action->setToolTip(tr(choice.explanation));
        action->setCheckable(true);
        action->setChecked(choice.number == layout);
        action->setData(choice.number);
        layoutChoice->addAction(action);
    }
    connect(layoutChoice, &QActionGroup::triggered, this,
            [this](QAction* action) { setLayoutNumber(action->data().toInt()); });
}

void QxViewerPanel::makeGrid()
{
    grid = new QGridLayout;
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    for (Place*& place : places) place = new Place(this);
    hint = new QLabel(places[0]);
    hint->setObjectName("hint");
    hint->setAlignment(Qt::AlignCenter);
    hint->setWordWrap(true);
    hint->hide();
    places[0]->layout()->addWidget(hint);
}

void QxViewerPanel::setHint(const QString& text)
{
    if (text == hint->text()) return;
    hint->setText(text);
    relayout();
}

void QxViewerPanel::setLayoutNumber(int number)
{
    if (number == layout || (number != kSingle && number != kTwoByTwo && number != kLargeAndTwo)) return;
    layout = number;
    for (QAction* action : layoutChoice->actions()) action->setChecked(action->data().toInt() == number);
    relayout();
    emit layoutNumberChanged(number);
}

void QxViewerPanel::setActiveViewer(HxViewerBase* viewer)
{
    HxViewerPanelBase::setActiveViewer(viewer);
    if (layout == kSingle)
        relayout(); // another viewer may show now
    else
        updateFrames();
    updateTools();
}

void QxViewerPanel::setToolOverride(HxViewerBase* viewer, HxViewerTool* panelTool, HxViewerTool* replacement)
{
    HxViewerPanelBase::setToolOverride(viewer, panelTool, replacement);
    updateTools();
}

void QxViewerPanel::registerViewer(HxViewerBase* viewer)
{
    HxViewerPanelBase::registerViewer(viewer);
    relayout();
}

void QxViewerPanel::unregisterViewer(HxViewerBase* viewer)
{
    HxViewerPanelBase::unregisterViewer(viewer);
    std::replace(placed.begin(), placed.end(), viewer, static_cast<HxViewerBase*>(nullptr));
    if (QWidget* widget = viewer->getWidget(); widget && isAncestorOf(widget)) {
        widget->disconnect(this);
        widget->setParent(nullptr);
    }
    relayout();
}

bool QxViewerPanel::isViewerVisible(HxViewerBase* viewer) const
{
    return viewer && isRegistered(viewer) && std::find(placed.begin(), placed.end(), viewer) != placed.end();
}

bool QxViewerPanel::isRegistered(const HxViewerBase* sought) const
{
    for (int i = 0; i < numViewers(); ++i)
        if (viewer(i) == sought) return true;
    return false;
}

void QxViewerPanel::relayout()
{
    if (!relayoutHeld) reconfigure();
}

void QxViewerPanel::reconfigure()
{
    assignPlaces();
    arrangeGrid();
    for (int i = 0; i < numViewers(); ++i) {
        QWidget* widget = viewer(i)->getWidget();
        // A child of the panel that is in no place would lie across the others.
        if (widget && isAncestorOf(widget) && !isViewerVisible(viewer(i))) widget->hide();
    }
    for (int place = 0; place < kNumPlaces; ++place) fill(place, placed[static_cast<std::size_t>(place)]);
    hint->setVisible(numViewers() == 0 && !hint->text().isEmpty());
    updateFrames();
    updateTools();
}

void QxViewerPanel::assignPlaces()
{
    placed.fill(nullptr);
    if (layout == kSingle) {
        HxViewerBase* active = getActiveViewer();
        if (active && isRegistered(active) && active->getWidget()) placed[0] = active;
        return;
    }
    for (int i = 0; i < numViewers(); ++i) {
        QWidget* widget = viewer(i)->getWidget();
        if (!widget) continue;
        auto place = static_cast<std::size_t>(placeOf(widget));
        if (placed[place]) place = kFreePlace;
        if (place == kFreePlace && layout == kLargeAndTwo) continue;
        if (!placed[place]) placed[place] = viewer(i);
    }
}

void QxViewerPanel::arrangeGrid()
{
    struct Cell
    {
        int row, column, rows;
    };
    static constexpr Cell kCells4[] = {{0, 0, 1}, {0, 1, 1}, {1, 0, 1}, {1, 1, 1}};
    static constexpr Cell kCells5[] = {{0, 0, 2}, {0, 1, 1}, {1, 1, 1}};
    static constexpr Cell kCells1[] = {{0, 0, 2}};
    const std::span<const Cell> cells = layout == kTwoByTwo      ? std::span<const Cell>(kCells4)
                                        : layout == kLargeAndTwo ? std::span<const Cell>(kCells5)
                                                                 : std::span<const Cell>(kCells1);
    for (Place* place : places) grid->removeWidget(place);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const bool used = i < cells.size();
        if (used) grid->addWidget(places[i], cells[i].row, cells[i].column, cells[i].rows, 1);
        places[i]->setVisible(used);
    }
    grid->setColumnStretch(0, layout == kLargeAndTwo ? 2 : 1);
    grid->setColumnStretch(1, layout == kSingle ? 0 : 1);
    grid->setRowStretch(0, 1);
    grid->setRowStretch(1, layout == kSingle ? 0 : 1);
}

void QxViewerPanel::fill(int place, HxViewerBase* viewer)
{
    const auto index = static_cast<std::size_t>(place);
    QWidget* widget = viewer ? viewer->getWidget() : nullptr;
    QWidget* former = shown[index];
    // A widget that has already moved to another place is that one's business.
    if (former && former != widget && former->parentWidget() == places[index]) {
        places[index]->layout()->removeWidget(former);
        former->hide();
    }
    shown[index] = widget;
    if (!widget) return;
    if (widget->parentWidget() != places[index]) {
        places[index]->layout()->addWidget(widget);
        watch(widget);
    }
    widget->show();
}

void QxViewerPanel::watch(QWidget* widget)
{
    // Its viewer may be half gone when a widget dies, so nobody is asked anything before that is over.
    disconnect(widget, &QObject::destroyed, this, nullptr);
    connect(widget, &QObject::destroyed, this, &QxViewerPanel::relayout, Qt::QueuedConnection);
}

void QxViewerPanel::updateTools()
{
    HxViewerBase* active = getActiveViewer();
    for (const ToolButton& button : buttons) {
        HxViewerTool* tool = active ? effectiveTool(active, button.tool) : nullptr;
        button.action->setEnabled(tool && tool->supportsViewer(active));
    }
}

void QxViewerPanel::updateFrames()
{
    const HxViewerBase* active = getActiveViewer();
    // One viewer alone needs no mark.
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i]->setMarked(layout != kSingle && placed[i] && placed[i] == active);
}
