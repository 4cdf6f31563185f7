// Any bytes as the shared attribute, as our own record and as dates: what is accepted is kept, and what is set is read back.
#include "standin/files/attribute_format.h"
#include "standin/files/dates.h"
#include "tests/fuzz/require.h"

#include <algorithm>

namespace
{

using namespace standin;
using Bytes = std::span<const std::uint8_t>;

// Setting what is already there changes nothing, and setting anything leaves the layout acceptable.
void checkShared(const SharedAttribute &attribute)
{
    SharedAttribute same = attribute;
    setSharedFinderInfo(same, sharedFinderInfo(attribute));
    setSharedDates(same, sharedDates(attribute));
    if (sharedLock(attribute))
        setSharedLock(same, true);
    require(same == attribute);

    SharedAttribute changed = attribute;
    FinderBytes info;
    info.fill(0xA5);
    setSharedFinderInfo(changed, info);
    setSharedDates(changed, {1, -2, unknownSidecarDate, INT32_MAX});
    setSharedLock(changed, !sharedLock(attribute));
    require(sharedFinderInfo(changed) == info && sharedDates(changed).modification == -2 && sharedLock(changed) != sharedLock(attribute));
    SharedAttribute accepted;
    require(acceptSharedAttribute(changed, accepted) && accepted == changed);
}

void checkDate(const UTCDateTime &date)
{
    require(sameDate(dateFromLinux(linuxFromDate(date)), date));
    const std::int32_t seconds = sidecarFromDate(date);
    require((seconds == unknownSidecarDate) == isZeroDate(date));
    require(sidecarFromDate(dateFromSidecar(seconds)) == seconds);
}

void checkOwnRecord(const OwnRecord &record)
{
    const auto built = buildOwnRecord(record);
    const auto again = parseOwnRecord(built);
    require(again.has_value() && again->locked == record.locked && again->finderInfoWasShared == record.finderInfoWasShared &&
            again->hint == record.hint);
    require(again->creationDate.has_value() == record.creationDate.has_value() && buildOwnRecord(*again) == built);
    if (record.creationDate)
        checkDate(*record.creationDate);
    if (record.backupDate)
        checkDate(*record.backupDate);
}

// Sixteen bytes as a Linux time and as the four dates of entry 8.
void checkTimes(std::span<const std::uint8_t, 16> bytes)
{
    std::timespec time = {};
    time.tv_sec = static_cast<std::time_t>(readBig64(bytes.data()));
    time.tv_nsec = static_cast<long>(readBig64(bytes.data() + 8));
    checkDate(dateFromLinux(time));

    std::array<std::uint8_t, 16> written = {};
    writeSidecarDates(written, readSidecarDates(bytes));
    require(std::equal(written.begin(), written.end(), bytes.begin()));
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Bytes bytes(data, size);
    SharedAttribute attribute = {};
    if (acceptSharedAttribute(bytes, attribute))
    {
        require(std::equal(attribute.begin(), attribute.end(), bytes.begin(), bytes.end()));
        checkShared(attribute);
    }
    if (const auto record = parseOwnRecord(bytes))
        checkOwnRecord(*record);
    if (size >= 16)
        checkTimes(bytes.first<16>());
    return 0;
}
