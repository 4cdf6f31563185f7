#include "standin/files/default_directory.h"

#include "standin/files/block_lookup.h"
#include "standin/files/reference_format.h"
#include "standin/files/short_lookups.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <optional>

using namespace standin;

namespace
{

// It is kept as a reference, so that a folder that is renamed or moved stays the default directory. None: the startup volume's root.
struct DefaultDirectory
{
    std::mutex mutex;
    std::optional<FSRef> reference;
};

DefaultDirectory &theDefault()
{
    static DefaultDirectory directory;
    return directory;
}

// A volume that was taken away takes the default directory with it: then it is the startup volume's root again.
bool takeReference(FSRef &reference, VolumeHandle &volume)
{
    ReferenceFields fields;
    const std::lock_guard lock(theDefault().mutex);
    if (!theDefault().reference || !readReference(*theDefault().reference, fields))
        return false;
    volume = findVolume(fields.volume);
    if (!volume)
        theDefault().reference.reset();
    else
        reference = *theDefault().reference;
    return volume != nullptr;
}

OSErr findDefaultDirectory(VolumeHandle &volume, UInt32 &folderID)
{
    FSRef reference;
    Object folder;
    folderID = fsRtDirID;
    if (!takeReference(reference, volume))
    {
        volume = startupVolume();
        return volume ? noErr : nsvErr;
    }
    const OSErr result = findObject(&reference, folder);
    if (result == noErr)
        folderID = folder.nodeID();
    return result == fnfErr ? static_cast<OSErr>(dirNFErr) : result;
}

}   // namespace

namespace standin
{

VolumeHandle defaultVolume()
{
    FSRef reference;
    VolumeHandle volume;
    return takeReference(reference, volume) ? volume : startupVolume();
}

OSErr directoryOfBlock(FSVolumeRefNum volumeNumber, SInt32 directoryID, VolumeHandle &volume, UInt32 &folderID)
{
    if (volumeNumber == 0 && directoryID == 0)
        return findDefaultDirectory(volume, folderID);
    volume = findVolume(volumeNumber);
    folderID = directoryID == 0 ? static_cast<UInt32>(fsRtDirID) : static_cast<UInt32>(directoryID);
    return volume ? noErr : nsvErr;
}

}   // namespace standin

namespace
{

// `Name:` or `Name`; a further part would be a path.
OSErr findVolumeOfName(ConstStr255Param name, FSVolumeRefNum &number)
{
    Str255 plain;
    Object root;
    std::copy_n(name, name[0] + 1, plain);
    if (plain[plain[0]] == ':')
        --plain[0];
    if (plain[0] == 0)
        return bdNamErr;
    if (OSErr result = findByTriple(0, fsRtParID, plain, root))
        return result;
    number = root.volume->number;
    return noErr;
}

OSErr getDefault(StringPtr volumeName, SInt16 *volumeNumber, SInt32 *directoryID)
{
    VolumeHandle volume;
    UInt32 folderID = 0;
    Object root;
    Str63 name;
    if (OSErr result = directoryOfBlock(0, 0, volume, folderID))
        return result;
    if (OSErr result = findRoot(volume, root))
        return result;
    makeShortName(root, name);
    if (volumeName)
        std::copy_n(name, name[0] + 1, volumeName);
    if (volumeNumber)
        *volumeNumber = volume->number;
    if (directoryID)
        *directoryID = static_cast<SInt32>(folderID);
    return noErr;
}

}   // namespace

OSErr HGetVol(StringPtr volName, SInt16 *vRefNum, SInt32 *dirID)
try
{
    return getDefault(volName, vRefNum, dirID);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr HSetVol(ConstStr255Param volName, SInt16 vRefNum, SInt32 dirID)
try
{
    Object folder;
    FSVolumeRefNum number = vRefNum;
    if (volName && volName[0] != 0)
        if (OSErr result = findVolumeOfName(volName, number))
            return result;
    if (OSErr result = findByTriple(number, dirID, nullptr, folder))
        return result;
    const FSRef reference = makeReference(folder);
    const std::lock_guard lock(theDefault().mutex);
    theDefault().reference = reference;
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
