#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

/// Tries calls into a library in a child process first, where no harm comes of it. GDCM needs this: it is
/// built with its assertions, which end the program on damaged input, and it takes as much memory as a
/// damaged length asks for.
struct HxLibraryProbe
{
    struct Failure
    {
        int call;
        std::string text; ///< of the exception; empty if the child died
    };

    /// Runs call(0) to call(count - 1) in the child, up to the first that throws or kills it.
    ///
    /// extraBytes  memory that the calls may take beyond what this process has already
    static std::optional<Failure> firstFailure(int count, std::size_t extraBytes,
                                               const std::function<void(int)>& call);
};
