// Copying whole files with FSCopyFile, beside the bare system calls and the commands that do the same.
//
// Every turn makes the same copies both ways, each into a folder that is empty and on its own side, twice: whoever comes first pays for the memory that is
// given back to the machine between, so each comes first once. What was copied is removed outside of the times. On tmpfs and on the disk of /var/tmp where
// they have room. A command's time includes its start.
#include "benchmarks/ratio_table.h"
#include "files/fstoolkit.h"
#include "standin/standin.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int smallFileCount = 10000;
constexpr std::size_t smallFileSize = 4096;
constexpr std::size_t largeFileSize = std::size_t{1} << 30;

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error("copies_bench: " + what);
}

void check(OSStatus result, const char *what)
{
    if (result != noErr)
        fail(std::string(what) + " gave " + std::to_string(result));
}

int checked(int result, const char *what)
{
    if (result < 0)
        fail(what);
    return result;
}

FSRef referenceTo(const std::string &path)
{
    FSRef ref{};
    check(FSPathMakeRef(reinterpret_cast<const UInt8 *>(path.c_str()), &ref, nullptr), "FSPathMakeRef");
    return ref;
}

// A folder of our own that goes with the object: `from` with the files, and a folder for each of the two sides.
class WorkFolder
{
public:
    WorkFolder(const std::string &where, int fileCount, std::size_t fileSize) : path_(where + "/zerb-copies-bench-XXXXXX")
    {
        if (!::mkdtemp(path_.data()))
            fail("no folder in " + where);
        for (const char *name : {"/from", "/ours", "/theirs"})
            checked(::mkdir((path_ + name).c_str(), 0755), "mkdir");
        for (int i = 0; i < fileCount; ++i)
            makeFile(path_ + "/from/file" + std::to_string(i), fileSize);
        flush();
    }
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;
    ~WorkFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string operator/(const std::string &name) const { return path_ + "/" + name; }

    void flush() const   // so that no turn pays for the one before
    {
        const int folder = checked(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), "open");
        ::syncfs(folder);
        ::close(folder);
    }

    void empty(const std::string &name) const
    {
        for (const auto &entry : std::filesystem::directory_iterator(path_ + "/" + name))
            std::filesystem::remove_all(entry.path());
    }

private:
    static void makeFile(const std::string &path, std::size_t size)
    {
        const std::vector<char> piece(std::min<std::size_t>(size, 1 << 20), 'x');
        const int file = checked(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644), "open");
        for (std::size_t written = 0; written < size; written += piece.size())
            if (::write(file, piece.data(), piece.size()) != static_cast<ssize_t>(piece.size()))
                fail("write");
        ::close(file);
    }

    std::string path_;
};

// --- ours -----------------------------------------------------------------------------------------------------------------------------------

// The references that a host has from its listing.
class OurCopies
{
public:
    OurCopies(const WorkFolder &folder, int fileCount) : target_(referenceTo(folder / "ours"))
    {
        for (int i = 0; i < fileCount; ++i)
            sources_.push_back(referenceTo(folder / ("from/file" + std::to_string(i))));
    }
    void copy() const
    {
        for (const FSRef &source : sources_)
            check(FSCopyFile(&source, &target_, 0, nullptr, kTextEncodingUnknown, nullptr), "FSCopyFile");
    }

private:
    FSRef target_;
    std::vector<FSRef> sources_;
};

// --- theirs ---------------------------------------------------------------------------------------------------------------------------------

void copyBareOne(int from, int to, const char *name, char *buffer)
{
    const int source = checked(::openat(from, name, O_RDONLY | O_CLOEXEC), "open");
    const int copy = checked(::openat(to, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644), "open");
    const ssize_t got = ::read(source, buffer, smallFileSize);
    if (got < 0 || ::write(copy, buffer, static_cast<std::size_t>(got)) != got)
        fail("read and write");
    ::close(source);
    ::close(copy);
}

void copyBareSmall(const WorkFolder &folder)
{
    char buffer[smallFileSize];
    const int from = checked(::open((folder / "from").c_str(), O_PATH | O_CLOEXEC), "open");
    const int to = checked(::open((folder / "theirs").c_str(), O_PATH | O_CLOEXEC), "open");
    for (int i = 0; i < smallFileCount; ++i)
        copyBareOne(from, to, ("file" + std::to_string(i)).c_str(), buffer);
    ::close(from);
    ::close(to);
}

