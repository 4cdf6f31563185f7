// What folders contain: walked one object at a time, listed ten at a time, deleted from the inside out.

#include "files/containers.h"

namespace
{

// One for a whole walk, shared by all of its levels: a level has little more than its iterator on the stack.
struct ContainerIterationState
{
    ContainerFilterProc filter;
    FSCatalogInfoBitmap whichInfo;
    FSCatalogInfo catalogInfo;   // this and the next: of the object that came last, at whatever level
    FSRef ref;
    FSSpec spec;
    FSSpec *specPtr;   // null if nobody wants it
    HFSUniStr255 name;
    HFSUniStr255 *namePtr;   // null if nobody wants it
    void *yourDataPtr;
    UInt32 maxLevels;   // 0 for all of them
    UInt32 currentLevel;
    Boolean quitFlag;
    Boolean containerChanged;
    OSErr result;
    ItemCount actualObjects;
};

// One for a whole deletion, shared by all of its levels.
struct ContainerDeletionState
{
    OSErr result;
    ItemCount actualObjects;
    FSCatalogInfo catalogInfo;   // only its node flags
};

bool isFolder(UInt16 nodeFlags)
{
    return (nodeFlags & kFSNodeIsDirectoryMask) != 0;
}

// The last objects of a folder may come together with the news that they are the last.
bool mayHaveObjects(OSErr bulkResult)
{
    return bulkResult == noErr || bulkResult == errFSNoMoreItems;
}

void iterateContainerLevel(ContainerIterationState &state);

// What a level below leaves in the result is not looked at here: the caller's loop ends with it.
void visitObject(ContainerIterationState &state)
{
    state.quitFlag = state.filter(state.containerChanged, state.currentLevel, &state.catalogInfo, &state.ref, state.specPtr, state.namePtr,
                                  state.yourDataPtr);
    if (isFolder(state.catalogInfo.nodeFlags) && !state.quitFlag)
        iterateContainerLevel(state);
}

// Walks the folder that `state.ref` names.
void iterateContainerLevel(ContainerIterationState &state)
{
    if (state.maxLevels != 0 && state.maxLevels <= state.currentLevel)
        return;
    FSIterator iterator;
    state.result = FSOpenIterator(&state.ref, kFSIterateFlat, &iterator);
    if (state.result != noErr)
        return;

    ++state.currentLevel;
    do
    {
        state.result = FSGetCatalogInfoBulk(iterator, 1, &state.actualObjects, &state.containerChanged, state.whichInfo, &state.catalogInfo,
                                            &state.ref, state.specPtr, state.namePtr);
        if (mayHaveObjects(state.result) && state.actualObjects != 0)
            visitObject(state);
    } while (!state.quitFlag && state.result == noErr);

    // A folder that may not be read ends like an empty one. The failure may also have come from opening a folder of this
    // one; it is forgiven all the same, and the level above goes on.
    if (state.result == errFSNoMoreItems || state.result == afpAccessDenied)
        state.result = noErr;
    --state.currentLevel;
    FSCloseIterator(iterator);
}

// The handle grows by exactly the references that came. What PtrAndHand had to say is what MemError says.
OSErr appendReferences(const FSRef *refs, ItemCount count, Handle refsHandle)
{
    PtrAndHand(refs, refsHandle, static_cast<long>(count * sizeof(FSRef)));
    return MemError();
}

OSErr appendItems(FSIterator iterator, Handle refsHandle, UInt32 *numRefs, Boolean *containerChanged)
{
    constexpr ItemCount itemsAtATime = 10;
    OSErr bulkResult;
    do
    {
        FSRef refs[itemsAtATime];
        ItemCount count = 0;
        Boolean changed = false;
        bulkResult = FSGetCatalogInfoBulk(iterator, itemsAtATime, &count, &changed, kFSCatInfoNone, nullptr, refs, nullptr, nullptr);
        if (changed)
            *containerChanged = true;   // and it stays so
        if (!mayHaveObjects(bulkResult))
            return bulkResult;
        if (count != 0)
        {
            const OSErr result = appendReferences(refs, count, refsHandle);
            if (result != noErr)
                return result;
            *numRefs += count;
        }
    } while (bulkResult == noErr);
    return noErr;
}

OSErr listItems(const FSRef *container, Handle refsHandle, UInt32 *numRefs, Boolean *containerChanged)
{
    FSIterator iterator;
    OSErr result = FSOpenIterator(container, kFSIterateFlat, &iterator);
    if (result != noErr)
        return result;
    result = appendItems(iterator, refsHandle, numRefs, containerChanged);
    FSCloseIterator(iterator);   // its result says nothing about the list
    return result;
}

// A failure to unlock is not reported: the deletion that follows tells of any real problem.
void unlock(const FSRef *ref, UInt16 nodeFlags, FSCatalogInfo &info)
{
    info.nodeFlags = static_cast<UInt16>(nodeFlags & ~kFSNodeLockedMask);
    FSSetCatalogInfo(ref, kFSCatInfoNodeFlags, &info);
}

void deleteContainerLevel(const FSRef *container, ContainerDeletionState &state);

void deleteNextObject(FSIterator iterator, ContainerDeletionState &state)
{
    FSRef ref;
    state.result =
        FSGetCatalogInfoBulk(iterator, 1, &state.actualObjects, nullptr, kFSCatInfoNodeFlags, &state.catalogInfo, &ref, nullptr, nullptr);
    if (state.result != noErr || state.actualObjects != 1)
        return;

    const UInt16 nodeFlags = state.catalogInfo.nodeFlags;   // the levels below overwrite the record
    if (isFolder(nodeFlags))
        deleteContainerLevel(&ref, state);
    if (state.result != noErr)
        return;
    if (nodeFlags & kFSNodeLockedMask)
        unlock(&ref, nodeFlags, state.catalogInfo);
    state.result = FSDeleteObject(&ref);
}

void deleteContainerLevel(const FSRef *container, ContainerDeletionState &state)
{
    FSIterator iterator;
    state.result = FSOpenIterator(container, kFSIterateFlat + kFSIterateDelete, &iterator);
    if (state.result != noErr)
        return;

    do
        deleteNextObject(iterator, state);
    while (state.result == noErr);

    // Nothing else is forgiven: unlike a walk, a deletion that did not see everything has failed.
    if (state.result == errFSNoMoreItems)
        state.result = noErr;
    FSCloseIterator(iterator);
}

}   // namespace

