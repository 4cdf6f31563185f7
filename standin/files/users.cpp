// Names of users and groups ↔ their numbers, as the system's name service has them.
#include "platform/platform.h"
#include "standin/files/errors.h"
#include "standin/files/linux_users.h"
#include "standin/files/names.h"
#include "standin/files/volumes.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <vector>

using namespace standin;

namespace
{

// What is mapped to what, by the published numbers of the two calls.
enum MappedObject : SInt16
{
    userNumberToName = 1,
    groupNumberToName = 2,
    userNameToNumber = 3,
    groupNameToNumber = 4,
};

OSErr checkVolume(const ObjParam &block)
{
    return findVolume(block.ioVRefNum) ? noErr : nsvErr;
}

// A name that does not fit into the caller's 31 bytes is an error: a part of it, or a made-up form, would name nobody or somebody else.
OSErr giveName(const std::string &name, StringPtr output)
{
    Str63 text;
    if (!plainShortName(name, text))
        return bdNamErr;
    std::copy_n(text, text[0] + 1, output);
    return noErr;
}

OSErr mapID(const ObjParam &block)
{
    std::string name;
    if (!block.ioObjNamePtr || (block.ioObjType != userNumberToName && block.ioObjType != groupNumberToName))
        return paramErr;
    if (OSErr result = checkVolume(block))
        return result;
    const auto number = static_cast<std::uint32_t>(block.ioObjID);
    const int failure = block.ioObjType == userNumberToName ? linux_calls::userName(number, name) : linux_calls::groupName(number, name);
    return failure ? resultFromErrno(-failure) : giveName(name, block.ioObjNamePtr);   // nobody has the number: fnfErr
}

// A name has one form more where it can be written with accents of its own.
OSErr mapName(ObjParam &block)
{
    std::vector<std::string> forms;
    if (!block.ioObjNamePtr || (block.ioObjType != userNameToNumber && block.ioObjType != groupNameToNumber))
        return paramErr;
    if (OSErr result = checkVolume(block))
        return result;
    if (lookupNamesFromPascal(block.ioObjNamePtr, forms) != noErr)
        return fnfErr;   // nobody can be called that
    int failure = -ENOENT;
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < forms.size() && failure == -ENOENT; ++i)
        failure =
            block.ioObjType == userNameToNumber ? linux_calls::userNamed(forms[i], number) : linux_calls::groupNamed(forms[i], number);
    if (failure == 0)
        block.ioObjID = static_cast<SInt32>(number);
    return resultFromErrno(-failure);
}

}   // namespace

OSErr PBHMapIDSync(HParmBlkPtr block)
try
{
    return block ? block->objParam.ioResult = mapID(block->objParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->objParam.ioResult = memFullErr;
}

OSErr PBHMapNameSync(HParmBlkPtr block)
try
{
    return block ? block->objParam.ioResult = mapName(block->objParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->objParam.ioResult = memFullErr;
}
