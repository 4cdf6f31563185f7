#include "host/commands/people.h"

#include "host/numbers.h"
#include "host/text.h"

#include "platform/platform.h"

namespace host
{

namespace
{

// The File Manager's numbers of what is mapped to what.
constexpr SInt16 typeOfNumber(People people)
{
    return people == People::user ? 1 : 2;
}

constexpr SInt16 typeOfName(People people)
{
    return people == People::user ? 3 : 4;
}

// In the system's encoding.
OSErr pascalName(const Plugin &plugin, const std::string &name, Str63 pascal)
{
    std::u16string units = unitsFromBytes(name);
    if (units.empty() || units.size() > 255)
        return fnfErr;   // nobody can be called that
    const std::vector<UniChar> text(units.begin(), units.end());
    const OSErr result =
        plugin.UnicodeNameGetHFSName(static_cast<UniCharCount>(text.size()), text.data(), kTextEncodingUnknown, false, pascal);
    return result == noErr ? noErr : fnfErr;
}

std::string textOfPascal(const Plugin &plugin, ConstStr255Param pascal)
{
    HFSUniStr255 name = {};
    return plugin.HFSNameGetUnicodeName(pascal, kTextEncodingUnknown, &name) == noErr ? bytesFromName(name) : utf8FromPascal(pascal);
}

}   // namespace

const char *wordFor(People people)
{
    return people == People::user ? "user" : "group";
}

OSErr nameOfNumber(const Plugin &plugin, FSVolumeRefNum volume, People people, UInt32 number, std::string &name)
{
    Str31 pascal = {};
    const OSErr result = plugin.FSMapID(volume, static_cast<SInt32>(number), typeOfNumber(people), pascal);
    if (result == noErr)
        name = textOfPascal(plugin, pascal);
    return result;
}

OSErr numberOfName(const Plugin &plugin, FSVolumeRefNum volume, People people, const std::string &name, UInt32 &number)
{
    Str63 pascal = {};
    SInt32 found = 0;
    OSErr result = pascalName(plugin, name, pascal);
    if (result == noErr)
        result = plugin.FSMapName(volume, pascal, typeOfName(people), &found);
    if (result == noErr)
        number = static_cast<UInt32>(found);
    return result;
}

std::optional<UInt32> numberFromWord(const std::string &word)
{
    if (word.empty() || word.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    return numberFromText(word, 0xFFFFFFFF);
}

std::string shownPerson(const Plugin &plugin, FSVolumeRefNum volume, People people, UInt32 number)
{
    std::string name;
    const OSErr result = nameOfNumber(plugin, volume, people, number, name);
    return std::to_string(number) + (result == noErr ? "  " + printable(name) : "");
}

Json personJson(const Plugin &plugin, FSVolumeRefNum volume, People people, UInt32 number)
{
    std::string name;
    const OSErr result = nameOfNumber(plugin, volume, people, number, name);
    return {{"id", number}, {"name", result == noErr ? Json(name) : Json(nullptr)}};
}

}   // namespace host
