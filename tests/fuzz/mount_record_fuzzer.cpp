// Hostile bytes as the record of a mounted volume and as the kernel's list of mounts: what is accepted makes sense and is written as it was read, and no
// changed byte gets past the check sum.
#include "standin/files/mount_list.h"
#include "standin/files/mount_records.h"
#include "standin/files/volume_opening.h"
#include "tests/fuzz/require.h"

#include <set>

namespace
{

using namespace standin;
using Bytes = std::vector<std::uint8_t>;

void putBig(Bytes &bytes, std::size_t at, std::uint32_t value, int width)
{
    for (int left = width; left > 0; --left, value >>= 8)
        bytes[at + static_cast<std::size_t>(left) - 1] = static_cast<std::uint8_t>(value);
}

// What stands before the fields, made right for these bytes: else hardly an input would get past it.
Bytes withRightBeginning(Bytes bytes)
{
    std::uint32_t sum = 2166136261u;
    putBig(bytes, 0, static_cast<std::uint32_t>(bytes.size()), 2);
    putBig(bytes, 2, 0x7A566F6C, 4);
    putBig(bytes, 6, 1, 2);
    for (std::size_t at = 0; at < bytes.size(); ++at)
        sum = at >= 8 && at < 12 ? sum : (sum ^ bytes[at]) * 16777619u;
    putBig(bytes, 8, sum, 4);
    return bytes;
}

bool isWithoutZeros(const std::string &text)
{
    return text.find('\0') == std::string::npos;
}

// The words that the mount program is started with.
void checkWords(const MountRecord &record)
{
    require(record.place.starts_with('/') && isWithoutZeros(record.place));
    if (record.kind == VolumeKind::directory)
        return require(!record.name.empty() && record.diskKind.empty() && record.source.empty());
    require(record.name.empty() && isWithoutZeros(record.source) && isWithoutZeros(record.diskKind));
    for (const std::string &word : {record.source, record.diskKind})
        require(!word.empty() && word[0] != '-');
    require(record.diskKind.find_first_of(", /=") == std::string::npos);
    require((record.mountFlags & ~everyMountFlag) == 0);
}

void checkAccepted(const Bytes &bytes, const MountRecord &record)
{
    Bytes again;
    checkWords(record);
    require(bytes.back() != 0 && lengthOfMountRecord(std::span(bytes).first<2>()) == bytes.size());
    require(writeMountRecord(record, again) == noErr && again == bytes);
}

void checkRecord(const Bytes &bytes, std::uint8_t choice)
{
    MountRecord record;
    record.place = "untouched";
    if (readMountRecord(bytes, record) != noErr)
        return require(record.place == "untouched");
    checkAccepted(bytes, record);
    Bytes changed = bytes;
    changed[choice % changed.size()] ^= static_cast<std::uint8_t>(choice | 1);
    require(readMountRecord(changed, record) == paramErr);
    changed = bytes;
    changed.resize(choice % bytes.size());
    require(readMountRecord(changed, record) == paramErr);
}

void checkList(std::string_view text)
{
    std::set<std::string> places;
    const std::vector<Mount> mounts = parseMountList(text);
    for (const Mount &mount : mounts)
    {
        require(mount.place.starts_with('/') && places.insert(mount.place).second);
        require((mount.flags & ~everyMountFlag) == 0);
        require(mountOfPlace(mounts, mount.place) == &mount);
        require(mountOptions(mount.flags).empty() == (mount.flags == 0));
        isDisk(mount);
    }
}

}   // namespace

// What a volume may be called is the volumes' business. Here it is anything.
bool standin::isVolumeName(std::string_view name)
{
    return !name.empty();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Bytes bytes(data, data + size);
    const std::uint8_t choice = bytes.empty() ? 0 : bytes.back();
    checkRecord(bytes, choice);
    if (size >= shortestMountRecord && size <= longestMountRecord)
        checkRecord(withRightBeginning(bytes), choice);
    checkList({reinterpret_cast<const char *>(data), size});
    return 0;
}
