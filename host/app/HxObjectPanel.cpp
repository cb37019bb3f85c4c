#include "app/HxObjectPanel.h"

#include "app/hxMakePortWidget.h"
#include "hx/HxField3.h"
#include "hx/HxLattice3.h"
#include "hx/HxPort.h"
#include "mc/McHandle.h"

#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

HxObjectPanel::HxObjectPanel(QWidget* parent) : QWidget(parent), column(new QVBoxLayout(this))
{
    setObjectName("objectPanel");
    column->addStretch();
}

void HxObjectPanel::show(HxObject* object)
{
    clear();
    shown = object;
    if (!object) return;

    content = new QWidget(this);
    auto* form = new QFormLayout(content);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    auto* title = new QLabel(QString::fromUtf8(object->getLabel()), content);
    title->setTextFormat(Qt::PlainText);
    title->setWordWrap(true);
    QFont font = title->font();
    font.setBold(true);
    title->setFont(font);
    form->addRow(title);
    if (auto* facts = dynamic_cast<HxData*>(object)) addFacts(*form, *facts);
    for (int i = 0; i < object->numPorts(); ++i) addPort(*form, *object->port(i));
    column->insertWidget(0, content);
    content->show();
}

void HxObjectPanel::clear()
{
    if (shown) shown->disconnect(this);
    // Later: the press of a button of the panel may be what led here.
    if (content) {
        content->hide();
        content->deleteLater();
    }
    content = nullptr;
}

void HxObjectPanel::addFacts(QFormLayout& form, HxData& source)
{
    const auto add = [&](const QString& name, const QString& value) {
        auto* text = new QLabel(value, content);
        text->setTextFormat(Qt::PlainText);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        text->setWordWrap(true);
        form.addRow(name, text);
        return text;
    };
    if (const auto* lattice = mcinterface_cast<HxLattice3>(&source)) {
        const unsigned long* n = lattice->dims();
        const McVec3f size = lattice->coords()->voxelSize();
        add(tr("Voxels:"), QString("%1 x %2 x %3").arg(n[0]).arg(n[1]).arg(n[2]));
        add(tr("Voxel size:"), QString("%1 x %2 x %3")
                                   .arg(static_cast<double>(size.x))
                                   .arg(static_cast<double>(size.y))
                                   .arg(static_cast<double>(size.z)));
    }
    if (dynamic_cast<HxField3*>(&source)) {
        range = add(tr("Values:"), QString());
        showRange();
        connect(&source, &HxData::dataObjectTouched, this, &HxObjectPanel::showRange);
    }
    if (source.hasFile()) {
        const QString path = QString::fromUtf8(source.getFilename());
        add(tr("File:"), path.section('/', -1))->setToolTip(path);
    }
}

/// Finding the range may mean reading all values, so nobody does it for a panel that is not seen.
void HxObjectPanel::showRange()
{
    auto* field = dynamic_cast<HxField3*>(shown.data());
    if (!range || !field || !isVisible()) return;
    double min, max;
    field->getRange(min, max);
    range->setText(tr("%1 to %2").arg(min).arg(max));
}

void HxObjectPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    showRange();
}

void HxObjectPanel::addPort(QFormLayout& form, HxPort& port)
{
    QWidget* widget = hxMakePortWidget(port, content, [this](bool compute) {
        const McHandle<HxObject> object(shown.data());
        if (compute && object) object->fire();
        emit valueChanged();
    });
    if (!widget) return;
    auto* label = new QLabel(QString::fromUtf8(port.getLabel()) + ":", content);
    form.addRow(label, widget);
    const auto followVisibility = [&port, label, widget] {
        label->setVisible(port.isVisible());
        widget->setVisible(port.isVisible());
    };
    connect(&port, &HxPort::changed, widget, followVisibility);
    followVisibility();
}
