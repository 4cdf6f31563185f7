// Open forks: one table for data and resource forks.
//
// A data fork is the file's own bytes, through one descriptor. Of a resource fork the file is held by one descriptor, so that no other file
// can come to have its identity, and its sidecar by another. The sidecar may be written anew, or come into being, while the fork is open,
// so what is known of it is only trusted for a moment (resource_forks.cpp).
#pragma once

#include "platform/platform.h"
#include "standin/files/references.h"
#include "standin/files/sidecar_store.h"

#include <memory>
#include <mutex>

namespace standin
{

// What an open resource fork knows of its sidecar from the step before.
struct KnownSidecar
{
    Sidecar sidecar;                  // its file is not open where nothing is known, or there is none
    bool isReady = false;             // for writing: it is open for that, the file's own, and has the fork at its end
    UInt32 folderID = 0;              // where the file lay
    std::uint64_t changes = 0;        // how many this process had made in that folder
    std::int64_t lookedAt = 0;        // milliseconds
    std::uint64_t doubtfulFrom = 0;   // what was written since the sidecar was last seen in its place with the folder locked:
    std::uint64_t doubtfulTo = 0;     // should it turn out not to have been there any more, these bytes are written to the one that is

    bool hasDoubts() const { return doubtfulTo > doubtfulFrom; }
};

struct OpenFork
{
    FSRef object{};
    FSVolumeRefNum volume = 0;
    Identity identity;
    bool isResourceFork = false;
    bool mayRead = true, mayWrite = false;
    Descriptor file;
    std::mutex mutex;   // one step at a time
    std::int64_t mark = 0;
    bool diskCanReadPassingBy = true;   // until it says no
    KnownSidecar known;
};

// An open fork by its number, or null.
std::shared_ptr<OpenFork> findFork(SInt16 number);

// The node flags that say which forks of an object this process has open.
UInt16 openForkFlags(const Object &object);
UInt16 openForkFlags(const Identity &identity);
bool isAnyForkOpen();   // no mutex: what a walk asks of each object

bool hasOpenForksOn(FSVolumeRefNum volume);

void fillForkName(HFSUniStr255 &name, bool isResourceFork);

// How a step treats the page cache.
enum class Caching
{
    usual,
    passingBy,   // what was not in the cache before need not stay there
};

// The bytes of an open fork. Results: noErr; the code of what went wrong; eofErr for reading past the end, with what there was.
OSErr getForkSize(OpenFork &fork, std::uint64_t &size);
OSErr setForkSize(OpenFork &fork, std::uint64_t size);   // dskFulErr leaves the fork as long as it was
OSErr readFork(OpenFork &fork, std::uint64_t position, std::span<std::uint8_t> bytes, Caching caching, std::size_t &got);
OSErr writeFork(OpenFork &fork, std::uint64_t position, std::span<const std::uint8_t> bytes);

// Before a fork is closed: what was written in doubt is made sure of.
OSErr finishFork(OpenFork &fork);

// The same for a resource fork.
OSErr getResourceSize(OpenFork &fork, std::uint64_t &size);
OSErr setResourceSize(OpenFork &fork, std::uint64_t size);
OSErr readResource(OpenFork &fork, std::uint64_t position, std::span<std::uint8_t> bytes, Caching caching, std::size_t &got);
OSErr writeResource(OpenFork &fork, std::uint64_t position, std::span<const std::uint8_t> bytes);
OSErr finishResource(OpenFork &fork);

// Reads through a descriptor of a fork as its disk can. The number of bytes or a negative errno.
ssize_t readThrough(OpenFork &fork, int descriptor, std::span<std::uint8_t> bytes, std::uint64_t offset, Caching caching);

}   // namespace standin
