#include "mc/McFilename.h"

#include <filesystem>

McFilename::McFilename(const char* directory, const char* name)
{
    text = (std::filesystem::path(McString(directory).str()) / McString(name).str()).string();
}

McString McFilename::directory() const
{
    return std::filesystem::path(text.str()).parent_path().string();
}

McString McFilename::fileName() const
{
    return std::filesystem::path(text.str()).filename().string();
}

McString McFilename::baseName() const
{
    return std::filesystem::path(text.str()).stem().string();
}

McString McFilename::suffix() const
{
    const std::string dotted = std::filesystem::path(text.str()).extension().string();
    return dotted.empty() ? McString() : McString(dotted.substr(1));
}
