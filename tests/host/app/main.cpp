#include "hx/HxClassRegistry.h"
#include "hx/HxSettingsMgr.h"

#include <gtest/gtest.h>

#include <QApplication>

namespace {

/// Nobody expects a warning of Qt here: one is the first sign of a wrong connection or parent.
void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    // The offscreen platform has no window manager, and says so.
    if (text.startsWith("This plugin does not support")) return;
    ADD_FAILURE() << "Qt says: " << text.toStdString();
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false); // tests open and close windows as they need them
    qInstallMessageHandler(failOnWarning);
    HxSettingsMgr::useMemoryStore();
    hxRegisterHostClasses();
    return RUN_ALL_TESTS();
}
