#include "hx/HxSettingsMgr.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

/// Signals, timers and sockets need an application object; a display is not needed.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    // A test must neither see nor change the settings of the person who runs it.
    HxSettingsMgr::useMemoryStore();
    return RUN_ALL_TESTS();
}
