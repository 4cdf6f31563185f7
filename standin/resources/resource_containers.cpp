#include "standin/resources/resource_containers.h"

#include "standin/files/sidecar_format.h"

#include <algorithm>
#include <vector>

namespace standin
{

namespace
{

static_assert(containerHeadSize >= largestSidecarTable);

constexpr std::uint32_t appleDoubleMagic = 0x00051607, appleSingleMagic = 0x00051600;
constexpr std::uint64_t macBinaryBlock = 128;
constexpr std::uint32_t largestMacBinaryFork = 0x7FFFFFFF;

// Where the fields of MacBinary's header stand.
constexpr std::size_t nameLengthAt = 1, zeroAt = 74, secondZeroAt = 82, dataLengthAt = 83, resourceLengthAt = 87, laterFieldsAt = 101,
                      secondHeaderAt = 120, checksumAt = 124, headerEnd = 128;

std::uint64_t roundedUp(std::uint64_t length)
{
    return (length + macBinaryBlock - 1) / macBinaryBlock * macBinaryBlock;
}

// CRC-16 with the polynomial 0x1021, most significant bit first, beginning with 0.
std::uint16_t checksum(std::span<const std::uint8_t> bytes)
{
    std::uint32_t sum = 0;
    for (const std::uint8_t byte : bytes)
    {
        sum ^= std::uint32_t{byte} << 8;
        for (int bit = 0; bit < 8; ++bit)
            sum = sum & 0x8000 ? (sum << 1 ^ 0x1021) & 0xFFFF : sum << 1;
    }
    return static_cast<std::uint16_t>(sum);
}

bool mayBeMacBinary(std::span<const std::uint8_t> head)
{
    return head.size() >= headerEnd && head[0] == 0 && head[nameLengthAt] >= 1 && head[nameLengthAt] <= 63 && head[zeroAt] == 0 &&
           head[secondZeroAt] == 0 && readBig32(head.data() + dataLengthAt) <= largestMacBinaryFork &&
           readBig32(head.data() + resourceLengthAt) <= largestMacBinaryFork;
}

// Each part begins on a multiple of 128; behind the last one the padding may be missing.
ResourcePlace placeInMacBinary(std::span<const std::uint8_t> head, std::uint64_t fileSize)
{
    ResourcePlace place{ResourceContainer::macBinary, 0, 0, false};
    const std::uint64_t dataStart = headerEnd + roundedUp(readBig16(head.data() + secondHeaderAt));
    place.offset = dataStart + roundedUp(readBig32(head.data() + dataLengthAt));
    place.length = readBig32(head.data() + resourceLengthAt);
    place.isDamaged = place.length > 0 && place.offset + place.length > fileSize;
    return place;
}

// The second and third version have a checksum. The first has none, and nothing but zeros where the later ones have their fields: it is
// believed only if its lengths fit the file.
bool isMacBinary(std::span<const std::uint8_t> head, std::uint64_t fileSize)
{
    if (!mayBeMacBinary(head))
        return false;
    if (checksum(head.first(checksumAt)) == readBig16(head.data() + checksumAt))
        return true;
    const auto later = head.subspan(laterFieldsAt, headerEnd - laterFieldsAt);
    const bool hasNoLaterFields = std::all_of(later.begin(), later.end(), [](std::uint8_t byte) { return byte == 0; });
    return hasNoLaterFields && !placeInMacBinary(head, fileSize).isDamaged && headerEnd + readBig32(head.data() + dataLengthAt) <= fileSize;
}

// AppleSingle is the same but for its number, and that it may have an entry for the data.
ResourcePlace placeInAppleDouble(std::span<const std::uint8_t> head, std::uint64_t fileSize, ResourceContainer container)
{
    std::vector<std::uint8_t> table(head.begin(), head.end());
    writeBig32(table.data(), appleDoubleMagic);
    SidecarLayout layout;
    ResourcePlace place{container, 0, 0, parseSidecar(table, fileSize, layout) != SidecarProblem::none};
    if (const SidecarEntry *fork = layout.find(kResourceForkEntry))
    {
        place.offset = fork->offset;
        place.length = fork->length;
    }
    return place;
}

}   // namespace

ResourcePlace findResourcePlace(std::span<const std::uint8_t> head, std::uint64_t fileSize)
{
    const std::uint32_t magic = head.size() >= 4 ? readBig32(head.data()) : 0;
    if (magic == appleDoubleMagic)
        return placeInAppleDouble(head, fileSize, ResourceContainer::appleDouble);
    if (magic == appleSingleMagic)
        return placeInAppleDouble(head, fileSize, ResourceContainer::appleSingle);
    if (isMacBinary(head, fileSize))
        return placeInMacBinary(head, fileSize);
    return {ResourceContainer::bare, 0, fileSize, false};
}

}   // namespace standin
