// The program zerb as a whole, from its start to its end, beside other programs. Rows of the one table alone: see operations.h.

#include "benchmarks/bare_walks.h"
#include "benchmarks/operations.h"
#include "benchmarks/work_folder.h"

#include <filesystem>

namespace
{

// The one built beside this program.
std::string zerb()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "zerb";
}

void operateInfo(const Disk &disk)
{
    const std::string name = "zerb info, a process, " + disk.name;
    if (!isOperationWanted(name))
        return;
    const WorkFolder place(disk);
    makeTree(place.path(), {0, 1});
    const std::string file = place / "file0";
    measureOperation({{name,
                       commandWay("", {zerb(), "info", file}, 1),
                       {commandWay("stat", {"stat", file}, 1), commandWay("gio info", {"gio", "info", file}, 1)},
                       101},
                      {2.0, 1.0, "Start-up"}});
}

void operateFind(const Disk &disk)
{
    const std::string name = "zerb find of 100,000, a process, " + disk.name;
    if (!isOperationWanted(name))
        return;
    const WorkFolder place(disk);
    const std::string tree = place / "tree";
    makeTree(tree, {10'000, 9});
    const long objects = walkBare(tree);
    measureOperation({{name,
                       commandWay("", {zerb(), "find", tree}, objects),
                       {{"getdents64", [&] { return walkBare(tree); }}, commandWay("find", {"find", tree}, objects)},
                       7},
                      {0, 1.0, "Start-up"}});
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    areOperationsWanted(argumentCount, arguments);
    for (const Disk &disk : disksWithRoom(std::size_t{512} << 20))
    {
        operateInfo(disk);
        operateFind(disk);
    }
}
