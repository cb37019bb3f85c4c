// Lasso: its panel.

#include "core/Gi.h"
#include "hx/HxMessage.h"
#include "mc/McMemoryException.h"
#include "tools/GiLasso.h"
#include "tools/giGuarded.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>

#include <initializer_list>

namespace {

constexpr int kSpareColumn = 4;

struct Choice
{
    const char* text;
    const char* name;
};

/// A row of radio buttons, the first one checked.
QButtonGroup* addChoices(QGridLayout* grid, int row, const char* label, std::initializer_list<Choice> choices)
{
    grid->addWidget(new QLabel(label), row, 0);
    auto* group = new QButtonGroup(grid->parentWidget());
    int column = 0;
    for (const Choice& choice : choices) {
        auto* button = new QRadioButton(choice.text);
        button->setObjectName(choice.name);
        button->setChecked(column == 0);
        group->addButton(button, column++);
        grid->addWidget(button, row, column);
    }
    return group;
}

} // namespace

int GiLasso::neuroTraceMode = 0;

void GiLasso::createWidget(QWidget* parent)
{
    parent->setObjectName("GiLasso");
    auto* grid = new QGridLayout(parent);
    QButtonGroup* shapes = addChoices(
        grid, 0, "2D Shape:",
        {{"Freehand", "wFreehandButton"}, {"Ellipse", "wEllipseButton"}, {"Rectangle", "wRectangleButton"}});
    QButtonGroup* modes =
        addChoices(grid, 1, "3D Mode:", {{"Inside", "wInsideButton"}, {"Outside", "wOutsideButton"}});
    ellipseButton = shapes->button(kEllipse);
    rectangleButton = shapes->button(kRectangle);
    outsideButton = modes->button(1);

    grid->addWidget(new QLabel("Options:"), 2, 0);
    autoTraceBox = new QCheckBox("Auto trace");
    autoTraceBox->setObjectName("wAutoTraceCheckBox");
    autoTraceBox->setToolTip("The outline clings to what the picture shows");
    traceEdgesBox = new QCheckBox("Trace edges");
    traceEdgesBox->setObjectName("wTraceEdgesCheckBox");
    traceEdgesBox->setChecked(!neuroTraceMode);
    traceEdgesBox->setToolTip("Clings to edges; else to bright lines");
    grid->addWidget(autoTraceBox, 2, 1);
    grid->addWidget(traceEdgesBox, 2, 2, 1, 2); // its text is wider than the shapes above
    grid->setColumnStretch(kSpareColumn, 10);
    grid->setRowStretch(grid->rowCount(), 1);
    enableBoxes();

    connect(autoTraceBox, &QCheckBox::toggled, this, giGuardedSlot(this, &GiLasso::setAutoTrace));
    connect(traceEdgesBox, &QCheckBox::toggled, this, giGuardedSlot(this, &GiLasso::setAutoTrace));
    connect(shapes, &QButtonGroup::buttonClicked, this, giGuardedSlot(this, &GiLasso::setDrawingMode));
    connect(modes, &QButtonGroup::buttonClicked, this, giGuardedSlot(this, &GiLasso::setInsideOutMode));
}

void GiLasso::adaptToForeignWindow()
{
    if (traceEdgesBox) traceEdgesBox->hide();
}

bool GiLasso::traceEdges() const
{
    return traceEdgesBox ? traceEdgesBox->isChecked() : !neuroTraceMode;
}

void GiLasso::enableBoxes()
{
    if (!autoTraceBox || !traceEdgesBox) return;
    autoTraceBox->setEnabled(drawingMode == kFreehand);
    traceEdgesBox->setEnabled(drawingMode == kFreehand && autoTraceBox->isChecked());
}

void GiLasso::setAutoTrace(bool on)
{
    keepUpWithView();
    autoTrace = autoTraceBox ? autoTraceBox->isChecked() : on;
    enableBoxes();
    costSlice = -1;
    GiViewer* viewer = gi->getCurrentViewer();
    const bool wasTracing = isTracing();
    try {
        if (wasTracing)
            goOnWithTrace();
        else if (autoTrace && viewer)
            initAutoTracing(*viewer);
    } catch (const McMemoryException& exception) { // Qt's event loop takes none
        HxMessage::getTheMsg()->memError(exception.size());
        autoTrace = false;
        if (wasTracing) goOnWithTrace();
        if (autoTraceBox) autoTraceBox->setChecked(false); // comes here again, with nothing to do
    }
}

void GiLasso::setDrawingMode(QAbstractButton* button)
{
    drawingMode = button == ellipseButton ? kEllipse : button == rectangleButton ? kRectangle : kFreehand;
    enableBoxes();
}

void GiLasso::setInsideOutMode(QAbstractButton* button)
{
    insideOutMode = button == outsideButton;
}
