#include "standin/files/sidecar_format.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace standin
{

namespace
{

constexpr std::uint32_t sidecarMagic = 0x00051607;
constexpr std::uint32_t firstVersion = 0x00010000;
constexpr std::uint32_t secondVersion = 0x00020000;

// Where the fields of the header stand.
constexpr std::size_t versionAt = 4;
constexpr std::size_t fillerAt = 8;
constexpr std::size_t countAt = 24;

constexpr std::size_t tableEnd(std::size_t entryCount)
{
    return sidecarHeaderSize + entryCount * sidecarDescriptorSize;
}

bool hasSidecarHeader(std::span<const std::uint8_t> head)
{
    if (head.size() < sidecarHeaderSize || readBig32(head.data()) != sidecarMagic)
        return false;
    const std::uint32_t version = readBig32(head.data() + versionAt);
    return version == firstVersion || version == secondVersion;
}

SidecarEntry readDescriptor(const std::uint8_t *bytes)
{
    return {readBig32(bytes), readBig32(bytes + 4), readBig32(bytes + 8)};
}

void writeDescriptor(std::uint8_t *bytes, std::uint32_t id, std::uint32_t offset, std::uint32_t length)
{
    writeBig32(bytes, id);
    writeBig32(bytes + 4, offset);
    writeBig32(bytes + 8, length);
}

// What is wrong with one entry by itself. Offset and length have 32 bits on disk, so their sum fits in 64.
SidecarProblem checkEntry(const SidecarEntry &entry, std::uint64_t endOfTable, std::uint64_t fileSize)
{
    if (entry.id == 0)
        return SidecarProblem::badTable;
    if (entry.offset + entry.length > fileSize)
        return SidecarProblem::truncated;
    if (entry.length != 0 && entry.offset < endOfTable)
        return SidecarProblem::badTable;
    return SidecarProblem::none;
}

bool anyIDTwice(std::vector<std::uint32_t> ids)
{
    std::sort(ids.begin(), ids.end());
    return std::adjacent_find(ids.begin(), ids.end()) != ids.end();
}

bool anyIDTwice(const std::vector<SidecarEntry> &entries)
{
    std::vector<std::uint32_t> ids;
    for (const SidecarEntry &entry : entries)
        ids.push_back(entry.id);
    return anyIDTwice(std::move(ids));
}

bool anyOverlap(std::vector<SidecarEntry> entries)
{
    std::erase_if(entries, [](const SidecarEntry &entry) { return entry.length == 0; });
    std::sort(entries.begin(), entries.end(), [](const SidecarEntry &a, const SidecarEntry &b) { return a.offset < b.offset; });
    const auto overlapsNext = [](const SidecarEntry &entry, const SidecarEntry &next) { return entry.offset + entry.length > next.offset; };
    return std::adjacent_find(entries.begin(), entries.end(), overlapsNext) != entries.end();
}

void writeHeader(std::uint8_t *bytes, std::span<const std::uint8_t, 16> filler, std::size_t entryCount)
{
    writeBig32(bytes, sidecarMagic);
    writeBig32(bytes + versionAt, secondVersion);
    std::copy(filler.begin(), filler.end(), bytes + fillerAt);
    writeBig16(bytes + countAt, static_cast<std::uint16_t>(entryCount));
}

// Whether the pieces and a resource fork make a table that parseSidecar takes back.
bool makeLegalTable(std::span<const SidecarPiece> pieces)
{
    if (pieces.size() >= mostSidecarEntries)
        return false;
    std::vector<std::uint32_t> ids = {0, kResourceForkEntry};   // the IDs that no piece may have
    std::uint64_t size = tableEnd(pieces.size() + 1);
    for (const SidecarPiece &piece : pieces)
    {
        ids.push_back(piece.id);
        size += piece.bytes.size();
    }
    return !anyIDTwice(std::move(ids)) && size <= UINT32_MAX;
}

// The pieces with entry 9 in front, otherwise in their order.
std::vector<const SidecarPiece *> inWritingOrder(std::span<const SidecarPiece> pieces)
{
    std::vector<const SidecarPiece *> ordered;
    for (const SidecarPiece &piece : pieces)
        ordered.push_back(&piece);
    std::stable_partition(ordered.begin(), ordered.end(), [](const SidecarPiece *piece) { return piece->id == kFinderInfoEntry; });
    return ordered;
}

}   // namespace

const SidecarEntry *SidecarLayout::find(std::uint32_t id) const
{
    const auto found = std::find_if(entries.begin(), entries.end(), [id](const SidecarEntry &entry) { return entry.id == id; });
    return found == entries.end() ? nullptr : &*found;
}

SidecarProblem parseSidecar(std::span<const std::uint8_t> head, std::uint64_t fileSize, SidecarLayout &layout)
{
    if (head.size() > fileSize)
        head = head.first(static_cast<std::size_t>(fileSize));
    if (!hasSidecarHeader(head))
        return SidecarProblem::notASidecar;

    const std::size_t entryCount = readBig16(head.data() + countAt);
    const std::size_t endOfTable = tableEnd(entryCount);
    if (entryCount > mostSidecarEntries)
        return SidecarProblem::badTable;
    if (endOfTable > head.size())
        return SidecarProblem::truncated;

    SidecarLayout found;
    found.version = readBig32(head.data() + versionAt);
    std::copy_n(head.data() + fillerAt, found.filler.size(), found.filler.begin());
    for (std::size_t index = 0; index < entryCount; ++index)
    {
        found.entries.push_back(readDescriptor(head.data() + tableEnd(index)));
        const SidecarProblem problem = checkEntry(found.entries.back(), endOfTable, fileSize);
        if (problem != SidecarProblem::none)
            return problem;
    }
    if (anyIDTwice(found.entries) || anyOverlap(found.entries))
        return SidecarProblem::badTable;
    layout = std::move(found);
    return SidecarProblem::none;
}

bool isIntentionallyBlankFork(std::span<const std::uint8_t> fork)
{
    constexpr std::size_t blankForkSize = 286;   // a resource file's header and a map without types
    constexpr std::size_t dataLengthAt = 8;
    constexpr std::size_t reservedAt = 16;
    constexpr std::size_t reservedSize = 112;
    constexpr std::string_view sentence = "This resource fork intentionally left blank";

    if (fork.size() != blankForkSize || readBig32(fork.data() + dataLengthAt) != 0)
        return false;
    const auto reserved = fork.subspan(reservedAt, reservedSize);
    return std::search(reserved.begin(), reserved.end(), sentence.begin(), sentence.end()) != reserved.end();
}

std::vector<std::uint8_t> buildSidecarHead(std::span<const SidecarPiece> pieces, std::span<const std::uint8_t, 16> filler,
                                           std::uint32_t forkLength)
{
    if (!makeLegalTable(pieces))
        return {};

    const std::size_t entryCount = pieces.size() + 1;
    std::vector<std::uint8_t> head(tableEnd(entryCount));
    writeHeader(head.data(), filler, entryCount);
    std::size_t descriptorAt = tableEnd(0);
    for (const SidecarPiece *piece : inWritingOrder(pieces))
    {
        const auto length = static_cast<std::uint32_t>(piece->bytes.size());
        writeDescriptor(head.data() + descriptorAt, piece->id, static_cast<std::uint32_t>(head.size()), length);
        head.insert(head.end(), piece->bytes.begin(), piece->bytes.end());
        descriptorAt += sidecarDescriptorSize;
    }
    writeDescriptor(head.data() + descriptorAt, kResourceForkEntry, static_cast<std::uint32_t>(head.size()), forkLength);
    return head;
}

std::uint16_t readBig16(const std::uint8_t *bytes)
{
    return static_cast<std::uint16_t>((bytes[0] << 8) | bytes[1]);
}

std::uint32_t readBig32(const std::uint8_t *bytes)
{
    return (static_cast<std::uint32_t>(readBig16(bytes)) << 16) | readBig16(bytes + 2);
}

std::uint64_t readBig64(const std::uint8_t *bytes)
{
    return (static_cast<std::uint64_t>(readBig32(bytes)) << 32) | readBig32(bytes + 4);
}

void writeBig16(std::uint8_t *bytes, std::uint16_t value)
{
    bytes[0] = static_cast<std::uint8_t>(value >> 8);
    bytes[1] = static_cast<std::uint8_t>(value & 0xFF);
}

void writeBig32(std::uint8_t *bytes, std::uint32_t value)
{
    writeBig16(bytes, static_cast<std::uint16_t>(value >> 16));
    writeBig16(bytes + 2, static_cast<std::uint16_t>(value & 0xFFFF));
}

void writeBig64(std::uint8_t *bytes, std::uint64_t value)
{
    writeBig32(bytes, static_cast<std::uint32_t>(value >> 32));
    writeBig32(bytes + 4, static_cast<std::uint32_t>(value & 0xFFFFFFFF));
}

namespace
{

// The fields of the four 16-byte Finder records as their widths, in order.
constexpr std::array<std::uint8_t, 6> fileInfoWidths = {4, 4, 2, 2, 2, 2};   // type, creator, flags, location v and h, reserved
constexpr std::array<std::uint8_t, 8> folderInfoWidths = {2, 2, 2, 2,
                                                          2, 2, 2, 2};   // window's four sides, flags, location v and h, reserved
constexpr std::array<std::uint8_t, 7> extendedFileWidths = {2, 2, 2, 2, 2, 2, 4};   // four reserved, flags, reserved, put-away folder
constexpr std::array<std::uint8_t, 6> extendedFolderWidths = {2, 2, 4,
                                                              2, 2, 4};   // scroll v and h, reserved, flags, reserved, put-away folder

template <typename Integer>
Integer readNative(const std::uint8_t *bytes)
{
    Integer value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <typename Integer>
void writeNative(std::uint8_t *bytes, Integer value)
{
    std::memcpy(bytes, &value, sizeof value);
}

void recordToDisk(std::span<const std::uint8_t> widths, const std::uint8_t *memory, std::uint8_t *disk)
{
    for (const std::uint8_t width : widths)
    {
        if (width == 4)
            writeBig32(disk, readNative<std::uint32_t>(memory));
        else
            writeBig16(disk, readNative<std::uint16_t>(memory));
        memory += width;
        disk += width;
    }
}

void recordFromDisk(std::span<const std::uint8_t> widths, const std::uint8_t *disk, std::uint8_t *memory)
{
    for (const std::uint8_t width : widths)
    {
        if (width == 4)
            writeNative(memory, readBig32(disk));
        else
            writeNative(memory, readBig16(disk));
        memory += width;
        disk += width;
    }
}

std::span<const std::uint8_t> basicWidths(bool isFolder)
{
    return isFolder ? std::span<const std::uint8_t>(folderInfoWidths) : std::span<const std::uint8_t>(fileInfoWidths);
}

std::span<const std::uint8_t> extendedWidths(bool isFolder)
{
    return isFolder ? std::span<const std::uint8_t>(extendedFolderWidths) : std::span<const std::uint8_t>(extendedFileWidths);
}

}   // namespace

FinderBytes finderBytesToDisk(const UInt8 finderInfo[16], const UInt8 extendedInfo[16], bool isFolder)
{
    FinderBytes disk = {};
    recordToDisk(basicWidths(isFolder), finderInfo, disk.data());
    recordToDisk(extendedWidths(isFolder), extendedInfo, disk.data() + 16);
    return disk;
}

void finderBytesFromDisk(const FinderBytes &disk, bool isFolder, UInt8 finderInfo[16], UInt8 extendedInfo[16])
{
    recordFromDisk(basicWidths(isFolder), disk.data(), finderInfo);
    recordFromDisk(extendedWidths(isFolder), disk.data() + 16, extendedInfo);
}

}   // namespace standin
