// Copying one open fork into another through a buffer of 1 MiB, beside the loop of pread and pwrite that a program without forks would
// write.
//
// 256 MiB each time, over a fork of the same length that is there already (new room in memory costs more, and is far noisier), on tmpfs and
// on the disk of /var/tmp where they have room. Whole copies in turns; which comes first alternates. The table says nanoseconds for each
// MiB.
#include "benchmarks/ratio_table.h"
#include "benchmarks/work_folder.h"
#include "files/forks.h"

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

constexpr std::size_t bufferSize = std::size_t{1} << 20;
constexpr std::size_t bufferCount = 256;
constexpr int turns = 9;
constexpr off_t plainSidecarSize = 82;   // where the fork begins in a new sidecar

class RawFile
{
public:
    explicit RawFile(const std::string &path) : number_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
    {
        requireNumber(number_, path.c_str());
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
            require(FSWriteFork(from_, fsAtMark, 0, bufferSize, buffer_.data(), nullptr), "FSWriteFork");
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

    void copy() { require(FSCopyFork(from_, to_, buffer_.data(), bufferSize), "FSCopyFork"); }

private:
    static SInt16 open(const std::string &path, bool resource)
    {
        const RawFile made(path);
        const FSRef ref = refAt(path);
        HFSUniStr255 name;
        SInt16 fork = 0;
        require(resource ? FSGetResourceForkName(&name) : FSGetDataForkName(&name), "the fork's name");
        require(FSOpenFork(&ref, name.length, name.unicode, fsRdWrPerm, &fork), "FSOpenFork");
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
                require(ioErr, "pwrite");
            at += got;
        }
    }

    void fill()
    {
        for (std::size_t i = 0; i < bufferCount; ++i)
            requireNumber(::pwrite(from_.number(), buffer_.data(), bufferSize, static_cast<off_t>(i * bufferSize)), "pwrite");
        copy();
    }

private:
    RawFile from_, to_;
    off_t offset_;
    std::vector<char> buffer_;
};

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

void measure(benchmark::State &state, const Disk &disk, bool resource, Beside beside)
{
    const WorkFolder folder(disk);
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

void addCopyRow(const Disk &disk, bool resource, Beside beside)
{
    const RatioRow row{std::string(resource ? "resource" : "data") + " fork, 256 MiB, " + disk.name,
                       beside == Beside::theSameFiles ? "loop, same files" : "loop, own files",
                       resource && beside == Beside::filesOfTheirOwn ? "a fork begins at byte 82, no page's start" : ""};
    benchmark::RegisterBenchmark(rememberRow(row).c_str(), [disk, resource, beside](benchmark::State &state) {
        measure(state, disk, resource, beside);
    })->Iterations(turns);
}

// Its row of the one table.
void operateCopy(const Disk &disk)
{
    const std::string name = "open fork, through the caller's buffer, " + disk.name;
    if (!isOperationWanted(name))
        return;
    const WorkFolder folder(disk);
    ForkPair forks(folder, false);
    BarePair bare(folder / "from", folder / "to", 0);
    ::sync();
    const auto ours = [&forks] {
        forks.copy();
        return static_cast<long>(bufferCount);
    };
    const auto theirs = [&bare] {
        bare.copy();
        return static_cast<long>(bufferCount);
    };
    measureOperation({{name, {"", ours}, {{"pread, pwrite", theirs}}},
                      {1.02, 0, "Open forks"},
                      "the same loop is what else one would write; an object is a MiB"});
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    const bool isForTable = areOperationsWanted(argumentCount, arguments);
    for (const Disk &disk : disksWithRoom(6 * bufferSize * bufferCount))
    {
        if (isForTable)
        {
            operateCopy(disk);
            continue;
        }
        addCopyRow(disk, false, Beside::theSameFiles);
        addCopyRow(disk, true, Beside::theSameFiles);
        addCopyRow(disk, true, Beside::filesOfTheirOwn);
    }
    return isForTable ? 0 : runRatioTable(argumentCount, arguments);
}
