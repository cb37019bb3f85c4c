#include "app/hxMakePortWidget.h"

#include "hx/HxConnection.h"
#include "hx/HxObjectPool.h"
#include "hx/HxPortDoIt.h"
#include "hx/HxPortFloatTextN.h"
#include "hx/HxPortIntTextN.h"
#include "hx/HxPortMultiMenu.h"
#include "hx/HxPortRadioBox.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDoubleValidator>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>

namespace {

using Changed = std::function<void(bool compute)>;

/// Runs now, and whenever the port changes as long as the widget lives.
template <class Refresh>
void follow(HxPort& port, QWidget* widget, Refresh refresh)
{
    QObject::connect(&port, &HxPort::changed, widget, refresh);
    refresh();
}

QWidget* makeMenu(HxPortMultiMenu& port, QWidget* parent, const Changed& changed)
{
    auto* box = new QComboBox(parent);
    follow(port, box, [box, &port] {
        const QSignalBlocker quiet(box);
        box->clear();
        for (int i = 0; i < port.getNum(); ++i) box->addItem(QString::fromUtf8(port.getLabel(i)));
        box->setCurrentIndex(port.getIndex());
    });
    QObject::connect(box, &QComboBox::activated, box, [&port, changed](int index) {
        port.setIndex(index);
        changed(false);
    });
    return box;
}

QWidget* makeRadioBox(HxPortRadioBox& port, QWidget* parent, const Changed& changed)
{
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* group = new QButtonGroup(row);
    for (int i = 0; i < port.getNum(); ++i) {
        auto* button = new QRadioButton(QString::fromUtf8(port.getLabel(i)), row);
        layout->addWidget(button);
        group->addButton(button, i);
    }
    layout->addStretch();
    follow(port, row, [group, &port] {
        if (QAbstractButton* button = group->button(port.getIndex())) button->setChecked(true);
    });
    QObject::connect(group, &QButtonGroup::idClicked, row, [&port, changed](int index) {
        port.setIndex(index);
        changed(false);
    });
    return row;
}

QWidget* makeInt(HxPortIntTextN& port, QWidget* parent, const Changed& changed)
{
    auto* box = new QSpinBox(parent);
    box->setKeyboardTracking(false);
    follow(port, box, [box, &port] {
        const QSignalBlocker quiet(box);
        box->setRange(port.getMin(), port.getMax());
        box->setValue(port.getValue());
    });
    QObject::connect(box, &QSpinBox::valueChanged, box, [&port, changed](int value) {
        port.setValue(value);
        changed(false);
    });
    return box;
}

QWidget* makeFloat(HxPortFloatTextN& port, QWidget* parent, const Changed& changed)
{
    // A line rather than a spin box: the range may be that of all floats.
    auto* line = new QLineEdit(parent);
    auto* validator = new QDoubleValidator(line);
    validator->setLocale(QLocale::c());
    line->setValidator(validator);
    follow(port, line, [line, &port] {
        line->setText(QString::number(static_cast<double>(port.getValue()), 'g', 7));
        line->setModified(false);
    });
    QObject::connect(line, &QLineEdit::editingFinished, line, [line, &port, changed] {
        if (!line->isModified()) return;
        line->setModified(false);
        port.setValue(line->text().toFloat());
        changed(false);
    });
    return line;
}

QWidget* makeButtons(HxPortButtonList& port, QWidget* parent, const Changed& changed)
{
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < port.getNum(); ++i) {
        auto* button = new QPushButton(QString::fromUtf8(port.getLabel(i)), row);
        layout->addWidget(button);
        QObject::connect(button, &QPushButton::clicked, row, [&port, changed, i] {
            port.hit(i);
            changed(true);
        });
    }
    layout->addStretch();
    return row;
}

/// The objects that the connection takes; the box is filled when somebody looks.
QWidget* makeConnection(HxConnection& port, QWidget* parent, const Changed& changed)
{
    auto* box = new QComboBox(parent);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    // The pool speaks to the box until that is deleted, which may be after the port.
    const auto refresh = [box, alive = QPointer<HxConnection>(&port)] {
        if (!alive) return;
        const QSignalBlocker quiet(box);
        box->clear();
        const HxObjectPool* pool = HxObjectPool::getThePool();
        for (int i = 0; i < pool->size(); ++i)
            if (alive->accepts(pool->object(i)))
                box->addItem(QString::fromUtf8(pool->object(i)->getLabel()),
                             QVariant::fromValue<void*>(pool->object(i)));
        box->addItem(QObject::tr("<None>"), QVariant::fromValue<void*>(nullptr));
        box->setCurrentIndex(box->findData(QVariant::fromValue<void*>(alive->source())));
    };
    follow(port, box, refresh);
    const HxObjectPool* pool = HxObjectPool::getThePool();
    QObject::connect(pool, &HxObjectPool::objectAdded, box, refresh);
    QObject::connect(pool, &HxObjectPool::objectRemoved, box, refresh);
    QObject::connect(pool, &HxObjectPool::objectRenamed, box, refresh);
    QObject::connect(box, &QComboBox::activated, box, [box, &port, changed](int index) {
        port.connect(static_cast<HxObject*>(box->itemData(index).value<void*>()));
        changed(false);
    });
    return box;
}

} // namespace

QWidget* hxMakePortWidget(HxPort& port, QWidget* parent, const std::function<void(bool compute)>& changed)
{
    QWidget* widget = nullptr;
    if (auto* menu = dynamic_cast<HxPortMultiMenu*>(&port))
        widget = makeMenu(*menu, parent, changed);
    else if (auto* radio = dynamic_cast<HxPortRadioBox*>(&port))
        widget = makeRadioBox(*radio, parent, changed);
    else if (auto* whole = dynamic_cast<HxPortIntTextN*>(&port))
        widget = makeInt(*whole, parent, changed);
    else if (auto* real = dynamic_cast<HxPortFloatTextN*>(&port))
        widget = makeFloat(*real, parent, changed);
    else if (auto* buttons = dynamic_cast<HxPortButtonList*>(&port))
        widget = makeButtons(*buttons, parent, changed);
    else if (auto* connection = dynamic_cast<HxConnection*>(&port))
        widget = makeConnection(*connection, parent, changed);
    if (widget) widget->setObjectName(port.getName());
    return widget;
}
