#pragma once

#include <functional>

/// Tries calls into a library that ends the program on damaged input, in a child process, where no harm
/// comes of it. GDCM does so: it is built with its assertions.
struct HxLibraryProbe
{
    /// Runs call(0) to call(count - 1) in the child; their exceptions are left for the real calls.
    ///
    /// returns the index of the call in which the child died, -1 if all came back
    static int firstDeadlyCall(int count, const std::function<void(int)>& call);
};
