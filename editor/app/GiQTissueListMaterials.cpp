// What the material list does to the materials: adds, colors, renames, merges and deletes them.

#include "app/GiMaterialView3D.h"
#include "app/GiQ.h"
#include "app/GiQTissueList.h"
#include "app/GiQTissueListItem.h"
#include "core/GiAction.h"
#include "core/GiBusy.h"
#include "core/giRemoveLabel.h"
#include "display/GiLabelImage.h"
#include "hx/HxLabelField3.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxMatDatabase.h"
#include "hx/HxMessage.h"
#include "hx/HxSettingsMgr.h"
#include "qx/HxColorEditor.h"

#include <QPointer>
#include <QScopedValueRollback>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int kLastMadeName = 19999;
constexpr int kLastEntry = GiQTissueList::kMaxMaterials - 1;

QByteArray cleaned(const QByteArray& text)
{
    return QByteArray(HxParameter(text.constData()).getName());
}

/// Blanks only change; a name that has lost characters may surprise its author.
void tellNameRule(const QByteArray& text, const char* name)
{
    if (!text.isEmpty() && cleaned(text).size() == text.size()) return;
    HxMessage::getTheMsg()->printf(
        "A material is named by letters, digits and _-. alone: \"%s\" became \"%s\".", text.constData(),
        name);
}

// While a question stands on the screen, scripts still come in: whoever asks holds the row's item by a
// QPointer, and finds it empty if the row, its list or the data in it have gone meanwhile.
using Asked = QPointer<GiQTissueListItem>;

} // namespace

// ---- adding

QByteArray GiQTissueList::freshName() const
{
    QByteArray name;
    for (int k = bundle->nBundles() + 1; k <= kLastMadeName; ++k) {
        name = QByteArray("Material") + QByteArray::number(k);
        if (!bundle->bundle(name.constData(), 0)) break;
    }
    return name;
}

void GiQTissueList::fillNewMaterial(HxParamBundle& material, const char* name) const
{
    const HxParamBundle* known = HxMatDatabase::getTheDatabase()->materials()->bundle(name, 0);
    float rgb[3];
    if (known) {
        if (!known->findColor(rgb)) return; // its color will be the one that goes with the name
    } else {
        const McColor color = bestNewColor();
        rgb[0] = color.r;
        rgb[1] = color.g;
        rgb[2] = color.b;
    }
    material.set("Id", bundle->nBundles() + 1);
    material.setColor(rgb);
}

void GiQTissueList::addTissue(const char* name)
{
    if (!bundle) return;
    if (bundle->nBundles() >= kMaxMaterials) {
        HxMessage::getTheMsg()->Info("Maximum number of materials reached.");
        return;
    }
    // A text of which nothing is legal in a name is as good as none.
    const bool given = name && !cleaned(name).isEmpty();
    const QByteArray wanted = given ? QByteArray(name) : freshName();
    auto* material = new HxParamBundle(wanted.constData());
    fillNewMaterial(*material, wanted.constData());
    bundle->insert(material);
    if (name) tellNameRule(name, material->getName());
    appendTissue(material);
    updateColors();
    if (!gi) return;
    gi->touchData(0, 1, -1, -1, -1, -1);
    emit gi->materialAdded(gi->labelData);
}

McColor GiQTissueList::bestNewColor() const
{
    McDArray<McColor> present{McColor(0, 0, 0), McColor(1, 1, 1)};
    HxMatDatabase* database = HxMatDatabase::getTheDatabase();
    for (int i = 0; bundle && i < bundle->nBundles(); ++i) {
        const HxParamBundle* material = bundle->bundle(i);
        float rgb[3];
        if (material->findColor(rgb))
            present.append(McColor(rgb[0], rgb[1], rgb[2]));
        else
            present.append(database->getColor(material->getName()));
    }
    return McColor::mostDifferentColorRGB(present);
}

// ---- colors

void GiQTissueList::updateColors()
{
    if (gi && bundle) GiLabelImage::setColor(gi, *bundle);
}

void GiQTissueList::refresh3DColor(int row)
{
    // The 3D view takes a color over when it is told to use it.
    if (!view3D || !itemOf(row) || !itemOf(row)->isColor3DButtonChecked()) return;
    view3D->setUseLabelColor(row, false);
    view3D->setUseLabelColor(row, true);
}

