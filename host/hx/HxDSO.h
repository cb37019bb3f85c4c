#pragma once

#include <string>

/// A shared library opened at run time, all symbols resolved at once and kept local.
class HxDSO
{
public:
    HxDSO() = default;

    // kept: the library stays loaded when the object goes. What an entry function made lives in the
    // library's code and outlives this object.
    ~HxDSO() = default;

    HxDSO(const HxDSO&) = delete;
    HxDSO& operator=(const HxDSO&) = delete;

    /// fileName such as "libskeleton.so": looked for in the package library folders, then where the system
    /// looks; a name with a slash is taken as it is. Returns 0 on success, else -1 and errorText() tells.
    int open(const char* fileName);

    /// Address of a symbol, null when there is none or nothing is open.
    void* getSymbol(const char* name) const;

    const std::string& errorText() const { return error; }

private:
    void* handle = nullptr;
    std::string error;
};
