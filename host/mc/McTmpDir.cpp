#include "mc/McTmpDir.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/stat.h>

McTmpDir::McTmpDir(const char* name, int, int) : prefix(name) {}

bool McTmpDir::create(int mode)
{
    std::error_code failure;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(failure);
    if (failure) return false;
    std::string path = (folder / (prefix.str() + "XXXXXX")).string();
    if (!mkdtemp(path.data())) return false;
    if (chmod(path.c_str(), mode_t(mode)) != 0) {
        std::filesystem::remove(path, failure);
        return false;
    }
    directory = path;
    return true;
}

bool McTmpDir::remove()
{
    if (directory.isEmpty()) return true;
    std::error_code failure;
    std::filesystem::remove_all(directory.str(), failure);
    if (failure) return false;
    directory = McString();
    return true;
}
