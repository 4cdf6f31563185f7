// Files as Linux sees them, without the layer.
#include "tests/standin/disks.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sstream>
#include <sys/xattr.h>
#include <unistd.h>

namespace support
{

namespace
{

std::string timeText(const statx_timestamp &time)
{
    return std::to_string(time.tv_sec) + "." + std::to_string(time.tv_nsec);
}

std::string contentText(const std::string &path, unsigned mode)
{
    if (S_ISREG(mode))
    {
        Bytes bytes = readFile(path);
        return std::to_string(std::hash<std::string_view>()({reinterpret_cast<const char *>(bytes.data()), bytes.size()}));
    }
    char target[4096];
    ssize_t length = S_ISLNK(mode) ? readlink(path.c_str(), target, sizeof target) : 0;
    return std::string(target, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
}

void describe(const std::string &path, std::ostream &picture)
{
    struct statx record = statxOf(path);
    picture << path << " mode " << std::oct << record.stx_mode << std::dec << " owner " << record.stx_uid << ":" << record.stx_gid
            << " inode " << record.stx_ino << " links " << record.stx_nlink << " size " << record.stx_size << " modified "
            << timeText(record.stx_mtime) << " changed " << timeText(record.stx_ctime) << " bytes " << contentText(path, record.stx_mode);
    for (const std::string &name : attributeNames(path))
    {
        picture << " " << name << "=";
        for (std::uint8_t byte : attribute(path, name).value_or(Bytes{}))
            picture << static_cast<int>(byte) << ".";
    }
    picture << "\n";
    if (S_ISDIR(record.stx_mode))
        for (const std::string &name : namesIn(path))
            describe(path + "/" + name, picture);
}

}   // namespace

Bytes bytesOf(std::string_view text)
{
    return Bytes(text.begin(), text.end());
}

void writeFile(const std::string &path, const Bytes &bytes)
{
    std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen(path.c_str(), "wbe"), std::fclose);
    if (!file || (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()))
        ADD_FAILURE() << "cannot write " << path << ": " << std::strerror(errno);
}

void writeFile(const std::string &path, std::string_view text)
{
    writeFile(path, bytesOf(text));
}

Bytes readFile(const std::string &path)
{
    Bytes bytes;
    std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen(path.c_str(), "rbe"),
                                                [](FILE *opened) { return opened ? std::fclose(opened) : 0; });
    if (!file)
    {
        ADD_FAILURE() << "cannot read " << path << ": " << std::strerror(errno);
        return bytes;
    }
    std::uint8_t buffer[65536];
    for (std::size_t count; (count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0;)
        bytes.insert(bytes.end(), buffer, buffer + count);
    return bytes;
}

bool exists(const std::string &path)
{
    struct stat record;
    return lstat(path.c_str(), &record) == 0;
}

std::vector<std::string> namesIn(const std::string &directory)
{
    std::vector<std::string> names;
    std::unique_ptr<DIR, int (*)(DIR *)> opened(opendir(directory.c_str()), [](DIR *stream) { return stream ? closedir(stream) : 0; });
    while (dirent *entry = opened ? readdir(opened.get()) : nullptr)
    {
        std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<Bytes> attribute(const std::string &path, const std::string &name)
{
    Bytes value(65536);
    ssize_t size = lgetxattr(path.c_str(), name.c_str(), value.data(), value.size());
    if (size < 0)
        return std::nullopt;
    value.resize(static_cast<std::size_t>(size));
    return value;
}

void setAttribute(const std::string &path, const std::string &name, const Bytes &value)
{
    EXPECT_EQ(lsetxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0), 0) << path << ": " << std::strerror(errno);
}

void removeAttribute(const std::string &path, const std::string &name)
{
    EXPECT_EQ(lremovexattr(path.c_str(), name.c_str()), 0) << path << ": " << std::strerror(errno);
}

std::vector<std::string> attributeNames(const std::string &path)
{
    std::vector<char> list(65536);
    ssize_t size = llistxattr(path.c_str(), list.data(), list.size());
    std::vector<std::string> names;
    for (const char *name = list.data(); size > 0 && name < list.data() + size; name += std::strlen(name) + 1)
        if (std::string_view(name).starts_with("user."))
            names.push_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

struct statx statxOf(const std::string &path)
{
    struct statx record = {};
    EXPECT_EQ(statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &record), 0)
        << path << ": " << std::strerror(errno);
    return record;
}

std::string pictureOf(const std::string &directory)
{
    std::ostringstream picture;
    describe(directory, picture);
    return picture.str();
}

}   // namespace support
