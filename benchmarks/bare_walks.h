// Walks, listings and deletions as a program would write them without the library: by bare system calls, by fts, by the C++ library. And the trees that they
// are measured on.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Folders in one folder, with so many empty files in each; 0 folders: the files alone, in one folder. Names are padded to a length.
struct TreeShape
{
    int folders, files;
    std::size_t nameLength = 0;
};
void makeTree(const std::string &path, const TreeShape &shape);

// Each gives how many objects it met, the top not among them; sidecars are part of their files.
long walkBare(const std::string &top);             // getdents64 and its types
long walkBareWithStatus(const std::string &top);   // and a statx for each object
long walkAndProbe(const std::string &top);         // and for each, whether it has a sidecar, whose beginning is read
long walkByFts(const std::string &top);
long walkByFtsWithoutFolders(const std::string &top);   // that is, without making each the process's own in turn
long walkByFtsWithStatus(const std::string &top);
long walkByNftw(const std::string &top);      // with a status each
long walkByLibrary(const std::string &top);   // std::filesystem

long listBare(const std::string &folder);        // read and counted, kept nowhere
long listByReaddir(const std::string &folder);   // names into a vector

// The top goes, too.
long deleteBare(const std::string &top);
long deleteByLibrary(const std::string &top);
long deleteByFts(const std::string &top);
