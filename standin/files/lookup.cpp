// From volume, directory and name to a reference.
#include "platform/platform.h"
#include "standin/files/block_lookup.h"
#include "standin/files/default_directory.h"
#include "standin/files/names.h"
#include "standin/files/short_lookups.h"

#include <algorithm>
#include <new>

using namespace standin;

namespace
{

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

namespace standin
{

OSErr findByTriple(FSVolumeRefNum volumeNumber, SInt32 directoryID, ConstStr255Param name, Object &object)
{
    VolumeHandle volume;
    UInt32 folderID = 0;
    if (OSErr result = directoryOfBlock(volumeNumber, directoryID, volume, folderID))
        return result;
    if (!name || name[0] == 0)
        return findFolder(volume, folderID, object);
    if (folderID == fsRtParID)
        return findAboveRoot(volume, name, object);
    return findShortNamed(volume, folderID, name, object);
}

}   // namespace standin

OSErr PBMakeFSRefSync(FSRefParamPtr parameters)
try
{
    Object object;
    if (!parameters || !parameters->newRef)
        return paramErr;
    const OSErr result = findByTriple(parameters->ioVRefNum, parameters->ioDirID, parameters->ioNamePtr, object);
    if (result == noErr)
        *parameters->newRef = rememberedReference(object);
    return parameters->ioResult = result;
}
catch (const std::bad_alloc &)
{
    return parameters->ioResult = memFullErr;
}

OSErr PBMakeFSRefUnicodeSync(FSRefParamPtr parameters)
try
{
    Object object;
    if (!parameters || !parameters->newRef)
        return paramErr;
    const OSErr result = findUnicodeNamed(*parameters, object);
    if (result == noErr)
        *parameters->newRef = rememberedReference(object);
    return parameters->ioResult = result;
}
catch (const std::bad_alloc &)
{
    return parameters->ioResult = memFullErr;
}
