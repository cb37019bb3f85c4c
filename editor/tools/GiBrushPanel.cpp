// Brush: its panel.

#include "tools/GiBrush.h"
#include "tools/giGuarded.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>

namespace {

constexpr int kLargestSlid = 200, kLargestTyped = 512;
constexpr int kFieldWidth = 50;

template <class Widget>
Widget* named(Widget* widget, const char* name)
{
    widget->setObjectName(name);
    return widget;
}

/// A row of the panel: its label, and its widgets side by side.
QHBoxLayout* addRow(QGridLayout* grid, const char* label)
{
    const int row = grid->rowCount();
    auto* widgets = new QHBoxLayout;
    grid->addWidget(new QLabel(label), row, 0);
    grid->addLayout(widgets, row, 1);
    return widgets;
}

} // namespace

void GiBrush::createWidget(QWidget* parent)
{
    parent->setObjectName("GiBrush");
    auto* grid = new QGridLayout(parent);

    auto* circle = named(new QRadioButton("Circle"), "wCircleButton");
    auto* square = named(new QRadioButton("Square"), "wSquareButton");
    (squareBrush ? square : circle)->setChecked(true);
    QHBoxLayout* modes = addRow(grid, "Mode:");
    modes->addWidget(circle);
    modes->addWidget(square);
    modes->addStretch();

    auto* hide = named(new QCheckBox("Hide cursor"), "wHideBrushCheckBox");
    hide->setChecked(autoHide);
    hide->setToolTip("No outline of the brush while it paints");
    currentMaterialBox = named(new QCheckBox("Current material only"), "wCurrentMaterialCheckBox");
    QHBoxLayout* options = addRow(grid, "Options:");
    options->addWidget(hide);
    options->addWidget(currentMaterialBox);
    options->addStretch();

    auto* slider = named(new QSlider(Qt::Horizontal), "wSizeSlider");
    slider->setRange(1, kLargestSlid);
    slider->setValue(brushWidth);
    auto* field = named(new QSpinBox, "wSizeSpinBox");
    field->setRange(1, kLargestTyped);
    field->setMinimumWidth(kFieldWidth);
    field->setValue(brushWidth);
    QHBoxLayout* sizes = addRow(grid, "Size:");
    sizes->addWidget(slider, 1);
    sizes->addWidget(field);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(grid->rowCount(), 1);

    connect(circle, &QRadioButton::clicked, this, giGuardedSlot(this, &GiBrush::slotCircularBrush));
    connect(square, &QRadioButton::clicked, this, giGuardedSlot(this, &GiBrush::slotSquareBrush));
    connect(hide, &QCheckBox::stateChanged, this, giGuardedSlot(this, &GiBrush::slotHideBrush));
    // kept: the field does not move the slider, which would cut typed sizes to its own range.
    connect(slider, &QSlider::valueChanged, field, &QSpinBox::setValue);
    connect(field, &QSpinBox::valueChanged, this, giGuardedSlot(this, &GiBrush::slotBrushSizeChanged));
}

bool GiBrush::currentMaterialOnly() const
{
    return currentMaterialBox && currentMaterialBox->isChecked();
}

void GiBrush::slotBrushSizeChanged(int size)
{
    setBrushSize(size);
}

void GiBrush::slotCircularBrush()
{
    squareBrush = false;
}

void GiBrush::slotSquareBrush()
{
    squareBrush = true;
}

void GiBrush::slotHideBrush(int state)
{
    autoHide = state == Qt::Checked;
}
