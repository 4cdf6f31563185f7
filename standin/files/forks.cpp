#include "standin/files/forks.h"

#include "standin/files/errors.h"
#include "standin/files/metadata.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <iterator>
#include <map>
#include <mutex>
#include <new>
#include <string_view>

using namespace standin;

namespace
{

constexpr char16_t resourceForkName[] = u"RESOURCE_FORK";
constexpr std::size_t resourceForkNameLength = std::size(resourceForkName) - 1;
constexpr SInt16 firstReferenceNumber = 2, lastReferenceNumber = 0x7FFE;
constexpr std::size_t mostOpenForks = lastReferenceNumber - firstReferenceNumber + 1;

struct ForkTable
{
    std::mutex mutex;
    std::map<SInt16, std::shared_ptr<OpenFork>> forks;   // by reference number
    SInt16 next = firstReferenceNumber;                  // a number that was closed comes again as late as possible
    std::atomic<std::size_t> count{0};                   // of the forks: a walk asks this alone as long as none is open
};

ForkTable &table()
{
    static ForkTable forks;
    return forks;
}

SInt16 numberAfter(SInt16 number)
{
    return number == lastReferenceNumber ? firstReferenceNumber : static_cast<SInt16>(number + 1);
}

bool isFork(const OpenFork &fork, const Identity &identity, bool isResourceFork)
{
    return fork.isResourceFork == isResourceFork && sameObject(fork.identity, identity);
}

OSErr forkFromName(UniCharCount length, const UniChar *name, bool &isResourceFork)
{
    if (length > 0 && !name)
        return errFSBadForkName;
    isResourceFork = length == resourceForkNameLength && std::equal(name, name + length, resourceForkName);
    return length == 0 || isResourceFork ? static_cast<OSErr>(noErr) : static_cast<OSErr>(errFSBadForkName);
}

OSErr checkMayWrite(const Object &object)
{
    if (OSErr result = object.volume->checkChangeable())
        return result;
    return checkNotLocked(object);
}

// Decides about writing: asked for, forbidden, or (for "as is allowed") whatever can be had.
OSErr openAsAllowed(const Object &object, SInt8 permissions, OpenFork &fork)
{
    const bool wantsWriting = permissions == fsWrPerm || permissions == fsRdWrPerm;
    if (permissions != fsRdPerm)
    {
        OSErr result = checkMayWrite(object);
        if (result == noErr)
            result = openItself(object, permissions == fsWrPerm ? O_WRONLY : O_RDWR, fork.file);
        fork.mayWrite = result == noErr;
        if (result == noErr || wantsWriting)
            return result;
    }
    return openItself(object, O_RDONLY, fork.file);
}

// A second writer of a fork is refused; a second one that takes what is allowed becomes a reader.
OSErr shareFork(const ForkTable &forks, SInt8 permissions, OpenFork &fork)
{
    const bool isTaken = std::any_of(forks.forks.begin(), forks.forks.end(), [&](const auto &entry) {
        return entry.second->mayWrite && isFork(*entry.second, fork.identity, fork.isResourceFork);
    });
    if (!isTaken || !fork.mayWrite)
        return noErr;
    if (permissions != fsCurPerm)
        return opWrErr;
    fork.mayWrite = false;
    return noErr;
}

OSErr addFork(const std::shared_ptr<OpenFork> &fork, SInt8 permissions, SInt16 &number)
{
    ForkTable &all = table();
    const std::lock_guard lock(all.mutex);
    if (OSErr result = shareFork(all, permissions, *fork))
        return result;
    if (all.forks.size() >= mostOpenForks)
        return tmfoErr;
    while (all.forks.contains(all.next))
        all.next = numberAfter(all.next);
    number = all.next;
    all.forks.emplace(number, fork);
    all.count = all.forks.size();
    all.next = numberAfter(number);
    return noErr;
}

std::shared_ptr<OpenFork> removeFork(SInt16 number)
{
    const std::lock_guard lock(table().mutex);
    auto node = table().forks.extract(number);
    table().count = table().forks.size();
    return node ? node.mapped() : nullptr;
}

OSErr forkAtIndex(const ForkTable &all, FSVolumeRefNum volume, SInt16 index, SInt16 &number)
{
    for (const auto &[candidate, fork] : all.forks)
        if ((volume == kFSInvalidVolumeRefNum || fork->volume == volume) && --index == 0)
        {
            number = candidate;
            return noErr;
        }
    return errFSNoMoreItems;
}

}   // namespace

