#include "hx/HxResource.h"

#include "hx/HxClassRegistry.h"
#include "hx/HxMessage.h"
#include "hx/HxObject.h"
#include "hx/HxPackage.h"
#include "hx/HxSubApplication.h"
#include "mc/McException.h"

#include <QBitmap>
#include <QCursor>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QPixmap>

#include <set>

namespace {

/// Makes sure that the class is registered; a package that cannot be loaded is reported.
bool provideClass(const char* className)
{
    if (HxClassRegistry::contains(className)) return true;
    std::string error;
    if (!HxPackage::loadForClass(className, error) && !error.empty())
        HxMessage::getTheMsg()->printf("%s", error.c_str());
    return HxClassRegistry::contains(className);
}

/// Path of a picture in a package's folder, else in a resource folder; empty, with a message at the first
/// request, where there is none.
QString picturePath(const char* file)
{
    if (!*file) return {}; // wanted so: not everything has a picture
    const std::string ofPackage = HxPackage::findResource(file);
    if (!ofPackage.empty()) return QString::fromStdString(ofPackage);
    for (const std::string& folder : HxPackage::resourceFolders()) {
        const QString path = QDir(QString::fromStdString(folder)).filePath(QString::fromUtf8(file));
        if (QFileInfo(path).isFile()) return path;
    }
    static std::set<std::string> reported;
    if (reported.insert(file).second)
        HxMessage::getTheMsg()->printf("%s: there is no such picture in the resource folders.", file);
    return {};
}

bool hasGui()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance());
}

} // namespace

// Here, where the class of the handle is complete.
HxSubApplicationEntry::HxSubApplicationEntry() = default;
HxSubApplicationEntry::~HxSubApplicationEntry() = default;
HxSubApplicationEntry::HxSubApplicationEntry(const HxSubApplicationEntry&) = default;
HxSubApplicationEntry& HxSubApplicationEntry::operator=(const HxSubApplicationEntry&) = default;

std::vector<HxSubApplicationEntry> HxResource::mSubApplications;

HxObject* HxResource::createObject(const char* className)
{
    // Asked before the object is made: an editor, say, would build its windows only to be thrown away.
    if (!provideClass(className) || !HxClassRegistry::isDerived(className, "HxObject")) return nullptr;
    return dynamic_cast<HxObject*>(HxClassRegistry::create(className));
}

HxSubApplication* HxResource::subApplication(const char* className)
{
    for (HxSubApplicationEntry& entry : mSubApplications) {
        if (entry.className != className) continue;
        if (!entry.instance && provideClass(className))
            entry.instance = dynamic_cast<HxSubApplication*>(HxClassRegistry::create(className));
        return entry.instance;
    }
    return nullptr;
}

void HxResource::handleException(const McException& exception, int consoleOnly)
{
    if (consoleOnly)
        HxMessage::getTheMsg()->printf("%s", exception.what());
    else
        HxMessage::getTheMsg()->error("%s", exception.what());
}

QIcon HxResource::readIcon(const char* file)
{
    if (!hasGui()) return {};
    const QString path = picturePath(file);
    return path.isEmpty() ? QIcon() : QIcon(path);
}

QCursor HxResource::readCursor(const char* file, const char* mask, int hotX, int hotY)
{
    if (!hasGui()) return {};
    const QString path = picturePath(file);
    if (path.isEmpty()) return QCursor(Qt::ArrowCursor);
    const QSize size = QPixmap(path).size();
    if (size.isEmpty()) {
        HxMessage::getTheMsg()->printf("%s: this is no picture.", qUtf8Printable(path));
        return QCursor(Qt::ArrowCursor);
    }
    // Through an icon, which knows the picture for screens of higher density.
    QPixmap picture = QIcon(path).pixmap(size, qGuiApp->devicePixelRatio());
    if (mask) {
        const QString maskPath = picturePath(mask);
        if (maskPath.isEmpty()) return QCursor(Qt::ArrowCursor);
        picture.setMask(QBitmap::fromPixmap(QIcon(maskPath).pixmap(size, qGuiApp->devicePixelRatio())));
    }
    return QCursor(picture, hotX, hotY);
}
