// Open iterators: a folder is read when it is opened, and handed out piece by piece.
#include "platform/platform.h"
#include "standin/files/catalog.h"
#include "standin/files/errors.h"
#include "standin/files/names.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>

using namespace standin;

namespace
{

struct Iterator
{
    Object folder;
    UInt32 folderID = 0;
    FolderHandle opened;
    Listing listing;
    std::timespec moment{};   // before the folder was read: what is born later was not seen
    std::size_t next = 0;
    std::mutex mutex;
};

// Iterators are numbers dressed as pointers, so that a wild one is told from an open one.
struct IteratorTable
{
    std::mutex mutex;
    std::map<std::uintptr_t, std::shared_ptr<Iterator>> iterators;
    std::uintptr_t nextNumber = 1;
};

IteratorTable &table()
{
    static IteratorTable iterators;
    return iterators;
}

std::shared_ptr<Iterator> findIterator(FSIterator iterator)
{
    const std::lock_guard lock(table().mutex);
    const auto found = table().iterators.find(reinterpret_cast<std::uintptr_t>(iterator));
    return found == table().iterators.end() ? nullptr : found->second;
}

// What is asked for of each object; any pointer may be null.
struct Outputs
{
    FSCatalogInfoBitmap which;
    FSCatalogInfo *infos;
    FSRef *refs;
    FSSpec *specs;
    HFSUniStr255 *names;
};

// A reference and a name come from the listing alone; anything else asks the object itself.
bool fillFromListing(const Iterator &iterator, std::size_t listed, std::size_t index, const Outputs &outputs)
{
    const Entry entry = iterator.listing.entry(listed);
    if (outputs.refs)
        outputs.refs[index] = makeListedReference(iterator.folder, iterator.folderID, entry, iterator.moment);
    if (outputs.names)
        unicodeFromDiskName(entry.name, outputs.names[index]);
    return true;
}

// False if the object is gone meanwhile: it is passed over.
bool fillFromObject(const Iterator &iterator, std::size_t listed, std::size_t index, const Outputs &outputs, OSErr &result)
{
    Object object;
    const Entry entry = iterator.listing.entry(listed);
    result = findNamed(iterator.folder.volume, iterator.folderID, std::string(entry.name), object);
    object.sidecarIsAbsent = !iterator.listing.hasSidecar(listed);
    if (result == noErr && outputs.which)
        result = fillCatalogInfo(object, outputs.which, outputs.infos[index]);
    if (result != noErr)
    {
        const bool isGone = result == fnfErr;
        result = isGone ? static_cast<OSErr>(noErr) : result;
        return false;
    }
    if (outputs.refs)
        outputs.refs[index] = makeReference(object);
    if (outputs.names)
        fillName(object, outputs.names[index]);
    if (outputs.specs)
        fillSpec(object, outputs.specs[index]);
    return true;
}

OSErr fillNext(Iterator &iterator, ItemCount most, const Outputs &outputs, ItemCount &count)
{
    const bool asksObject = outputs.which || outputs.specs || (outputs.refs && !iterator.folder.volume->trustsListings);
    OSErr result = noErr;
    while (count < most && iterator.next < iterator.listing.size() && result == noErr)
    {
        const std::size_t listed = iterator.next++;
        if (asksObject ? fillFromObject(iterator, listed, count, outputs, result) : fillFromListing(iterator, listed, count, outputs))
            ++count;
    }
    if (result != noErr)
        return result;
    return count < most ? errFSNoMoreItems : noErr;
}

bool hasChanged(const Iterator &iterator)
{
    ObjectStatus status;
    if (iterator.folder.isMountPoint())
        return false;
    if (linux_calls::statusOf(iterator.opened->number(), status) < 0)
        return true;
    const std::timespec &now = status.modification, &then = iterator.folder.status.modification;
    return now.tv_sec != then.tv_sec || now.tv_nsec != then.tv_nsec;
}

}   // namespace

OSErr FSOpenIterator(const FSRef *container, FSIteratorFlags flags, FSIterator *iterator)
{
    const auto made = std::make_shared<Iterator>();
    if (!iterator)
        return paramErr;
    if (flags != kFSIterateFlat && flags != kFSIterateDelete)
        return errFSBadIteratorFlags;
    if (OSErr result = findObject(container, made->folder))
        return result;
    if (!made->folder.isFolder())
        return errFSNotAFolder;
    made->folderID = made->folder.nodeID();
    if (!made->folder.isMountPoint())   // which is an empty folder
    {
        if (OSErr result = openFolder(*made->folder.volume, made->folderID, made->opened))
            return result;
        made->moment = linux_calls::now();
        if (const int failure = made->listing.read(made->opened->number()))
            return resultFromErrno(-failure);
    }
    const std::lock_guard lock(table().mutex);
    *iterator = reinterpret_cast<FSIterator>(table().nextNumber);
    table().iterators.emplace(table().nextNumber++, made);
    return noErr;
}

OSErr FSCloseIterator(FSIterator iterator)
{
    const std::lock_guard lock(table().mutex);
    return table().iterators.erase(reinterpret_cast<std::uintptr_t>(iterator)) ? noErr : errFSIteratorNotFound;
}

OSErr FSGetCatalogInfoBulk(FSIterator iterator, ItemCount maximumObjects, ItemCount *actualObjects, Boolean *containerChanged,
                           FSCatalogInfoBitmap whichInfo, FSCatalogInfo *catalogInfos, FSRef *refs, FSSpec *specs, HFSUniStr255 *names)
{
    const auto open = findIterator(iterator);
    ItemCount count = 0;
    if (!open)
        return errFSIteratorNotFound;
    if (!actualObjects || maximumObjects == 0)
        return errFSBadItemCount;
    if (whichInfo & ~everyCatalogBit)
        return errFSBadInfoBitmap;
    if (whichInfo && !catalogInfos)
        return errFSMissingCatInfo;
    const std::lock_guard lock(open->mutex);
    const OSErr result = fillNext(*open, maximumObjects, {whichInfo, catalogInfos, refs, specs, names}, count);
    *actualObjects = count;
    if (containerChanged)
        *containerChanged = hasChanged(*open);
    return result;
}
