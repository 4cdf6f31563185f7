// Walking trees, listing folders and deleting trees, beside the bare system calls and what else does the same: `./bench`, or this program itself, with a part
// of a row's name to see only some.
//
// The trees lie beneath /dev/shm (tmpfs) and beneath $TMPDIR or /var/tmp (work_folder.h).

#include "benchmarks/bare_walks.h"
#include "benchmarks/operations.h"
#include "benchmarks/work_folder.h"
#include "files/containers.h"

#include <cstdio>
#include <memory>

namespace
{

constexpr FSCatalogInfoBitmap datesAndSizes = kFSCatInfoContentMod | kFSCatInfoAttrMod | kFSCatInfoAccessDate | kFSCatInfoDataSizes;

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
    const WorkFolder place(disk);
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
    const WorkFolder place(disk);
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
    TreesToDelete(const Disk &disk, const TreeShape &shape, int count) : place_(disk)
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
    WorkFolder place_;
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

// --- rows of the one table --------------------------------------------------------------------------------------------------------------

// A walk that asks for so much of each object, of a tree that `top` names by then.
Way ourWalk(const FSRef &top, FSCatalogInfoBitmap which)
{
    return {"", [&top, which] { return walkOurs(top, which); }};
}

void operateWalks(const Disk &disk)
{
    const std::string names = "walk, names and types, " + disk.name, status = "walk, with a status each, " + disk.name;
    if (!isOperationWanted(names) && !isOperationWanted(status))
        return;
    const WorkFolder place(disk);
    const std::string path = place / "tree";
    makeTree(path, {5000, 10});
    const FSRef top = refAt(path);
    const Way bfs = commandWay("bfs", {"bfs", path, "-type", "d"}, walkBare(path));
    if (isOperationWanted(names))
        measureOperation({{names,
                           ourWalk(top, kFSCatInfoNodeFlags),
                           {{"getdents64", [&] { return walkBare(path); }},
                            bfs,
                            {"fts", [&] { return walkByFtsWithoutFolders(path); }},
                            {"std::filesystem", [&] { return walkByLibrary(path); }}}},
                          {1.2, 0, "Walks"}});
    if (isOperationWanted(status))
        measureOperation({{status,
                           ourWalk(top, datesAndSizes),
                           {{"getdents64, statx", [&] { return walkBareWithStatus(path); }},
                            {"nftw", [&] { return walkByNftw(path); }},
                            {"fts", [&] { return walkByFtsWithStatus(path); }}}},
                          {1.03, 0, "Walks"}});
}

// One in so many files gets a resource fork, and thereby a sidecar.
void giveSidecars(const std::string &tree, int folders, int files, int step)
{
    HFSUniStr255 name;
    require(FSGetResourceForkName(&name), "FSGetResourceForkName");
    for (int number = 0; number < folders * files; number += step)
    {
        const FSRef file = refAt(tree + "/folder" + std::to_string(number / files) + "/file" + std::to_string(number % files));
        SInt16 fork = 0;
        require(FSOpenFork(&file, name.length, name.unicode, fsRdWrPerm, &fork), "FSOpenFork");
        require(FSWriteFork(fork, fsAtMark, 0, 4, "fork", nullptr), "FSWriteFork");
        require(FSCloseFork(fork), "FSCloseFork");
    }
}

void operateWalkWithMetadata(const Disk &disk, int step, const char *share, double limit)
{
    const std::string name = std::string("walk, all metadata, ") + share + " with a sidecar, " + disk.name;
    if (!isOperationWanted(name))
        return;
    constexpr int folders = 2000, files = 10;
    const WorkFolder place(disk);
    const std::string path = place / "tree";
    makeTree(path, {folders, files});
    if (step > 0)
        giveSidecars(path, folders, files, step);
    const FSRef top = refAt(path);
    measureOperation({{name,
                       ourWalk(top, datesAndSizes | kFSCatInfoRsrcSizes | kFSCatInfoFinderInfo),
                       {{"getdents64, statx", [&] { return walkBareWithStatus(path); }},
                        {"a look for each sidecar", [&] { return walkAndProbe(path); }}}},
                      {limit, 0, "Walks"},
                      "no peer knows sidecars: the one shown opens ._NAME for each object"});
}

void operateListing(const Disk &disk, int files, int rounds, const Aim &aim)
{
    const std::string name = "listing of " + std::to_string(files) + " into references, " + disk.name;
    if (!isOperationWanted(name))
        return;
    const WorkFolder place(disk);
    const std::string path = place / "folder";
    makeTree(path, {0, files});
    const FSRef folder = refAt(path);
    measureOperation({{name,
                       {"", [&] { return listOurs(folder); }},
                       {{"getdents64", [&] { return listBare(path); }}, {"readdir into strings", [&] { return listByReaddir(path); }}},
                       rounds},
                      aim});
}

void operateDeletion(const Disk &disk)
{
    const std::string name = "deletion of a tree, " + disk.name;
    if (!isOperationWanted(name))
        return;
    const TreeShape shape{500, 10};
    const long objects = shape.folders * (shape.files + 1L);
    std::unique_ptr<TreesToDelete> trees;
    const auto advance = [&] { trees->advance(); };
    const auto ours = [&] {
        require(FSDeleteContainer(&trees->top), "FSDeleteContainer");
        return objects;
    };
    const auto rm = [&] {
        runCommand({"rm", "-rf", trees->path});
        return objects;
    };
    Job job{name,
            {"", ours, advance},
            {{"getdents64, unlinkat", [&] { return deleteBare(trees->path); }, advance},
             {"rm -rf", rm, advance, Counted::commandsOnly},
             {"std::filesystem", [&] { return deleteByLibrary(trees->path); }, advance},
             {"fts, unlinkat", [&] { return deleteByFts(trees->path); }, advance}},
            5,
            false};
    const int counted = 2;
    trees = std::make_unique<TreesToDelete>(disk, shape, job.rounds * static_cast<int>(1 + job.others.size()) + counted);
    measureOperation({job, {1.05, 0, "Deletion"}});
}

void operateOn(const Disk &disk)
{
    operateWalks(disk);
    operateWalkWithMetadata(disk, 0, "none", 1.08);
    operateWalkWithMetadata(disk, 5, "one in five", 1.3);
    operateListing(disk, 1'000, 101, {1.3, 0, "Listings"});
    operateListing(disk, 10'000, 31, {1.3, 0.97, "Listings"});
    operateListing(disk, 100'000, 11, {1.3, 0.97, "Listings"});
    operateListing(disk, 1'000'000, 5, {1.3, 0.85, "Listings"});
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    const bool isForTable = areOperationsWanted(argumentCount, arguments);
    const std::string filter = argumentCount > 1 ? arguments[1] : "";
    for (const Disk &disk : disksWithRoom(std::size_t{1} << 30))
        isForTable ? operateOn(disk) : measureOn(disk, filter);
    if (isForTable)
        for (const Disk &disk : disksWithRoom(std::size_t{1} << 30))
            operateDeletion(disk);
}
