// Real disks to test on: one of each kind that differs in what it can remember, made on demand and gone with the test program.
//
// A disk that cannot be made here (no root, no program to format it, no such file system in the kernel) says why, for GTEST_SKIP().
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <tuple>
#include <vector>

namespace support
{

using Bytes = std::vector<std::uint8_t>;
Bytes bytesOf(std::string_view text);

enum class DiskKind
{
    plain,   // wherever temporary files live on this machine
    tmpfs,
    ramfs,   // no extended attributes, no birth times
    ext4,
    ext4Small,   // 128-byte inodes: whole seconds, no birth times
    xfs,
    btrfs,
    overlay,   // a first write to a file of the lower layer makes a new one in the upper
};

// What a mounted disk can do is found out by trying, not taken from its kind.
struct Disk
{
    DiskKind kind{};
    std::string root;      // an empty directory on it at first
    std::string problem;   // why it is not there; empty if it is
    bool hasAttributes = false;
    bool hasBirthTimes = false;
    bool hasFineDates = false;
    std::string lower;   // overlay only: its lower layer, which holds the files first, second, third and fourth
};

const Disk &diskOf(DiskKind kind);   // made at the first call
const std::vector<DiskKind> &everyKind();
std::string nameOfKind(DiskKind kind);
void PrintTo(DiskKind kind, std::ostream *stream);

// Names the rows of a parameterised suite after their disks: EveryDisk/Catalog.DatesSurvive/ramfs.
std::string diskName(const testing::TestParamInfo<DiskKind> &row);

// For the test program's main().
std::string makeWorkFolder();               // everything of this program lies beneath it
void takeOwnMounts();                       // a mount namespace; an ordinary user gets a user namespace with it if the machine allows
void removeTree(const std::string &path);   // with everything beneath it, on this disk alone

// A directory of its own on a disk, removed with the object. The removal makes the test fail if something of the layer is left behind:
// a hidden temporary, or a sidecar without its file.
class TemporaryFolder
{
public:
    explicit TemporaryFolder(const Disk &disk);
    explicit TemporaryFolder(DiskKind kind = DiskKind::plain) : TemporaryFolder(diskOf(kind)) {}
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    ~TemporaryFolder();
    const std::string &path() const { return path_; }
    std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }
    const Disk &disk() const { return disk_; }

    void expectOrphan(const std::string &name) { allowed_.insert(name); }   // a test that makes such a file itself says so

private:
    void checkLeftovers() const;
    const Disk &disk_;
    std::string path_;
    std::set<std::string> allowed_;
};

// The same directory once more, mounted read-only. Empty problem if that worked.
class ReadOnlyView
{
public:
    explicit ReadOnlyView(const std::string &directory);
    ReadOnlyView(const ReadOnlyView &) = delete;
    ReadOnlyView &operator=(const ReadOnlyView &) = delete;
    ~ReadOnlyView();
    const std::string &path() const { return path_; }
    const std::string &problem() const { return problem_; }

private:
    std::string path_, problem_;
};

inline DiskKind diskOfRow(DiskKind row)
{
    return row;
}

template <typename... More>
DiskKind diskOfRow(const std::tuple<DiskKind, More...> &row)
{
    return std::get<0>(row);
}

// A test in rows, each with a kind of disk and perhaps more; it takes place in a folder on that disk.
template <typename Row>
class DiskRowTest : public testing::TestWithParam<Row>
{
protected:
    void SetUp() override
    {
        const Disk &disk = diskOf(diskOfRow(this->GetParam()));
        if (!disk.problem.empty())
            GTEST_SKIP() << disk.problem;
        folder_.emplace(disk);
    }
    TemporaryFolder &folder() { return *folder_; }
    const Disk &disk() const { return folder_->disk(); }

private:
    std::optional<TemporaryFolder> folder_;
};

// A test that takes place once on every disk.
using DiskTest = DiskRowTest<DiskKind>;

#define ON_EVERY_DISK(suite) INSTANTIATE_TEST_SUITE_P(EveryDisk, suite, testing::ValuesIn(support::everyKind()), support::diskName)

// The layer's own view is not asked by any of these.
void writeFile(const std::string &path, const Bytes &bytes = {});
void writeFile(const std::string &path, std::string_view text);
Bytes readFile(const std::string &path);
bool exists(const std::string &path);                             // a symbolic link counts itself
std::vector<std::string> namesIn(const std::string &directory);   // sorted, without . and ..
std::optional<Bytes> attribute(const std::string &path, const std::string &name);
void setAttribute(const std::string &path, const std::string &name, const Bytes &value);
void removeAttribute(const std::string &path, const std::string &name);
std::vector<std::string> attributeNames(const std::string &path);   // those that begin with "user.", sorted
struct statx statxOf(const std::string &path);

// One line for each object of a tree with everything that a change would show: kind, mode, owner, sizes, dates but the access date, bytes, attributes.
std::string pictureOf(const std::string &directory);

}   // namespace support
