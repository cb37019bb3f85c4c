#include "hx/HxSettingsMgr.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen"); // a pointer to move, without a screen
    const QGuiApplication application(argc, argv);
    HxSettingsMgr::useMemoryStore();
    return RUN_ALL_TESTS();
}
