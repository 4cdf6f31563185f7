#include "standin/files/short_lookups.h"

#include "standin/files/names.h"

#include <algorithm>

namespace standin
{

namespace
{

// A plain short name is only good if nothing stands before the object among the names that it is looked up by.
bool plainNameLeadsBack(const Object &object, ConstStr255Param name)
{
    std::vector<std::string> candidates;
    if (lookupNamesFromPascal(name, candidates) != noErr)
        return false;
    for (const std::string &candidate : candidates)
    {
        if (candidate == object.name)
            return true;
        ObjectStatus status;
        if (linux_calls::statusAt(object.folder->number(), candidate.c_str(), status) == 0)
            return false;
    }
    return false;
}

bool samePascalString(ConstStr255Param a, ConstStr255Param b)
{
    return std::equal(a, a + a[0] + 1, b, b + b[0] + 1);
}

// Whether another entry of the folder is called by this short form too, plainly or by its own hash.
bool isTakenByAnother(const Object &object, ConstStr255Param form, int digits)
{
    const auto clashes = namesWhere(object.folder->number(), [&](std::string_view other) {
        Str63 plain, hashed;
        if (other == object.name)
            return false;
        if (plainShortName(other, plain))
            return samePascalString(plain, form);
        hashedShortName(other, digits, hashed);
        return samePascalString(hashed, form);
    });
    return !clashes.empty();
}

}   // namespace

void makeShortName(const Object &object, Str63 name)
{
    const std::string_view diskName = object.isRoot() ? std::string_view(object.volume->name) : std::string_view(object.name);
    if (plainShortName(diskName, name) && (object.isRoot() || plainNameLeadsBack(object, name)))
        return;
    for (int digits = fewestHashDigits;; ++digits)
    {
        hashedShortName(diskName, digits, name);
        if (object.isRoot() || digits == mostHashDigits || !isTakenByAnother(object, name, digits))
            return;
    }
}

OSErr findShortNamed(const VolumeHandle &volume, UInt32 parentID, ConstStr255Param name, Object &object)
{
    std::vector<std::string> candidates;
    if (OSErr result = lookupNamesFromPascal(name, candidates))
        return result;
    const OSErr result = findFirstNamed(volume, parentID, candidates, object);
    const int digits = hashDigitsOf(name);
    if (result != fnfErr || digits == 0)
        return result;
    FolderHandle folder;
    if (OSErr failure = openFolder(*volume, parentID, folder))
        return failure;
    const auto names = namesWhere(folder->number(), [&](std::string_view entry) {
        Str63 form;
        hashedShortName(entry, digits, form);
        return samePascalString(form, name);
    });
    for (const std::string &entry : names)
    {
        Str63 form;
        if (findNamed(volume, parentID, entry, object) != noErr)
            continue;
        makeShortName(object, form);
        if (samePascalString(form, name))   // two names made to agree in every digit: neither is guessed
            return digits == mostHashDigits && isTakenByAnother(object, name, digits) ? bdNamErr : noErr;
    }
    return fnfErr;
}

}   // namespace standin
