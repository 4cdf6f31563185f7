// PBGetCatInfoSync: what the catalog knows of an object, in the record of parameter blocks.
//
// `ioFDirIndex` says which object. Below 0: the directory itself that `ioDrDirID` names. 0: what `ioNamePtr` names in that directory, or the
// directory itself without a name. Above 0: an object in it by its number, from 1, in the disk's order; each call reads the directory anew,
// so that FSGetCatalogInfoBulk is the way to see all of a large one. A name is written for every index but 0, and is the one of an FSSpec.
// Whoever wants no name gives null.
//
// The record is made for directories. Of a file it tells ID, parent, attributes, dates and Finder information, and leaves `ioDrNmFls` and
// the filler behind it alone: sizes of forks have no fields.
//
// Result: noErr; nsvErr; dirNFErr for a directory that is not there; fnfErr for a name or number that is not there; paramErr for null.
#include "platform/platform.h"
#include "standin/files/block_lookup.h"
#include "standin/files/catalog.h"
#include "standin/files/dates.h"
#include "standin/files/errors.h"
#include "standin/files/listings.h"
#include "standin/files/short_lookups.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <new>

using namespace standin;

namespace
{

constexpr FSCatalogInfoBitmap wantedOfAll = kFSCatInfoNodeFlags | kFSCatInfoNodeID | kFSCatInfoParentDirID | kFSCatInfoCreateDate |
                                            kFSCatInfoContentMod | kFSCatInfoBackupDate | kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo |
                                            kFSCatInfoUserPrivs;

// Dates of blocks are seconds since 1904 by the local clock, in 32 bits: later ones are the last of these, in 2040.
UInt32 blockDateOf(const UTCDateTime &date)
{
    if (isZeroDate(date))
        return 0;
    const std::time_t seconds = linuxFromDate(date).tv_sec;
    std::tm local{};
    if (!localtime_r(&seconds, &local))
        return 0;
    const std::int64_t sinceEpoch = seconds + secondsFrom1904To1970 + local.tm_gmtoff;
    return static_cast<UInt32>(std::clamp<std::int64_t>(sinceEpoch, 0, 0xFFFFFFFF));
}

OSErr readListing(const Object &folder, Listing &listing)
{
    const Descriptor opened(linux_calls::openListedFolder(folder.folder->number(), folder.name.c_str()));
    return resultFromErrno(opened.isOpen() ? -listing.read(opened.number()) : -opened.number());
}

OSErr findAtIndex(const Object &folder, SInt16 index, Object &object)
{
    Listing listing;
    ListedEntry entry{};
    if (folder.isMountPoint())
        return fnfErr;   // it stands for an empty folder
    if (OSErr result = readListing(folder, listing))
        return result;
    Listing::Position position = listing.begin();
    for (SInt16 left = index; left > 0; --left)
        if (!listing.next(position, entry))
            return fnfErr;
    return findNamed(folder.volume, folder.nodeID(), std::string(entry.name), object);
}

OSErr findObjectOfBlock(const DirInfo &block, Object &object)
{
    ConstStr255Param name = block.ioFDirIndex == 0 ? block.ioNamePtr : nullptr;
    const bool isNamed = name && name[0] != 0;
    const OSErr result = findByTriple(block.ioVRefNum, block.ioDrDirID, name, object);
    if (result == fnfErr && !isNamed)
        return dirNFErr;   // a directory that was there a moment ago
    if (result != noErr || block.ioFDirIndex <= 0)
        return result;
    const Object folder = object;
    return findAtIndex(folder, block.ioFDirIndex, object);
}

void fillBlock(const FSCatalogInfo &info, bool isFolder, DirInfo &block)
{
    block.ioFRefNum = 0;
    block.ioFlAttrib = static_cast<SInt8>(info.nodeFlags);   // the same bits: locked, open forks, directory
    block.ioACUser = static_cast<SInt8>(info.userPrivileges);
    std::memcpy(&block.ioDrUsrWds, info.finderInfo, sizeof block.ioDrUsrWds);
    std::memcpy(&block.ioDrFndrInfo, info.extFinderInfo, sizeof block.ioDrFndrInfo);
    block.ioDrDirID = static_cast<SInt32>(info.nodeID);
    block.ioDrParID = static_cast<SInt32>(info.parentDirID);
    block.ioDrCrDat = blockDateOf(info.createDate);
    block.ioDrMdDat = blockDateOf(info.contentModDate);
    block.ioDrBkDat = blockDateOf(info.backupDate);
    if (isFolder)
        block.ioDrNmFls = static_cast<UInt16>(std::min<UInt32>(info.valence, 0xFFFF));
}

OSErr getCatInfo(DirInfo &block)
{
    Object object;
    FSCatalogInfo info{};
    if (OSErr result = findObjectOfBlock(block, object))
        return result;
    if (OSErr result = fillCatalogInfo(object, wantedOfAll, info))
        return result;
    // A folder that may not be read has contents that nobody can count, but still a place and a name.
    if (object.isFolder())
        fillCatalogInfo(object, kFSCatInfoValence, info);
    fillBlock(info, object.isFolder(), block);
    if (block.ioFDirIndex == 0 || !block.ioNamePtr)
        return noErr;
    Str63 name;
    makeShortName(object, name);
    std::copy_n(name, name[0] + 1, block.ioNamePtr);
    return noErr;
}

}   // namespace

OSErr PBGetCatInfoSync(CInfoPBPtr block)
try
{
    return block ? block->dirInfo.ioResult = getCatInfo(block->dirInfo) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->dirInfo.ioResult = memFullErr;
}
