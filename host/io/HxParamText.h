#pragma once

#include <string>

class HxParamBundle;

/// A whole parameter tree as one Tcl list, the form in which our NRRD files keep it.
///
/// Each entry is a list of its kind, name, flags and content:
///     {2 Id 0 1}  {3 Color 0 1 0.5 0}  {4 Origin 0 0.1 0.2 0.3}  {10 LongName 0 text}
///     {b Liver 0 ENTRY...}
/// Kinds are the type codes of HxParameter, and b for a bundle. Numbers stand in their shortest exact
/// form, so every value comes back bit by bit. In texts all bytes below 32 are escaped; the list is
/// one line.
struct HxParamText
{
    static std::string write(const HxParamBundle& tree);

    /// Replaces the content of `tree`.
    ///
    /// returns false if the text is no such list; `tree` is then unchanged
    static bool read(const std::string& text, HxParamBundle& tree);

    /// One element of a Tcl list.
    static std::string quoted(const std::string& text);
};
