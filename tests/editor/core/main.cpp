#include "hx/HxSettingsMgr.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

/// Called by AddressSanitizer: a request for more memory than there is shall fail as it does without it.
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    HxSettingsMgr::useMemoryStore();
    return RUN_ALL_TESTS();
}
