#include "benchmarks/bare_walks.h"

#include <cstdint>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fts.h>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

std::string padded(const std::string &name, std::size_t length)
{
    return name.size() < length ? name + std::string(length - name.size(), 'x') : name;
}

int openOrThrow(int folder, const std::string &name)
{
    const int opened = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (opened < 0)
        throw std::runtime_error("cannot open " + name);
    return opened;
}

void makeFiles(int folder, const TreeShape &shape)
{
    for (int file = 0; file < shape.files; ++file)
        close(openat(folder, padded("file" + std::to_string(file), shape.nameLength).c_str(), O_CREAT | O_WRONLY, 0644));
}

// Gives every entry but "." and ".." to `visit`, which gets name and type.
template <typename Visit>
void forEachEntry(int folder, Visit visit)
{
    alignas(8) char buffer[32768];
    for (;;)
    {
        const long filled = syscall(SYS_getdents64, folder, buffer, sizeof buffer);
        if (filled <= 0)
            return;
        for (long offset = 0; offset < filled;)
        {
            std::uint16_t length;
            const char *record = buffer + offset, *name = record + 19;
            std::memcpy(&length, record + 16, sizeof length);
            offset += length;
            if (name[0] != '.' || (name[1] != '\0' && (name[1] != '.' || name[2] != '\0')))
                visit(name, static_cast<unsigned char>(record[18]));
        }
    }
}

long walkFolder(int folder, bool asksStatus)
{
    long count = 0;
    forEachEntry(folder, [&](const char *name, unsigned char type) {
        struct statx status;
        ++count;
        if (asksStatus)
            statx(folder, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status);
        if (type != DT_DIR)
            return;
        const int inner = openOrThrow(folder, name);
        count += walkFolder(inner, asksStatus);
        close(inner);
    });
    return count;
}

long deleteFolderContents(int folder)
{
    long count = 0;
    forEachEntry(folder, [&](const char *name, unsigned char type) {
        ++count;
        if (type == DT_DIR)
        {
            const int inner = openOrThrow(folder, name);
            count += deleteFolderContents(inner);
            close(inner);
        }
        unlinkat(folder, name, type == DT_DIR ? AT_REMOVEDIR : 0);
    });
    return count;
}

long walkTop(const std::string &top, bool asksStatus)
{
    const int folder = openOrThrow(AT_FDCWD, top);
    const long count = walkFolder(folder, asksStatus);
    close(folder);
    return count;
}

}   // namespace

void makeTree(const std::string &path, const TreeShape &shape)
{
    mkdir(path.c_str(), 0755);
    const int top = openOrThrow(AT_FDCWD, path);
    if (shape.folders == 0)
        makeFiles(top, shape);
    for (int number = 0; number < shape.folders; ++number)
    {
        const std::string name = padded("folder" + std::to_string(number), shape.nameLength);
        mkdirat(top, name.c_str(), 0755);
        const int folder = openOrThrow(top, name);
        makeFiles(folder, shape);
        close(folder);
    }
    close(top);
}

long walkBare(const std::string &top)
{
    return walkTop(top, false);
}

long walkBareWithStatus(const std::string &top)
{
    return walkTop(top, true);
}

long walkByFts(const std::string &top)
{
    std::string path = top;
    char *paths[] = {path.data(), nullptr};
    FTS *walk = fts_open(paths, FTS_NOSTAT | FTS_PHYSICAL, nullptr);
    long count = 0;
    while (const FTSENT *entry = fts_read(walk))
        count += entry->fts_info != FTS_DP && entry->fts_level > 0;
    fts_close(walk);
    return count;
}

long walkByLibrary(const std::string &top)
{
    long count = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(top))
        count += !entry.path().empty();
    return count;
}

long listBare(const std::string &path)
{
    const int folder = openOrThrow(AT_FDCWD, path);
    long count = 0;
    forEachEntry(folder, [&](const char *, unsigned char) { ++count; });
    close(folder);
    return count;
}

long listByReaddir(const std::string &path)
{
    std::vector<std::string> names;
    DIR *folder = opendir(path.c_str());
    while (const dirent *entry = readdir(folder))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            names.emplace_back(entry->d_name);
    closedir(folder);
    return static_cast<long>(names.size());
}

long deleteBare(const std::string &top)
{
    const int folder = openOrThrow(AT_FDCWD, top);
    const long count = deleteFolderContents(folder);
    close(folder);
    rmdir(top.c_str());
    return count;
}

long deleteByLibrary(const std::string &top)
{
    return static_cast<long>(std::filesystem::remove_all(top)) - 1;
}
