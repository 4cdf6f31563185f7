// What is known of one object after the other, through references, beside the bare statx in an open folder. Rows of the one table alone: see operations.h.
//
// The objects are files in one folder, and the references come from its listing. A file with a sidecar has a resource fork of four bytes.

#include "benchmarks/operations.h"
#include "benchmarks/work_folder.h"
#include "files/fstoolkit.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int fileCount = 4000;
constexpr FSCatalogInfoBitmap fromStatus = kFSCatInfoContentMod | kFSCatInfoAttrMod | kFSCatInfoAccessDate | kFSCatInfoDataSizes;
constexpr FSCatalogInfoBitmap everything = fromStatus | kFSCatInfoRsrcSizes | kFSCatInfoFinderInfo;

class Files
{
public:
    Files(const Disk &disk, bool haveSidecars) : place_(disk)
    {
        for (int number = 0; number < fileCount; ++number)
            ::close(requireNumber(::open((place_ / nameOf(number)).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644), "open"));
        if (haveSidecars)
            giveSidecars();
        for (int number = 0; number < fileCount; ++number)
            references_.push_back(refAt(place_ / nameOf(number)));
        folder_ = requireNumber(::open(place_.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC), "open");
    }
    ~Files() { ::close(folder_); }
    Files(const Files &) = delete;
    Files &operator=(const Files &) = delete;

    long askOurs(FSCatalogInfoBitmap which) const
    {
        FSCatalogInfo info;
        for (const FSRef &reference : references_)
            require(FSGetCatalogInfo(&reference, which, &info, nullptr, nullptr, nullptr), "FSGetCatalogInfo");
        return fileCount;
    }

    long askBare(bool readsSidecar) const
    {
        for (int number = 0; number < fileCount; ++number)
        {
            const std::string name = nameOf(number);
            struct statx status;
            requireNumber(::statx(folder_, name.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status), "statx");
            if (readsSidecar)
                readSidecar("._" + name);
        }
        return fileCount;
    }

    long askByPath() const
    {
        for (int number = 0; number < fileCount; ++number)
        {
            struct stat status;
            requireNumber(::lstat((place_ / nameOf(number)).c_str(), &status), "lstat");
        }
        return fileCount;
    }

private:
    static std::string nameOf(int number) { return "file" + std::to_string(number); }

    void giveSidecars() const
    {
        HFSUniStr255 name;
        require(FSGetResourceForkName(&name), "FSGetResourceForkName");
        for (int number = 0; number < fileCount; ++number)
        {
            const FSRef file = refAt(place_ / nameOf(number));
            SInt16 fork = 0;
            require(FSOpenFork(&file, name.length, name.unicode, fsRdWrPerm, &fork), "FSOpenFork");
            require(FSWriteFork(fork, fsAtMark, 0, 4, "fork", nullptr), "FSWriteFork");
            require(FSCloseFork(fork), "FSCloseFork");
        }
    }

    void readSidecar(const std::string &name) const
    {
        char beginning[512];
        const int sidecar = ::openat(folder_, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        if (sidecar < 0)
            return;
        requireNumber(::read(sidecar, beginning, sizeof beginning), "read");
        ::close(sidecar);
    }

    WorkFolder place_;
    std::vector<FSRef> references_;
    int folder_ = -1;
};

Way statxWay(const Files &files)
{
    return {"statx", [&files] { return files.askBare(false); }};
}

void operateStatus(const Disk &disk)
{
    const std::string name = "record of one object, dates and sizes, " + disk.name;
    if (!isOperationWanted(name))
        return;
    const Files files(disk, false);
    measureOperation({{name,
                       {"", [&] { return files.askOurs(fromStatus); }},
                       {statxWay(files), {"lstat, by path", [&] { return files.askByPath(); }}},
                       31},
                      {1.1, 0, "Records"}});
}

void operateSidecars(const Disk &disk, bool haveSidecars, double limit)
{
    const std::string name = std::string("record, all metadata, ") + (haveSidecars ? "a" : "no") + " sidecar, " + disk.name;
    if (!isOperationWanted(name))
        return;
    const Files files(disk, haveSidecars);
    measureOperation({{name,
                       {"", [&] { return files.askOurs(everything); }},
                       {statxWay(files), {"statx, a look for the sidecar", [&] { return files.askBare(true); }}},
                       31},
                      {limit, 0, "Records"},
                      "no peer knows sidecars: the one shown opens ._NAME and reads it"});
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    areOperationsWanted(argumentCount, arguments);
    for (const Disk &disk : disksWithRoom(std::size_t{256} << 20))
    {
        operateStatus(disk);
        operateSidecars(disk, false, disk.name == "tmpfs" ? 2.4 : 2.0);
        operateSidecars(disk, true, 3.7);
    }
}
