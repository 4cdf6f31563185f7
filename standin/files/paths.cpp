#include "standin/files/paths.h"

#include "standin/files/errors.h"
#include "standin/files/names.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <new>

using namespace standin;

namespace
{

constexpr int mostLinks = 40;
constexpr std::size_t longestLink = 65536;
constexpr std::string_view volumesFolder = "Volumes";

using Components = std::deque<std::string>;

// Puts the components of a path before those that are still to go. A '/' at the end says that a folder is meant: it leaves a ".".
void prepend(std::string_view path, Components &rest)
{
    Components parts;
    for (std::size_t start = 0; start < path.size();)
    {
        const std::size_t end = std::min(path.find('/', start), path.size());
        if (end > start)
            parts.emplace_back(path.substr(start, end - start));
        start = end + 1;
    }
    if (!parts.empty() && path.back() == '/')
        parts.emplace_back(".");
    rest.insert(rest.begin(), parts.begin(), parts.end());
}

// In a host's own disk the other volumes are reached at /Volumes/NAME, whether or not there is such a folder.
VolumeHandle volumeNamedByPath(const Components &rest)
{
    if (!startupIsDirectory() || rest.size() < 2 || rest[0] != volumesFolder)
        return nullptr;
    return findVolumeNamed(rest[1]);
}

OSErr startAtRoot(Components &rest, Object &current)
{
    if (const VolumeHandle volume = volumeNamedByPath(rest))
    {
        rest.erase(rest.begin(), rest.begin() + 2);
        return findRoot(volume, current);
    }
    const VolumeHandle volume = startupVolume();
    return volume ? findRoot(volume, current) : static_cast<OSErr>(nsvErr);
}

// From a volume's root the way up goes on in the folder that it is mounted on.
OSErr stepUp(Object &current, Components &rest)
{
    Object here = current;
    if (!here.isRoot())
        return findFolder(here.volume, here.parentID, current);
    if (here.volume == startupVolume() || startupIsDirectory())
        return noErr;
    const std::string path = here.volume->root.path();
    prepend(path.substr(0, path.rfind('/')), rest);
    return startAtRoot(rest, current);
}

OSErr followLink(const Object &link, UInt32 folderID, Components &rest, Object &current)
{
    std::string target(longestLink, '\0');
    const ssize_t length = linux_calls::readLink(link.folder->number(), link.name.c_str(), target);
    if (length <= 0)
        return fnfErr;
    target.resize(static_cast<std::size_t>(length));
    prepend(target, rest);
    return target[0] == '/' ? startAtRoot(rest, current) : findFolder(link.volume, folderID, current);
}

// A folder that another volume's root is: a mounted disk, or a directory that was made a volume.
OSErr enterVolume(Object &child)
{
    if (!child.isFolder())
        return noErr;
    VolumeHandle volume = volumeWithRoot(child.status);
    if (!volume && child.status.isMountPoint)
        volume = volumeOfMountPoint(child.folder->number(), child.name.c_str(), child.status);
    return volume && volume != child.volume ? findRoot(volume, child) : static_cast<OSErr>(noErr);
}

// What was made under a name is stored composed, and others may have stored it decomposed: where nothing has the name as it stands in the
// path, its other form is meant.
OSErr findInAnyForm(const VolumeHandle &volume, UInt32 folderID, const std::string &name, Object &child)
{
    HFSUniStr255 unicodeName;
    std::vector<std::string> forms;
    const OSErr result = findNamed(volume, folderID, name, child);
    const bool isPlain = std::all_of(name.begin(), name.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
    if (result != fnfErr || isPlain || name.size() > longestDiskName)
        return result;
    unicodeFromDiskName(name, unicodeName);
    if (lookupNamesFromUnicode(unicodeName.unicode, unicodeName.length, forms) != noErr)
        return result;
    return findFirstNamed(volume, folderID, forms, child);
}

OSErr stepInto(const std::string &name, Components &rest, int &links, Object &current)
{
    if (!current.isFolder())
        return errFSNotAFolder;
    Object child;
    const UInt32 folderID = current.nodeID();
    if (OSErr result = findInAnyForm(current.volume, folderID, name, child))
        return result == fnfErr && !rest.empty() ? static_cast<OSErr>(dirNFErr) : result;
    if (child.status.isSymbolicLink())
        return ++links > mostLinks ? static_cast<OSErr>(bdNamErr) : followLink(child, folderID, rest, current);
    if (OSErr result = enterVolume(child))
        return result;
    current = std::move(child);
    return noErr;
}

OSErr walk(Components rest, Object &current)
{
    int links = 0;
    OSErr result = startAtRoot(rest, current);
    while (result == noErr && !rest.empty())
    {
        const std::string name = std::move(rest.front());
        rest.pop_front();
        if (name == ".")
            result = current.isFolder() ? noErr : errFSNotAFolder;
        else if (name == "..")
            result = current.isFolder() ? stepUp(current, rest) : static_cast<OSErr>(errFSNotAFolder);
        else
            result = stepInto(name, rest, links, current);
    }
    return result;
}

// How paths to a volume's objects begin.
std::string prefixOf(const Volume &volume)
{
    const VolumeHandle startup = startupVolume();
    if (startup && startup->number == volume.number)
        return "";
    return startupIsDirectory() ? '/' + std::string(volumesFolder) + '/' + volume.name : volume.root.path();
}

}   // namespace

namespace standin
{

OSErr findPath(const std::string &path, Object &object)
{
    Components rest;
    prepend(path, rest);
    if (path[0] != '/' && !startupIsDirectory())
        prepend(linux_calls::currentDirectory() + '/', rest);
    return walk(std::move(rest), object);
}

OSErr pathOfObject(const Object &object, std::string &path)
{
    std::vector<std::string> names;
    if (!object.isRoot())
        names.push_back(object.name);
    Folder folder;
    folder.parentID = object.parentID;
    for (UInt32 id = object.parentID; !object.isRoot() && id != fsRtDirID; id = folder.parentID)
    {
        if (!recallFolder(*object.volume, id, folder))
            return dirNFErr;
        names.push_back(folder.name);
    }
    path = prefixOf(*object.volume);
    for (auto name = names.rbegin(); name != names.rend(); ++name)
        path += '/' + *name;
    if (path.empty())
        path.assign(1, '/');   // by assignment GCC 12 warns, and is wrong
    return noErr;
}

}   // namespace standin

OSStatus FSPathMakeRef(const UInt8 *path, FSRef *ref, Boolean *isDirectory)
try
{
    Object object;
    if (!path || !ref)
        return paramErr;
    const std::string text(reinterpret_cast<const char *>(path));
    if (text.empty())
        return fnfErr;
    if (OSErr result = findPath(text, object))
        return result;
    object.nodeID();   // a folder is remembered: its children will be asked for
    *ref = makeReference(object);
    if (isDirectory)
        *isDirectory = object.isFolder();
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSStatus FSRefMakePath(const FSRef *ref, UInt8 *path, UInt32 maximumSize)
try
{
    Object object;
    std::string text;
    if (!path || maximumSize == 0)
        return paramErr;
    if (OSErr result = findObjectAnew(ref, object))   // so that the names on the way are today's
        return result;
    if (OSErr result = pathOfObject(object, text))
        return result;
    if (text.size() >= maximumSize)
        return errFSNameTooLong;
    std::memcpy(path, text.c_str(), text.size() + 1);
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
