// Sidecars on disk: finding, reading, changing in place and writing anew. The bytes themselves are sidecar_format.h's business.
//
// Reading never writes, and what is no good sidecar is never touched. Every change is made with the parent folder's lock held.
#pragma once

#include "platform/platform.h"
#include "standin/files/directories.h"
#include "standin/files/sidecar_format.h"

#include <string>

namespace standin
{

// Says in a sidecar's filler that a file took its copy of it elsewhere, or that its file has not come yet: without a file of its own it is a leftover.
constexpr SidecarFiller copiedFiller = {'z', 'e', 'r', 'b', ':', ' ', 'c', 'o', 'p', 'i', 'e', 'd', ' ', ' ', ' ', ' '};
constexpr SidecarFiller ownFiller = {};
constexpr std::size_t sidecarFillerOffset = 8;

// The file that a sidecar belongs to.
struct SidecarPlace
{
    int folder;
    const std::string &name;
    const ObjectStatus &status;   // a new sidecar gets the file's owner and, as far as that makes sense, its mode
};

struct Sidecar
{
    Descriptor file;   // open while somebody reads or changes it
    ObjectStatus status;
    SidecarLayout layout;
    std::vector<std::uint8_t> head;         // the first bytes of the file: at least the table
    std::vector<SidecarPiece> behindHead;   // the beginnings of the small entries that lie further behind
    bool forkIsBlank = false;               // on purpose
    int failure = 0;                        // where the state is `failing` because it could not even be opened: the negative errno

    OSErr result() const;               // for the state `failing`
    std::uint64_t forkLength() const;   // 0 if there is none, or one that was left blank on purpose

    // The first `bytes.size()` bytes of an entry. False if it is missing or shorter.
    bool read(std::uint32_t id, std::span<std::uint8_t> bytes) const;
};

enum class SidecarState
{
    absent,
    good,
    bad,          // something has the name, but it is no sidecar that makes sense
    unreadable,   // not permitted
    failing,      // the disk failed: what there is nobody knows
};

// Opens and reads the sidecar of a file. `sidecar` is good only if the result is.
SidecarState openSidecar(const SidecarPlace &place, bool forWriting, Sidecar &sidecar);

// Whether anything has the sidecar's name. One call. Result: noErr or the disk's code.
OSErr findSidecar(const SidecarPlace &place, bool &isThere);

// Writes entries as far as a good sidecar has room for them where they stand; those that it lacks are left out. A sidecar that others hold by a
// hard link is copied first. Result: noErr or the disk's code.
OSErr updateSidecar(const SidecarPlace &place, std::span<const SidecarPiece> pieces);

// The same, but entries that it lacks are added, and a sidecar that is absent is made. With only entry 9 a new one has the form that every other
// system opens. Result: noErr; errFSNameTooLong if the file's name leaves no room for `._`; ioErr if what has the name is no good sidecar; the disk's code.
OSErr completeSidecar(const SidecarPlace &place, std::span<const SidecarPiece> pieces);

// Makes an empty one of 82 bytes unless something has the name already. Results as above.
OSErr ensureSidecar(const SidecarPlace &place, const FinderBytes &finderInfo);

// The length of a fork is 32 bits, and with what stands before it the sidecar must not be longer either.
constexpr std::uint64_t largestFork = 0xFFFFFFFFu - 0x10000u;

// Opens a sidecar whose fork is about to be written: it is made if there is none, becomes the file's own if others hold it, and has the fork's bytes at
// its end. Results as of completeSidecar.
OSErr openGrowingFork(const SidecarPlace &place, const FinderBytes &finderInfo, Sidecar &sidecar);

// Writes the length of the fork into the table. 0 or a negative errno.
int writeForkLength(const Sidecar &sidecar, std::uint64_t length);

// Before a sidecar loses this name: what other names it has without a file are leftovers from now on, and those in this folder go at once.
void giveUpOtherNames(const SidecarPlace &place);

// Whether a sidecar without a file is only left over from a change of name that was cut off: it has another name, or a file took its copy with it.
bool isLeftoverSidecar(int folder, const std::string &sidecarName);

}   // namespace standin
