#include "standin/files/sidecar_carrying.h"

#include "standin/files/errors.h"
#include "standin/files/names.h"
#include "standin/files/temporary_files.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace standin
{

namespace
{

std::string sidecarNameFor(const SidecarPlace &place)
{
    return sidecarNameOf(place.name);
}

// `NAME.orphan.rsrc`, `NAME.orphan-2.rsrc` …, shortened between characters where that is too long.
std::string orphanName(const std::string &name, int number)
{
    const std::string ending = number == 1 ? ".orphan.rsrc" : ".orphan-" + std::to_string(number) + ".rsrc";
    std::size_t length = std::min(name.size(), longestDiskName - ending.size());
    while (length < name.size() && length > 1 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80)
        --length;
    return name.substr(0, length) + ending;
}

OSErr moveAside(int folder, const std::string &name)
{
    for (int number = 1;; ++number)
    {
        const std::string aside = orphanName(name, number);
        const int failure = linux_calls::renameWithoutReplacing(folder, sidecarNameOf(name).c_str(), folder, aside.c_str());
        if (failure != -EEXIST)
            return resultFromErrno(-failure);
    }
}

OSErr copySidecar(const SidecarPlace &from, const SidecarPlace &to)
{
    TemporaryFile temporary;
    const Descriptor source(linux_calls::openAt(from.folder, sidecarNameFor(from).c_str(), O_RDONLY | O_NONBLOCK));
    ObjectStatus status;
    int failure = source.isOpen() ? linux_calls::statusOf(source.number(), status) : source.number();
    if (failure == 0)
        failure = temporary.make(to.folder, status.mode);
    if (failure == 0)
        failure = linux_calls::copyBytes(source.number(), 0, temporary.descriptor(), 0, status.size);
    if (failure == 0 && linux_calls::effectiveUser() == 0)
        linux_calls::setOwner(temporary.descriptor(), status.user, status.group);
    if (failure == 0)
        failure = temporary.appear(sidecarNameFor(to).c_str());
    return resultFromErrno(-failure);
}

}   // namespace

OSErr clearTheWayFor(int folder, const std::string &name)
{
    ObjectStatus status;
    const std::string sidecar = sidecarNameOf(name);
    if (!hasRoomForSidecar(name))
        return noErr;
    const int failure = linux_calls::statusAt(folder, sidecar.c_str(), status);
    if (failure < 0 && !linux_calls::saysAbsent(failure))
        return resultFromErrno(-failure);   // an orphan that was overlooked would become the fork of a file that it does not belong to
    if (failure < 0 || status.isFolder())
        return noErr;
    if (isLeftoverSidecar(folder, sidecar))
        return resultFromErrno(-linux_calls::unlinkAt(folder, sidecar.c_str()));
    return moveAside(folder, name);
}

OSErr carrySidecar(const SidecarPlace &from, const SidecarPlace &to, bool &carried)
{
    ObjectStatus status;
    carried = false;
    if (!hasRoomForSidecar(from.name))
        return noErr;
    const int lookedUp = linux_calls::statusAt(from.folder, sidecarNameFor(from).c_str(), status);
    if (lookedUp < 0 && !linux_calls::saysAbsent(lookedUp))
        return resultFromErrno(-lookedUp);   // a sidecar that was overlooked would stay behind
    if (lookedUp < 0 || !status.isRegular())
        return noErr;
    if (!hasRoomForSidecar(to.name))
        return errFSNameTooLong;
    const int failure = linux_calls::linkAt(from.folder, sidecarNameFor(from).c_str(), to.folder, sidecarNameFor(to).c_str());
    const bool needsCopy = failure == -EPERM || failure == -EMLINK || failure == -EOPNOTSUPP || failure == -ENOSYS;
    const OSErr result = needsCopy ? copySidecar(from, to) : resultFromErrno(-failure);
    carried = result == noErr;
    return result;
}

OSErr renameWithSidecar(const Object &object, int folder, const std::string &name)
{
    const SidecarPlace from{object.folder->number(), object.name, object.status};
    const SidecarPlace to{folder, name, object.status};
    bool carried = false;
    if (!object.sidecarIsAbsent)
        if (OSErr result = carrySidecar(from, to, carried))
            return result;
    const int failure = linux_calls::renameWithoutReplacing(from.folder, from.name.c_str(), to.folder, to.name.c_str());
    if (carried)
        dropSidecarName(failure ? to : from);
    return resultFromErrno(-failure);
}

void removeSidecar(const SidecarPlace &place)
{
    Sidecar sidecar;
    if (openSidecar(place, false, sidecar) != SidecarState::good)
        return;
    if (sidecar.status.links > 1)
        giveUpOtherNames(place);
    linux_calls::unlinkAt(place.folder, sidecarNameFor(place).c_str());
}

void dropSidecarName(const SidecarPlace &place)
{
    linux_calls::unlinkAt(place.folder, sidecarNameFor(place).c_str());
}

}   // namespace standin
