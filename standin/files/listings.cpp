#include "standin/files/listings.h"

#include "standin/files/linux_calls.h"
#include "standin/files/names.h"
#include "standin/files/sidecar_store.h"

#include <bit>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <new>
#include <utility>

namespace standin
{

namespace
{

// The kernel's struct linux_dirent64, read field by field: the entries in the buffer are aligned, but its type is not ours.
struct EntryHeader
{
    std::uint64_t inode;
    std::int64_t position;
    std::uint16_t length;
    std::uint8_t type;
};
constexpr std::size_t nameOffset = 19;

bool isDots(std::string_view name)
{
    return name == "." || name == "..";
}

// The record at an offset of a filled buffer; the offset moves on to the next one.
Entry takeRecord(std::span<const char> filled, std::size_t &offset, std::int64_t &positionBehind)
{
    const char *record = filled.data() + offset;
    EntryHeader header;
    std::memcpy(&header, record, nameOffset);
    offset += header.length;
    positionBehind = header.position;
    return {header.inode, header.type, std::string_view(record + nameOffset)};
}

// Gives the entries of one filled buffer; false once `visit` said so.
bool visitBuffer(std::span<const char> filled, const std::function<bool(const Entry &)> &visit)
{
    std::int64_t positionBehind;
    for (std::size_t offset = 0; offset + nameOffset < filled.size();)
    {
        const Entry entry = takeRecord(filled, offset, positionBehind);
        if (!isDots(entry.name) && !visit(entry))
            return false;
    }
    return true;
}

constexpr std::size_t bufferSize = 32768;
constexpr std::size_t longestRecord = nameOffset + longestDiskName + 8;

// Disks for which the end has a position say with the last entry that nothing follows: it is the greatest there is, of 64 bits or of 32, and the kernel
// stopped there although another entry would have fitted. All others are asked once more, and then say 0.
bool isAtEnd(std::size_t filled, std::int64_t positionBehindLast)
{
    return filled + longestRecord <= bufferSize && (positionBehindLast == INT64_MAX || positionBehindLast == INT32_MAX);
}

}   // namespace

int visitEntries(int folder, const std::function<bool(const Entry &)> &visit)
{
    const int opened = linux_calls::openAt(folder, ".", O_RDONLY | O_DIRECTORY);
    if (opened < 0)
        return opened;
    const Descriptor readable(opened);
    alignas(8) char buffer[bufferSize];
    for (;;)
    {
        const ssize_t filled = linux_calls::readDirectory(readable.number(), buffer);
        if (filled <= 0)
            return static_cast<int>(filled);
        if (!visitBuffer({buffer, static_cast<std::size_t>(filled)}, visit))
            return 0;
    }
}

// --- a listing's own form ---------------------------------------------------------------------------------------------------------------

// What one read of the disk gave: packed entries stand behind it.
struct ListingPiece
{
    ListingPiece *next;
    std::uint32_t size;

