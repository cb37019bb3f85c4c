#include "hx/HxPackage.h"
#include "hx/HxSettingsMgr.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace {

/// What Qt complains about is a fault of ours.
void failOnWarnings(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (text.contains("propagateSizeHints")) return; // this platform has no window manager
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    ADD_FAILURE() << "Qt: " << text.toStdString();
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    qInstallMessageHandler(failOnWarnings);
    HxSettingsMgr::useMemoryStore();
    const QString folder = QCoreApplication::applicationDirPath() + "/../lib/test_packages";
    HxPackage::addLibraryFolder(folder.toUtf8().constData());
    return RUN_ALL_TESTS();
}