void GiQTissueList::editColor(int row)
{
    if (!bundleOf(row) || !itemOf(row)) return;
    const Asked asked(itemOf(row));
    const QColor present = asked->getColor();
    HxColorEditor editor(this);
    editor.setAlphaEnabled(false);
    editor.setColor(present.redF(), present.greenF(), present.blueF(), -1);
    const bool isChosen = editor.exec();
    if (!asked) return;
    row = asked->row();
    if (isChosen) storeColor(row, editor.getColor());
    updateColors();
    refresh3DColor(row);
    if (gi) gi->redraw();
}

void GiQTissueList::storeColor(int row, const McColor& color)
{
    const float rgb[3] = {color.r, color.g, color.b};
    bundleOf(row)->setColor(rgb);
    itemOf(row)->setColor(QColor::fromRgbF(color.r, color.g, color.b));
    if (!gi || !gi->labelData) return;
    gi->labelData->touch(HxObject::kAllChanged);
    emit gi->colorChanged(gi->labelData, row);
}

// ---- names

void GiQTissueList::commitData(QWidget* nameEditor)
{
    const QScopedValueRollback<bool> running(committing, true);
    QTableWidget::commitData(nameEditor);
}

void GiQTissueList::notifyStop()
{
    if (committing) return; // the editor closes by itself as soon as its text is taken
    for (int row = 0; row < rowCount(); ++row)
        if (QTableWidgetItem* name = item(row, kName)) closePersistentEditor(name);
}

void GiQTissueList::nameChanged(int row, int column)
{
    HxParamBundle* material = bundleOf(row);
    if (column != kName || !material || !itemOf(row)) return;
    const QByteArray text = item(row, kName)->text().toLocal8Bit();
    McString longName;
    if (material->findString("LongName", longName)) {
        storeLongName(row, text);
        notifyStop();
        return;
    }
    const QByteArray former(material->getName());
    const QByteArray name = cleaned(text).isEmpty() ? cleaned(former) : cleaned(text);
    itemOf(row)->setName(QString::fromLocal8Bit(name));
    if (!text.isEmpty()) tellNameRule(text, name.constData()); // an empty one says: as it was
    if (!rename(row, name)) return;
    if (gi && former != material->getName()) gi->touchData(0, 1, -1, -1, -1, -1);
    notifyStop();
    updateColors();
    refresh3DColor(row);
    if (gi) gi->redraw();
}

void GiQTissueList::storeLongName(int row, const QByteArray& text)
{
    HxParamBundle* material = bundleOf(row);
    McString former;
    material->findString("LongName", former);
    if (text.isEmpty() || former == text.constData()) {
        itemOf(row)->setName(nameOf(row)); // a material without any name could not be told from others
        return;
    }
    material->set("LongName", text.constData());
    itemOf(row)->setName(nameOf(row)); // its tool tip, too
    if (gi) gi->touchData(0, 1, -1, -1, -1, -1);
}

/// Gives the material of a row a clean name. False if another has it: then the two were merged, or all is as
/// it was, and nothing is left to do.
bool GiQTissueList::rename(int row, const QByteArray& name)
{
    HxParamBundle* material = bundleOf(row);
    HxParamBundle* holder = bundle->bundle(name.constData(), 0);
    if (holder && holder != material) {
        // The row must not go while its editor is still busy with it: the question comes once that is closed.
        if (committing)
            QMetaObject::invokeMethod(
                itemOf(row), [this, item = itemOf(row)] { nameChanged(item->row(), kName); },
                Qt::QueuedConnection);
        else
            mergeInto(row, holder);
        return false;
    }
    if (!holder) {
        const HxParamBundle* known =
            HxMatDatabase::getTheDatabase()->materials()->bundle(name.constData(), 0);
        float rgb[3];
        if (known && known->findColor(rgb)) {
            material->setColor(rgb);
            itemOf(row)->setColor(QColor::fromRgbF(rgb[0], rgb[1], rgb[2]));
        }
    }
    material->setName(name.constData());
    itemOf(row)->setName(QString::fromLocal8Bit(material->getName()));
    return true;
}

