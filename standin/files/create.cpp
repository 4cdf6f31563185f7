// Making files and folders.
#include "platform/platform.h"
#include "standin/files/catalog.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/names.h"
#include "standin/files/sidecar_carrying.h"

#include <fcntl.h>
#include <new>

using namespace standin;

namespace
{

// What the new object is to be called and to know from the start.
struct Request
{
    const FSRef *parent;
    UniCharCount nameLength;
    const UniChar *name;
    FSCatalogInfoBitmap which;
    const FSCatalogInfo *info;
    bool isFolder;
};

int makeOnDisk(int folder, const std::string &name, bool isFolder)
{
    if (isFolder)
        return linux_calls::makeFolderAt(folder, name.c_str(), 0777);
    const Descriptor made(linux_calls::openAt(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NONBLOCK, 0666));
    return made.isOpen() ? 0 : made.number();
}

// What was made but could not be finished goes again, with the sidecar that it may have got by then.
void removeAgain(int folder, const std::string &name, bool isFolder)
{
    const ObjectStatus unknown;
    const int failure = isFolder ? linux_calls::removeFolderAt(folder, name.c_str()) : linux_calls::unlinkAt(folder, name.c_str());
    if (failure == 0)
        removeSidecar({folder, name, unknown});
}

OSErr make(const Request &request, Object &object)
{
    Object parent;
    FolderHandle folder;
    ChangeLock lock;
    std::string name;
    if (OSErr result = checkSettable(request.which, request.info))
        return result;
    if (OSErr result = storedNameFromUnicode(request.name, request.nameLength, name))
        return result;
    if (OSErr result = openForAdding(request.parent, parent, folder, lock))
        return result;
    if (OSErr result = checkNameIsFree(folder->number(), request.name, request.nameLength, nullptr))
        return result;
    if (OSErr result = clearTheWayFor(folder->number(), name))
        return result;
    if (const int failure = makeOnDisk(folder->number(), name, request.isFolder))
        return resultFromErrno(-failure);
    OSErr result = findNamed(parent.volume, parent.nodeID(), name, object);
    if (result == noErr && request.which)
        result = applyCatalogInfo(object, request.which, *request.info);
    if (result != noErr)
        removeAgain(folder->number(), name, request.isFolder);
    return result;
}

}   // namespace

OSErr FSCreateFileUnicode(const FSRef *parent, UniCharCount nameLength, const UniChar *name, FSCatalogInfoBitmap which,
                          const FSCatalogInfo *info, FSRef *newRef, FSSpec *newSpec)
try
{
    Object object;
    const OSErr result = make({parent, nameLength, name, which, info, false}, object);
    if (result == noErr)
        giveReference(object, newRef, newSpec);
    return result;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSCreateDirectoryUnicode(const FSRef *parent, UniCharCount nameLength, const UniChar *name, FSCatalogInfoBitmap which,
                               const FSCatalogInfo *info, FSRef *newRef, FSSpec *newSpec, UInt32 *newDirID)
try
{
    Object object;
    const OSErr result = make({parent, nameLength, name, which, info, true}, object);
    if (result != noErr)
        return result;
    giveReference(object, newRef, newSpec);
    if (newDirID)
        *newDirID = object.nodeID();
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
