#include "hx/HxPackage.h"
#include "hx/HxSettingsMgr.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

// The package's own entry, which the host calls once.
extern "C" void vorelpackage_kelvane_init();

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    HxSettingsMgr::getInstance()->useMemoryStore();
    vorelpackage_kelvane_init();
    return RUN_ALL_TESTS();
}
