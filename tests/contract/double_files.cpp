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

FileObject &FilesDouble::object(const std::string &name)
{
    for (FileObject &each : objects)
        if (each.name == name)
            return each;
    std::fprintf(stderr, "platform double: no object called %s\n", name.c_str());
    std::abort();
}

FileObject *FilesDouble::find(const FSRef *ref)
{
    if (ref != nullptr)
        for (FileObject &each : objects)
            if (equal(each.ref, *ref))
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
    return object == nullptr ? "ref:?" : "ref:" + object->name;
}
