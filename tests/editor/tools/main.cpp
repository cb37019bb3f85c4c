#include "hx/HxSettingsMgr.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen"); // panels and a pointer, without a screen
    const QApplication application(argc, argv);
    HxSettingsMgr::useMemoryStore();
    return RUN_ALL_TESTS();
}
