#include "app/HxWorkspace.h"

#include "app/HxMain.h"
#include "app/HxObjectMenu.h"
#include "app/HxObjectPanel.h"
#include "hx/HxColormap.h"
#include "hx/HxCompModule.h"
#include "hx/HxLabelField3.h"
#include "hx/HxLineSet.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxResource.h"
#include "hx/HxSpreadSheet.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kObjectRole = Qt::UserRole;
constexpr int kListHeight = 320; // of the first layout; the two keep their proportion
constexpr int kDetailsHeight = 280;

HxObject* objectOf(const QListWidgetItem* item)
{
    return item ? static_cast<HxObject*>(item->data(kObjectRole).value<void*>()) : nullptr;
}

const char* iconOf(HxObject* object)
{
    if (dynamic_cast<HxLabelField3*>(object)) return "HxLabels.png";
    if (dynamic_cast<HxField3*>(object)) return "HxImage.png";
    if (dynamic_cast<HxColormap*>(object)) return "HxColormap.png";
    if (dynamic_cast<HxLineSet*>(object)) return "HxLines.png";
    if (dynamic_cast<HxSpreadSheet*>(object)) return "HxTable.png";
    return "HxModule.png";
}

QToolButton* makeButton(QWidget* parent, const char* name, const char* icon, const QString& text,
                        const QString& explanation)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setIcon(HxResource::readIcon(icon));
    button->setText(text);
    button->setToolTip(explanation);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setEnabled(false);
    return button;
}

} // namespace

HxWorkspace::HxWorkspace(QWidget* parent)
    : QWidget(parent),
      list(new QListWidget(this)),
      edit(makeButton(this, "editObject", "HxEdit.png", tr("Edit Labels"), tr("Edit the selected labels"))),
      save(makeButton(this, "saveObject", "HxSave.png", tr("Save"), tr("Save the selected object"))),
      drop(makeButton(this, "removeObject", "HxRemove.png", tr("Remove"), tr("Remove the selected object"))),
      details(new HxObjectPanel(this))
{
    setObjectName("workspace");
    list->setObjectName("objectList");
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    list->setEditTriggers(QAbstractItemView::EditKeyPressed);
    list->installEventFilter(this);
    list->viewport()->installEventFilter(this);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(edit);
    buttons->addWidget(save);
    buttons->addWidget(drop);
    buttons->addStretch();

    auto* upper = new QWidget(this);
    auto* upperColumn = new QVBoxLayout(upper);
    upperColumn->addWidget(new QLabel(tr("Objects"), upper));
    upperColumn->addWidget(list, 1);
    upperColumn->addLayout(buttons);

    auto* lower = new QScrollArea(this);
    lower->setWidgetResizable(true);
    lower->setFrameShape(QFrame::NoFrame);
    lower->setWidget(details);

    auto* halves = new QSplitter(Qt::Vertical, this);
    halves->addWidget(upper);
    halves->addWidget(lower);
    halves->setChildrenCollapsible(false);
    halves->setSizes({kListHeight, kDetailsHeight});
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(halves);

    connect(list, &QListWidget::currentItemChanged, this, &HxWorkspace::selectionHasChanged);
    connect(list, &QListWidget::itemChanged, this, &HxWorkspace::applyName);
    connect(list, &QListWidget::itemDoubleClicked, this, &HxWorkspace::editOrShow);
    connect(list, &QListWidget::customContextMenuRequested, this, &HxWorkspace::showMenu);
    connect(edit, &QToolButton::clicked, this, [this] { hxEditObject(selected()); });
    connect(save, &QToolButton::clicked, this,
            [this] { HxMain::getTheMain()->saveData(dynamic_cast<HxData*>(selected())); });
    connect(drop, &QToolButton::clicked, this, [this] { hxRemoveByPerson(selected()); });
    connect(details, &HxObjectPanel::valueChanged, this, &HxWorkspace::valueChanged);

    HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i) add(pool->object(i));
    connect(pool->notifier(), &HxObjectPool::objectAdded, this, &HxWorkspace::add);
    connect(pool->notifier(), &HxObjectPool::objectRemoved, this, &HxWorkspace::remove);
    connect(pool->notifier(), &HxObjectPool::iconVisibilityChanged, this, &HxWorkspace::followIcon);
    connect(pool->notifier(), &HxObjectPool::objectRenamed, this, [this](HxObject* object) {
        const QSignalBlocker quiet(list);
        if (QListWidgetItem* item = itemOf(object)) item->setText(QString::fromUtf8(object->getLabel()));
        if (object == selected()) details->show(object);
    });
}