    char *bytes() { return reinterpret_cast<char *>(this + 1); }
    const char *bytes() const { return reinterpret_cast<const char *>(this + 1); }
};

namespace
{

// A packed entry: inode (8 bytes), type, marks, length of the name, the name.
constexpr std::size_t packedType = 8, packedMarks = 9, packedLength = 10, packedName = 11;
constexpr char hasSidecarMark = 1, isOwnedMark = 2, isHiddenMark = 4;   // owned: the sidecar of another entry

std::string_view packedNameOf(const char *packed)
{
    return {packed + packedName, static_cast<unsigned char>(packed[packedLength])};
}

std::size_t packedSizeOf(const char *packed)
{
    return packedName + static_cast<unsigned char>(packed[packedLength]);
}

// Packed entries are shorter than the kernel's, so that each finds room where the kernel's stood or before. The name goes first, in words: each is read
// before anything is written where it stood, because it moves by at least a word; what the last one carries behind the name is overwritten or not kept.
void pack(char *packed, const Entry &entry)
{
    static_assert(nameOffset >= packedName + sizeof(std::uint64_t));
    const std::size_t length = entry.name.size();
    for (std::size_t done = 0; done < length; done += sizeof(std::uint64_t))
    {
        std::uint64_t word;
        std::memcpy(&word, entry.name.data() + done, sizeof word);
        std::memcpy(packed + packedName + done, &word, sizeof word);
    }
    std::memcpy(packed, &entry.inode, sizeof entry.inode);
    packed[packedType] = static_cast<char>(entry.type);
    packed[packedMarks] = 0;
    packed[packedLength] = static_cast<char>(length);
}

// Packs a buffer in its own place.
struct PackedBuffer
{
    std::size_t size = 0;
    std::uint32_t count = 0;
    bool anySpecial = false;   // a name that may be a sidecar's or a temporary's
    std::int64_t positionBehindLast = 0;
};

PackedBuffer packInPlace(std::span<char> filled)
{
    PackedBuffer packed;
    for (std::size_t offset = 0; offset + nameOffset < filled.size();)
    {
        const Entry entry = takeRecord(filled, offset, packed.positionBehindLast);
        if (entry.name[0] == '.')
        {
            if (isDots(entry.name))
                continue;
            packed.anySpecial |= looksLikeSidecar(entry.name) || entry.name.starts_with(temporaryPrefix);
        }
        const std::size_t size = packedName + entry.name.size();
        pack(filled.data() + packed.size, entry);
        packed.size += size;
        ++packed.count;
    }
    return packed;
}

// The entries with a sidecar's name, found by the name of the file that each would belong to.
class SidecarIndex
{
public:
    explicit SidecarIndex(std::vector<char *> sidecars) : sidecars_(std::move(sidecars)), slots_(std::bit_ceil(2 * sidecars_.size() + 1))
    {
        for (std::uint32_t number = 0; number < sidecars_.size(); ++number)
        {
            std::size_t slot = slotOf(ownerOf(sidecars_[number]));
            while (slots_[slot] != 0)
                slot = nextSlot(slot);
            slots_[slot] = number + 1;
        }
    }

    char *find(std::string_view owner) const
    {
        for (std::size_t slot = slotOf(owner); slots_[slot] != 0; slot = nextSlot(slot))
            if (char *sidecar = sidecars_[slots_[slot] - 1]; ownerOf(sidecar) == owner)
                return sidecar;
        return nullptr;
    }

