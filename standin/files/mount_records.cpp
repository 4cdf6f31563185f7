#include "standin/files/mount_records.h"

#include "standin/files/mount_list.h"
#include "standin/files/volume_opening.h"

#include <algorithm>

namespace standin
{

namespace
{

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t signature = 0x7A566F6C;   // 'zVol'
constexpr std::uint16_t version = 1;
constexpr std::size_t checkSumAt = 8, kindAt = 12, flagsAt = 14, textsAt = 16;
constexpr std::uint16_t directoryKind = 1, mountedDiskKind = 2;

// The flags of a directory volume; those of a mounted disk are its MountFlags.
enum OptionFlags : std::uint16_t
{
    lockedFlag = 1,
    noCopyFileFlag = 2,
    noMoveRenameFlag = 4,
    noExchangeFlag = 8,
    everyOptionFlag = 15,
};

void putBig16(Bytes &bytes, std::size_t at, std::size_t value)
{
    bytes[at] = static_cast<std::uint8_t>(value >> 8);
    bytes[at + 1] = static_cast<std::uint8_t>(value);
}

void putBig32(Bytes &bytes, std::size_t at, std::uint32_t value)
{
    putBig16(bytes, at, value >> 16);
    putBig16(bytes, at + 2, value & 0xFFFF);
}

std::uint16_t big16(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

std::uint32_t big32(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(big16(bytes, at)) << 16 | big16(bytes, at + 2);
}

// FNV-1a, in which every single byte that differs makes another sum.
std::uint32_t checkSumOf(std::span<const std::uint8_t> bytes)
{
    std::uint32_t sum = 0x811C9DC5u;
    for (std::size_t at = 0; at < bytes.size(); ++at)
        if (at < checkSumAt || at >= checkSumAt + 4)
            sum = (sum ^ bytes[at]) * 0x01000193u;
    return sum;
}

std::uint16_t flagsOf(const MountRecord &record)
{
    if (record.kind == VolumeKind::mountedDisk)
        return record.mountFlags;
    const VolumeOptions &options = record.options;
    return static_cast<std::uint16_t>((options.locked ? lockedFlag : 0) | (options.copyFileOffered ? 0 : noCopyFileFlag) |
                                      (options.moveRenameOffered ? 0 : noMoveRenameFlag) | (options.exchangeOffered ? 0 : noExchangeFlag));
}

void takeFlags(std::uint16_t flags, MountRecord &record)
{
    if (record.kind == VolumeKind::mountedDisk)
    {
        record.mountFlags = flags;
        return;
    }
    record.options.locked = flags & lockedFlag;
    record.options.copyFileOffered = !(flags & noCopyFileFlag);
    record.options.moveRenameOffered = !(flags & noMoveRenameFlag);
    record.options.exchangeOffered = !(flags & noExchangeFlag);
}

bool isPlainText(const std::string &text)
{
    return text.find('\0') == std::string::npos;
}

// The word that the mount program takes for a kind of disk.
bool isKindOfDisk(const std::string &text)
{
    constexpr std::string_view others = "._-+";
    return !text.empty() && text[0] != '-' && std::all_of(text.begin(), text.end(), [&](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || others.find(c) != std::string_view::npos;
    });
}

bool makesSense(const MountRecord &record)
{
    if (!record.place.starts_with('/') || !isPlainText(record.place))
        return false;
    if (record.kind == VolumeKind::directory)
        return isVolumeName(record.name) && record.diskKind.empty() && record.source.empty();
    return record.kind == VolumeKind::mountedDisk && record.name.empty() && isKindOfDisk(record.diskKind) && !record.source.empty() &&
           record.source[0] != '-' && isPlainText(record.source) && (record.mountFlags & ~everyMountFlag) == 0;
}

// Takes the text at a place, which moves on. False if it does not lie within the bytes.
bool takeText(std::span<const std::uint8_t> bytes, std::size_t &at, std::string &text)
{
    if (bytes.size() - at < 2)
        return false;
    const std::size_t length = big16(bytes, at);
    at += 2;
    if (bytes.size() - at < length)
        return false;
    text.assign(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.begin() + static_cast<std::ptrdiff_t>(at + length));
    at += length;
    return true;
}

bool isIntact(std::span<const std::uint8_t> bytes)
{
    return bytes.size() >= shortestMountRecord && bytes.size() <= longestMountRecord && big16(bytes, 0) == bytes.size() &&
           big32(bytes, 2) == signature && big16(bytes, 6) == version && big32(bytes, checkSumAt) == checkSumOf(bytes);
}

bool takeFields(std::span<const std::uint8_t> bytes, MountRecord &record)
{
    const std::uint16_t kind = big16(bytes, kindAt), flags = big16(bytes, flagsAt);
    if ((kind != directoryKind && kind != mountedDiskKind) || (flags & ~everyOptionFlag) != 0)
        return false;
    record.kind = kind == directoryKind ? VolumeKind::directory : VolumeKind::mountedDisk;
    takeFlags(flags, record);
    std::size_t at = textsAt;
    for (std::string *text : {&record.name, &record.diskKind, &record.source, &record.place})
        if (!takeText(bytes, at, *text))
            return false;
    return at == bytes.size() && makesSense(record);
}

}   // namespace

static_assert(int{everyOptionFlag} == int{everyMountFlag});

OSErr writeMountRecord(const MountRecord &record, std::vector<std::uint8_t> &bytes)
{
    if (!makesSense(record))
        return paramErr;
    bytes.assign(textsAt, 0);
    for (const std::string *text : {&record.name, &record.diskKind, &record.source, &record.place})
    {
        if (bytes.size() + 2 + text->size() > longestMountRecord)
            return errFSNameTooLong;
        bytes.resize(bytes.size() + 2);
        putBig16(bytes, bytes.size() - 2, text->size());
        bytes.insert(bytes.end(), text->begin(), text->end());
    }
    putBig16(bytes, 0, bytes.size());
    putBig32(bytes, 2, signature);
    putBig16(bytes, 6, version);
    putBig16(bytes, kindAt, record.kind == VolumeKind::directory ? directoryKind : mountedDiskKind);
    putBig16(bytes, flagsAt, flagsOf(record));
    putBig32(bytes, checkSumAt, checkSumOf(bytes));
    return noErr;
}

std::size_t lengthOfMountRecord(std::span<const std::uint8_t, 2> bytes)
{
    const std::size_t length = big16(bytes, 0);
    return length >= shortestMountRecord && length <= longestMountRecord ? length : 0;
}

OSErr readMountRecord(std::span<const std::uint8_t> bytes, MountRecord &record)
{
    MountRecord read;
    if (!isIntact(bytes) || !takeFields(bytes, read))
        return paramErr;
    record = std::move(read);
    return noErr;
}

}   // namespace standin
