#include "hx/HxSafeFile.h"

#include <QSaveFile>

bool hxWriteFileSafely(const char* path, const std::string& content, McString& error)
{
    QSaveFile file(QString::fromLocal8Bit(path));
    const auto size = static_cast<qint64>(content.size());
    if (file.open(QIODevice::WriteOnly) && file.write(content.data(), size) == size && file.commit())
        return true;
    error = McString(path) + ": " + file.errorString().toLocal8Bit().constData() + ".";
    return false;
}
