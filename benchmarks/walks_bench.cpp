// Walking trees, listing folders and deleting trees, beside the bare system calls and what else does the same: `./bench`, or this program itself, with a part
// of a row's name to see only some.
//
// The trees lie beneath /dev/shm (tmpfs) and beneath $TMPDIR or /var/tmp, whatever disk that is.

#include "benchmarks/bare_walks.h"
#include "benchmarks/rounds.h"
#include "files/containers.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <unistd.h>

namespace
{

constexpr FSCatalogInfoBitmap datesAndSizes = kFSCatInfoContentMod | kFSCatInfoAttrMod | kFSCatInfoAccessDate | kFSCatInfoDataSizes;

void require(OSStatus result, const char *what)
{
    if (result == noErr)
        return;
    std::fprintf(stderr, "%s: %d\n", what, static_cast<int>(result));
    std::exit(1);
}

FSRef refAt(const std::string &path)
{
    FSRef ref;
    require(FSPathMakeRef(reinterpret_cast<const UInt8 *>(path.c_str()), &ref, nullptr), path.c_str());
    return ref;
}

// Gone with the object.
class Place
{
public:
    explicit Place(const std::string &disk) : path_(disk + "/zerb-bench-XXXXXX")
    {
        if (!mkdtemp(path_.data()))
            throw std::runtime_error("no folder can be made in " + disk);
    }
    ~Place() { std::filesystem::remove_all(path_); }
    Place(const Place &) = delete;
    Place &operator=(const Place &) = delete;
    std::string operator/(const std::string &name) const { return path_ + '/' + name; }

private:
    std::string path_;
};

// --- ours -------------------------------------------------------------------------------------------------------------------------------

Boolean countObject(Boolean, UInt32, const FSCatalogInfo *, const FSRef *, const FSSpec *, const HFSUniStr255 *, void *count)
{
    ++*static_cast<long *>(count);
    return false;
}

long walkOurs(const FSRef &top, FSCatalogInfoBitmap which)
{
    long count = 0;
    require(FSIterateContainer(&top, 0, which, false, false, countObject, &count), "FSIterateContainer");
    return count;
}

long listOurs(const FSRef &folder)
{
    Handle refs;
    UInt32 count = 0;
    Boolean hasChanged;
    require(FSGetDirectoryItems(&folder, &refs, &count, &hasChanged), "FSGetDirectoryItems");
    DisposeHandle(refs);
    return count;
}

// --- jobs -------------------------------------------------------------------------------------------------------------------------------

struct Disk
{
    std::string folder, name;
};

std::string nameSuffix(std::size_t length)
{
    return length == 0 ? "" : ", names of " + std::to_string(length);
}

void measureWalks(const Disk &disk, const TreeShape &shape, const std::string &filter)
{
    const auto ofOurs = [](const FSRef *top, FSCatalogInfoBitmap which) { return [=] { return walkOurs(*top, which); }; };
    const std::string suffix = nameSuffix(shape.nameLength) + ", " + disk.name;
    FSRef top;
    std::string path;
    Job flags{"walk, node flags" + suffix, {"", ofOurs(&top, kFSCatInfoNodeFlags)}, {}};
    Job status{"walk, dates and sizes" + suffix, {"", ofOurs(&top, datesAndSizes)}, {}};
    if (!isWanted(flags, filter) && !isWanted(status, filter))
        return;
    const Place place(disk.folder);
    path = place / "tree";
    makeTree(path, shape);
    top = refAt(path);
    const long objects = walkBare(path);
    const auto find = [&] {
        runCommand({"find", path, "-type", "d"});
        return objects;
    };
    flags.others = {{"getdents64", [&] { return walkBare(path); }},
                    {"fts", [&] { return walkByFts(path); }},
                    {"std::filesystem", [&] { return walkByLibrary(path); }},
                    {"find -type d, a process", find}};
    status.others = {{"getdents64, statx", [&] { return walkBareWithStatus(path); }}};
    for (const Job *job : {&flags, &status})
        if (isWanted(*job, filter))
            measureJob(*job);
}

void measureListing(const Disk &disk, int files, const std::string &filter)
{
    FSRef folder;
    Job job{"listing of " + std::to_string(files) + ", " + disk.name, {"", [&] { return listOurs(folder); }}, {}};
    if (!isWanted(job, filter))
        return;
    const Place place(disk.folder);
    const std::string path = place / "folder";
    makeTree(path, {0, files});
    folder = refAt(path);
    job.others = {{"getdents64", [&] { return listBare(path); }}, {"readdir into strings", [&] { return listByReaddir(path); }}};
    measureJob(job);
}

// All trees are made before the first one goes: a disk makes files more slowly for a while after many were deleted.
class TreesToDelete
{
public:
    TreesToDelete(const Disk &disk, const TreeShape &shape, int count) : place_(disk.folder)
    {
        for (int tree = 0; tree < count; ++tree)
            makeTree(pathOf(tree), shape);
    }
    void advance()
    {
        path = pathOf(next_++);
        top = refAt(path);
    }
    std::string path;
    FSRef top{};

private:
    std::string pathOf(int tree) const { return place_ / ("tree" + std::to_string(tree)); }
    Place place_;
    int next_ = 0;
};

void measureDeletion(const Disk &disk, const TreeShape &shape, const std::string &filter)
{
    std::unique_ptr<TreesToDelete> trees;
    const long objects = shape.folders * (shape.files + 1L);
    const auto advance = [&] { trees->advance(); };
    const auto ours = [&] {
        require(FSDeleteContainer(&trees->top), "FSDeleteContainer");
        return objects;
    };
    const auto rm = [&] {
        runCommand({"rm", "-rf", trees->path});
        return objects;
    };
    Job job{"deletion" + nameSuffix(shape.nameLength) + ", " + disk.name, {"", ours, advance}, {}};
    if (!isWanted(job, filter))
        return;
    job.others = {{"getdents64, unlinkat", [&] { return deleteBare(trees->path); }, advance},
                  {"rm -rf, a process", rm, advance},
                  {"std::filesystem", [&] { return deleteByLibrary(trees->path); }, advance}};
    job.mayRepeat = false;
    trees = std::make_unique<TreesToDelete>(disk, shape, job.rounds * static_cast<int>(1 + job.others.size()));
    measureJob(job);
}

void measureOn(const Disk &disk, const std::string &filter)
{
    for (const std::size_t nameLength : {0, 60, 250})
        measureWalks(disk, {2000, 10, nameLength}, filter);
    for (const int files : {10'000, 100'000, 1'000'000})
        measureListing(disk, files, filter);
    for (const std::size_t nameLength : {0, 60, 250})
        measureDeletion(disk, {500, 10, nameLength}, filter);
}

std::string diskFolder()
{
    const char *chosen = std::getenv("TMPDIR");
    return chosen ? chosen : "/var/tmp";
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    const std::string filter = argumentCount > 1 ? arguments[1] : "";
    measureOn({"/dev/shm", "tmpfs"}, filter);
    measureOn({diskFolder(), "disk"}, filter);
}
