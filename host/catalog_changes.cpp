#include "host/catalog_changes.h"

#include "host/dates.h"

#include "platform/files.h"

namespace host
{

namespace
{

// Changes to one object. Each function does nothing and gives noErr if nothing of its kind is wanted.
class Change
{
public:
    Change(Invocation &invocation, const FSRef &ref, const CatalogChanges &wanted) : plugin_(invocation.plugin), ref_(ref), wanted_(wanted)
    {
    }

    OSErr setLock(bool locked) const;
    OSErr setCodes() const;
    OSErr setFlags() const;
    OSErr setLabel() const;
    OSErr setDatesAndEncoding() const;

private:
    OSErr setCodesWithZero() const;
    OSErr applySwitch(std::optional<bool> choice, decltype(&::FSSetInvisible) set, decltype(&::FSSetInvisible) clear) const;

    const Plugin &plugin_;
    const FSRef &ref_;
    const CatalogChanges &wanted_;
};

OSErr Change::setLock(bool locked) const
{
    FSCatalogInfo info = {};
    OSErr result = FSGetCatalogInfo(&ref_, kFSCatInfoNodeFlags, &info, nullptr, nullptr, nullptr);
    if (result != noErr || (info.nodeFlags & kFSNodeLockedMask) == (locked ? kFSNodeLockedMask : 0))
        return result;
    info.nodeFlags = static_cast<UInt16>(info.nodeFlags ^ kFSNodeLockedMask);
    return FSSetCatalogInfo(&ref_, kFSCatInfoNodeFlags, &info);
}

OSErr Change::setCodes() const
{
    if (!wanted_.type && !wanted_.creator)
        return noErr;
    if (wanted_.type == OSType(0) || wanted_.creator == OSType(0))
        return setCodesWithZero();
    return plugin_.FSChangeCreatorType(&ref_, wanted_.creator.value_or(0), wanted_.type.value_or(0));
}

// FSChangeCreatorType takes a code of zero for "keep it", so a real zero goes into the record directly; what follows such a change is done here too.
OSErr Change::setCodesWithZero() const
{
    FinderInfo info;
    Boolean isFolder = false;
    OSErr result = plugin_.FSGetFinderInfo(&ref_, &info, nullptr, &isFolder);
    if (result == noErr && isFolder)
        result = notAFileErr;
    if (result != noErr)
        return result;
    info.file.fileType = wanted_.type.value_or(info.file.fileType);
    info.file.fileCreator = wanted_.creator.value_or(info.file.fileCreator);
    result = plugin_.FSSetFinderInfo(&ref_, &info, nullptr);
    FSRef parent;
    if (result == noErr && plugin_.FSGetParentRef(&ref_, &parent) == noErr)
        plugin_.FSBumpDate(&parent);
    return result;
}

OSErr Change::applySwitch(std::optional<bool> choice, decltype(&::FSSetInvisible) set, decltype(&::FSSetInvisible) clear) const
{
    if (!choice)
        return noErr;
    return *choice ? set(&ref_) : clear(&ref_);
}

OSErr Change::setFlags() const
{
    OSErr result = applySwitch(wanted_.invisible, plugin_.FSSetInvisible, plugin_.FSClearInvisible);
    if (result == noErr)
        result = applySwitch(wanted_.nameLocked, plugin_.FSSetNameLocked, plugin_.FSClearNameLocked);
    if (result == noErr)
        result = applySwitch(wanted_.stationery, plugin_.FSSetIsStationery, plugin_.FSClearIsStationery);
    if (result == noErr)
        result = applySwitch(wanted_.customIcon, plugin_.FSSetHasCustomIcon, plugin_.FSClearHasCustomIcon);
    if (result == noErr && wanted_.clearInited)
        result = plugin_.FSClearHasBeenInited(&ref_);
    if (result == noErr && wanted_.flags.bitsToSet != 0)
        result = plugin_.FSChangeFinderFlags(&ref_, true, wanted_.flags.bitsToSet);
    if (result == noErr && wanted_.flags.bitsToClear != 0)
        result = plugin_.FSChangeFinderFlags(&ref_, false, wanted_.flags.bitsToClear);
    return result;
}

OSErr Change::setLabel() const
{
    if (!wanted_.label)
        return noErr;
    auto bits = static_cast<UInt16>(*wanted_.label << 1);
    OSErr result = plugin_.FSChangeFinderFlags(&ref_, false, static_cast<UInt16>(labelMask & ~bits));
    return result == noErr ? plugin_.FSChangeFinderFlags(&ref_, true, bits) : result;
}

// Where a date of the changes belongs in the catalog record.
struct DateField
{
    const char *name;
    FSCatalogInfoBitmap bit;
    UTCDateTime FSCatalogInfo::*field;
    std::optional<UTCDateTime> CatalogChanges::*wanted;
};

constexpr DateField dateFields[] = {
    {"creation date", kFSCatInfoCreateDate, &FSCatalogInfo::createDate, &CatalogChanges::created},
    {"modification date", kFSCatInfoContentMod, &FSCatalogInfo::contentModDate, &CatalogChanges::modified},
    {"access date", kFSCatInfoAccessDate, &FSCatalogInfo::accessDate, &CatalogChanges::accessed},
    {"backup date", kFSCatInfoBackupDate, &FSCatalogInfo::backupDate, &CatalogChanges::backedUp},
};

FSCatalogInfoBitmap datesWanted(const CatalogChanges &wanted)
{
    FSCatalogInfoBitmap bitmap = kFSCatInfoNone;
    for (const DateField &date : dateFields)
        if (wanted.*date.wanted)
            bitmap |= date.bit;
    return bitmap;
}

OSErr Change::setDatesAndEncoding() const
{
    FSCatalogInfo info = {};
    FSCatalogInfoBitmap bitmap = datesWanted(wanted_);
    for (const DateField &date : dateFields)
        if (wanted_.*date.wanted)
            info.*date.field = *(wanted_.*date.wanted);
    if (wanted_.encodingHint)
    {
        bitmap |= kFSCatInfoTextEncoding;
        info.textEncodingHint = *wanted_.encodingHint;
    }
    return bitmap == kFSCatInfoNone ? OSErr(noErr) : FSSetCatalogInfo(&ref_, bitmap, &info);
}

// Disks differ in the dates that they can hold and take the nearest without a word. A lost fraction is no failure.
void checkDates(Invocation &invocation, const std::string &path, const FSRef &ref, const CatalogChanges &wanted)
{
    FSCatalogInfo info = {};
    FSCatalogInfoBitmap bitmap = datesWanted(wanted);
    if (bitmap == kFSCatInfoNone || FSGetCatalogInfo(&ref, bitmap, &info, nullptr, nullptr, nullptr) != noErr)
        return;
    for (const DateField &date : dateFields)
    {
        const UTCDateTime &kept = info.*date.field;
        if (!(wanted.*date.wanted) || sameDate(kept, *(wanted.*date.wanted)))
            continue;
        std::string message = "the disk cannot hold that " + std::string(date.name) + " and keeps " + isoLocal(kept);
        if (secondsSince1904(kept) == secondsSince1904(*(wanted.*date.wanted)))
            invocation.report.remark(path, message);
        else
            invocation.report.problem(path, message);
    }
}

struct Step
{
    const char *name;
    OSErr result;
};

// The step that failed, or the last one with noErr.
Step makeChanges(const Change &change, const CatalogChanges &wanted)
{
    Step step = {"unlocking", wanted.locked == false ? change.setLock(false) : OSErr(noErr)};
    if (step.result == noErr)
        step = {"type and creator", change.setCodes()};
    if (step.result == noErr)
        step = {"Finder flags", change.setFlags()};
    if (step.result == noErr)
        step = {"label", change.setLabel()};
    if (step.result == noErr)
        step = {"dates and encoding", change.setDatesAndEncoding()};
    if (step.result == noErr && wanted.locked == true)
        step = {"locking", change.setLock(true)};
    return step;
}

UInt16 flagIf(std::optional<bool> choice, bool value, UInt16 flag)
{
    return choice == value ? flag : UInt16(0);
}

UInt32 flagsOfSwitches(const CatalogChanges &changes, bool value)
{
    return flagIf(changes.invisible, value, kIsInvisible) | flagIf(changes.nameLocked, value, kNameLocked) |
           flagIf(changes.stationery, value, kIsStationery) | flagIf(changes.customIcon, value, kHasCustomIcon);
}

}   // namespace

bool CatalogChanges::isEmpty() const
{
    bool anySwitch = invisible || nameLocked || stationery || customIcon || clearInited || locked;
    bool anyFlag = flags.bitsToSet != 0 || flags.bitsToClear != 0 || label;
    return !type && !creator && !anySwitch && !anyFlag && !encodingHint && datesWanted(*this) == kFSCatInfoNone;
}

UInt16 CatalogChanges::contradictingFlags() const
{
    UInt32 toSet = flags.bitsToSet | flagsOfSwitches(*this, true);
    UInt32 toClear = flags.bitsToClear | flagsOfSwitches(*this, false) | (clearInited ? kHasBeenInited : 0);
    return static_cast<UInt16>(toSet & toClear);
}

void changeObjectAt(Invocation &invocation, const std::string &path, Links links, const CatalogChanges &changes)
{
    FSRef ref;
    OSStatus result = findObject(path, links, ref);
    if (result != noErr)
        return invocation.report.failure(path, result);
    Step last = makeChanges(Change(invocation, ref, changes), changes);
    if (last.result != noErr)
        invocation.report.failure(path, last.result, last.name);
    else
        checkDates(invocation, path, ref, changes);
}

}   // namespace host
