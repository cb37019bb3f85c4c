#pragma once

#include <functional>
#include <string>
#include <vector>

class HxBase;

/// Names of classes, with their base and with a way to make them. Classes register in their initClass.
class HxClassRegistry
{
public:
    using Creator = std::function<HxBase*()>;

    /// base may be null or unknown so far; an empty creator marks a class that has no objects of its own.
    /// Registering a name again replaces the entry.
    static void add(const char* name, const char* base, Creator create = {});

    static bool contains(const char* name);

    /// True if `name` is `base` or, by its chain of bases, derived from it.
    static bool isDerived(const char* name, const char* base);

    /// A new object with count 0, null for a class that is unknown or has no creator.
    static HxBase* create(const char* name);

    /// All classes that can be made, sorted.
    static std::vector<std::string> creatable();
};

/// Registers the host's own classes, those that make sense as empty objects with a creator.
void hxRegisterHostClasses();
