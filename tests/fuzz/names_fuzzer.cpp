// Hostile bytes as disk names and as Unicode names: what is accepted comes back, what does not come back is refused, and short names stay short.
#include "standin/files/names.h"
#include "tests/fuzz/require.h"

#include <algorithm>
#include <cstring>

namespace
{

bool isListed(const std::vector<std::string> &names, const std::string &name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

void checkShortNames(const std::string &diskName)
{
    Str63 name;
    std::vector<std::string> lookedFor;
    if (standin::plainShortName(diskName, name))
        require(name[0] <= standin::longestShortName && standin::lookupNamesFromPascal(name, lookedFor) == noErr &&
                isListed(lookedFor, diskName));
    for (int digits : {6, 11, 16})
    {
        standin::hashedShortName(diskName, digits, name);
        require(name[0] <= standin::longestShortName && standin::hashDigitsOf(name) == digits);
        require(standin::lookupNamesFromPascal(name, lookedFor) == noErr);
    }
}

void checkDiskName(const std::string &diskName)
{
    HFSUniStr255 name;
    standin::unicodeFromDiskName(diskName, name);
    require(name.length <= diskName.size());
    std::string back;
    OSErr result = standin::diskNameFromUnicode(name.unicode, name.length, back);
    if (diskName == "." || diskName == "..")
        require(result == bdNamErr);
    else
        require(result == noErr && back == diskName);
    checkShortNames(diskName);
}

void checkUnicodeName(const std::vector<UniChar> &units)
{
    std::string exact, stored;
    std::vector<std::string> lookedFor;
    OSErr result = standin::diskNameFromUnicode(units.data(), units.size(), exact);
    if (result == noErr)
    {
        HFSUniStr255 name;
        standin::unicodeFromDiskName(exact, name);
        require(std::equal(units.begin(), units.end(), name.unicode, name.unicode + name.length));
    }
    OSErr storing = standin::storedNameFromUnicode(units.data(), units.size(), stored);
    OSErr looking = standin::lookupNamesFromUnicode(units.data(), units.size(), lookedFor);
    require(result != noErr || (looking == noErr && lookedFor.front() == exact));
    require(storing != noErr || (looking == noErr && isListed(lookedFor, stored)));
    require(
        std::all_of(lookedFor.begin(), lookedFor.end(), [](const std::string &name) { return name.size() <= standin::longestDiskName; }));
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    std::vector<UniChar> units(size / sizeof(UniChar));
    if (!units.empty())
        std::memcpy(units.data(), data, units.size() * sizeof(UniChar));
    checkUnicodeName(units);

    std::string diskName(reinterpret_cast<const char *>(data), std::min(size, standin::longestDiskName));
    std::replace(diskName.begin(), diskName.end(), '/', ':');
    std::replace(diskName.begin(), diskName.end(), '\0', '_');
    if (!diskName.empty())
        checkDiskName(diskName);
    return 0;
}
