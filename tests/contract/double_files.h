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
#include <vector>

// One file or folder. Every field of `info` has a value of its own, so that a field in the wrong place shows.
struct FileObject
{
    std::string name;     // the object's own name on the disk
    FileObject *parent;   // null for the root folder of a volume
    FSRef ref;
    FSCatalogInfo info;
    std::string label = name;              // as lines show it after "ref:", and as tests call it: its first name, for ever
    std::vector<FSRef> earlierRefs = {};   // go on naming it; every rename and move makes a new one

    bool isFolder() const { return (info.nodeFlags & kFSNodeIsDirectoryMask) != 0; }
    FileInfo fileInfo() const;
    void setFileInfo(const FileInfo &fileInfo);
};

struct VolumeObject
{
    FSVolumeRefNum number;
    FSVolumeInfo info;
    FileObject *root;
    GetVolParmsInfoBuffer parameters = {};   // no service at all, if no test says otherwise
    OSErr parametersResult = noErr;          // of the call that fills them, and fills them all the same
};

struct FilesDouble
{
    FilesDouble();

    // An object by its label; there has to be one.
    FileObject &object(const std::string &label);
    const FSRef &ref(const std::string &label) { return object(label).ref; }

    // The object that a reference names, or null.
    FileObject *find(const FSRef *ref);

    // A folder by its volume and directory ID, an object by its folder and name, a volume by its number or, with an index
    // of 1 or more, by its place in the list; or null.
    FileObject *findDirectory(FSVolumeRefNum volume, SInt32 dirID);
    FileObject *findChild(const FileObject &directory, ConstStr255Param name);
    FileObject *findChild(const FileObject &directory, const std::string &name);
    VolumeObject *findVolume(FSVolumeRefNum number, ItemCount index = 0);

    // A reference as lines show it: "ref:file", "ref:zero" if all bytes are 0, "ref:?" if it names nothing, "-" if null.
    // The reference that a first rename or move made is "ref:file#1", the next one "ref:file#2".
    std::string describe(const FSRef *ref);

    FileObject &add(const std::string &name, FileObject *parent, bool isFolder);

    // Gives the object a new reference, as renaming and moving do.
    void renewReference(FileObject &object);

    // Whether FSGetCatalogInfo spoils the fields of a record that were not asked for. The platform leaves them as they are.
    bool spoilsRecords = true;

    std::list<FileObject> objects;   // a list, so that objects stay where they are
    std::list<VolumeObject> volumes;
    std::map<SInt16, FileObject *> openForks;

    // The block of the last PBMakeFSRefSync, byte by byte, with whatever lay in the fields that were not filled.
    std::array<UInt8, sizeof(FSRefParam)> lastReferenceBlock = {};
};

// What a record is filled with around the fields that were asked for: whoever reads others gets this.
constexpr int neverAskedFor = 0xA5;

// Copies the fields of a record that a bitmap names, and no others.
void copyCatalogFields(FSCatalogInfoBitmap whichInfo, const FSCatalogInfo &from, FSCatalogInfo &to);
void copyVolumeFields(FSVolumeInfoBitmap whichInfo, const FSVolumeInfo &from, FSVolumeInfo &to);

FSSpec specificationOf(const FileObject &object);
HFSUniStr255 unicodeName(const std::string &name);

// UTF-16 as the double keeps it and as lines show it: what is no ASCII character becomes \uXXXX.
std::string textOf(const UniChar *units, UniCharCount length);

template <std::size_t Capacity>
void storePascalString(const std::string &text, unsigned char (&destination)[Capacity])
{
    destination[0] = static_cast<unsigned char>(text.size());
    std::memcpy(destination + 1, text.data(), text.size());
}
