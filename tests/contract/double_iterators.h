// The double's catalog iterators: what is open, and what the next fetches answer.

#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <deque>
#include <list>
#include <string>
#include <vector>

struct FileObject;

struct IteratorObject
{
    FileObject *folder;
    UInt32 lastNodeID;   // of the item that was given last; items come in the order in which they were made
};

// What a fetch answers instead of what the folder would make it answer: at most `maximumObjects` of the items that
// are left, this result, and this for the changed flag.
struct BulkAnswer
{
    OSErr result;
    ItemCount maximumObjects;
    Boolean changed = 0;
};

struct IteratorsDouble
{
    FSIterator open(FileObject &folder);
    IteratorObject *find(FSIterator iterator);

    // An iterator as lines show it: "iterator:folder", "iterator:?" if it is not open, "-" if null.
    std::string describe(FSIterator iterator);

    std::list<IteratorObject> openIterators;
    std::size_t mostEverOpen = 0;

    // What the next fetches answer. Where this is used up, an answer with fewer items than asked for is errFSNoMoreItems.
    std::deque<BulkAnswer> nextBulkAnswers;

    // Whether the last item of a folder comes together with errFSNoMoreItems, as it may when one is asked for at a time.
    bool lastItemComesWithTheEnd = false;

    // Where the stack stood at each opening of an iterator: tells how much of it a level takes.
    std::vector<std::uintptr_t> stackAtOpening;
};