OSErr FSIterateContainer(const FSRef *container, UInt32 maxLevels, FSCatalogInfoBitmap whichInfo, Boolean wantFSSpec, Boolean wantName,
                         ContainerFilterProc filter, void *yourDataPtr)
{
    if (filter == nullptr)
        return paramErr;
    ContainerIterationState state;
    state.filter = filter;
    state.whichInfo = whichInfo | kFSCatInfoNodeFlags;   // else files and folders could not be told apart
    state.ref = *container;
    state.specPtr = wantFSSpec ? &state.spec : nullptr;
    state.namePtr = wantName ? &state.name : nullptr;
    state.yourDataPtr = yourDataPtr;
    state.maxLevels = maxLevels;
    state.currentLevel = 0;
    state.quitFlag = false;
    state.containerChanged = false;
    state.result = noErr;
    state.actualObjects = 0;
    iterateContainerLevel(state);
    return state.result;
}

OSErr FSGetDirectoryItems(const FSRef *container, Handle *refsHandle, UInt32 *numRefs, Boolean *containerChanged)
{
    if (refsHandle == nullptr || numRefs == nullptr || containerChanged == nullptr)
        return paramErr;
    *numRefs = 0;
    *containerChanged = false;
    *refsHandle = NewHandle(0);
    if (*refsHandle == nullptr)
        return memFullErr;

    const OSErr result = listItems(container, *refsHandle, numRefs, containerChanged);
    if (result != noErr)
    {
        DisposeHandle(*refsHandle);
        *refsHandle = nullptr;
        *numRefs = 0;
    }
    return result;
}

OSErr FSDeleteContainerContents(const FSRef *container)
{
    ContainerDeletionState state;
    deleteContainerLevel(container, state);
    return state.result;
}

OSErr FSDeleteContainer(const FSRef *container)
{
    FSCatalogInfo info;
    OSErr result = FSGetCatalogInfo(container, kFSCatInfoNodeFlags, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    if (!isFolder(info.nodeFlags))
        return dirNFErr;
    result = FSDeleteContainerContents(container);
    if (result != noErr)
        return result;
    if (info.nodeFlags & kFSNodeLockedMask)
        unlock(container, info.nodeFlags, info);
    return FSDeleteObject(container);
}
