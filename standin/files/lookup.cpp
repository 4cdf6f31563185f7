// From volume, directory and name to a reference.
#include "platform/platform.h"
#include "standin/files/names.h"
#include "standin/files/references.h"
#include "standin/files/short_lookups.h"

#include <algorithm>

using namespace standin;

namespace
{

constexpr SInt32 defaultDirectory = 0;

FSRef rememberedReference(const Object &object)
{
    object.nodeID();   // a folder's ID may be asked for by number from now on
    return makeReference(object);
}

// The parent of a volume's root holds just that root, under the volume's name.
OSErr findAboveRoot(const VolumeHandle &volume, ConstStr255Param name, Object &object)
{
    Str63 ownName;
    std::vector<std::string> candidates;
    if (OSErr result = findRoot(volume, object))
        return result;
    makeShortName(object, ownName);
    if (std::equal(name, name + name[0] + 1, ownName, ownName + ownName[0] + 1))
        return noErr;
    if (OSErr result = lookupNamesFromPascal(name, candidates))
        return result;
    for (const std::string &candidate : candidates)
        if (const VolumeHandle named = findVolumeNamed(candidate))
            return findRoot(named, object);
    return nsvErr;
}

OSErr findByParameters(const FSRefParam &parameters, Object &object)
{
    const VolumeHandle volume = findVolume(parameters.ioVRefNum);
    const auto folderID = parameters.ioDirID == defaultDirectory ? static_cast<UInt32>(fsRtDirID) : static_cast<UInt32>(parameters.ioDirID);
    if (!volume)
        return nsvErr;
    if (!parameters.ioNamePtr || parameters.ioNamePtr[0] == 0)
        return findFolder(volume, folderID, object);
    if (folderID == fsRtParID)
        return findAboveRoot(volume, parameters.ioNamePtr, object);
    return findShortNamed(volume, folderID, parameters.ioNamePtr, object);
}

OSErr findUnicodeNamed(const FSRefParam &parameters, Object &object)
{
    Object folder;
    std::vector<std::string> candidates;
    if (OSErr result = findObject(parameters.ref, folder))
        return result;
    if (!folder.isFolder())
        return errFSNotAFolder;
    if (OSErr result = lookupNamesFromUnicode(parameters.name, parameters.nameLength, candidates))
        return result;
    return findFirstNamed(folder.volume, folder.nodeID(), candidates, object);
}

}   // namespace

OSErr PBMakeFSRefSync(FSRefParamPtr parameters)
{
    Object object;
    if (!parameters || !parameters->newRef)
        return paramErr;
    const OSErr result = findByParameters(*parameters, object);
    if (result == noErr)
        *parameters->newRef = rememberedReference(object);
    return parameters->ioResult = result;
}

OSErr PBMakeFSRefUnicodeSync(FSRefParamPtr parameters)
{
    Object object;
    if (!parameters || !parameters->newRef)
        return paramErr;
    const OSErr result = findUnicodeNamed(*parameters, object);
    if (result == noErr)
        *parameters->newRef = rememberedReference(object);
    return parameters->ioResult = result;
}
