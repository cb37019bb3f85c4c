#pragma once

/// Progress of a long operation, and the user's wish to stop it. Where one is asked for, a null pointer
/// means that nobody watches. Called from the main thread only, which is thread 0 of a parallel region.
class McProgressInterface
{
public:
    virtual ~McProgressInterface() = default;

    /// Opens a busy phase; each begin() has its end(). Phases may be nested.
    virtual void begin(const char* text) = 0;
    virtual void setText(const char* text) = 0;
    /// fraction  0 to 1
    virtual void setProgress(double fraction) = 0;
    /// True once the user has asked to stop.
    virtual bool interrupted() = 0;
    virtual void end() = 0;
};
