#include "app/HxMain.h"
#include "hx/HxSettingsMgr.h"
#include "io/HxFileFormats.h"

#include <QApplication>
#include <gtest/gtest.h>

// The package's own entry, which the host calls once.
extern "C" void vorelpackage_kelvane_init();

namespace {

/// What Qt complains about is a fault of ours.
void failOnWarnings(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    // This platform has no window manager to tell about sizes, and says so for every window.
    if (text.contains("propagateSizeHints")) return;
    // Nor can it bring a dialog to the front.
    if (text.contains("does not support raise()")) return;
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    ADD_FAILURE() << "Qt: " << text.toStdString();
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    qInstallMessageHandler(failOnWarnings);
    HxSettingsMgr::getInstance()->useMemoryStore();
    hxRegisterFileFormats();
    HxMain window;
    vorelpackage_kelvane_init();
    return RUN_ALL_TESTS();
}
