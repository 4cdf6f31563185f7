// Which forks a file has.
//
// The data fork always, whatever its length; then the resource fork if it holds a byte. The caller's record says by itself how far it is:
// nothing is kept here between two calls, and records may be copied, left or used by several threads.
#include "platform/platform.h"
#include "standin/files/forks.h"

#include <algorithm>
#include <iterator>
#include <new>

using namespace standin;

namespace
{

enum class NextFork
{
    data,
    resource,
    none,
};

constexpr SInt32 begunMark = 0x466F726B;   // 'Fork', where a fresh record has 0

struct ForkSizes
{
    std::uint64_t logical = 0, physical = 0;
};

void writePosition(CatPositionRec &position, NextFork next)
{
    position = {};
    position.initialize = begunMark;
    position.priv[0] = static_cast<SInt16>(next);
}

// False for a record that no call here has written.
bool readPosition(const CatPositionRec &position, NextFork &next)
{
    next = NextFork::data;
    if (position.initialize == 0)
        return true;
    if (position.initialize != begunMark ||
        std::any_of(std::begin(position.priv) + 1, std::end(position.priv), [](SInt16 word) { return word != 0; }))
        return false;
    next = static_cast<NextFork>(position.priv[0]);
    return next == NextFork::resource || next == NextFork::none;
}

// As the catalog has it: what is no good sidecar counts as no fork. That the disk or its rights keep us from knowing is an error.
OSErr resourceSizes(const Object &object, ForkSizes &sizes)
{
    Sidecar sidecar;
    switch (openSidecar({object.folder->number(), object.name, object.status}, false, sidecar))
    {
    case SidecarState::good: sizes = {sidecar.forkLength(), sidecar.status.allocated}; break;
    case SidecarState::unreadable: return afpAccessDenied;
    case SidecarState::failing: return sidecar.result();
    default: break;
    }
    return sizes.logical > 0 ? static_cast<OSErr>(noErr) : static_cast<OSErr>(errFSNoMoreItems);
}

OSErr sizesOf(const Object &object, NextFork which, ForkSizes &sizes)
{
    if (which == NextFork::resource)
        return resourceSizes(object, sizes);
    sizes = {object.status.size, object.status.allocated};
    return noErr;
}

}   // namespace

// Links and devices have a data fork too, of as many bytes as the catalog says, though it cannot be opened. Result: noErr; errFSNoMoreItems
// behind the last fork, again and again; paramErr for null, or a record that is neither fresh nor from here; notAFileErr for a folder; the
// codes of a reference; the disk's code. Outputs are written only with noErr.
OSErr FSIterateForks(const FSRef *ref, CatPositionRec *position, HFSUniStr255 *name, SInt64 *size, UInt64 *physicalSize)
try
{
    Object object;
    NextFork next;
    ForkSizes sizes;
    if (!position || !readPosition(*position, next))
        return paramErr;
    if (OSErr result = findObject(ref, object))
        return result;
    if (object.isFolder())
        return notAFileErr;
    const OSErr result = next == NextFork::none ? static_cast<OSErr>(errFSNoMoreItems) : sizesOf(object, next, sizes);
    if (result == errFSNoMoreItems)
        writePosition(*position, NextFork::none);
    if (result != noErr)
        return result;
    writePosition(*position, next == NextFork::data ? NextFork::resource : NextFork::none);
    if (name)
        fillForkName(*name, next == NextFork::resource);
    if (size)
        *size = static_cast<SInt64>(sizes.logical);
    if (physicalSize)
        *physicalSize = sizes.physical;
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
