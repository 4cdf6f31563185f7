// The double's disk: one volume with a few objects, and the open forks.
//
//     root (the root folder of volume -100)
//       folder
//         file
//         nested
//           inner (a file)

#pragma once

#include "platform/platform.h"

#include <array>
#include <cstring>
#include <list>
#include <map>
#include <string>

// One file or folder. Every field of `info` has a value of its own, so that a field in the wrong place shows.
struct FileObject
{
    std::string name;     // as lines show it after "ref:", and the object's own name on the disk
    FileObject *parent;   // null for the root folder of a volume
    FSRef ref;
    FSCatalogInfo info;

    bool isFolder() const { return (info.nodeFlags & kFSNodeIsDirectoryMask) != 0; }
    FileInfo fileInfo() const;
    void setFileInfo(const FileInfo &fileInfo);
};

struct VolumeObject
{
    FSVolumeRefNum number;
    FSVolumeInfo info;
    FileObject *root;
};

struct FilesDouble
{
    FilesDouble();

    // An object by its name; there has to be one.
    FileObject &object(const std::string &name);
    const FSRef &ref(const std::string &name) { return object(name).ref; }

    // The object that a reference names, or null.
    FileObject *find(const FSRef *ref);

    // A reference as lines show it: "ref:file", "ref:zero" if all bytes are 0, "ref:?" if it names nothing, "-" if null.
    std::string describe(const FSRef *ref);

    FileObject &add(const std::string &name, FileObject *parent, bool isFolder);

    std::list<FileObject> objects;   // a list, so that objects stay where they are
    std::list<VolumeObject> volumes;
    std::map<SInt16, FileObject *> openForks;

    // The block of the last PBMakeFSRefSync, byte by byte, with whatever lay in the fields that were not filled.
    std::array<UInt8, sizeof(FSRefParam)> lastReferenceBlock = {};
};

// Copies the fields of a record that a bitmap names, and no others.
void copyCatalogFields(FSCatalogInfoBitmap whichInfo, const FSCatalogInfo &from, FSCatalogInfo &to);
void copyVolumeFields(FSVolumeInfoBitmap whichInfo, const FSVolumeInfo &from, FSVolumeInfo &to);

HFSUniStr255 unicodeName(const std::string &name);
template <std::size_t Capacity>
void storePascalString(const std::string &text, unsigned char (&destination)[Capacity])
{
    destination[0] = static_cast<unsigned char>(text.size());
    std::memcpy(destination + 1, text.data(), text.size());
}
