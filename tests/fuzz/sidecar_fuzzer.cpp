// Any bytes as a sidecar: what is accepted keeps the promises of parseSidecar, and can be written anew and read back.
#include "standin/files/attribute_block.h"
#include "standin/files/sidecar_format.h"
#include "tests/fuzz/require.h"

#include <algorithm>

namespace
{

using namespace standin;
using Bytes = std::span<const std::uint8_t>;

bool overlap(const SidecarEntry &a, const SidecarEntry &b)
{
    return a.length != 0 && b.length != 0 && a.offset < b.offset + b.length && b.offset < a.offset + a.length;
}

void checkPromises(const SidecarLayout &layout, std::uint64_t fileSize)
{
    require(layout.entries.size() <= mostSidecarEntries);
    const std::uint64_t tableEnd = sidecarHeaderSize + layout.entries.size() * sidecarDescriptorSize;
    for (std::size_t index = 0; index < layout.entries.size(); ++index)
    {
        const SidecarEntry &entry = layout.entries[index];
        require(entry.id != 0 && entry.offset <= fileSize && entry.length <= fileSize - entry.offset);
        require(entry.length == 0 || entry.offset >= tableEnd);
        require(layout.find(entry.id) == &entry);
        for (std::size_t other = 0; other < index; ++other)
            require(layout.entries[other].id != entry.id && !overlap(layout.entries[other], entry));
    }
}

std::vector<std::uint8_t> bytesOf(const SidecarEntry &entry, Bytes file)
{
    const Bytes part = file.subspan(static_cast<std::size_t>(entry.offset), static_cast<std::size_t>(entry.length));
    return std::vector<std::uint8_t>(part.begin(), part.end());
}

// Everything but the fork is taken out, written again, and must then be found unchanged.
void rewrite(const SidecarLayout &layout, Bytes file)
{
    std::vector<SidecarPiece> pieces;
    for (const SidecarEntry &entry : layout.entries)
        if (entry.id != kResourceForkEntry)
            pieces.push_back({entry.id, bytesOf(entry, file)});
    const SidecarEntry *fork = layout.find(kResourceForkEntry);
    const std::uint32_t forkLength = fork == nullptr ? 0 : static_cast<std::uint32_t>(fork->length);
    if (fork != nullptr)
        isIntentionallyBlankFork(bytesOf(*fork, file));

    const std::vector<std::uint8_t> head = buildSidecarHead(pieces, layout.filler, forkLength);
    require(head.empty() == (pieces.size() == mostSidecarEntries));
    if (head.empty())
        return;
    SidecarLayout again;
    require(parseSidecar(head, head.size() + forkLength, again) == SidecarProblem::none);
    require(again.filler == layout.filler && again.entries.size() == pieces.size() + 1);
    require(again.entries.back().id == kResourceForkEntry && again.entries.back().offset == head.size());
    for (const SidecarPiece &piece : pieces)
        require(bytesOf(*again.find(piece.id), head) == piece.bytes);
}

// Where entry 9 moves, what macOS keeps in it moves along; bytes that make no sense must only do no harm.
void moveAttributes(Bytes file)
{
    for (const std::int64_t distance : {12, -24, INT32_MAX})
    {
        std::vector<std::uint8_t> entry(file.begin(), file.end());
        moveAttributeBlock(entry, distance);
        require(entry.size() == file.size() &&
                std::equal(entry.begin(), entry.begin() + std::min<std::ptrdiff_t>(34, std::ssize(entry)), file.begin()));
    }
}

void checkFinderRecords(Bytes file)
{
    FinderBytes disk = {};
    std::copy_n(file.begin(), std::min(file.size(), disk.size()), disk.begin());
    for (const bool isFolder : {false, true})
    {
        UInt8 basic[16], extended[16];
        finderBytesFromDisk(disk, isFolder, basic, extended);
        require(finderBytesToDisk(basic, extended, isFolder) == disk);
    }
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Bytes file(data, size);
    SidecarLayout layout;
    if (parseSidecar(file, size, layout) == SidecarProblem::none)
    {
        checkPromises(layout, size);
        rewrite(layout, file);
    }

    // The same table in front of a file so large that only the table itself can be wrong.
    const std::uint64_t largest = 0x1FFFFFFFE;
    const Bytes head = file.first(std::min(size, largestSidecarTable));
    SidecarLayout ofLargest;
    if (parseSidecar(head, largest, ofLargest) == SidecarProblem::none)
        checkPromises(ofLargest, largest);

    if (const SidecarEntry *finderInfo = layout.find(kFinderInfoEntry))
        moveAttributes(file.subspan(static_cast<std::size_t>(finderInfo->offset), static_cast<std::size_t>(finderInfo->length)));
    checkFinderRecords(file);
    isIntentionallyBlankFork(file);
    return 0;
}
