// Copying one open fork into another through a buffer of 1 MiB, beside the loop of pread and pwrite that a program without forks would
// write.
//
// 1 GiB each time, over a fork of the same length that is there already (new room in memory costs more, and is far noisier), on tmpfs and
// on the disk of /var/tmp where they have room. Whole copies in turns; which comes first alternates. The table says nanoseconds for each
// MiB.
#include "benchmarks/ratio_table.h"
#include "platform/platform.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr std::size_t bufferSize = std::size_t{1} << 20;
constexpr std::size_t bufferCount = 1024;
constexpr int turns = 9;
constexpr off_t plainSidecarSize = 82;   // where the fork begins in a new sidecar

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error("forks_bench: " + what);
}

void check(OSErr result, const char *what)
{
    if (result != noErr)
        fail(std::string(what) + " gave " + std::to_string(result));
}

// A folder of our own that goes with the object.
class WorkFolder
{
public:
    explicit WorkFolder(const std::string &where) : path_(where + "/zerb-forks-bench-XXXXXX")
    {
        if (!::mkdtemp(path_.data()))
            fail("no folder in " + where);
    }
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;
    ~WorkFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string operator/(const std::string &name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

class RawFile
{
public:
    explicit RawFile(const std::string &path) : number_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
    {
        if (number_ < 0)
            fail("cannot open " + path);
    }
    RawFile(const RawFile &) = delete;
    RawFile &operator=(const RawFile &) = delete;
    ~RawFile() { ::close(number_); }
    int number() const { return number_; }

private:
    int number_;
};

// The forks of two files, opened through the platform, with what they hold.
class ForkPair
{
public:
    ForkPair(const WorkFolder &folder, bool resource) : buffer_(bufferSize)
    {
        from_ = open(folder / "from", resource);
        to_ = open(folder / "to", resource);
        for (std::size_t i = 0; i < bufferCount; ++i)
        {
            std::fill(buffer_.begin(), buffer_.end(), static_cast<char>(i));
            check(FSWriteFork(from_, fsAtMark, 0, bufferSize, buffer_.data(), nullptr), "FSWriteFork");
        }
        copy();
    }
    ForkPair(const ForkPair &) = delete;
    ForkPair &operator=(const ForkPair &) = delete;
    ~ForkPair()
    {
        FSCloseFork(from_);
        FSCloseFork(to_);
    }

    void copy()
    {
        SInt64 size = 0;
        check(FSGetForkSize(from_, &size), "FSGetForkSize");
        check(FSSetForkSize(to_, fsFromStart, size), "FSSetForkSize");
        check(FSSetForkPosition(from_, fsFromStart, 0), "FSSetForkPosition");
        check(FSSetForkPosition(to_, fsFromStart, 0), "FSSetForkPosition");
        OSErr read = noErr;
        while (read == noErr)
        {
            ByteCount got = 0;
            read = FSReadFork(from_, fsAtMark | noCacheMask, 0, bufferSize, buffer_.data(), &got);
            check(FSWriteFork(to_, fsAtMark | noCacheMask, 0, got, buffer_.data(), nullptr), "FSWriteFork");
        }
        if (read != eofErr)
            check(read, "FSReadFork");
    }

private:
    static SInt16 open(const std::string &path, bool resource)
    {
        const RawFile made(path);
        FSRef ref;
        HFSUniStr255 name;
        SInt16 fork = 0;
        check(static_cast<OSErr>(FSPathMakeRef(reinterpret_cast<const UInt8 *>(path.c_str()), &ref, nullptr)), "FSPathMakeRef");
        check(resource ? FSGetResourceForkName(&name) : FSGetDataForkName(&name), "the fork's name");
        check(FSOpenFork(&ref, name.length, name.unicode, fsRdWrPerm, &fork), "FSOpenFork");
        return fork;
    }

    SInt16 from_ = 0, to_ = 0;
    std::vector<char> buffer_;
};

// The same by hand. The bytes begin at `offset`.
class BarePair
{
public:
    BarePair(const std::string &from, const std::string &to, off_t offset) : from_(from), to_(to), offset_(offset), buffer_(bufferSize) {}

    void copy()
    {
        off_t at = offset_;
        ssize_t got;
        while ((got = ::pread(from_.number(), buffer_.data(), bufferSize, at)) > 0)
        {
            if (::pwrite(to_.number(), buffer_.data(), static_cast<std::size_t>(got), at) != got)
                fail("pwrite");
            at += got;
        }
    }

    void fill()
    {
        for (std::size_t i = 0; i < bufferCount; ++i)
            if (::pwrite(from_.number(), buffer_.data(), bufferSize, static_cast<off_t>(i * bufferSize)) < 0)
                fail("pwrite");
        copy();
    }

private:
    RawFile from_, to_;
    off_t offset_;
    std::vector<char> buffer_;
};

bool hasRoom(const std::string &where)
{
    struct statvfs room;
    const std::uint64_t needed = std::uint64_t{6} * bufferSize * bufferCount;
    return ::access(where.c_str(), W_OK) == 0 && ::statvfs(where.c_str(), &room) == 0 && room.f_bavail * room.f_frsize > needed;
}

double nanosecondsAMiB(const auto &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - start;
    return passed.count() / bufferCount;
}

enum class Beside
{
    theSameFiles,   // the very bytes that our copy works on
    filesOfTheirOwn,
};

void measure(benchmark::State &state, const std::string &where, bool resource, Beside beside)
{
    const WorkFolder folder(where);
    ForkPair forks(folder, resource);
    const bool shared = beside == Beside::theSameFiles;
    const std::string prefix = !shared ? "bare-" : resource ? "._" : "";
    BarePair bare(folder / (prefix + "from"), folder / (prefix + "to"), shared && resource ? plainSidecarSize : 0);
    if (!shared)
        bare.fill();
    ::sync();
    const auto ours = [&forks] { forks.copy(); };
    const auto theirs = [&bare] { bare.copy(); };
    ours();
    theirs();
    TurnTimes times;
    for (auto turn : state)
    {
        (void)turn;
        const bool oursFirst = times.ours.size() % 2 == 0;
        if (oursFirst)
            times.ours.push_back(nanosecondsAMiB(ours));
        times.theirs.push_back(nanosecondsAMiB(theirs));
        if (!oursFirst)
            times.ours.push_back(nanosecondsAMiB(ours));
    }
    times.report(state);
}

void addCopyRow(const std::string &disk, const std::string &where, bool resource, Beside beside)
{
    const RatioRow row{std::string(resource ? "resource" : "data") + " fork, 1 GiB, " + disk,
                       beside == Beside::theSameFiles ? "loop, same files" : "loop, own files",
                       resource && beside == Beside::filesOfTheirOwn ? "a fork begins at byte 82, no page's start" : ""};
    benchmark::RegisterBenchmark(rememberRow(row).c_str(), [where, resource, beside](benchmark::State &state) {
        measure(state, where, resource, beside);
    })->Iterations(turns);
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    const std::pair<const char *, const char *> disks[] = {{"tmpfs", "/dev/shm"}, {"/var/tmp", "/var/tmp"}};
    for (const auto &[disk, where] : disks)
    {
        if (!hasRoom(where))
        {
            std::printf("%s is left out: it has no room for copies of 1 GiB\n", where);
            continue;
        }
        addCopyRow(disk, where, false, Beside::theSameFiles);
        addCopyRow(disk, where, true, Beside::theSameFiles);
        addCopyRow(disk, where, true, Beside::filesOfTheirOwn);
    }
    return runRatioTable(argumentCount, arguments);
}
