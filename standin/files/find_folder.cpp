// FindFolder: the system's special folders by their kind, made where they are missing if the caller wants that.
//
// Result: noErr; paramErr for a null output; fnfErr for a kind that nothing is known of, and for a folder that is missing and not to be
// made; errFSNotAFolder if something else has its name; diffVolErr for a shared data folder that is not on the startup volume; the codes of
// FSPathMakeRef and FSCreateDirectoryUnicode. The outputs are written only on success.
#include "platform/platform.h"
#include "standin/files/names.h"
#include "standin/files/paths.h"
#include "standin/files/special_folders.h"

#include <fcntl.h>
#include <new>

using namespace standin;

namespace
{

bool isMissing(OSErr result)
{
    return result == fnfErr || result == dirNFErr;
}

OSErr checkVolume(const SpecialFolder &wanted, const Object &found)
{
    return wanted.isOnStartupVolume && found.volume != startupVolume() ? diffVolErr : noErr;
}

// The deepest folder of a path that is there. `end` is where its own path ends.
OSErr findDeepest(const std::string &path, std::size_t &end, Object &folder)
{
    end = path.size();
    OSErr result = findPath(path, folder);
    while (isMissing(result) && end > 0)
    {
        end = path.rfind('/', end - 1);
        result = findPath(end == 0 ? "/" : path.substr(0, end), folder);
    }
    return result;
}

// Another process may make the same folder at this very moment: it is there then, which is all that is wanted.
OSErr makeIn(const Object &parent, const std::string &name, bool &isMade)
{
    HFSUniStr255 unicodeName;
    const FSRef parentReference = makeReference(parent);
    unicodeFromDiskName(name, unicodeName);
    const OSErr result = FSCreateDirectoryUnicode(&parentReference, unicodeName.length, unicodeName.unicode, kFSCatInfoNone, nullptr,
                                                  nullptr, nullptr, nullptr);
    isMade = result == noErr;
    return result == dupFNErr ? static_cast<OSErr>(noErr) : result;
}

// A failure is not reported: the folder is there, with the rights that every other one has.
void setMode(const Object &folder, std::uint32_t mode)
{
    Descriptor itself;
    if (openItself(folder, O_PATH | O_DIRECTORY, itself) == noErr)
        linux_calls::setMode(itself.number(), mode);
}

// Makes what is missing of a path, from the top down. Each folder on the way is found by its path anew, so that a link which took its place
// leads no further than links do anywhere.
OSErr makePath(const std::string &path, std::size_t end, Object &folder, bool &isMade)
{
    while (end < path.size())
    {
        const std::size_t start = end + 1;
        end = std::min(path.find('/', start), path.size());
        if (start == end)
            continue;   // two slashes, or one at the end
        if (OSErr result = makeIn(folder, path.substr(start, end - start), isMade))
            return result;
        if (OSErr result = findPath(path.substr(0, end), folder))
            return isMissing(result) ? static_cast<OSErr>(fnfErr) : result;   // a link that leads nowhere has the name
    }
    return noErr;
}

OSErr findOrMake(const SpecialFolder &wanted, bool mayMake, Object &folder)
{
    std::size_t end = 0;
    bool isMade = false;
    OSErr result = findDeepest(wanted.path, end, folder);
    if (result != noErr)
        return result;
    if (!folder.isFolder())
        return errFSNotAFolder;
    if (OSErr failure = checkVolume(wanted, folder))
        return failure;
    if (end == wanted.path.size())
        return noErr;
    result = mayMake ? makePath(wanted.path, end, folder, isMade) : static_cast<OSErr>(fnfErr);
    if (result == noErr && isMade && wanted.modeWhenMade != 0)
        setMode(folder, wanted.modeWhenMade);
    return result;
}

}   // namespace

OSErr FindFolder(SInt16 domain, OSType folderType, Boolean createFolder, SInt16 *foundVRefNum, SInt32 *foundDirID)
try
{
    SpecialFolder wanted;
    Object folder;
    if (!foundVRefNum || !foundDirID)
        return paramErr;
    if (!findSpecialFolder(domain, folderType, wanted) || wanted.path.empty())
        return fnfErr;
    if (OSErr result = findOrMake(wanted, createFolder != 0, folder))
        return result;
    if (!folder.isFolder())
        return errFSNotAFolder;
    if (OSErr result = checkVolume(wanted, folder))
        return result;
    *foundVRefNum = folder.volume->number;
    *foundDirID = static_cast<SInt32>(folder.nodeID());
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
