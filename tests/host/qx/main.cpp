#include "hx/HxSettingsMgr.h"

#include <gtest/gtest.h>

#include <QApplication>

namespace {

/// Nobody expects a warning of Qt here: one is the first sign of a wrong connection or parent.
void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    // The offscreen platform says so of every window with a layout.
    if (text.contains("propagateSizeHints")) return;
    ADD_FAILURE() << "Qt says: " << text.toStdString();
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QLocale::setDefault(QLocale::c());
    qInstallMessageHandler(failOnWarning);
    HxSettingsMgr::useMemoryStore();
    return RUN_ALL_TESTS();
}
