#include "standin/files/metadata_sidecars.h"

#include "standin/files/dates.h"
#include "standin/files/errors.h"

namespace standin
{

namespace
{

template <std::size_t Size>
SidecarPiece pieceOf(std::uint32_t id, const std::array<std::uint8_t, Size> &bytes)
{
    return {id, {bytes.begin(), bytes.end()}};
}

// Entry 10 or 14 with its other bits kept.
template <typename WriteLock>
SidecarPiece lockPiece(const Sidecar *sidecar, std::uint32_t id, bool locked, WriteLock writeLock)
{
    std::array<std::uint8_t, 4> info{};
    if (sidecar)
        sidecar->read(id, info);
    writeLock(std::span<std::uint8_t, 4>(info), locked);
    return pieceOf(id, info);
}

// Entry 8 with its access date, which we know nothing of, kept.
SidecarPiece datesPiece(const Object &object, const Sidecar *sidecar, const OwnRecord &own)
{
    std::array<std::uint8_t, 16> bytes{};
    const bool isThere = sidecar && sidecar->read(kFileDatesEntry, bytes);
    writeSidecarDates(bytes, mirroredDates(object, own, isThere ? readSidecarDates(bytes).access : unknownSidecarDate));
    return pieceOf(kFileDatesEntry, bytes);
}

// What a sidecar should say of the changed parts.
OSErr sidecarPieces(const Object &object, unsigned parts, const Metadata &wanted, std::vector<SidecarPiece> &pieces)
{
    Sidecar present;
    const SidecarState state = openSidecar(sidecarPlace(object), false, present);
    const bool exists = state == SidecarState::good;
    const Sidecar *sidecar = exists ? &present : nullptr;
    if (state == SidecarState::failing)
        return present.result();
    if (parts & kFinderPart)
        pieces.push_back(pieceOf(kFinderInfoEntry, wanted.finderInfo));
    if (parts & kDatesPart)
        pieces.push_back(datesPiece(object, sidecar, wanted.own));
    if (parts & kLockPart)
        pieces.push_back(lockPiece(sidecar, kMacintoshFileInfoEntry, wanted.own.locked, writeMacintoshLock));
    if ((parts & kLockPart) && exists && present.layout.find(kAFPFileInfoEntry))
        pieces.push_back(lockPiece(sidecar, kAFPFileInfoEntry, wanted.own.locked, writeAFPLock));
    return noErr;
}

}   // namespace

SidecarPlace sidecarPlace(const Object &object)
{
    return {object.folder->number(), object.name, object.status};
}

SidecarDates mirroredDates(const Object &object, const OwnRecord &own, std::int32_t access)
{
    SidecarDates dates{unknownSidecarDate, sidecarFromDate(dateFromLinux(object.status.modification)), unknownSidecarDate, access};
    if (own.creationDate)
        dates.creation = sidecarFromDate(*own.creationDate);
    if (own.backupDate)
        dates.backup = sidecarFromDate(*own.backupDate);
    return dates;
}

OSErr writeToSidecarAlone(const Object &object, unsigned parts, const Metadata &present, const Metadata &wanted)
{
    const auto record = buildOwnRecord(wanted.own);
    const bool ownChanges = record != buildOwnRecord(present.own);
    if (!ownChanges && wanted.finderInfo == present.finderInfo)
        return noErr;
    std::vector<SidecarPiece> pieces;
    if (OSErr result = sidecarPieces(object, kFinderPart | (ownChanges ? parts : 0), wanted, pieces))
        return result;
    if (ownChanges)
        pieces.push_back(pieceOf(kOwnEntry, record));
    return completeSidecar(sidecarPlace(object), pieces);
}

OSErr bringSidecarInLine(const Object &object, unsigned parts, const Metadata &wanted, bool &isThere)
{
    if ((parts & kLockPart) && wanted.own.locked)
        if (OSErr result = ensureSidecar(sidecarPlace(object), wanted.finderInfo))
            return result;
    if (OSErr result = findSidecar(sidecarPlace(object), isThere); result != noErr || !isThere)
        return result;
    std::vector<SidecarPiece> pieces;
    if (OSErr result = sidecarPieces(object, parts, wanted, pieces))
        return result;
    return updateSidecar(sidecarPlace(object), pieces);
}

}   // namespace standin