QListWidgetItem* HxWorkspace::itemOf(const HxObject* object) const
{
    for (int row = 0; row < list->count(); ++row)
        if (objectOf(list->item(row)) == object) return list->item(row);
    return nullptr;
}

HxObject* HxWorkspace::selected() const
{
    return objectOf(list->currentItem());
}

void HxWorkspace::select(HxObject* object)
{
    list->setCurrentItem(itemOf(object));
}

void HxWorkspace::rename(HxObject* object)
{
    if (QListWidgetItem* item = itemOf(object)) list->editItem(item);
}

void HxWorkspace::fireSelected()
{
    const McHandle<HxObject> module(dynamic_cast<HxCompModule*>(selected()));
    if (module) module->fire();
}

void HxWorkspace::add(HxObject* object)
{
    if (object->isIconHidden() || itemOf(object)) return;
    auto* item =
        new QListWidgetItem(HxResource::readIcon(iconOf(object)), QString::fromUtf8(object->getLabel()));
    item->setData(kObjectRole, QVariant::fromValue<void*>(object));
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    {
        const QSignalBlocker quiet(list);
        list->addItem(item);
    }
    if (auto* markable = dynamic_cast<HxData*>(object)) {
        connect(markable, &HxData::modifiedChanged, this, [this, markable] { showMark(markable); });
        showMark(markable);
    }
    if (!list->currentItem()) list->setCurrentItem(item);
}

void HxWorkspace::remove(HxObject* object)
{
    object->disconnect(this);
    if (details->object() == object) details->show(nullptr);
    delete itemOf(object);
}

void HxWorkspace::followIcon(HxObject* object)
{
    if (object->isIconHidden())
        remove(object);
    else
        add(object);
}

void HxWorkspace::showMark(HxObject* object)
{
    QListWidgetItem* item = itemOf(object);
    if (!item) return;
    const QSignalBlocker quiet(list);
    const bool modified = static_cast<HxData*>(object)->isModified();
    QFont font = list->font();
    font.setBold(modified);
    item->setFont(font);
    item->setToolTip(modified ? tr("Changed since it was saved") : QString());
    list->viewport()->update(); // the blocked signals would have asked for it
}

void HxWorkspace::applyName(QListWidgetItem* item)
{
    HxObject* object = objectOf(item);
    const QString name = item->text().trimmed();
    if (name != QString::fromUtf8(object->getLabel()) && !name.isEmpty()) object->setLabel(name.toUtf8());
    // The name that was taken: another object may have had the wanted one.
    const QSignalBlocker quiet(list);
    item->setText(QString::fromUtf8(object->getLabel()));
}

void HxWorkspace::showMenu(const QPoint& place)
{
    HxObject* object = objectOf(list->itemAt(place));
    if (!object) return;
    select(object);
    QMenu menu(this);
    hxFillObjectMenu(menu, object, *this);
    menu.exec(list->viewport()->mapToGlobal(place));
}

void HxWorkspace::editOrShow(QListWidgetItem* item)
{
    hxEditObject(objectOf(item));
}

bool HxWorkspace::eventFilter(QObject* receiver, QEvent* event)
{
    if (receiver == list && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete && selected()) {
        hxRemoveByPerson(selected());
        return true;
    }
    // Qt takes the mark off but keeps the item current.
    if (receiver == list->viewport() && event->type() == QEvent::MouseButtonPress &&
        !list->itemAt(static_cast<QMouseEvent*>(event)->position().toPoint()))
        list->setCurrentItem(nullptr);
    return QWidget::eventFilter(receiver, event);
}

void HxWorkspace::selectionHasChanged()
{
    HxObject* object = selected();
    edit->setEnabled(hxCanEdit(object));
    save->setEnabled(dynamic_cast<HxData*>(object));
    drop->setEnabled(object);
    details->show(object);
    emit selectionChanged(object);
}
