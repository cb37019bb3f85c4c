#pragma once

#include "mc/McDArray.h"
#include "mc/McString.h"

class Gi;

/// The registry of filters in libraries of their own: three script variables, parallel lists.
///
///     kelvane::pluginFilterName   names, the keys; of equal ones the first counts
///     kelvane::pluginLibs         STEM of the library libSTEM.so
///     kelvane::pluginClasses      the library's entry function, of C linkage: it takes a Gi*, makes a filter
///                                 and appends it, without a reference, to `pluginFilters`
///
/// They are read whenever an editor is made. Main thread only.
class GiFilterFactory
{
public:
    /// The registered names, in the order of the list.
    static McDArray<McString> getNames();

    /// Loads a filter's library and calls its entry function. Returns 1 if the function was called and came
    /// back, else 0. A library that cannot be opened and an entry function that throws are told on the
    /// console, a missing name or function is not.
    static int createFilter(const char* name, Gi* gi);
};
