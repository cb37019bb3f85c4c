#pragma once

#include <type_traits>
#include <typeinfo>

/// Identity of a class: its name, and the class it derives from.
///
/// A class declares itself once, in its initClass() or in getTypeId():
///
///     McTypeId HxField::getTypeId() const { return McTypeId::declare<HxField, HxData>("HxField"); }
///
/// `of<T>()` names any class at any time. The chain of bases holds for declared classes only, so each class
/// between two that are compared has to be declared; declaring it later mends the chain.
/// Values are cheap to copy and compare. Main thread only.
class McTypeId
{
public:
    /// No class.
    McTypeId() = default;

    /// The id of a class, whether it is declared or not.
    template <class T>
    static McTypeId of()
    {
        return McTypeId(find(typeid(T)));
    }

    /// Gives T its name, and Base as its base. Declaring again changes nothing.
    template <class T, class Base>
    static McTypeId declare(const char* name)
    {
        static_assert(std::is_base_of_v<Base, T>);
        return declare(of<T>(), name, of<Base>());
    }
    /// The same for a class without a base.
    template <class T>
    static McTypeId declare(const char* name)
    {
        return declare(of<T>(), name, McTypeId());
    }

    /// The class with this name; no class if there is none.
    static McTypeId fromName(const char* name);

    bool isValid() const { return record != nullptr; }
    /// Name as declared, or as written in C++; empty for no class.
    const char* name() const;
    /// No class for one without a base.
    McTypeId base() const;
    /// True for the class itself too; never for no class.
    bool isDerivedFrom(McTypeId ancestor) const;

    friend bool operator==(McTypeId, McTypeId) = default;

private:
    struct Record;

    Record* record = nullptr;

    explicit McTypeId(Record* r) : record(r) {}
    static Record* find(const std::type_info& type);
    static McTypeId declare(McTypeId id, const char* name, McTypeId base);
};
