// The calls on catalog iterators, answered from the double's disk.

#include "tests/contract/platform_double.h"

#include <algorithm>
#include <cstring>

namespace
{

std::vector<FileObject *> itemsLeft(FilesDouble &files, const IteratorObject &iterator)
{
    std::vector<FileObject *> items;
    for (FileObject &each : files.objects)
        if (each.parent == iterator.folder && each.info.nodeID > iterator.lastNodeID)
            items.push_back(&each);
    return items;
}

BulkAnswer naturalAnswer(const IteratorsDouble &iterators, std::size_t itemsLeft, ItemCount maximumObjects)
{
    if (itemsLeft < maximumObjects || (iterators.lastItemComesWithTheEnd && itemsLeft == maximumObjects))
        return {errFSNoMoreItems, maximumObjects};
    return {noErr, maximumObjects};
}

BulkAnswer nextAnswer(IteratorsDouble &iterators, std::size_t itemsLeft, ItemCount maximumObjects)
{
    if (iterators.nextBulkAnswers.empty())
        return naturalAnswer(iterators, itemsLeft, maximumObjects);
    const BulkAnswer answer = iterators.nextBulkAnswers.front();
    iterators.nextBulkAnswers.pop_front();
    return answer;
}

}   // namespace

FSIterator IteratorsDouble::open(FileObject &folder)
{
    IteratorObject &opened = openIterators.emplace_back(IteratorObject{&folder, 0});
    mostEverOpen = std::max(mostEverOpen, openIterators.size());
    return reinterpret_cast<FSIterator>(&opened);
}

IteratorObject *IteratorsDouble::find(FSIterator iterator)
{
    for (IteratorObject &each : openIterators)
        if (reinterpret_cast<FSIterator>(&each) == iterator)
            return &each;
    return nullptr;
}

std::string IteratorsDouble::describe(FSIterator iterator)
{
    if (iterator == nullptr)
        return "-";
    const IteratorObject *found = find(iterator);
    return found == nullptr ? "iterator:?" : "iterator:" + found->folder->label;
}

OSErr FSOpenIterator(const FSRef *container, FSIteratorFlags iteratorFlags, FSIterator *iterator)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.iterators.stackAtOpening.push_back(reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)));
    const OSErr failure =
        platform.record("FSOpenIterator", {platform.files.describe(container), hex(iteratorFlags), platform.pointer(iterator, "iterator")});
    if (failure != noErr)
        return failure;

    FileObject *folder = platform.files.find(container);
    if (folder == nullptr)
        return errFSBadFSRef;
    if (!folder->isFolder())
        return errFSNotAFolder;
    if (iteratorFlags != kFSIterateFlat && iteratorFlags != kFSIterateDelete)
        return errFSBadIteratorFlags;
    *iterator = platform.iterators.open(*folder);
    return noErr;
}

OSErr FSCloseIterator(FSIterator iterator)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("FSCloseIterator", {platform.iterators.describe(iterator)});
    const IteratorObject *found = platform.iterators.find(iterator);
    // A close that reports a failure has closed all the same.
    platform.iterators.openIterators.remove_if([found](const IteratorObject &each) { return &each == found; });
    if (failure != noErr)
        return failure;
    return found == nullptr ? errFSIteratorNotFound : OSErr{noErr};
}

OSErr FSGetCatalogInfoBulk(FSIterator iterator, ItemCount maximumObjects, ItemCount *actualObjects, Boolean *containerChanged,
                           FSCatalogInfoBitmap whichInfo, FSCatalogInfo *catalogInfos, FSRef *refs, FSSpec *specs, HFSUniStr255 *names)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record(
        "FSGetCatalogInfoBulk", {platform.iterators.describe(iterator), decimal(maximumObjects), platform.pointer(actualObjects, "actual"),
                                 platform.pointer(containerChanged, "changed"), hex(whichInfo), platform.pointer(catalogInfos, "info"),
                                 platform.pointer(refs, "refs"), platform.pointer(specs, "spec"), platform.pointer(names, "name")});
    if (failure != noErr)
        return failure;

    IteratorObject *found = platform.iterators.find(iterator);
    if (found == nullptr)
        return errFSIteratorNotFound;
    if (maximumObjects == 0)
        return errFSBadItemCount;
    const std::vector<FileObject *> items = itemsLeft(platform.files, *found);
    const BulkAnswer answer = nextAnswer(platform.iterators, items.size(), maximumObjects);
    const std::size_t count = std::min<std::size_t>({items.size(), answer.maximumObjects, maximumObjects});
    for (std::size_t index = 0; index < count; ++index)
    {
        const FileObject &item = *items[index];
        if (catalogInfos != nullptr)
        {
            std::memset(&catalogInfos[index], neverAskedFor, sizeof catalogInfos[index]);
            copyCatalogFields(whichInfo, item.info, catalogInfos[index]);
        }
        if (refs != nullptr)
            refs[index] = item.ref;
        if (specs != nullptr)
            specs[index] = specificationOf(item);
        if (names != nullptr)
            names[index] = unicodeName(item.name);
        found->lastNodeID = item.info.nodeID;
    }
    *actualObjects = static_cast<ItemCount>(count);
    if (containerChanged != nullptr)
        *containerChanged = answer.changed;
    return answer.result;
}
