#include "benchmarks/bare_walks.h"

#include <cstdint>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fts.h>
#include <ftw.h>
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

enum class Asked
{
    names,
    status,
    statusAndSidecar,
};

bool isSidecar(const char *name)
{
    return name[0] == '.' && name[1] == '_';
}

void probeSidecar(int folder, const char *name)
{
    char beginning[512];
    const int sidecar = openat(folder, (std::string("._") + name).c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (sidecar < 0)
        return;
    if (read(sidecar, beginning, sizeof beginning) < 0)
        throw std::runtime_error("cannot read a sidecar");
    close(sidecar);
}

void askFor(int folder, const char *name, Asked asked)
{
    struct statx status;
    if (asked != Asked::names)
        statx(folder, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status);
    if (asked == Asked::statusAndSidecar && !isSidecar(name))
        probeSidecar(folder, name);
}

long walkFolder(int folder, Asked asked)
{
    long count = 0;
    forEachEntry(folder, [&](const char *name, unsigned char type) {
        count += !isSidecar(name);
        askFor(folder, name, asked);
        if (type != DT_DIR)
            return;
        const int inner = openOrThrow(folder, name);
        count += walkFolder(inner, asked);
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

long walkTop(const std::string &top, Asked asked)
{
    const int folder = openOrThrow(AT_FDCWD, top);
    const long count = walkFolder(folder, asked);
    close(folder);
    return count;
}

// Gives every object but the top to `visit`; folders twice, before and after what is in them.
template <typename Visit>
void forEachByFts(const std::string &top, int options, Visit visit)
{
    std::string path = top;
    char *paths[] = {path.data(), nullptr};
    FTS *walk = fts_open(paths, options | FTS_PHYSICAL, nullptr);
    while (const FTSENT *entry = fts_read(walk))
        if (entry->fts_level > 0)
            visit(*entry);
    fts_close(walk);
}

long countByFts(const std::string &top, int options)
{
    long count = 0;
    forEachByFts(top, options, [&count](const FTSENT &entry) { count += entry.fts_info != FTS_DP; });
    return count;
}

long metByNftw;

int meetByNftw(const char *, const struct stat *, int, FTW *place)
{
    metByNftw += place->level > 0;
    return 0;
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
    return walkTop(top, Asked::names);
}

long walkBareWithStatus(const std::string &top)
{
    return walkTop(top, Asked::status);
}

long walkAndProbe(const std::string &top)
{
    return walkTop(top, Asked::statusAndSidecar);
}

long walkByFts(const std::string &top)
{
    return countByFts(top, FTS_NOSTAT);
}

long walkByFtsWithoutFolders(const std::string &top)
{
    return countByFts(top, FTS_NOSTAT | FTS_NOCHDIR);
}

long walkByFtsWithStatus(const std::string &top)
{
    return countByFts(top, 0);
}

long walkByNftw(const std::string &top)
{
    metByNftw = 0;
    nftw(top.c_str(), meetByNftw, 64, FTW_PHYS);
    return metByNftw;
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

long deleteByFts(const std::string &top)
{
    long count = 0;
    forEachByFts(top, FTS_NOSTAT, [&count](const FTSENT &entry) {
        if (entry.fts_info == FTS_D)
            return;
        ++count;
        unlinkat(AT_FDCWD, entry.fts_accpath, entry.fts_info == FTS_DP ? AT_REMOVEDIR : 0);
    });
    rmdir(top.c_str());
    return count;
}