namespace standin
{

std::shared_ptr<OpenFork> findFork(SInt16 number)
{
    const std::lock_guard lock(table().mutex);
    const auto found = table().forks.find(number);
    return found == table().forks.end() ? nullptr : found->second;
}

UInt16 openForkFlags(const Object &object)
{
    return isAnyForkOpen() ? openForkFlags(object.identity()) : UInt16{0};
}

bool isAnyForkOpen()
{
    return table().count != 0;
}

UInt16 openForkFlags(const Identity &identity)
{
    const std::lock_guard lock(table().mutex);
    UInt16 flags = 0;
    for (const auto &[number, fork] : table().forks)
        if (sameObject(fork->identity, identity))
            flags |= static_cast<UInt16>((fork->isResourceFork ? kFSNodeResOpenMask : kFSNodeDataOpenMask) | kFSNodeForkOpenMask);
    return flags;
}

void fillForkName(HFSUniStr255 &name, bool isResourceFork)
{
    name.length = isResourceFork ? resourceForkNameLength : 0;
    std::copy_n(resourceForkName, name.length, name.unicode);
}

bool hasOpenForksOn(FSVolumeRefNum volume)
{
    const std::lock_guard lock(table().mutex);
    return std::any_of(table().forks.begin(), table().forks.end(), [&](const auto &entry) { return entry.second->volume == volume; });
}

}   // namespace standin

OSErr FSGetDataForkName(HFSUniStr255 *name)
{
    if (!name)
        return paramErr;
    fillForkName(*name, false);
    return noErr;
}

OSErr FSGetResourceForkName(HFSUniStr255 *name)
{
    if (!name)
        return paramErr;
    fillForkName(*name, true);
    return noErr;
}

OSErr FSOpenFork(const FSRef *ref, UniCharCount nameLength, const UniChar *name, SInt8 permissions, SInt16 *number)
try
{
    Object object;
    const auto fork = std::make_shared<OpenFork>();
    if (!number || permissions < fsCurPerm || permissions > fsRdWrPerm)
        return paramErr;
    if (OSErr result = forkFromName(nameLength, name, fork->isResourceFork))
        return result;
    if (OSErr result = findObject(ref, object))
        return result;
    if (!object.status.isRegular())
        return notAFileErr;
    if (OSErr result = openAsAllowed(object, permissions, *fork))
        return result;
    fork->object = *ref;
    fork->volume = object.volume->number;
    fork->identity = object.identity();
    fork->mayRead = permissions != fsWrPerm;
    return addFork(fork, permissions, *number);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

// The number is free from then on, whatever the result: one that is not noErr says that something which was written could not be made sure
// of.
OSErr FSCloseFork(SInt16 number)
try
{
    const auto fork = removeFork(number);
    if (!fork)
        return rfNumErr;
    const std::lock_guard lock(fork->mutex);
    return finishFork(*fork);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSGetForkCBInfo(SInt16 refNum, FSVolumeRefNum volume, SInt16 *iterator, SInt16 *actual, FSForkInfo *info, FSRef *ref,
                      HFSUniStr255 *name)
try
{
    SInt16 number = refNum;
    if (info)
        return paramErr;   // its layout is not published here
    const std::lock_guard lock(table().mutex);
    if (iterator)
    {
        const SInt16 next = static_cast<SInt16>(*iterator + 1);
        if (OSErr result = forkAtIndex(table(), volume, next, number))
            return result;
        *iterator = next;
    }
    const auto found = table().forks.find(number);
    if (found == table().forks.end())
        return rfNumErr;
    if (actual)
        *actual = number;
    if (ref)
        *ref = found->second->object;
    if (name)
        fillForkName(*name, found->second->isResourceFork);
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
