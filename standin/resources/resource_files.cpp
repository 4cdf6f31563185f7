#include "standin/resources/resource_files.h"

#include "standin/files/sidecar_format.h"
#include "standin/resources/resource_containers.h"

#include <algorithm>
#include <memory>

namespace standin
{

namespace
{

struct Chain
{
    std::vector<std::unique_ptr<ResourceFile>> files;   // in the order in which they were opened
    ResourceFile *current = nullptr;
};

Chain &chain()
{
    static Chain files;
    return files;
}

// An open fork, closed again unless it is kept.
class ForkOpening
{
public:
    ForkOpening() = default;
    ForkOpening(const ForkOpening &) = delete;
    ForkOpening &operator=(const ForkOpening &) = delete;
    ~ForkOpening() { close(); }

    OSErr open(const FSRef &object, bool isResourceFork, SInt8 permission, SInt64 &size)
    {
        HFSUniStr255 name{};
        if (isResourceFork)
            FSGetResourceForkName(&name);
        close();
        if (OSErr result = FSOpenFork(&object, name.length, name.unicode, permission, &number_))
            return result;
        isOpen_ = true;
        return FSGetForkSize(number_, &size);
    }

    void close()
    {
        if (isOpen_)
            FSCloseFork(number_);
        isOpen_ = false;
    }

    SInt16 number() const { return number_; }
    void keep() { isOpen_ = false; }

private:
    SInt16 number_ = 0;
    bool isOpen_ = false;
};

// All of them, or eofErr.
OSErr readBytes(SInt16 number, std::uint64_t offset, std::span<std::uint8_t> bytes)
{
    if (bytes.empty())
        return noErr;
    return FSReadFork(number, fsFromStart, static_cast<SInt64>(offset), static_cast<ByteCount>(bytes.size()), bytes.data(), nullptr);
}

OSErr placeInDataFork(SInt16 number, std::uint64_t forkSize, ResourcePlace &place)
{
    std::vector<std::uint8_t> head(std::min<std::uint64_t>(forkSize, containerHeadSize));
    if (OSErr result = readBytes(number, 0, head))
        return result;
    place = findResourcePlace(head, forkSize);
    return noErr;
}

// A fork without bytes of a file whose name has no room for a sidecar is as good as none.
OSErr findResources(const FSRef &object, SInt8 permission, ForkOpening &fork, ResourcePlace &place)
{
    SInt64 size = 0;
    OSErr result = fork.open(object, true, permission, size);
    if (result != noErr && result != errFSNameTooLong)
        return result;
    if (result == noErr && size > 0)
    {
        place = {ResourceContainer::bare, 0, static_cast<std::uint64_t>(size), false};
        return noErr;
    }
    if (OSErr opened = fork.open(object, false, permission, size))
        return opened;
    return placeInDataFork(fork.number(), static_cast<std::uint64_t>(size), place);
}

OSErr readMap(ResourceFile &file)
{
    std::vector<std::uint8_t> bytes(std::min<std::uint64_t>(file.size, resourceHeaderSize));
    if (OSErr result = readBytes(file.number, file.start, bytes))
        return result;
    const auto header = parseResourceHeader(bytes, file.size);
    if (!header)
        return mapReadErr;
    bytes.resize(header->mapBytes());
    if (OSErr result = readBytes(file.number, file.start + header->mapOffset, bytes))
        return result;
    auto map = ResourceMap::parse(std::move(bytes));
    if (!map)
        return mapReadErr;
    file.header = *header;
    file.map = std::move(*map);
    return noErr;
}

OSErr openAnew(const FSRef &object, SInt8 permission, SInt16 &number)
{
    ForkOpening fork;
    ResourcePlace place;
    if (OSErr result = findResources(object, permission, fork, place))
        return result;
    if (place.isDamaged)
        return mapReadErr;
    if (place.length == 0)
        return eofErr;
    auto file = std::make_unique<ResourceFile>();
    file->number = fork.number();
    file->object = object;
    file->start = place.offset;
    file->size = place.length;
    if (OSErr result = readMap(*file))
        return result == eofErr ? static_cast<OSErr>(mapReadErr) : result;   // cut off meanwhile
    chain().files.push_back(std::move(file));
    chain().current = chain().files.back().get();
    fork.keep();
    number = fork.number();
    return noErr;
}

constexpr FSCatalogInfoBitmap identityBits = kFSCatInfoVolume | kFSCatInfoParentDirID | kFSCatInfoNodeID;

bool isSameObject(const FSCatalogInfo &known, const FSRef &other)
{
    FSCatalogInfo info{};
    return FSGetCatalogInfo(&other, identityBits, &info, nullptr, nullptr, nullptr) == noErr && info.volume == known.volume &&
           info.parentDirID == known.parentDirID && info.nodeID == known.nodeID;
}

}   // namespace

OSErr openResourceFile(const FSRef &object, SInt8 permission, SInt16 &number)
{
    FSCatalogInfo info{};
    if (OSErr result = FSGetCatalogInfo(&object, identityBits, &info, nullptr, nullptr, nullptr))
        return result;
    for (const auto &file : chain().files)
        if (isSameObject(info, file->object))
        {
            number = file->number;
            return noErr;
        }
    // To write into a map, it has to be read.
    return openAnew(object, permission == fsWrPerm ? SInt8{fsRdWrPerm} : permission == fsCurPerm ? SInt8{fsRdPerm} : permission, number);
}

void closeResourceFile(ResourceFile &file)
{
    auto &files = chain().files;
    ResourceFile *before = openedBefore(file);
    FSCloseFork(file.number);
    const bool wasCurrent = chain().current == &file;
    std::erase_if(files, [&](const auto &entry) { return entry.get() == &file; });
    if (wasCurrent)
        chain().current = before ? before : files.empty() ? nullptr : files.back().get();
}

ResourceFile *findResourceFile(SInt16 number)
{
    const auto &files = chain().files;
    const auto found = std::find_if(files.begin(), files.end(), [&](const auto &file) { return file->number == number; });
    return found == files.end() ? nullptr : found->get();
}

ResourceFile *currentResourceFile()
{
    return chain().current;
}

ResourceFile *openedBefore(const ResourceFile &file)
{
    const auto &files = chain().files;
    const auto found = std::find_if(files.begin(), files.end(), [&](const auto &entry) { return entry.get() == &file; });
    return found == files.begin() || found == files.end() ? nullptr : std::prev(found)->get();
}

void useResourceFile(const ResourceFile &file)
{
    chain().current = findResourceFile(file.number);
}

OSErr itemSize(const ResourceFile &file, const ResourceEntry &entry, std::uint32_t &size)
{
    std::uint8_t bytes[4];
    const auto place = itemPlace(file.header, entry, file.size);
    if (!place)
        return badExtResource;
    if (OSErr result = readBytes(file.number, file.start + *place, bytes))
        return result == eofErr ? static_cast<OSErr>(badExtResource) : result;
    const auto length = itemLength(bytes, *place, file.size);
    if (!length)
        return badExtResource;
    size = *length;
    return noErr;
}

OSErr readItem(const ResourceFile &file, const ResourceEntry &entry, std::uint32_t offset, std::span<std::uint8_t> bytes)
{
    const std::uint64_t place = std::uint64_t{file.header.dataOffset} + entry.dataOffset + 4 + offset;
    const OSErr result = readBytes(file.number, file.start + place, bytes);
    return result == eofErr ? static_cast<OSErr>(badExtResource) : result;
}

}   // namespace standin
