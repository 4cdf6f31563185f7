// Users and groups: their numbers and names, as the plug-in maps them.
#pragma once

#include "host/command.h"
#include "host/json_text.h"

#include <optional>
#include <string>

namespace host
{

enum class People
{
    user,
    group
};

const char *wordFor(People people);   // "user", "group"

// Result: noErr; fnfErr if nobody has the number, or the name; the file manager's code.
OSErr nameOfNumber(const Plugin &plugin, FSVolumeRefNum volume, People people, UInt32 number, std::string &name);
OSErr numberOfName(const Plugin &plugin, FSVolumeRefNum volume, People people, const std::string &name, UInt32 &number);

// A word of digits alone, which counts as a number.
std::optional<UInt32> numberFromWord(const std::string &word);

// "1000  ada", or the number alone where nobody has it.
std::string shownPerson(const Plugin &plugin, FSVolumeRefNum volume, People people, UInt32 number);
Json personJson(const Plugin &plugin, FSVolumeRefNum volume, People people, UInt32 number);

}   // namespace host
