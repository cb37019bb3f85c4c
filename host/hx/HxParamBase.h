#pragma once

#include "mc/McString.h"

class HxParamBundle;
class HxParameter;

/// A named entry of a parameter tree: a value (HxParameter) or a bundle of entries.
///
/// An entry belongs to at most one bundle, which deletes it. Single-threaded, no signals.
class HxParamBase
{
public:
    /// Flag of setFlag: HxParamBundle::remove refuses the entry while it is set.
    static constexpr unsigned int kFixed = 4;

    /// The name is cleaned by cleanName().
    explicit HxParamBase(const char* name);
    virtual ~HxParamBase() = default;
    HxParamBase& operator=(const HxParamBase&) = delete;

    /// The rule that makes a text a legal name: letters, digits, '_', '-' and '.' stay, a blank
    /// becomes '_', every other byte is dropped. An empty text stays empty.
    static McString cleanName(const char* text);

    const char* getName() const { return entryName; }

    /// Renames the entry to the cleaned name. A name that another entry of the same bundle has
    /// gets the smallest free number from 2 on appended.
    void setName(const char* newName);

    void setFlag(unsigned int flag, int on);
    bool testFlag(unsigned int flag) const { return (flagBits & flag) != 0; }
    unsigned int flags() const { return flagBits; }

    /// The bundle that holds this entry; null for a free one.
    HxParamBundle* parent() const { return parentBundle; }

    /// A free deep copy with the same name and flags; the caller owns it.
    virtual HxParamBase* clone() const = 0;

    /// This entry as its kind, null if it is of the other.
    virtual HxParameter* asParameter() { return nullptr; }
    virtual HxParamBundle* asBundle() { return nullptr; }

protected:
    /// Copies name and flags; the copy is free.
    HxParamBase(const HxParamBase& other);

private:
    friend class HxParamBundle;

    McString entryName;
    unsigned int flagBits = 0;
    HxParamBundle* parentBundle = nullptr;
};
