// Copying whole files with FSCopyFile, beside the bare system calls and the commands that do the same.
//
// Every turn makes the same copies both ways, each into a folder that is empty and on its own side, twice: whoever comes first pays for the memory that is
// given back to the machine between, so each comes first once. What was copied is removed outside of the times. On tmpfs and on the disk of /var/tmp where
// they have room. A command's time includes its start.
#include "benchmarks/ratio_table.h"
#include "benchmarks/work_folder.h"
#include "files/fstoolkit.h"
#include "standin/standin.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <linux/fs.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int smallFileCount = 4000;
constexpr std::size_t smallFileSize = 4096;
constexpr int clonedFileCount = 100;
constexpr std::size_t largeFileSize = std::size_t{1} << 28;

// `from` with the files, and a folder for each side that copies.
class CopyFolders : public WorkFolder
{
public:
    CopyFolders(const Disk &disk, int fileCount, std::size_t fileSize) : WorkFolder(disk)
    {
        for (const char *name : {"from", "ours", "theirs"})
            requireNumber(::mkdir((*this / name).c_str(), 0755), "mkdir");
        for (int i = 0; i < fileCount; ++i)
            makeFile(*this / ("from/file" + std::to_string(i)), fileSize);
        flush();
    }

    void flush() const   // so that no turn pays for the one before
    {
        const int folder = requireNumber(::open(path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), "open");
        ::syncfs(folder);
        ::close(folder);
    }

    void empty(const std::string &name) const
    {
        for (const auto &entry : std::filesystem::directory_iterator(*this / name))
            std::filesystem::remove_all(entry.path());
    }

private:
    static void makeFile(const std::string &file, std::size_t size)
    {
        const std::vector<char> piece(std::min<std::size_t>(size, 1 << 20), 'x');
        const int made = requireNumber(::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644), "open");
        for (std::size_t written = 0; written < size; written += piece.size())
            if (::write(made, piece.data(), piece.size()) != static_cast<ssize_t>(piece.size()))
                require(ioErr, "write");
        ::close(made);
    }
};

// --- ours -----------------------------------------------------------------------------------------------------------------------------------

// The references that a host has from its listing.
class OurCopies
{
public:
    OurCopies(const CopyFolders &folder, int fileCount) : target_(refAt(folder / "ours"))
    {
        for (int i = 0; i < fileCount; ++i)
            sources_.push_back(refAt(folder / ("from/file" + std::to_string(i))));
    }
    void copy() const
    {
        for (const FSRef &source : sources_)
            require(FSCopyFile(&source, &target_, 0, nullptr, kTextEncodingUnknown, nullptr), "FSCopyFile");
    }

private:
    FSRef target_;
    std::vector<FSRef> sources_;
};

// --- theirs ---------------------------------------------------------------------------------------------------------------------------------

void copyBareOne(int from, int to, const char *name, char *buffer)
{
    const int source = requireNumber(::openat(from, name, O_RDONLY | O_CLOEXEC), "open");
    const int copy = requireNumber(::openat(to, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644), "open");
    const ssize_t got = ::read(source, buffer, smallFileSize);
    if (got < 0 || ::write(copy, buffer, static_cast<std::size_t>(got)) != got)
        require(ioErr, "read and write");
    ::close(source);
    ::close(copy);
}

void copyBareSmall(const CopyFolders &folder)
{
    char buffer[smallFileSize];
    const int from = requireNumber(::open((folder / "from").c_str(), O_PATH | O_CLOEXEC), "open");
    const int to = requireNumber(::open((folder / "theirs").c_str(), O_PATH | O_CLOEXEC), "open");
    for (int i = 0; i < smallFileCount; ++i)
        copyBareOne(from, to, ("file" + std::to_string(i)).c_str(), buffer);
    ::close(from);
    ::close(to);
}

void copyBareLarge(const CopyFolders &folder)
{
    const int source = requireNumber(::open((folder / "from/file0").c_str(), O_RDONLY | O_CLOEXEC), "open");
    const int copy = requireNumber(::open((folder / "theirs/file0").c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644), "open");
    while (requireNumber(::copy_file_range(source, nullptr, copy, nullptr, largeFileSize, 0), "copy_file_range") > 0)
        continue;
    ::close(source);
    ::close(copy);
}

void cloneBareOne(const CopyFolders &folder, const std::string &name)
{
    const int source = requireNumber(::open((folder / ("from/" + name)).c_str(), O_RDONLY | O_CLOEXEC), "open");
    const int copy = requireNumber(::open((folder / ("theirs/" + name)).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644), "open");
    requireNumber(::ioctl(copy, FICLONE, source), "FICLONE");
    ::close(source);
    ::close(copy);
}

void cloneBare(const CopyFolders &folder)
{
    for (int i = 0; i < clonedFileCount; ++i)
        cloneBareOne(folder, "file" + std::to_string(i));
}

void copyByLibrary(const CopyFolders &folder)
{
    for (const auto &entry : std::filesystem::directory_iterator(folder / "from"))
        std::filesystem::copy_file(entry.path(), folder / ("theirs/" + entry.path().filename().native()));
}

