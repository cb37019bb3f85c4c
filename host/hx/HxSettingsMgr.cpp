#include "hx/HxSettingsMgr.h"

#include "hx/HxMessage.h"
#include "mc/McThreads.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

namespace {

constexpr const char* kPreferencesGroup = "preferences";
constexpr const char* kGeometryGroup = "geometry";
constexpr const char* kTextsGroup = "texts";

/// Whether the file exists with a content that a write would destroy: a mistyped name can be that of data.
bool holdsSomethingElse(const QSettings& store)
{
    const QFileInfo file(store.fileName());
    if (!file.exists() || (file.isFile() && file.size() == 0)) return false;
    const QStringList groups = store.childGroups();
    return store.status() != QSettings::NoError ||
           !(groups.contains(kPreferencesGroup) || groups.contains(kGeometryGroup));
}

} // namespace

HxSettingsMgr* HxSettingsMgr::getInstance()
{
    // Leaked on purpose: objects that end after main still store their last settings here.
    static HxSettingsMgr* instance = new HxSettingsMgr;
    return instance;
}

void HxSettingsMgr::setPreferences(const HxPreferences& now, bool notify)
{
    const HxPreferences old = preferences;
    const HxPreferences current = now; // `now` may be our own record, which a listener may replace
    preferences = current;
    mcSetNumThreads(numThreads());
    changed = true;
    if (!notify) return;
    write();
    emit preferencesChanged(old, current);
}

int HxSettingsMgr::numThreads() const
{
    constexpr int kMost = 256; // more threads than any machine of today has cores only cost memory
    return std::clamp(preferences.numThreads, 1, kMost);
}

QRect HxSettingsMgr::getGeometry(const char* key) const
{
    const auto found = geometries.find(key);
    return found == geometries.end() ? QRect() : found->second;
}

void HxSettingsMgr::setGeometry(const char* key, const QRect& rect)
{
    geometries[key] = rect;
    changed = true;
}

QStringList HxSettingsMgr::getTexts(const char* key) const
{
    const auto found = textLists.find(key);
    return found == textLists.end() ? QStringList() : found->second;
}

void HxSettingsMgr::setTexts(const char* key, const QStringList& texts)
{
    textLists[key] = texts;
    changed = true;
}

bool HxSettingsMgr::write()
{
    if (storePath.isEmpty() || !changed) return true;

    QSettings store(storePath, QSettings::IniFormat);
    store.beginGroup(kPreferencesGroup);
    for (const char* name : HxPreferences::fieldNames()) {
        McString value;
        McString error;
        preferences.get(name, value, error);
        store.setValue(name, QString::fromUtf8(value.c_str()));
    }
    store.endGroup();
    store.beginGroup(kGeometryGroup);
    for (const auto& [key, rect] : geometries) store.setValue(QString::fromStdString(key), rect);
    store.endGroup();
    store.beginGroup(kTextsGroup);
    for (const auto& [key, texts] : textLists) store.setValue(QString::fromStdString(key), texts);
    store.endGroup();
    store.sync();

    changed = store.status() != QSettings::NoError;
    if (changed) HxMessage::getTheMsg()->printf("%s: cannot be written.", qPrintable(storePath));
    return !changed;
}

void HxSettingsMgr::useMemoryStore()
{
    getInstance()->storePath.clear();
    getInstance()->read();
}

bool HxSettingsMgr::useFile(const char* path)
{
    getInstance()->storePath = QString::fromUtf8(path);
    return getInstance()->read();
}

bool HxSettingsMgr::useUserStore()
{
    getInstance()->storePath =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/vorel/vorel.ini";
    return getInstance()->read();
}

bool HxSettingsMgr::read()
{
    preferences = HxPreferences();
    geometries.clear();
    textLists.clear();
    changed = false;
    const bool usable = storePath.isEmpty() || readStore();
    // The parallel loops of the layer below know no settings; they are told.
    mcSetNumThreads(numThreads());
    return usable;
}

bool HxSettingsMgr::readStore()
{
    QSettings store(storePath, QSettings::IniFormat);
    if (holdsSomethingElse(store)) {
        HxMessage::getTheMsg()->printf("%s: not a preferences file; it is left as it is.",
                                       qPrintable(storePath));
        storePath.clear();
        return false;
    }
    store.beginGroup(kPreferencesGroup);
    for (const char* name : HxPreferences::fieldNames()) {
        if (!store.contains(name)) {
            changed = true; // a first start, or a newer program: the default is to be written
            continue;
        }
        const QByteArray value = store.value(name).toString().toUtf8();
        McString error;
        if (!preferences.set(name, value, error))
            HxMessage::getTheMsg()->printf("%s: %s", qPrintable(storePath), error.c_str());
    }
    store.endGroup();
    store.beginGroup(kGeometryGroup);
    for (const QString& key : store.childKeys()) geometries[key.toStdString()] = store.value(key).toRect();
    store.endGroup();
    store.beginGroup(kTextsGroup);
    for (const QString& key : store.childKeys())
        textLists[key.toStdString()] = store.value(key).toStringList();
    store.endGroup();
    return true;
}
