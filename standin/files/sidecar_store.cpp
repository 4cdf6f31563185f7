#include "standin/files/sidecar_store.h"

#include "standin/files/attribute_block.h"
#include "standin/files/errors.h"
#include "standin/files/listings.h"
#include "standin/files/names.h"
#include "standin/files/temporary_files.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace standin
{

namespace
{

constexpr std::size_t headSize = 1024;   // one read has the table and, in most sidecars, every small entry
constexpr std::size_t blankForkSize = 286;
constexpr std::size_t smallEntrySize = 64;             // no entry that we read or write at once is longer
constexpr std::uint64_t largestSmallEntry = 1 << 24;   // more than any writer's entry but the fork

std::string sidecarName(const SidecarPlace &place)
{
    return sidecarNameOf(place.name);
}

// What else is asked for later is read now, so that a failure to read it is never taken for its absence.
SidecarState readBehindHead(Sidecar &sidecar)
{
    for (const SidecarEntry &entry : sidecar.layout.entries)
    {
        const bool mayBeBlank = entry.id == kResourceForkEntry && entry.length == blankForkSize;
        std::vector<std::uint8_t> bytes(mayBeBlank ? blankForkSize : std::min<std::uint64_t>(entry.length, smallEntrySize));
        if (entry.id == kResourceForkEntry && !mayBeBlank)
            continue;
        if (!sidecar.read(entry.id, bytes))
            return SidecarState::failing;
        sidecar.forkIsBlank |= mayBeBlank && isIntentionallyBlankFork(bytes);
        if (!mayBeBlank && entry.offset + bytes.size() > sidecar.head.size())
            sidecar.behindHead.push_back({entry.id, std::move(bytes)});
    }
    return SidecarState::good;
}

// What a failure to open says.
SidecarState stateAfter(int failure)
{
    if (linux_calls::saysAbsent(failure))
        return SidecarState::absent;
    if (failure == -EACCES || failure == -EPERM || failure == -EROFS)
        return SidecarState::unreadable;
    const bool isOfAnotherKind = failure == -ELOOP || failure == -EISDIR || failure == -ENXIO || failure == -ENODEV || failure == -ETXTBSY;
    return isOfAnotherKind ? SidecarState::bad : SidecarState::failing;
}

SidecarState readHead(Sidecar &sidecar)
{
    if (linux_calls::statusOf(sidecar.file.number(), sidecar.status) < 0)
        return SidecarState::failing;
    if (!sidecar.status.isRegular())
        return SidecarState::bad;
    sidecar.head.resize(std::min<std::uint64_t>(sidecar.status.size, headSize));
    const ssize_t got = linux_calls::readAt(sidecar.file.number(), sidecar.head, 0);
    if (got < 0)
        return SidecarState::failing;
    sidecar.head.resize(static_cast<std::size_t>(got));
    const SidecarProblem problem = parseSidecar(sidecar.head, sidecar.status.size, sidecar.layout);
    return problem == SidecarProblem::none ? readBehindHead(sidecar) : SidecarState::bad;
}

// Before a sidecar that has other names gets a copy of its own under this one: a name that has no file is then known as left over from a move that was
// cut off. What another system wrote is not marked.
int markAsCopied(const Sidecar &sidecar)
{
    const bool isMarked = sidecar.status.links > 1 && sidecar.layout.filler == ownFiller;
    return isMarked ? linux_calls::writeAt(sidecar.file.number(), copiedFiller, sidecarFillerOffset) : 0;
}

// Who writes to a sidecar has it for himself again.
int unmark(const Sidecar &sidecar)
{
    return sidecar.layout.filler == copiedFiller ? linux_calls::writeAt(sidecar.file.number(), ownFiller, sidecarFillerOffset) : 0;
}

// Writes a sidecar's head and, where there is an old one, its fork behind it. The temporary is then given the sidecar's name.
OSErr writeAnew(const SidecarPlace &place, std::span<const std::uint8_t> head, const Sidecar *old, std::uint64_t forkLength)
{
    TemporaryFile temporary;
    const std::uint32_t mode = old ? old->status.mode : (place.status.mode & 0666) | 0600;
    int failure = temporary.make(place.folder, mode);
    if (failure == 0)
        failure = linux_calls::writeAt(temporary.descriptor(), head, 0);
    if (failure == 0 && forkLength > 0)
        failure = linux_calls::copyBytes(old->file.number(), old->layout.find(kResourceForkEntry)->offset, temporary.descriptor(),
                                         head.size(), forkLength);
    if (failure < 0)
        return resultFromErrno(-failure);
    if (linux_calls::effectiveUser() == 0)
        linux_calls::setOwner(temporary.descriptor(), place.status.user, place.status.group);
    const std::string name = sidecarName(place);
    failure = old ? markAsCopied(*old) : 0;
    if (failure == 0)
        failure = old ? temporary.replace(name.c_str()) : temporary.appear(name.c_str());
    return resultFromErrno(-failure);
}

// A change of name that was cut off leaves its sidecar with two names in one folder, one of them without a file. That one goes, and it must go before the
// sidecar is written anew: with a single link it would come to light as an orphan.
OSErr removeOtherLeftovers(const SidecarPlace &place, const Sidecar &sidecar)
{
    std::vector<std::string> leftovers;
    int failure = visitEntries(place.folder, [&](const Entry &entry) {
        if (entry.inode == sidecar.status.inode && looksLikeSidecar(entry.name) && entry.name != sidecarName(place))
            leftovers.emplace_back(entry.name);
        return true;
    });
    for (auto name = leftovers.begin(); failure == 0 && name != leftovers.end(); ++name)
    {
        ObjectStatus owner;
        failure = linux_calls::statusAt(place.folder, name->c_str() + 2, owner);
        if (failure == -ENOENT)
            failure = linux_calls::unlinkAt(place.folder, name->c_str());
    }
    return resultFromErrno(-failure);
}

// A sidecar that others hold by a hard link becomes one of its own.
OSErr copyApart(const SidecarPlace &place, const Sidecar &sidecar)
{
    TemporaryFile temporary;
    ObjectStatus status;
    if (OSErr result = removeOtherLeftovers(place, sidecar))
        return result;
    if (linux_calls::statusOf(sidecar.file.number(), status) == 0 && status.links == 1)
        return noErr;
    int failure = temporary.make(place.folder, sidecar.status.mode);
    if (failure == 0)
        failure = linux_calls::copyBytes(sidecar.file.number(), 0, temporary.descriptor(), 0, sidecar.status.size);
    if (failure == 0 && linux_calls::effectiveUser() == 0)
        linux_calls::setOwner(temporary.descriptor(), sidecar.status.user, sidecar.status.group);
    if (failure == 0)
        failure = markAsCopied(sidecar);
    if (failure == 0)
        failure = temporary.replace(sidecarName(place).c_str());
    return resultFromErrno(-failure);
}

// Writes what fits where it stands and differs from what is there.
int writeInPlace(const Sidecar &sidecar, std::span<const SidecarPiece> pieces)
{
    for (const SidecarPiece &piece : pieces)
    {
        const SidecarEntry *entry = sidecar.layout.find(piece.id);
        std::vector<std::uint8_t> present(piece.bytes.size());
        if (!sidecar.read(piece.id, present) || present == piece.bytes)
            continue;
        if (const int failure = linux_calls::writeAt(sidecar.file.number(), piece.bytes, entry->offset))
            return failure;
    }
    return 0;
}

OSErr updateOpen(const SidecarPlace &place, Sidecar &sidecar, std::span<const SidecarPiece> pieces)
{
    if (sidecar.status.links > 1)
    {
        if (OSErr result = copyApart(place, sidecar))
            return result;
        if (openSidecar(place, true, sidecar) != SidecarState::good)
            return fBsyErr;   // another program took its name meanwhile
    }
    const int failure = unmark(sidecar);
    return resultFromErrno(-(failure ? failure : writeInPlace(sidecar, pieces)));
}

bool holdsAll(const Sidecar &sidecar, std::span<const SidecarPiece> pieces)
{
    return std::all_of(pieces.begin(), pieces.end(), [&](const SidecarPiece &piece) {
        const SidecarEntry *entry = sidecar.layout.find(piece.id);
        return entry && entry->length >= piece.bytes.size();
    });
}

SidecarPiece *findPiece(std::vector<SidecarPiece> &pieces, std::uint32_t id)
{
    const auto found = std::find_if(pieces.begin(), pieces.end(), [&](const SidecarPiece &piece) { return piece.id == id; });
    return found == pieces.end() ? nullptr : &*found;
}

// All small entries of a sidecar, with the new ones laid over them.
OSErr mergePieces(const Sidecar &sidecar, std::span<const SidecarPiece> changes, std::vector<SidecarPiece> &merged)
{
    for (const SidecarEntry &entry : sidecar.layout.entries)
    {
        if (entry.id == kResourceForkEntry)
            continue;
        if (entry.length > largestSmallEntry)
            return ioErr;
        SidecarPiece piece{entry.id, std::vector<std::uint8_t>(entry.length)};
        if (!sidecar.read(entry.id, piece.bytes))
            return ioErr;
        merged.push_back(std::move(piece));
    }
    for (const SidecarPiece &change : changes)
    {
        SidecarPiece *present = findPiece(merged, change.id);
        if (!present)
            present = &merged.emplace_back(SidecarPiece{change.id, {}});
        present->bytes.resize(std::max(present->bytes.size(), change.bytes.size()));
        std::copy(change.bytes.begin(), change.bytes.end(), present->bytes.begin());
    }
    return noErr;
}

OSErr rebuild(const SidecarPlace &place, const Sidecar &sidecar, std::span<const SidecarPiece> changes)
{
    std::vector<SidecarPiece> pieces;
    if (sidecar.status.links > 1)
        if (OSErr result = removeOtherLeftovers(place, sidecar))
            return result;
    if (OSErr result = mergePieces(sidecar, changes, pieces))
        return result;
    const SidecarEntry *finderInfo = sidecar.layout.find(kFinderInfoEntry);
    const std::int64_t newOffset = static_cast<std::int64_t>(sidecarHeaderSize + sidecarDescriptorSize * (pieces.size() + 1));
    if (finderInfo)
        moveAttributeBlock(findPiece(pieces, kFinderInfoEntry)->bytes, newOffset - static_cast<std::int64_t>(finderInfo->offset));
    const SidecarFiller &filler = sidecar.layout.filler == copiedFiller ? ownFiller : sidecar.layout.filler;
    const std::uint64_t forkLength = sidecar.forkLength();
    const auto head = buildSidecarHead(pieces, filler, static_cast<std::uint32_t>(forkLength));
    return head.empty() ? static_cast<OSErr>(ioErr) : writeAnew(place, head, &sidecar, forkLength);
}

// The fork's bytes are the last ones of the file, so that more may follow them; not even an entry without bytes begins behind them, where the file may come
// to end. One that was left blank on purpose is written over.
bool forkCanGrow(const Sidecar &sidecar)
{
    const SidecarEntry *fork = sidecar.layout.find(kResourceForkEntry);
    if (!fork || (fork->length > 0 && sidecar.forkLength() == 0))
        return false;
    return std::all_of(sidecar.layout.entries.begin(), sidecar.layout.entries.end(),
                       [&](const SidecarEntry &entry) { return &entry == fork || entry.offset + entry.length <= fork->offset; });
}

OSErr makeSidecar(const SidecarPlace &place, std::span<const SidecarPiece> pieces)
{
    if (!hasRoomForSidecar(place.name))
        return errFSNameTooLong;
    return writeAnew(place, buildSidecarHead(pieces, ownFiller, 0), nullptr, 0);
}

}   // namespace

std::uint64_t Sidecar::forkLength() const
{
    const SidecarEntry *fork = layout.find(kResourceForkEntry);
    return !fork || forkIsBlank ? 0 : fork->length;
}

bool Sidecar::read(std::uint32_t id, std::span<std::uint8_t> bytes) const
{
    const SidecarEntry *entry = layout.find(id);
    if (!entry || entry->length < bytes.size())
        return false;
    if (entry->offset + bytes.size() <= head.size())
    {
        std::copy_n(head.begin() + static_cast<std::ptrdiff_t>(entry->offset), bytes.size(), bytes.begin());
        return true;
    }
    const auto known = std::find_if(behindHead.begin(), behindHead.end(), [&](const SidecarPiece &piece) { return piece.id == id; });
    if (known != behindHead.end() && known->bytes.size() >= bytes.size())
    {
        std::copy_n(known->bytes.begin(), bytes.size(), bytes.begin());
        return true;
    }
    return linux_calls::readAt(file.number(), bytes, entry->offset) == static_cast<ssize_t>(bytes.size());
}

OSErr Sidecar::result() const
{
    return failure < 0 ? resultFromErrno(-failure) : static_cast<OSErr>(ioErr);
}

SidecarState openSidecar(const SidecarPlace &place, bool forWriting, Sidecar &sidecar)
{
    if (!hasRoomForSidecar(place.name))
        return SidecarState::absent;
    const int opened = linux_calls::openAt(place.folder, sidecarName(place).c_str(), (forWriting ? O_RDWR : O_RDONLY) | O_NONBLOCK);
    sidecar = {};
    sidecar.failure = std::min(opened, 0);
    if (opened < 0)
        return stateAfter(opened);
    sidecar.file = Descriptor(opened);
    return readHead(sidecar);
}

OSErr findSidecar(const SidecarPlace &place, bool &isThere)
{
    ObjectStatus status;
    isThere = false;
    if (!hasRoomForSidecar(place.name))
        return noErr;
    const int failure = linux_calls::statusAt(place.folder, sidecarName(place).c_str(), status);
    isThere = failure == 0;
    return linux_calls::saysAbsent(failure) ? static_cast<OSErr>(noErr) : resultFromErrno(-failure);
}

OSErr updateSidecar(const SidecarPlace &place, std::span<const SidecarPiece> pieces)
{
    Sidecar sidecar;
    switch (openSidecar(place, true, sidecar))
    {
    case SidecarState::good: return updateOpen(place, sidecar, pieces);
    case SidecarState::unreadable: return afpAccessDenied;
    case SidecarState::failing: return sidecar.result();
    default: return noErr;
    }
}

OSErr completeSidecar(const SidecarPlace &place, std::span<const SidecarPiece> pieces)
{
    Sidecar sidecar;
    switch (openSidecar(place, true, sidecar))
    {
    case SidecarState::absent: return makeSidecar(place, pieces);
    case SidecarState::good: return holdsAll(sidecar, pieces) ? updateOpen(place, sidecar, pieces) : rebuild(place, sidecar, pieces);
    case SidecarState::unreadable: return afpAccessDenied;
    case SidecarState::failing: return sidecar.result();
    default: return ioErr;
    }
}

OSErr ensureSidecar(const SidecarPlace &place, const FinderBytes &finderInfo)
{
    bool isThere = false;
    if (OSErr result = findSidecar(place, isThere); result != noErr || isThere)
        return result;
    const SidecarPiece piece{kFinderInfoEntry, {finderInfo.begin(), finderInfo.end()}};
    return makeSidecar(place, {&piece, 1});
}

OSErr openGrowingFork(const SidecarPlace &place, const FinderBytes &finderInfo, Sidecar &sidecar)
{
    SidecarState state = openSidecar(place, true, sidecar);
    if (state == SidecarState::absent)
    {
        if (OSErr result = ensureSidecar(place, finderInfo))
            return result;
        state = openSidecar(place, true, sidecar);
    }
    if (state != SidecarState::good)
        return state == SidecarState::unreadable ? afpAccessDenied : state == SidecarState::failing ? sidecar.result() : OSErr{ioErr};
    if (forkCanGrow(sidecar) && sidecar.status.links == 1)
        return resultFromErrno(-unmark(sidecar));
    if (OSErr result =
            forkCanGrow(sidecar) ? copyApart(place, sidecar) : rebuild(place, sidecar, {}))   // a new file, with the fork at its end
        return result;
    return openSidecar(place, true, sidecar) == SidecarState::good ? noErr : fBsyErr;
}

int writeForkLength(const Sidecar &sidecar, std::uint64_t length)
{
    const auto index = static_cast<std::size_t>(sidecar.layout.find(kResourceForkEntry) - sidecar.layout.entries.data());
    std::uint8_t bytes[4];
    writeBig32(bytes, static_cast<std::uint32_t>(length));
    return linux_calls::writeAt(sidecar.file.number(), bytes, sidecarHeaderSize + sidecarDescriptorSize * index + 8);
}

void giveUpOtherNames(const SidecarPlace &place)
{
    Sidecar sidecar;
    if (openSidecar(place, true, sidecar) != SidecarState::good || sidecar.status.links == 1)
        return;
    removeOtherLeftovers(place, sidecar);
    markAsCopied(sidecar);
}

bool isLeftoverSidecar(int folder, const std::string &sidecarName)
{
    Sidecar sidecar;
    ObjectStatus status;
    if (linux_calls::statusAt(folder, sidecarName.c_str(), status) < 0 || !status.isRegular())
        return false;
    if (status.links > 1)
        return true;
    const std::string name = sidecarName.substr(2);
    return openSidecar({folder, name, status}, false, sidecar) == SidecarState::good && sidecar.layout.filler == copiedFiller;
}

}   // namespace standin