void copyByCommand(const CopyFolders &folder, const std::string &options)
{
    runCommand({"cp", options, folder / "from/.", folder / "theirs/"});
}

// --- the table ------------------------------------------------------------------------------------------------------------------------------

struct Files
{
    const char *what;
    int fileCount;
    std::size_t fileSize;
    int turns;
};
constexpr Files smallFiles{"4,000 files of 4 KiB", smallFileCount, smallFileSize, 5};
constexpr Files largeFile{"256 MiB", 1, largeFileSize, 5};

using Theirs = std::function<void(const CopyFolders &)>;

double nanosecondsForOne(const std::function<void()> &work, int count)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - start;
    return passed.count() / count;
}

void measure(benchmark::State &state, const Disk &disk, const Files &files, const Theirs &theirs)
{
    const CopyFolders folder(disk, files.fileCount, files.fileSize);
    const OurCopies copies(folder, files.fileCount);
    TurnTimes times;
    for (auto turn : state)
    {
        (void)turn;
        double ours = 0, others = 0;
        const auto doOurs = [&] { ours += nanosecondsForOne([&] { copies.copy(); }, files.fileCount); };
        const auto doTheirs = [&] { others += nanosecondsForOne([&] { theirs(folder); }, files.fileCount); };
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

void addRow(const Disk &disk, const Files &files, const std::string &peer, const Theirs &theirs)
{
    const RatioRow row{std::string(files.what) + ", " + disk.name, peer, ""};
    benchmark::RegisterBenchmark(rememberRow(row).c_str(), [=](benchmark::State &state) {
        measure(state, disk, files, theirs);
    })->Iterations(files.turns);
}

void printCalls(const Disk &disk)
{
    const CopyFolders folder(disk, 1000, smallFileSize);
    const OurCopies copies(folder, 1000);
    const std::uint64_t before = standin::systemCallCount();
    copies.copy();
    std::printf("%s: %.2f system calls for each file of 4 KiB\n", disk.name.c_str(),
                static_cast<double>(standin::systemCallCount() - before) / 1000);
}

// --- rows of the one table ------------------------------------------------------------------------------------------------------------------

void operateCopies(const std::string &name, const Disk &disk, const Files &files, const std::pair<const char *, Theirs> &floor,
                   const Aim &aim)
{
    if (!isOperationWanted(name))
        return;
    const CopyFolders folder(disk, files.fileCount, files.fileSize);
    const OurCopies copies(folder, files.fileCount);
    const auto clear = [&folder] {
        folder.empty("ours");
        folder.empty("theirs");
        folder.flush();
    };
    const long count = files.fileCount;
    const auto wayOf = [&](const char *wayName, const Theirs &theirs, Counted counted) {
        return Way{wayName,
                   [&folder, theirs, count] {
                       theirs(folder);
                       return count;
                   },
                   clear, counted};
    };
    measureOperation({{name,
                       wayOf(
                           "", [&copies](const CopyFolders &) { copies.copy(); }, Counted::everything),
                       {wayOf(floor.first, floor.second, Counted::everything), wayOf("std::filesystem", copyByLibrary, Counted::everything),
                        wayOf(
                            "cp -r", [](const CopyFolders &from) { copyByCommand(from, "-r"); }, Counted::commandsOnly)},
                       files.turns,
                       false},
                      aim});
}

void operateClones()
{
    const std::string name = "copy of 4 MiB that share their blocks, btrfs";
    const Files files{"", clonedFileCount, std::size_t{4} << 20, 11};
    const char *folder = std::getenv("ZERB_BENCH_CLONING");
    if (!folder)
        return leaveOut(name, "no disk that can share blocks could be mounted");
    operateCopies(name, {folder, "btrfs"}, files, {"FICLONE", cloneBare}, {2.0, 0, "Copies"});
}

void operateOn(const Disk &disk)
{
    operateCopies("copy of 4 KiB, " + disk.name, disk, {"", smallFileCount, smallFileSize, 9}, {"open, read, write, close", copyBareSmall},
                  {1.06, 0, "Copies"});
    operateCopies("copy of 256 MiB, " + disk.name, disk, {"", 1, largeFileSize, 9}, {"copy_file_range", copyBareLarge},
                  {1.03, 0, "Copies"});
}

void addRowsOn(const Disk &disk)
{
    printCalls(disk);
    addRow(disk, smallFiles, "open, open, read, write, close, close", copyBareSmall);
    addRow(disk, smallFiles, "cp -r", [](const CopyFolders &folder) { copyByCommand(folder, "-r"); });
    addRow(disk, smallFiles, "cp -a", [](const CopyFolders &folder) { copyByCommand(folder, "-a"); });
    addRow(disk, largeFile, "one copy_file_range", copyBareLarge);
    addRow(disk, largeFile, "cp", [](const CopyFolders &folder) { copyByCommand(folder, "-r"); });
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    const bool isForTable = areOperationsWanted(argumentCount, arguments);
    for (const Disk &disk : disksWithRoom(4 * largeFileSize))
        isForTable ? operateOn(disk) : addRowsOn(disk);
    if (!isForTable)
        return runRatioTable(argumentCount, arguments);
    operateClones();
}
