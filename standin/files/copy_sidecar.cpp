#include "standin/files/copy_sidecar.h"

#include "standin/files/attribute_block.h"
#include "standin/files/errors.h"
#include "standin/files/names.h"

#include <algorithm>
#include <cerrno>

namespace standin
{

namespace
{

constexpr std::uint64_t largestSmallEntry = 1 << 24;   // more than any writer's entry but the fork

bool isLeftOut(const SidecarPlan &plan, std::uint32_t id)
{
    return isPrivateEntry(id) || std::find(plan.leftOut.begin(), plan.leftOut.end(), id) != plan.leftOut.end();
}

SidecarPiece &pieceFor(std::vector<SidecarPiece> &pieces, std::uint32_t id)
{
    const auto found = std::find_if(pieces.begin(), pieces.end(), [&](const SidecarPiece &piece) { return piece.id == id; });
    return found == pieces.end() ? pieces.emplace_back(SidecarPiece{id, {}}) : *found;
}

OSErr takeEntries(const Sidecar &source, const SidecarPlan &plan, std::vector<SidecarPiece> &pieces)
{
    for (const SidecarEntry &entry : source.layout.entries)
    {
        if (entry.id == kResourceForkEntry || isLeftOut(plan, entry.id))
            continue;
        if (entry.length > largestSmallEntry)
            return ioErr;
        std::vector<std::uint8_t> &bytes = pieceFor(pieces, entry.id).bytes;
        bytes.resize(entry.length);
        if (!source.read(entry.id, bytes))
            return ioErr;
    }
    return noErr;
}

void layOver(const SidecarPlan &plan, std::vector<SidecarPiece> &pieces)
{
    for (const SidecarPiece &change : plan.pieces)
    {
        std::vector<std::uint8_t> &bytes = pieceFor(pieces, change.id).bytes;
        bytes.resize(std::max(bytes.size(), change.bytes.size()));   // what stands behind the Finder information stays there
        std::copy(change.bytes.begin(), change.bytes.end(), bytes.begin());
    }
}

// The attributes that macOS keeps behind the Finder information count from the start of the file.
void moveAttributes(const Sidecar &source, std::vector<SidecarPiece> &pieces)
{
    const SidecarEntry *entry = source.layout.find(kFinderInfoEntry);
    const auto offset = static_cast<std::int64_t>(sidecarHeaderSize + sidecarDescriptorSize * (pieces.size() + 1));
    if (entry)
        moveAttributeBlock(pieceFor(pieces, kFinderInfoEntry).bytes, offset - static_cast<std::int64_t>(entry->offset));
}

// Descriptors of private entries stay in the table, with no length.
int emptyPrivateEntries(const SidecarLayout &layout, int descriptor)
{
    constexpr std::uint8_t noLength[4] = {};
    for (std::size_t i = 0; i < layout.entries.size(); ++i)
        if (isPrivateEntry(layout.entries[i].id) && layout.entries[i].length > 0)
            if (const int failure = linux_calls::writeAt(descriptor, noLength, sidecarHeaderSize + sidecarDescriptorSize * i + 8))
                return failure;
    return 0;
}

}   // namespace

OSErr SidecarCopy::writeAsItIs(const Sidecar &source, CopyMeter &meter)
{
    ObjectStatus copied;
    int failure = copyContents(source.file.number(), source.status, file_.descriptor(), meter);
    if (failure == 0)
        failure = linux_calls::statusOf(file_.descriptor(), copied);
    if (failure == 0 && copied.size < source.status.size)
        return ioErr;   // somebody cuts it while we copy: its table would promise more than there is
    if (failure == 0)
        failure = emptyPrivateEntries(source.layout, file_.descriptor());
    if (failure == 0)
        failure = linux_calls::writeAt(file_.descriptor(), copiedFiller, sidecarFillerOffset);
    return resultFromErrno(-failure);
}

OSErr SidecarCopy::writeAnew(const Sidecar *source, const SidecarPlan &plan, CopyMeter &meter)
{
    std::vector<SidecarPiece> pieces;
    const std::uint64_t forkLength = source ? source->forkLength() : 0;
    if (source)
        if (OSErr result = takeEntries(*source, plan, pieces))
            return result;
    layOver(plan, pieces);
    if (source)
        moveAttributes(*source, pieces);
    const auto head = buildSidecarHead(pieces, copiedFiller, static_cast<std::uint32_t>(forkLength));
    if (head.empty())
        return ioErr;
    int failure = linux_calls::writeAt(file_.descriptor(), head, 0);
    if (failure == 0 && forkLength > 0)
        failure = linux_calls::copyBytes(source->file.number(), source->layout.find(kResourceForkEntry)->offset, file_.descriptor(),
                                         head.size(), forkLength);
    meter.add(head.size() + forkLength);
    return resultFromErrno(-failure);
}

OSErr SidecarCopy::write(const Sidecar *source, const SidecarPlan &plan, int folder, std::uint32_t mode, CopyMeter &meter)
{
    if (!plan.isWanted)
        return noErr;
    folder_ = folder;
    if (source && source->layout.filler != copiedFiller)
        finalFiller_ = source->layout.filler;
    if (const int failure = file_.make(folder, (mode & 0666) | 0600))
        return resultFromErrno(-failure);
    exists_ = true;
    return source && plan.asItIs ? writeAsItIs(*source, meter) : writeAnew(source, plan, meter);
}

int SidecarCopy::appear(const std::string &nameOfFile)
{
    if (!exists_)
        return 0;
    name_ = sidecarNameOf(nameOfFile);
    const int failure = file_.appear(name_.c_str());
    if (failure)
        name_.clear();
    return failure;
}

int SidecarCopy::settle() const
{
    return exists_ ? linux_calls::writeAt(file_.descriptor(), finalFiller_, sidecarFillerOffset) : 0;
}

int SidecarCopy::flush() const
{
    return exists_ ? linux_calls::flushToDisk(file_.descriptor()) : 0;
}

void SidecarCopy::takeBack()
{
    if (!name_.empty())
        linux_calls::unlinkAt(folder_, name_.c_str());
    name_.clear();
}

}   // namespace standin
