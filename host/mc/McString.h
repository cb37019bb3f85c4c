#pragma once

#include <string>

/// Character string of bytes, in UTF-8 where it is shown. Null pointers count as empty strings.
class McString
{
public:
    McString() = default;
    McString(const char* s) : text(s ? s : "") {}
    McString(const char* s, int length) : text(s, length) {}
    McString(const std::string& s) : text(s) {}

    /// As the function of the C library.
    static McString printf(const char* format, ...) __attribute__((format(printf, 1, 2)));

    int length() const { return int(text.size()); }
    bool isEmpty() const { return text.empty(); }
    /// Zero-terminated; lasts until the string changes.
    operator const char*() const { return text.c_str(); }
    const char* c_str() const { return text.c_str(); }
    const std::string& str() const { return text; }

    McString& operator+=(const McString& s)
    {
        text += s.text;
        return *this;
    }
    McString& operator+=(const char* s)
    {
        text += s ? s : "";
        return *this;
    }
    McString& operator+=(char c)
    {
        text += c;
        return *this;
    }
    friend McString operator+(McString a, const McString& b) { return a += b; }
    friend McString operator+(McString a, const char* b) { return a += b; }
    friend McString operator+(const char* a, const McString& b) { return McString(a) += b; }

    friend bool operator==(const McString& a, const McString& b) { return a.text == b.text; }
    friend bool operator==(const McString& a, const char* b) { return a.text == (b ? b : ""); }
    friend bool operator<(const McString& a, const McString& b) { return a.text < b.text; }

private:
    std::string text;
};
