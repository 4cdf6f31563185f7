#include "standin/files/exchange_journal.h"

#include <algorithm>

namespace standin
{

namespace
{

constexpr std::uint32_t journalTag = 0x5A455843;   // "ZEXC"
constexpr std::uint8_t journalVersion = 1;
constexpr std::uint8_t sharedFlag = 0x01, ownFlag = 0x02;

constexpr std::size_t versionAt = 4, flagsAt = 5, fromLengthAt = 6, toLengthAt = 7, fileAt = 8, partnerAt = 16, fromFolderAt = 24,
                      toFolderAt = 32, toBirthAt = 40, ownAt = 48, sharedLengthAt = 76;
static_assert(sharedLengthAt + 4 == journalHeaderSize);

void write64(std::uint8_t *bytes, std::uint64_t value)
{
    writeBig32(bytes, static_cast<std::uint32_t>(value >> 32));
    writeBig32(bytes + 4, static_cast<std::uint32_t>(value));
}

std::uint64_t read64(const std::uint8_t *bytes)
{
    return static_cast<std::uint64_t>(readBig32(bytes)) << 32 | readBig32(bytes + 4);
}

// The ranges in which an attribute is not as an empty one.
std::vector<std::uint8_t> differencesOf(const SharedAttribute &attribute)
{
    constexpr std::size_t longestRange = 255;
    const SharedAttribute empty = emptySharedAttribute();
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < attribute.size();)
    {
        std::size_t end = at;
        while (end < attribute.size() && attribute[end] != empty[end] && end - at < longestRange)
            ++end;
        if (end > at)
        {
            bytes.insert(bytes.end(),
                         {static_cast<std::uint8_t>(at >> 8), static_cast<std::uint8_t>(at), static_cast<std::uint8_t>(end - at)});
            bytes.insert(bytes.end(), attribute.begin() + static_cast<std::ptrdiff_t>(at),
                         attribute.begin() + static_cast<std::ptrdiff_t>(end));
        }
        at = std::max(end, at + 1);
    }
    return bytes;
}

bool applyDifferences(std::span<const std::uint8_t> differences, SharedAttribute &attribute)
{
    constexpr std::size_t rangeHeader = 3;
    SharedAttribute changed = emptySharedAttribute();
    while (!differences.empty())
    {
        if (differences.size() < rangeHeader)
            return false;
        const std::size_t at = static_cast<std::size_t>(differences[0]) << 8 | differences[1], length = differences[2];
        if (length > differences.size() - rangeHeader || at + length > changed.size())
            return false;
        std::copy_n(differences.begin() + rangeHeader, length, changed.begin() + static_cast<std::ptrdiff_t>(at));
        differences = differences.subspan(rangeHeader + length);
    }
    return acceptSharedAttribute(changed, attribute);
}

// False if it does not make sense.
bool takeMetadata(std::span<const std::uint8_t> bytes, std::span<const std::uint8_t> differences, PlaceMetadata &metadata)
{
    SharedAttribute shared;
    if (bytes[flagsAt] & ownFlag)
    {
        metadata.own = parseOwnRecord(bytes.subspan(ownAt, ownRecordSize));
        if (!metadata.own)
            return false;
        metadata.own->locked = false;
    }
    if (bytes[flagsAt] & sharedFlag)
    {
        if (!applyDifferences(differences, shared))
            return false;
        if (sharedLock(shared))
            setSharedLock(shared, false);
        metadata.shared = shared;
    }
    return true;
}

bool isName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == name.npos && name.find('\0') == name.npos;
}

std::string takeName(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t length)
{
    return {bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.begin() + static_cast<std::ptrdiff_t>(at + length)};
}

}   // namespace

std::vector<std::uint8_t> buildJournal(const ExchangeJournal &journal)
{
    std::vector<std::uint8_t> bytes(journalHeaderSize);
    writeBig32(bytes.data(), journalTag);
    bytes[versionAt] = journalVersion;
    bytes[fromLengthAt] = static_cast<std::uint8_t>(journal.from.name.size());
    bytes[toLengthAt] = static_cast<std::uint8_t>(journal.to.name.size());
    write64(bytes.data() + fileAt, journal.file);
    write64(bytes.data() + partnerAt, journal.partner);
    write64(bytes.data() + fromFolderAt, journal.from.folder);
    write64(bytes.data() + toFolderAt, journal.to.folder);
    write64(bytes.data() + toBirthAt, journal.to.birth);
    if (journal.metadata.own)
    {
        const auto own = buildOwnRecord(*journal.metadata.own);
        std::copy(own.begin(), own.end(), bytes.begin() + ownAt);
    }
    bytes[flagsAt] = static_cast<std::uint8_t>((journal.metadata.shared ? sharedFlag : 0) | (journal.metadata.own ? ownFlag : 0));
    if (journal.metadata.shared)
    {
        const auto differences = differencesOf(*journal.metadata.shared);
        writeBig16(bytes.data() + sharedLengthAt, static_cast<std::uint16_t>(differences.size()));
        bytes.insert(bytes.end(), differences.begin(), differences.end());
    }
    bytes.insert(bytes.end(), journal.from.name.begin(), journal.from.name.end());
    bytes.insert(bytes.end(), journal.to.name.begin(), journal.to.name.end());
    return bytes;
}

std::optional<ExchangeJournal> parseJournal(std::span<const std::uint8_t> bytes)
{
    ExchangeJournal journal;
    if (bytes.size() < journalHeaderSize || readBig32(bytes.data()) != journalTag || bytes[versionAt] != journalVersion)
        return std::nullopt;
    const std::size_t sharedLength = readBig16(bytes.data() + sharedLengthAt), namesAt = journalHeaderSize + sharedLength;
    const std::size_t fromLength = bytes[fromLengthAt], toLength = bytes[toLengthAt];
    if (bytes.size() < namesAt + fromLength + toLength ||
        !takeMetadata(bytes, bytes.subspan(journalHeaderSize, sharedLength), journal.metadata))
        return std::nullopt;
    journal.file = read64(bytes.data() + fileAt);
    journal.partner = read64(bytes.data() + partnerAt);
    journal.from = {read64(bytes.data() + fromFolderAt), 0, takeName(bytes, namesAt, fromLength)};
    journal.to = {read64(bytes.data() + toFolderAt), read64(bytes.data() + toBirthAt), takeName(bytes, namesAt + fromLength, toLength)};
    return isName(journal.from.name) && isName(journal.to.name) ? std::optional(journal) : std::nullopt;
}

}   // namespace standin
