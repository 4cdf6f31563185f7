#include "standin/files/metadata_attributes.h"

#include "standin/files/names.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace standin
{

namespace
{

constexpr std::size_t attributeListSize = 4096;   // an object with more names than fit is asked for each by itself
constexpr std::string_view parkedEnding = ".exchanging";
constexpr std::size_t longestNameWithSidecar = longestDiskName - 2;

bool listHolds(std::span<const char> list, const char *name)
{
    const std::size_t length = std::strlen(name) + 1;
    return std::search(list.begin(), list.end(), name, name + length) != list.end();
}

void noteFailure(ssize_t size, Attributes &attributes)
{
    if (size < 0 && size != -ENODATA && size != -EOPNOTSUPP && size != -ERANGE)
        attributes.failure = static_cast<int>(-size);
}

void readShared(const Object &object, Attributes &attributes)
{
    std::uint8_t bytes[sharedAttributeSize + 1];
    SharedAttribute shared;
    const ssize_t size = linux_calls::getAttribute(object.folder->number(), object.name.c_str(), sharedAttributeName, bytes);
    if (size > 0 && acceptSharedAttribute({bytes, static_cast<std::size_t>(size)}, shared))
        attributes.shared = shared;
    noteFailure(size, attributes);
}

void readOwn(const Object &object, Attributes &attributes)
{
    std::uint8_t bytes[256];
    const ssize_t size = linux_calls::getAttribute(object.folder->number(), object.name.c_str(), ownAttributeName, bytes);
    if (size > 0)
        attributes.own = parseOwnRecord({bytes, static_cast<std::size_t>(size)});
    noteFailure(size, attributes);
}

// A copy of a file has its journal too, which says that it is another file's.
void readJournal(const Object &object, Attributes &attributes)
{
    std::uint8_t bytes[largestJournal + 1];
    const ssize_t size = linux_calls::getAttribute(object.folder->number(), object.name.c_str(), journalAttributeName, bytes);
    noteFailure(size, attributes);
    if (size <= 0)
        return;
    attributes.journal = parseJournal({bytes, static_cast<std::size_t>(size)}).value_or(ExchangeJournal{});
    if (stageOf(object, *attributes.journal) != ExchangeStage::arrived)
        return;
    attributes.shared = attributes.journal->metadata.shared;
    attributes.own = attributes.journal->metadata.own;
}

std::uint64_t inodeOfParent(const Object &object)
{
    Folder folder;
    return recallFolder(*object.volume, object.parentID, folder) ? folder.identity.inode : 0;
}

}   // namespace

bool mayHaveAttributes(const Object &object)
{
    return object.volume->hasAttributes && (object.status.isFolder() || object.status.isRegular());
}

Attributes readAttributes(const Object &object, bool ownIsWanted)
{
    Attributes attributes;
    char list[attributeListSize];
    const ssize_t size = linux_calls::listAttributes(object.folder->number(), object.name.c_str(), list);
    const bool tooMany = size == -ERANGE;
    noteFailure(size, attributes);
    const std::span<const char> names(list, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    attributes.hasShared = tooMany || listHolds(names, sharedAttributeName);
    attributes.hasOwn = tooMany || listHolds(names, ownAttributeName);
    if (attributes.hasShared)
        readShared(object, attributes);
    if ((ownIsWanted || !attributes.shared) && attributes.hasOwn)
        readOwn(object, attributes);
    if (tooMany || listHolds(names, journalAttributeName))
        readJournal(object, attributes);
    return attributes;
}

ExchangeStage stageOf(const Object &object, const ExchangeJournal &journal)
{
    const std::uint64_t folder = inodeOfParent(object);
    if (journal.file != object.status.inode)
        return ExchangeStage::elsewhere;
    if (folder == journal.to.folder && object.name == journal.to.name)
        return ExchangeStage::arrived;
    if (folder != journal.from.folder)
        return ExchangeStage::elsewhere;
    if (object.name == journal.from.name)
        return ExchangeStage::notBegun;
    return looksParked(object.name) ? ExchangeStage::parked : ExchangeStage::elsewhere;
}

std::string parkedNameOf(const std::string &name, int number)
{
    const std::string ending = std::string(parkedEnding) + (number == 1 ? "" : "-" + std::to_string(number));
    std::size_t length = std::min(name.size(), longestNameWithSidecar - ending.size());
    while (length < name.size() && length > 1 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80)
        --length;
    return name.substr(0, length) + ending;
}

bool looksParked(std::string_view name)
{
    return name.find(parkedEnding) != std::string_view::npos;
}

}   // namespace standin
