// Trees for the tests of walks, listings and deletions, and the steps that a caller makes on them: one object at a time, from the outside in.
#pragma once

#include "standin/standin.h"
#include "tests/standin/test_volume.h"

#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace support
{

// `folders` folders in one, with so many files in each; every name is padded to a length.
struct TreeShape
{
    int folders, files;
    std::size_t nameLength = 0;

    int objects() const { return folders * (files + 1); }
};

inline std::string paddedName(const std::string &name, std::size_t length)
{
    return name.size() < length ? name + std::string(length - name.size(), 'x') : name;
}

// Relative to descriptors: such trees may lie deeper than a path can be long.
inline void makeEmptyFile(int folder, const std::string &name)
{
    const int file = openat(folder, name.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    ASSERT_GE(file, 0) << name;
    close(file);
}

inline int makeAndOpenFolder(int parent, const std::string &name)
{
    EXPECT_EQ(mkdirat(parent, name.c_str(), 0755), 0) << name;
    return openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

inline void makeTree(const std::string &path, const TreeShape &shape)
{
    const int top = makeAndOpenFolder(AT_FDCWD, path);
    for (int number = 0; number < shape.folders; ++number)
    {
        const int folder = makeAndOpenFolder(top, paddedName("folder" + std::to_string(number), shape.nameLength));
        for (int file = 0; file < shape.files; ++file)
            makeEmptyFile(folder, paddedName("file" + std::to_string(file), shape.nameLength));
        close(folder);
    }
    close(top);
}

// A chain of folders with one file beside each.
inline void makeChain(const std::string &path, int levels)
{
    int folder = makeAndOpenFolder(AT_FDCWD, path);
    for (int level = 0; level < levels; ++level)
    {
        const int inner = makeAndOpenFolder(folder, "level");
        makeEmptyFile(folder, "file");
        close(folder);
        folder = inner;
    }
    close(folder);
}

// Walks a tree and counts its objects. `visit`, if it is given, is called with each of them before what is in it.
using Visit = std::function<void(const FSRef &, const FSCatalogInfo &)>;

inline OSErr walk(const FSRef &container, long &count, FSCatalogInfoBitmap which = kFSCatInfoNodeFlags, const Visit &visit = nullptr)
{
    FSIterator iterator = nullptr;
    if (OSErr result = FSOpenIterator(&container, kFSIterateFlat, &iterator))
        return result;
    OSErr result = noErr;
    while (result == noErr)
    {
        FSCatalogInfo info;
        FSRef ref;
        ItemCount got = 0;
        Boolean changed = 0;
        result = FSGetCatalogInfoBulk(iterator, 1, &got, &changed, which | kFSCatInfoNodeFlags, &info, &ref, nullptr, nullptr);
        if ((result != noErr && result != errFSNoMoreItems) || got == 0)
            break;
        ++count;
        if (visit)
            visit(ref, info);
        if (info.nodeFlags & kFSNodeIsDirectoryMask)
            result = walk(ref, count, which, visit);
    }
    FSCloseIterator(iterator);
    return result == errFSNoMoreItems || result == afpAccessDenied ? static_cast<OSErr>(noErr) : result;
}

// Lists a folder ten references at a time.
inline OSErr listReferences(const FSRef &container, std::vector<FSRef> &refs)
{
    FSIterator iterator = nullptr;
    if (OSErr result = FSOpenIterator(&container, kFSIterateFlat, &iterator))
        return result;
    OSErr result = noErr;
    while (result == noErr)
    {
        FSRef batch[10];
        ItemCount got = 0;
        Boolean changed = 0;
        result = FSGetCatalogInfoBulk(iterator, 10, &got, &changed, kFSCatInfoNone, nullptr, batch, nullptr, nullptr);
        refs.insert(refs.end(), batch, batch + got);
    }
    FSCloseIterator(iterator);
    return result == errFSNoMoreItems ? static_cast<OSErr>(noErr) : result;
}

// Deletes what is in a folder, from the inside out; what is locked is unlocked first.
inline OSErr deleteContents(const FSRef &container)
{
    FSIterator iterator = nullptr;
    if (OSErr result = FSOpenIterator(&container, kFSIterateDelete, &iterator))
        return result;
    OSErr result = noErr;
    while (result == noErr)
    {
        FSCatalogInfo info;
        FSRef ref;
        ItemCount got = 0;
        result = FSGetCatalogInfoBulk(iterator, 1, &got, nullptr, kFSCatInfoNodeFlags, &info, &ref, nullptr, nullptr);
        if (result != noErr)
            break;
        if (info.nodeFlags & kFSNodeIsDirectoryMask)
            result = deleteContents(ref);
        if (result != noErr)
            break;
        if (info.nodeFlags & kFSNodeLockedMask)
        {
            info.nodeFlags = 0;
            FSSetCatalogInfo(&ref, kFSCatInfoNodeFlags, &info);
        }
        result = FSDeleteObject(&ref);
    }
    FSCloseIterator(iterator);
    return result == errFSNoMoreItems ? static_cast<OSErr>(noErr) : result;
}

// The system calls that something takes.
template <typename Work>
long callsOf(Work work)
{
    const std::uint64_t before = standin::systemCallCount();
    work();
    return static_cast<long>(standin::systemCallCount() - before);
}

}   // namespace support
