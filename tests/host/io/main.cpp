#include "hx/HxSettingsMgr.h"
#include "io/HxFileFormats.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

// ITK's TIFF reader and writer leave their buffers behind when a file is damaged or a disk is full, which
// the tests make them meet. Only leaks with these libraries on the stack are passed over.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libITKIOTIFF\nleak:libitktiff\n";
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    HxSettingsMgr::useMemoryStore();
    hxRegisterFileFormats();
    return RUN_ALL_TESTS();
}
