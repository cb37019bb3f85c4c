#pragma once

/// Keeps the console free of what file libraries print while it lives: they write to the standard streams
/// from C and C++, with no switch that silences them all. Errors reach us through their exceptions.
///
/// For the main thread, around a call into a library; scopes nest.
class HxQuietLibraries
{
public:
    HxQuietLibraries();
    ~HxQuietLibraries();
    HxQuietLibraries(const HxQuietLibraries&) = delete;
    HxQuietLibraries& operator=(const HxQuietLibraries&) = delete;

private:
    int savedOut = -1;
    int savedErr = -1;
    int nowhere = -1;
};