void GiQTissueList::mergeInto(int row, HxParamBundle* other)
{
    const McString text = McString::printf("A material called \"%s\" already exists.\n\n"
                                           "Do you want to merge the two materials?",
                                           other->getName());
    const Asked asked(itemOf(row)), target(itemOf(bundle->index(other)));
    const bool merge = HxMessage::getTheMsg()->warning(text, "Yes", "No, cancel") == 0;
    if (!asked) return;
    const bool canMerge = merge && target;
    if (!canMerge) asked->setName(nameOf(asked->row()));
    notifyStop();
    if (canMerge) removeTissue(asked->row(), target->row());
}

// ---- deleting

void GiQTissueList::removeTissue()
{
    const int row = currentRow();
    if (row < 1 || !bundleOf(row)) return;
    const Asked asked(itemOf(row));
    const McString text =
        McString::printf("Are you sure you want to remove material \"%s\" ?\n\n"
                         "Any such voxels will be assigned to \"%s\".",
                         nameOf(row).toLocal8Bit().constData(), nameOf(0).toLocal8Bit().constData());
    if (HxMessage::getTheMsg()->question(text, "OK", "Cancel") == 0 && asked) removeTissue(asked->row(), 0);
}

/// The tables of all materials above a deleted one go down with their labels.
void GiQTissueList::moveTables(int from, int remaining)
{
    for (int k = from; k < kLastEntry; ++k) {
        gi->lockTissue(k, gi->locked[k + 1]);
        gi->drawStyle2D[k] = gi->drawStyle2D[k + 1];
        gi->lastDrawStyle2D[k] = gi->lastDrawStyle2D[k + 1];
        gi->visible3D[k] = gi->visible3D[k + 1];
    }
    if (remaining != kLastEntry) return;
    gi->drawStyle2D[kLastEntry] = gi->lastDrawStyle2D[kLastEntry] = 1;
    gi->visible3D[kLastEntry] = 0;
}

// kept: this is no undo step, and the steps before stay. They hold labels by their old numbers: one that is
// taken back later puts these among the new ones, in its slice or in the volume, and says so. To drop the
// steps would be safe, but a merge of two names in the midst of work would cost all that was done before it.
void GiQTissueList::removeTissue(int i, int replacement)
{
    fitRows();
    // What has no row has no label that voxels could have or get.
    if (!itemOf(i) || !itemOf(replacement) || i == replacement) return;
    notifyStop();
    const GiBusy busy("Reordering labels...");
    const int r = replacement - (replacement > i);
    if (gi && gi->labelLattice) {
        const unsigned long* n = gi->labelLattice->dims();
        giRemoveLabel(gi->labelLattice->getLabels(), n[0] * n[1], n[2], i, r,
                      HxSettingsMgr::getInstance()->numThreads());
    }

    HxParamBundle* material = bundleOf(i);
    const QByteArray name(material->getName());
    material->setFlag(HxParamBase::kFixed, 0);
    bundle->remove(material);
    {
        const QSignalBlocker removing(this);
        dropRow(i);
    }
    const int remaining = bundle->nBundles();
    if (gi) {
        for (GiAction* step : gi->undoActions) step->labelsRenumbered();
        moveTables(i, remaining);
    }
    fitRows(); // of more materials than labels, the first one without a label gets the last
    if (!gi) return setTissue(r);

    updateColors();
    gi->redraw();
    if (gi->labelLattice && gi->labelLattice->field())
        gi->labelLattice->field()->touchMinMax(0, static_cast<float>(remaining - 1), 1);
    setTissue(r);
    if (view3D) view3D->updateLabels(i);
    gi->touchData(0, 1, 0, -1, 1, 1);
    emit gi->materialRemoved(gi->labelData, i, name.constData());
}

void GiQTissueList::moveTissue(int to)
{
    if (!bundleOf(pressRow) || pressRow == 0) return;
    to = std::clamp(to, 1, bundle->nBundles() - 1);
    bundle->relocate(pressRow, to);
    if (gi) gi->touchData(0, 1, -1, -1, -1, -1);
    setTissues(bundle, to);
}
