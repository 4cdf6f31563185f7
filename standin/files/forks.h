// Open forks: one table for data and resource forks.
//
// A data fork is the file's own bytes, through one descriptor. A resource fork is looked up in its sidecar for each step, because the sidecar may be
// written anew, or come into being, while the fork is open.
#pragma once

#include "platform/platform.h"
#include "standin/files/references.h"

#include <memory>
#include <mutex>

namespace standin
{

struct OpenFork
{
    FSRef object{};
    FSVolumeRefNum volume = 0;
    Identity identity;
    bool isResourceFork = false;
    bool mayRead = true, mayWrite = false;
    Descriptor file;    // of a data fork
    std::mutex mutex;   // one step at a time
    std::int64_t mark = 0;
};

// An open fork by its number, or null.
std::shared_ptr<OpenFork> findFork(SInt16 number);

// The node flags that say which forks of an object this process has open.
UInt16 openForkFlags(const Object &object);

bool hasOpenForksOn(FSVolumeRefNum volume);

// The bytes of an open fork. Results: noErr; the code of what went wrong; eofErr for reading past the end, with what there was.
OSErr getForkSize(OpenFork &fork, std::uint64_t &size);
OSErr setForkSize(OpenFork &fork, std::uint64_t size);
OSErr readFork(OpenFork &fork, std::uint64_t position, std::span<std::uint8_t> bytes, std::size_t &got);
OSErr writeFork(OpenFork &fork, std::uint64_t position, std::span<const std::uint8_t> bytes);

}   // namespace standin