void copyBareLarge(const WorkFolder &folder)
{
    const int source = checked(::open((folder / "from/file0").c_str(), O_RDONLY | O_CLOEXEC), "open");
    const int copy = checked(::open((folder / "theirs/file0").c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644), "open");
    for (std::size_t left = largeFileSize; left > 0;)
    {
        const ssize_t copied = ::copy_file_range(source, nullptr, copy, nullptr, left, 0);
        if (copied <= 0)
            fail("copy_file_range");
        left -= static_cast<std::size_t>(copied);
    }
    ::close(source);
    ::close(copy);
}

void copyByCommand(const WorkFolder &folder, const std::string &options)
{
    const std::string command = "cp " + options + " '" + (folder / "from") + "/.' '" + (folder / "theirs") + "/'";
    if (std::system(command.c_str()) != 0)
        fail(command);
}

// --- the table ------------------------------------------------------------------------------------------------------------------------------

struct Job
{
    const char *what;
    int fileCount;
    std::size_t fileSize;
    int turns;
};
constexpr Job smallJob{"10,000 files of 4 KiB", smallFileCount, smallFileSize, 5};
constexpr Job largeJob{"1 GiB", 1, largeFileSize, 5};

using Theirs = std::function<void(const WorkFolder &)>;

double nanosecondsForOne(const std::function<void()> &work, int count)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - start;
    return passed.count() / count;
}

void measure(benchmark::State &state, const std::string &where, const Job &job, const Theirs &theirs)
{
    const WorkFolder folder(where, job.fileCount, job.fileSize);
    const OurCopies copies(folder, job.fileCount);
    TurnTimes times;
    for (auto turn : state)
    {
        (void)turn;
        double ours = 0, others = 0;
        const auto doOurs = [&] { ours += nanosecondsForOne([&] { copies.copy(); }, job.fileCount); };
        const auto doTheirs = [&] { others += nanosecondsForOne([&] { theirs(folder); }, job.fileCount); };
        for (const bool oursFirst : {true, false})
        {
            oursFirst ? doOurs() : doTheirs();
            oursFirst ? doTheirs() : doOurs();
            folder.empty("ours");
            folder.empty("theirs");
            folder.flush();
        }
        times.ours.push_back(ours / 2);
        times.theirs.push_back(others / 2);
    }
    times.report(state);
}

void addRow(const std::string &where, const Job &job, const std::string &peer, const Theirs &theirs)
{
    const RatioRow row{std::string(job.what) + ", " + where, peer, ""};
    benchmark::RegisterBenchmark(rememberRow(row).c_str(), [=](benchmark::State &state) {
        measure(state, where, job, theirs);
    })->Iterations(job.turns);
}

bool hasRoom(const std::string &where)
{
    struct statvfs room;
    return ::access(where.c_str(), W_OK) == 0 && ::statvfs(where.c_str(), &room) == 0 && room.f_bavail * room.f_frsize > 4 * largeFileSize;
}

void printCalls(const std::string &where)
{
    const WorkFolder folder(where, 1000, smallFileSize);
    const OurCopies copies(folder, 1000);
    const std::uint64_t before = standin::systemCallCount();
    copies.copy();
    std::printf("%s: %.2f system calls for each file of 4 KiB\n", where.c_str(),
                static_cast<double>(standin::systemCallCount() - before) / 1000);
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    for (const std::string where : {"/dev/shm", "/var/tmp"})
    {
        if (!hasRoom(where))
        {
            std::printf("%s is left out: it has no room for three copies of 1 GiB\n", where.c_str());
            continue;
        }
        printCalls(where);
        addRow(where, smallJob, "open, open, read, write, close, close", copyBareSmall);
        addRow(where, smallJob, "cp -r", [](const WorkFolder &folder) { copyByCommand(folder, "-r"); });
        addRow(where, smallJob, "cp -a", [](const WorkFolder &folder) { copyByCommand(folder, "-a"); });
        addRow(where, largeJob, "one copy_file_range", copyBareLarge);
        addRow(where, largeJob, "cp", [](const WorkFolder &folder) { copyByCommand(folder, "-r"); });
    }
    return runRatioTable(argumentCount, arguments);
}
