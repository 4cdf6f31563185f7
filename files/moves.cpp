// Objects moved, renamed and exchanged within a volume, in steps that can be undone.

#include "files/moves.h"

#include "files/names.h"

namespace
{

// Eight upper-case hexadecimal digits
struct TemporaryName
{
    static constexpr UniCharCount length = 8;
    UniChar digits[length];
};

constexpr UInt32 firstTemporaryNumber = 0x3D1F5A27;

// What an object was at the start: enough to undo whatever is done to it.
struct SavedObject
{
    FSCatalogInfo info;
    HFSUniStr255 name;
    FSRef parent;
};

void copyReference(const FSRef *from, FSRef *to)
{
    BlockMoveData(from, to, sizeof *to);
}

OSErr save(const FSRef *ref, FSCatalogInfoBitmap whichInfo, SavedObject &saved)
{
    return FSGetCatalogInfo(ref, whichInfo, &saved.info, &saved.name, nullptr, &saved.parent);
}

OSErr readVolumeParameters(FSVolumeRefNum volume, GetVolParmsInfoBuffer &parameters)
{
    HParamBlockRec block;
    block.ioParam.ioNamePtr = nullptr;
    block.ioParam.ioVRefNum = volume;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(&parameters);
    block.ioParam.ioReqCount = sizeof parameters;
    return PBHGetVolParmsSync(&block);
}

// A volume that does not say what it can do can't.
bool canMoveAndRename(FSVolumeRefNum volume)
{
    GetVolParmsInfoBuffer parameters = {};
    return readVolumeParameters(volume, parameters) == noErr && (parameters.vMAttrib & 1 << bHasMoveRename) != 0;
}

bool canExchangeFiles(FSVolumeRefNum volume)
{
    GetVolParmsInfoBuffer parameters = {};
    return readVolumeParameters(volume, parameters) == noErr && parameters.vMVersion > 2 &&
           (parameters.vMExtendedAttributes & 1 << bSupportsFSExchangeObjects) != 0;
}

void writeDigits(UInt32 number, TemporaryName &name)
{
    for (int position = TemporaryName::length - 1; position >= 0; --position)
    {
        name.digits[position] = static_cast<UniChar>("0123456789ABCDEF"[number & 0xF]);
        number >>= 4;
    }
}

OSErr lookUp(const FSRef *directory, const TemporaryName &name)
{
    FSRef found;   // whether there is one is all that matters
    FSRefParam block;
    block.ref = directory;
    block.nameLength = TemporaryName::length;
    block.name = name.digits;
    block.textEncodingHint = kTextEncodingUnknown;
    block.newRef = &found;
    return PBMakeFSRefUnicodeSync(&block);
}

// Finds a name that exists in neither directory. `number` is the one to try first, and the next one afterwards.
OSErr findTemporaryName(const FSRef *directory, const FSRef *otherDirectory, UInt32 &number, TemporaryName &name)
{
    OSErr result = noErr;
    while (result == noErr)   // that is, while there is an object of that name
    {
        writeDigits(number, name);
        ++number;
        result = lookUp(directory, name);
        if (result == fnfErr)
            result = lookUp(otherDirectory, name);
    }
    return result == fnfErr ? noErr : result;
}

OSErr renameTemporarily(const FSRef *ref, const TemporaryName &name, FSRef *newRef)
{
    return FSRenameUnicode(ref, TemporaryName::length, name.digits, kTextEncodingUnknown, newRef);
}

OSErr renameAs(const FSRef *ref, const SavedObject &saved, FSRef *newRef)
{
    return FSRenameUnicode(ref, saved.name.length, saved.name.unicode, saved.info.textEncodingHint, newRef);
}

// Moves a file and gives it a new name; with a null name it keeps its own.
OSErr moveAndRename(const FSSpec &source, const FSCatalogInfo &directory, StringPtr newName)
{
    FSSpec file = source;
    HParamBlockRec block;
    block.copyParam.ioVRefNum = directory.volume;
    block.copyParam.ioDirID = file.parID;
    block.copyParam.ioNamePtr = file.name;
    block.copyParam.ioNewDirID = static_cast<SInt32>(directory.nodeID);
    block.copyParam.ioNewName = nullptr;   // the directory is given by its ID alone
    block.copyParam.ioCopyName = newName;
    return PBHMoveRenameSync(&block);
}

OSErr makeReference(const FSCatalogInfo &directory, StringPtr name, FSRef *newRef)
{
    FSRefParam block;
    block.ioVRefNum = directory.volume;
    block.ioDirID = static_cast<SInt32>(directory.nodeID);
    block.ioNamePtr = name;
    block.newRef = newRef;
    return PBMakeFSRefSync(&block);
}

struct NewName
{
    UniCharCount length;
    const UniChar *units;
    TextEncoding hint;
};

void moveBackAndRename(const SavedObject &saved, FSRef *newRef)
{
    FSMoveObject(newRef, &saved.parent, newRef);
    renameAs(newRef, saved, newRef);
}

// An object's way to another directory and name, by way of a temporary name that exists in neither directory.
OSErr moveInSteps(const FSRef *ref, const SavedObject &saved, const FSRef *directory, const NewName &name, FSRef *newRef)
{
    TemporaryName temporaryName;
    UInt32 number = firstTemporaryNumber;
    OSErr result = findTemporaryName(&saved.parent, directory, number, temporaryName);
    if (result != noErr)
        return result;
    result = renameTemporarily(ref, temporaryName, newRef);
    if (result != noErr)
        return result;

    result = FSMoveObject(newRef, directory, newRef);
    if (result != noErr)
    {
        renameAs(newRef, saved, newRef);
        return result;
    }
    // The reference as the caller passed it, which is meant: it goes on naming the object through the rename and the move.
    result = FSRenameUnicode(ref, name.length, name.units, name.hint, newRef);
    if (result != noErr)
        moveBackAndRename(saved, newRef);
    return result;
}

// One of the two files of an exchange
struct ExchangedFile
{
    FSRef current;   // names the file where it stands now, and so does the caller's output from the same step on
    FSRef *newRef;
    SavedObject saved;
    TemporaryName temporaryName;
};

struct Exchange
{
    ExchangedFile source, destination;
};

// Of all that can be set, each file keeps its own two modification dates...
constexpr FSCatalogInfoBitmap exchangedInfo =
    FSCatalogInfoBitmap{kFSCatInfoSettableInfo} & ~(FSCatalogInfoBitmap{kFSCatInfoContentMod} | kFSCatInfoAttrMod);
constexpr FSCatalogInfoBitmap fetchedInfo = exchangedInfo | kFSCatInfoVolume | kFSCatInfoParentDirID;
// ...but the roll-back sets them too, though they were never fetched: to the zeros that the saved records hold. It is meant.
constexpr FSCatalogInfoBitmap restoredInfo = kFSCatInfoSettableInfo;

// A file's reference follows every rename and move that succeeds.
OSErr followed(OSErr result, ExchangedFile &file)
{
    if (result == noErr)
        copyReference(file.newRef, &file.current);
    return result;
}

OSErr setAside(ExchangedFile &file)
{
    return followed(renameTemporarily(&file.current, file.temporaryName, file.newRef), file);
}

OSErr renameLike(ExchangedFile &file, const SavedObject &saved)
{
    return followed(renameAs(&file.current, saved, file.newRef), file);
}

// Files of one folder stay in it.
OSErr moveTo(const FSRef &directory, ExchangedFile &file, const Exchange &exchange)
{
    if (exchange.source.saved.info.parentDirID == exchange.destination.saved.info.parentDirID)
        return noErr;
    return followed(FSMoveObject(&file.current, &directory, file.newRef), file);
}

// The steps of an exchange, in order
enum class Step
{
    setSourceAside,
    setDestinationAside,
    moveSource,
    moveDestination,
    informSource,
    informDestination,
    renameSource,
    renameDestination
};
constexpr Step allSteps[] = {Step::setSourceAside, Step::setDestinationAside, Step::moveSource,   Step::moveDestination,
                             Step::informSource,   Step::informDestination,   Step::renameSource, Step::renameDestination};

OSErr perform(Step step, Exchange &exchange)
{
    auto &[source, destination] = exchange;
    switch (step)
    {
    case Step::setSourceAside: return setAside(source);
    case Step::setDestinationAside: return setAside(destination);
    case Step::moveSource: return moveTo(destination.saved.parent, source, exchange);
    case Step::moveDestination: return moveTo(source.saved.parent, destination, exchange);
    case Step::informSource: return FSSetCatalogInfo(&source.current, exchangedInfo, &destination.saved.info);
    case Step::informDestination: return FSSetCatalogInfo(&destination.current, exchangedInfo, &source.saved.info);
    case Step::renameSource: return renameLike(source, destination.saved);
    case Step::renameDestination: return renameLike(destination, source.saved);
    }
    return noErr;
}

// Undoes every step before the one that failed, the last one first. That a step cannot be undone stops nothing.
void rollBack(Step failedStep, Exchange &exchange)
{
    auto &[source, destination] = exchange;
    switch (failedStep)
    {
    case Step::renameDestination: setAside(source); [[fallthrough]];
    case Step::renameSource: FSSetCatalogInfo(&destination.current, restoredInfo, &destination.saved.info); [[fallthrough]];
    case Step::informDestination: FSSetCatalogInfo(&source.current, restoredInfo, &source.saved.info); [[fallthrough]];
    case Step::informSource: moveTo(destination.saved.parent, destination, exchange); [[fallthrough]];
    case Step::moveDestination: moveTo(source.saved.parent, source, exchange); [[fallthrough]];
    case Step::moveSource: renameLike(destination, destination.saved); [[fallthrough]];
    case Step::setDestinationAside: renameLike(source, source.saved); [[fallthrough]];
    case Step::setSourceAside: break;
    }
}

// Says whether the two can be exchanged, and saves what they are.
OSErr prepare(Exchange &exchange)
{
    auto &[source, destination] = exchange;
    OSErr result = save(&source.current, fetchedInfo, source.saved);
    if (result != noErr)
        return result;
    result = save(&destination.current, fetchedInfo, destination.saved);
    if (result != noErr)
        return result;
    if (source.saved.info.volume != destination.saved.info.volume)
        return diffVolErr;
    if ((source.saved.info.nodeFlags | destination.saved.info.nodeFlags) & kFSNodeIsDirectoryMask)
        return notAFileErr;

    UInt32 number = firstTemporaryNumber;   // runs on, so that the two names differ
    result = findTemporaryName(&source.saved.parent, &destination.saved.parent, number, source.temporaryName);
    if (result != noErr)
        return result;
    return findTemporaryName(&source.saved.parent, &destination.saved.parent, number, destination.temporaryName);
}

OSErr exchangeInSteps(Exchange &exchange)
{
    const OSErr result = prepare(exchange);
    if (result != noErr)
        return result;
    for (const Step step : allSteps)
    {
        const OSErr stepResult = perform(step, exchange);
        if (stepResult != noErr)
        {
            rollBack(step, exchange);
            return stepResult;
        }
    }
    // Each output names what stands now where the file it was made from has stood.
    copyReference(&exchange.destination.current, exchange.source.newRef);
    copyReference(&exchange.source.current, exchange.destination.newRef);
    return noErr;
}

}   // namespace

