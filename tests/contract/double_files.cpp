// The double's disk and what it holds. The calls on it are in double_file_calls.cpp.

#include "tests/contract/double_files.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace
{

struct RecordField
{
    UInt32 bits;
    std::size_t offset, size;
};

constexpr RecordField catalogFields[] = {
    {kFSCatInfoTextEncoding, offsetof(FSCatalogInfo, textEncodingHint), 4},
    {kFSCatInfoNodeFlags, offsetof(FSCatalogInfo, nodeFlags), 2},
    {kFSCatInfoVolume, offsetof(FSCatalogInfo, volume), 2},
    {kFSCatInfoParentDirID, offsetof(FSCatalogInfo, parentDirID), 4},
    {kFSCatInfoNodeID, offsetof(FSCatalogInfo, nodeID), 4},
    {kFSCatInfoCreateDate, offsetof(FSCatalogInfo, createDate), 8},
    {kFSCatInfoContentMod, offsetof(FSCatalogInfo, contentModDate), 8},
    {kFSCatInfoAttrMod, offsetof(FSCatalogInfo, attributeModDate), 8},
    {kFSCatInfoAccessDate, offsetof(FSCatalogInfo, accessDate), 8},
    {kFSCatInfoBackupDate, offsetof(FSCatalogInfo, backupDate), 8},
    {kFSCatInfoPermissions, offsetof(FSCatalogInfo, permissions), 16},
    {kFSCatInfoFinderInfo, offsetof(FSCatalogInfo, finderInfo), 16},
    {kFSCatInfoFinderXInfo, offsetof(FSCatalogInfo, extFinderInfo), 16},
    {kFSCatInfoValence, offsetof(FSCatalogInfo, valence), 4},
    {kFSCatInfoDataSizes, offsetof(FSCatalogInfo, dataLogicalSize), 16},
    {kFSCatInfoRsrcSizes, offsetof(FSCatalogInfo, rsrcLogicalSize), 16},
    {kFSCatInfoSharingFlags, offsetof(FSCatalogInfo, sharingFlags), 1},
    {kFSCatInfoUserPrivs, offsetof(FSCatalogInfo, userPrivileges), 1},
};

constexpr RecordField volumeFields[] = {
    {kFSVolInfoCreateDate, offsetof(FSVolumeInfo, createDate), 8},    {kFSVolInfoModDate, offsetof(FSVolumeInfo, modifyDate), 8},
    {kFSVolInfoBackupDate, offsetof(FSVolumeInfo, backupDate), 8},    {kFSVolInfoCheckedDate, offsetof(FSVolumeInfo, checkedDate), 8},
    {kFSVolInfoFileCount, offsetof(FSVolumeInfo, fileCount), 4},      {kFSVolInfoDirCount, offsetof(FSVolumeInfo, folderCount), 4},
    {kFSVolInfoSizes, offsetof(FSVolumeInfo, totalBytes), 16},        {kFSVolInfoBlocks, offsetof(FSVolumeInfo, blockSize), 12},
    {kFSVolInfoNextAlloc, offsetof(FSVolumeInfo, nextAllocation), 4}, {kFSVolInfoRsrcClump, offsetof(FSVolumeInfo, rsrcClumpSize), 4},
    {kFSVolInfoDataClump, offsetof(FSVolumeInfo, dataClumpSize), 4},  {kFSVolInfoNextID, offsetof(FSVolumeInfo, nextCatalogID), 4},
    {kFSVolInfoFinderInfo, offsetof(FSVolumeInfo, finderInfo), 32},   {kFSVolInfoFlags, offsetof(FSVolumeInfo, flags), 2},
    {kFSVolInfoFSInfo, offsetof(FSVolumeInfo, filesystemID), 4},      {kFSVolInfoDriveInfo, offsetof(FSVolumeInfo, driveNumber), 4},
};

template <typename Record, std::size_t Count>
void copyFields(const RecordField (&fields)[Count], UInt32 bits, const Record &from, Record &to)
{
    for (const RecordField &each : fields)
        if (bits & each.bits)
            std::memcpy(reinterpret_cast<UInt8 *>(&to) + each.offset, reinterpret_cast<const UInt8 *>(&from) + each.offset, each.size);
}

// A record whose bytes all differ from their neighbours and from those of other objects.
template <typename Record>
Record recordOfDistinctBytes(UInt32 seed)
{
    UInt8 bytes[sizeof(Record)];
    for (std::size_t index = 0; index < sizeof bytes; ++index)
        bytes[index] = static_cast<UInt8>(seed + index * 7);
    Record record;
    std::memcpy(&record, bytes, sizeof record);
    return record;
}

FSRef referenceNamed(const std::string &name)
{
    FSRef ref = {};
    const std::string text = "an object called " + name;
    std::memcpy(ref.hidden, text.data(), std::min(text.size(), sizeof ref.hidden));
    ref.hidden[sizeof ref.hidden - 1] = 0xFF;
    return ref;
}

bool equal(const FSRef &a, const FSRef &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

constexpr FSVolumeRefNum volumeNumber = -100;
constexpr UInt32 firstNodeID = 16;
constexpr std::size_t generationByte = sizeof(FSRef) - 3;   // of a reference: how often the object was renamed or moved

}   // namespace

void copyCatalogFields(FSCatalogInfoBitmap whichInfo, const FSCatalogInfo &from, FSCatalogInfo &to)
{
    copyFields(catalogFields, whichInfo, from, to);
}

void copyVolumeFields(FSVolumeInfoBitmap whichInfo, const FSVolumeInfo &from, FSVolumeInfo &to)
{
    copyFields(volumeFields, whichInfo, from, to);
}

HFSUniStr255 unicodeName(const std::string &name)
{
    HFSUniStr255 result = {};
    result.length = static_cast<UInt16>(name.size());
    for (std::size_t index = 0; index < name.size(); ++index)
        result.unicode[index] = static_cast<UInt8>(name[index]);
    return result;
}

std::string textOf(const UniChar *units, UniCharCount length)
{
    std::string text;
    for (UniCharCount index = 0; index < length; ++index)
    {
        char unit[8];
        std::snprintf(unit, sizeof unit, units[index] >= 0x20 && units[index] < 0x7F ? "%c" : "\\u%04X", units[index]);
        text += unit;
    }
    return text;
}

FileInfo FileObject::fileInfo() const
{
    FileInfo result;
    std::memcpy(&result, info.finderInfo, sizeof result);
    return result;
}

void FileObject::setFileInfo(const FileInfo &fileInfo)
{
    std::memcpy(info.finderInfo, &fileInfo, sizeof fileInfo);
}

FilesDouble::FilesDouble()
{
    FileObject &root = add("root", nullptr, true);
    root.info.nodeID = fsRtDirID;
    root.info.parentDirID = fsRtParID;
    FileObject &folder = add("folder", &root, true);
    add("file", &folder, false);
    FileObject &nested = add("nested", &folder, true);
    add("inner", &nested, false);

    FSVolumeInfo volumeInfo = recordOfDistinctBytes<FSVolumeInfo>(3);
    volumeInfo.flags = 0;
    volumes.push_back({volumeNumber, volumeInfo, &root});
}

FileObject &FilesDouble::add(const std::string &name, FileObject *parent, bool isFolder)
{
    const UInt32 nodeID = firstNodeID + static_cast<UInt32>(objects.size());
    FSCatalogInfo info = recordOfDistinctBytes<FSCatalogInfo>(nodeID * 31);
    info.nodeFlags = isFolder ? UInt16{kFSNodeIsDirectoryMask} : UInt16{0};
    info.volume = volumeNumber;
    info.nodeID = nodeID;
    info.parentDirID = parent == nullptr ? 0 : parent->info.nodeID;
    return objects.emplace_back(FileObject{name, parent, referenceNamed(name), info});
}

FileObject &FilesDouble::object(const std::string &label)
{
    for (FileObject &each : objects)
        if (each.label == label)
            return each;
    std::fprintf(stderr, "platform double: no object called %s\n", label.c_str());
    std::abort();
}

FileObject *FilesDouble::find(const FSRef *ref)
{
    if (ref != nullptr)
        for (FileObject &each : objects)
            if (equal(each.ref, *ref) ||
                std::any_of(each.earlierRefs.begin(), each.earlierRefs.end(), [ref](const FSRef &earlier) { return equal(earlier, *ref); }))
                return &each;
    return nullptr;
}

void FilesDouble::renewReference(FileObject &object)
{
    object.earlierRefs.push_back(object.ref);
    object.ref = referenceNamed(object.label);
    object.ref.hidden[generationByte] = static_cast<UInt8>(object.earlierRefs.size());
}

FileObject *FilesDouble::findChild(const FileObject &directory, const std::string &name)
{
    for (FileObject &each : objects)
        if (each.parent == &directory && each.name == name)
            return &each;
    return nullptr;
}

FileObject *FilesDouble::findDirectory(FSVolumeRefNum volume, SInt32 dirID)
{
    for (FileObject &each : objects)
        if (each.isFolder() && each.info.volume == volume && each.info.nodeID == static_cast<UInt32>(dirID))
            return &each;
    return nullptr;
}

FileObject *FilesDouble::findChild(const FileObject &directory, ConstStr255Param name)
{
    return findChild(directory, std::string(reinterpret_cast<const char *>(name + 1), name[0]));
}

VolumeObject *FilesDouble::findVolume(FSVolumeRefNum number, ItemCount index)
{
    ItemCount position = 0;
    for (VolumeObject &each : volumes)
        if (index == 0 ? each.number == number : ++position == index)
            return &each;
    return nullptr;
}

std::string FilesDouble::describe(const FSRef *ref)
{
    if (ref == nullptr)
        return "-";
    if (equal(*ref, FSRef{}))
        return "ref:zero";
    const FileObject *object = find(ref);
    if (object == nullptr)
        return "ref:?";
    const int generation = ref->hidden[generationByte];
    return "ref:" + object->label + (generation == 0 ? "" : '#' + std::to_string(generation));
}
