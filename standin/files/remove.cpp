// Removing objects: the object first, then its sidecar, so that no kill leaves a file without its fork.
#include "platform/platform.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/listings.h"
#include "standin/files/moved_objects.h"
#include "standin/files/names.h"
#include "standin/files/sidecar_carrying.h"

#include <cerrno>
#include <fcntl.h>

using namespace standin;

namespace
{

// What is left in a folder when a change was cut off: our temporaries, and sidecars of no file.
// False if anything else is there: then nothing is removed.
bool onlyLeftoversRemain(int folder, std::vector<std::string> &leftovers)
{
    bool onlyLeftovers = true;
    visitEntries(folder, [&](const Entry &entry) {
        const std::string name(entry.name);
        const bool isTemporary = entry.name.starts_with(temporaryPrefix);
        onlyLeftovers = isTemporary || (looksLikeSidecar(entry.name) && isLeftoverSidecar(folder, name));
        if (onlyLeftovers)
            leftovers.push_back(name);
        return onlyLeftovers;
    });
    return onlyLeftovers;
}

OSErr removeLeftovers(const Object &object)
{
    const Descriptor folder(linux_calls::openAt(object.folder->number(), object.name.c_str(), O_PATH | O_DIRECTORY));
    std::vector<std::string> leftovers;
    if (!folder.isOpen() || !onlyLeftoversRemain(folder.number(), leftovers))
        return fBsyErr;
    for (const std::string &name : leftovers)
        linux_calls::unlinkAt(folder.number(), name.c_str());
    return noErr;
}

OSErr removeFolder(const Object &object)
{
    const int folder = object.folder->number();
    int failure = linux_calls::removeFolderAt(folder, object.name.c_str());
    if (failure == -ENOTEMPTY || failure == -EEXIST)
    {
        if (OSErr result = removeLeftovers(object))
            return result;
        failure = linux_calls::removeFolderAt(folder, object.name.c_str());
    }
    return resultFromErrno(-failure);
}

}   // namespace

// A name that another program replaces between the look and the removal is lost, as with rm: Linux cannot remove by identity.
OSErr FSDeleteObject(const FSRef *ref)
{
    Object object;
    ChangeLock lock;
    if (OSErr result = findAndLock(ref, object, lock, Anchoring::anew))
        return result;
    if (OSErr result = checkMayLeave(object))
        return result;
    const OSErr result =
        object.isFolder() ? removeFolder(object) : resultFromErrno(-linux_calls::unlinkAt(object.folder->number(), object.name.c_str()));
    if (result != noErr)
        return result;
    removeSidecar({object.folder->number(), object.name, object.status});
    if (!object.isFolder() && object.status.links == 1)
        forgetMoved(object);
    return noErr;
}