OSErr FSMoveRename(const FSRef *srcFileRef, const FSRef *dstDirectoryRef, UniCharCount nameLength, const UniChar *moveName,
                   TextEncoding textEncodingHint, FSRef *newRef)
{
    FSSpec source;
    OSErr result = FSGetCatalogInfo(srcFileRef, kFSCatInfoNone, nullptr, nullptr, &source, nullptr);
    if (result != noErr)
        return result;
    if (!canMoveAndRename(source.vRefNum))
        return paramErr;

    FSCatalogInfo directory;
    result = FSGetCatalogInfo(dstDirectoryRef, kFSCatInfoVolume | kFSCatInfoNodeID, &directory, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    if (directory.volume != source.vRefNum)
        return diffVolErr;

    Str31 shortName;
    if (moveName != nullptr)
        result = UnicodeNameGetHFSName(nameLength, moveName, textEncodingHint, false, shortName);
    if (result != noErr)
        return result;
    const StringPtr newName = moveName != nullptr ? shortName : nullptr;

    result = moveAndRename(source, directory, newName);
    if (result == noErr && newRef != nullptr)
        makeReference(directory, newName, newRef);   // the file has moved, whether or not it is found again
    return result;
}

OSErr FSMoveRenameObjectUnicode(const FSRef *ref, const FSRef *destDirectory, UniCharCount nameLength, const UniChar *name,
                                TextEncoding textEncodingHint, FSRef *newRef)
{
    if (newRef == nullptr)
        return paramErr;
    copyReference(ref, newRef);

    FSCatalogInfo directory;
    OSErr result = FSGetCatalogInfo(destDirectory, kFSCatInfoVolume, &directory, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    SavedObject saved;
    result = save(ref, kFSCatInfoTextEncoding | kFSCatInfoVolume, saved);
    if (result != noErr)
        return result;
    if (directory.volume != saved.info.volume)
        return diffVolErr;
    if (name == nullptr)
        return FSMoveObject(newRef, destDirectory, newRef);
    return moveInSteps(ref, saved, destDirectory, {nameLength, name, textEncodingHint}, newRef);
}

OSErr FSExchangeObjectsCompat(const FSRef *sourceRef, const FSRef *destRef, FSRef *newSourceRef, FSRef *newDestRef)
{
    if (newSourceRef == nullptr || newDestRef == nullptr)
        return paramErr;
    Exchange exchange = {};   // zeros where nothing is fetched: the roll-back writes them
    auto &[source, destination] = exchange;
    source.newRef = newSourceRef;
    destination.newRef = newDestRef;
    copyReference(sourceRef, newSourceRef);
    copyReference(sourceRef, &source.current);
    copyReference(destRef, newDestRef);
    copyReference(destRef, &destination.current);

    FSCatalogInfo info;
    const OSErr result = FSGetCatalogInfo(sourceRef, kFSCatInfoVolume, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    if (canExchangeFiles(info.volume))
        return FSExchangeObjects(sourceRef, destRef);
    return exchangeInSteps(exchange);
}
