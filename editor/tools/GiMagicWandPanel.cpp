// Magic wand: its panel and the settings that outlive a session.

#include "core/Gi.h"
#include "hx/HxResource.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McString.h"
#include "tools/GiMagicWand.h"
#include "tools/giGuarded.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <cmath>
#include <cstdio>

namespace {

template <class Widget>
Widget* named(Widget* widget, const char* name)
{
    widget->setObjectName(name);
    return widget;
}

void check(QCheckBox* box, bool on)
{
    const QSignalBlocker quiet(box);
    box->setChecked(on);
}

} // namespace

void GiMagicWand::createWidget(QWidget* parent)
{
    parent->setObjectName("GiMagicWand");
    allSlices = named(new QCheckBox("All slices"), "wAllSlicesCheckBox");
    sameMaterial = named(new QCheckBox("Same material only"), "wSameMaterialCheckBox");
    fillInterior = named(new QCheckBox("Fill interior"), "wFillInteriorCheckBox");
    limitButton = named(new QToolButton, "wLimitButton");
    limitButton->setCheckable(true);
    limitButton->setIcon(HxResource::readIcon("SegPencilIcon.png"));
    auto* limitLabel = new QLabel("Draw limit line");
    for (QWidget* part : {static_cast<QWidget*>(limitButton), static_cast<QWidget*>(limitLabel)})
        part->setToolTip("Draw a limit line to define a region\nthat is not affected by the Magic Wand tool");
    readSettings();

    auto* top = new QHBoxLayout;
    top->addWidget(allSlices);
    top->addWidget(limitButton);
    top->addWidget(limitLabel);
    top->addStretch();
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(sameMaterial);
    bottom->addWidget(fillInterior);
    bottom->addStretch();
    auto* rows = new QVBoxLayout(parent);
    rows->addLayout(top);
    rows->addLayout(bottom);
    rows->addStretch();

    connect(allSlices, &QCheckBox::toggled, this, giGuardedSlot(this, &GiMagicWand::update3D));
    connect(sameMaterial, &QCheckBox::toggled, this, giGuardedSlot(this, &GiMagicWand::update));
    connect(fillInterior, &QCheckBox::toggled, this, giGuardedSlot(this, &GiMagicWand::update));
    connect(limitButton, &QToolButton::toggled, this,
            giGuardedSlot(this, qOverload<bool>(&GiMagicWand::setLimitMode)));
}

MagicWandSeed GiMagicWand::panelOptions() const
{
    MagicWandSeed options;
    options.is3D = isChecked(allSlices);
    options.sameMaterial = isChecked(sameMaterial);
    options.fillInterior = isChecked(fillInterior);
    options.material = static_cast<unsigned char>(seedMaterial);
    return options;
}

void GiMagicWand::showOptions(const MagicWandSeed& options)
{
    if (!allSlices || !sameMaterial || !fillInterior) return;
    check(allSlices, options.is3D);
    check(sameMaterial, options.sameMaterial);
    // Interiors are those of a slice.
    check(fillInterior, options.fillInterior && !options.is3D);
    fillInterior->setEnabled(!options.is3D);
}

void GiMagicWand::restorePanel(float min, float max, const MagicWandSeed& options)
{
    gi->setToolDataWindow(min, max, true);
    showOptions(options);
    seedMaterial = options.material;
}

// Settings: two numbers that mean nothing, "All slices", 1, "Same material only", "Fill interior", the last
// value.

void GiMagicWand::readSettings()
{
    const McString text = HxSettingsMgr::getInstance()->getPreferences().giMagicWand;
    float unused[2], value;
    int all, one, same, interior;
    if (std::sscanf(text, "%g%g%d%d%d%d%g", &unused[0], &unused[1], &all, &one, &same, &interior, &value) !=
        7)
        return;
    // kept: "All slices" is stored but starts unchecked: the first click of a session must not grow through
    // a whole volume.
    sameMaterial->setChecked(same != 0);
    fillInterior->setChecked(interior != 0);
    lastValue = value;
}

void GiMagicWand::writeSettings() const
{
    if (!allSlices || !sameMaterial || !fillInterior) return; // no panel, so nobody has set anything
    HxPreferences preferences = HxSettingsMgr::getInstance()->getPreferences();
    preferences.giMagicWand = McString::printf(
        "%g %g %d %d %d %d %g", 0.0, 0.0, allSlices->isChecked(), 1, sameMaterial->isChecked(),
        fillInterior->isChecked(), std::isfinite(lastValue) ? static_cast<double>(lastValue) : 0.0);
    HxSettingsMgr::getInstance()->setPreferences(preferences, false);
}
