#pragma once

#include <mutex>

/// A mutex that its thread may lock again. Works with std::lock_guard.
class McMutex
{
public:
    void lock() { mutex.lock(); }
    void unlock() { mutex.unlock(); }

private:
    std::recursive_mutex mutex;
};