    const std::vector<char *> &all() const { return sidecars_; }
    static std::string_view ownerOf(const char *sidecar) { return packedNameOf(sidecar).substr(2); }

private:
    std::size_t slotOf(std::string_view owner) const { return std::hash<std::string_view>()(owner) & (slots_.size() - 1); }
    std::size_t nextSlot(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }
    std::vector<char *> sidecars_;
    std::vector<std::uint32_t> slots_;   // 0: free
};

template <typename Visit>
void visitPacked(ListingPiece *first, Visit visit)
{
    for (ListingPiece *piece = first; piece; piece = piece->next)
        for (char *packed = piece->bytes(), *end = packed + piece->size; packed < end; packed += packedSizeOf(packed))
            visit(packed);
}

// An orphan may be somebody's only copy of a fork: it is shown as a file of its own. A folder is nobody's sidecar.
bool isHiddenSidecar(int folder, const char *sidecar)
{
    if (sidecar[packedType] == DT_DIR)
        return false;
    return (sidecar[packedMarks] & isOwnedMark) || SidecarIndex::ownerOf(sidecar) == "." ||
           isLeftoverSidecar(folder, std::string(packedNameOf(sidecar)));
}

}   // namespace

Listing::Listing(Listing &&other) noexcept
    : first_(std::exchange(other.first_, nullptr)), last_(std::exchange(other.last_, nullptr)), visible_(std::exchange(other.visible_, 0))
{
}

Listing::~Listing()
{
    while (first_)
        ::operator delete(std::exchange(first_, first_->next));
}

void Listing::append(std::span<const char> packed)
{
    auto *piece =
        new (::operator new(sizeof(ListingPiece) + packed.size())) ListingPiece{nullptr, static_cast<std::uint32_t>(packed.size())};
    std::memcpy(piece->bytes(), packed.data(), packed.size());
    (last_ ? last_->next : first_) = piece;
    last_ = piece;
}

int Listing::read(int readable)
{
    alignas(8) char buffer[bufferSize + sizeof(std::uint64_t)];   // names are taken in words
    bool anySpecial = false;
    for (bool atEnd = false; !atEnd;)
    {
        const ssize_t filled = linux_calls::readDirectory(readable, {buffer, bufferSize});
        if (filled < 0)
            return static_cast<int>(filled);
        const PackedBuffer packed = packInPlace({buffer, static_cast<std::size_t>(filled)});
        if (packed.count != 0)
            append({buffer, packed.size});
        visible_ += packed.count;
        anySpecial |= packed.anySpecial;
        atEnd = filled == 0 || isAtEnd(static_cast<std::size_t>(filled), packed.positionBehindLast);
    }
    if (anySpecial)
        noteSidecars(readable);
    return 0;
}

// Who has a sidecar, and which entries are nothing but that, or our own.
void Listing::noteSidecars(int folder)
{
    std::vector<char *> sidecars;
    visitPacked(first_, [&](char *packed) {
        if (looksLikeSidecar(packedNameOf(packed)))
            sidecars.push_back(packed);
    });
    const SidecarIndex index(std::move(sidecars));
    visitPacked(first_, [&](char *packed) {
        if (packedNameOf(packed).starts_with(temporaryPrefix))
            packed[packedMarks] |= isHiddenMark;
        if (char *sidecar = index.find(packedNameOf(packed)))
        {
            packed[packedMarks] |= hasSidecarMark;
            sidecar[packedMarks] |= isOwnedMark;
        }
    });
    for (char *sidecar : index.all())
        if (isHiddenSidecar(folder, sidecar))
            sidecar[packedMarks] |= isHiddenMark;
    visible_ = 0;
    visitPacked(first_, [&](const char *packed) { visible_ += (packed[packedMarks] & isHiddenMark) == 0; });
}

Listing::Position Listing::begin() const
{
    Position position;
    position.piece = first_;
    return position;
}

bool Listing::next(Position &position, ListedEntry &entry) const
{
    while (position.piece)
    {
        if (position.offset == position.piece->size)
        {
            position.piece = position.piece->next;
            position.offset = 0;
            continue;
        }
        const char *packed = position.piece->bytes() + position.offset;
        position.offset += static_cast<std::uint32_t>(packedSizeOf(packed));
        if (packed[packedMarks] & isHiddenMark)
            continue;
        std::memcpy(&entry.inode, packed, sizeof entry.inode);
        entry.type = static_cast<unsigned char>(packed[packedType]);
        entry.name = packedNameOf(packed);
        entry.hasSidecar = (packed[packedMarks] & hasSidecarMark) != 0;
        return true;
    }
    return false;
}

int countVisibleEntries(int folder, UInt32 &count)
{
    Listing listing;
    const Descriptor readable(linux_calls::openAt(folder, ".", O_RDONLY | O_DIRECTORY));
    const int result = readable.isOpen() ? listing.read(readable.number()) : readable.number();
    count = static_cast<UInt32>(listing.size());
    return result;
}

std::string findByIdentity(const Volume &volume, int folder, const Identity &identity)
{
    std::string found;
    visitEntries(folder, [&](const Entry &entry) {
        if (entry.inode != identity.inode)
            return true;
        const std::string name(entry.name);
        ObjectStatus status;
        if (linux_calls::statusAt(folder, name.c_str(), status) < 0 || !sameObject(identityOf(volume, status), identity))
            return true;
        if (status.isFolder() || status.links == 1)
            found = name;
        return found.empty();
    });
    return found;
}

std::vector<std::string> namesWhere(int folder, const std::function<bool(std::string_view)> &matches)
{
    std::vector<std::string> names;
    visitEntries(folder, [&](const Entry &entry) {
        if (matches(entry.name))
            names.emplace_back(entry.name);
        return true;
    });
    return names;
}

}   // namespace standin
