#include "hx/HxSettingsMgr.h"
#include "io/HxFileFormats.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    HxSettingsMgr::useMemoryStore();
    hxRegisterFileFormats();
    return RUN_ALL_TESTS();
}
