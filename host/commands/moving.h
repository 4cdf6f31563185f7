// What the commands share that give objects another place or name.
#pragma once

#include "host/command.h"

#include "platform/file_records.h"

#include <optional>
#include <string>

namespace host
{

// With which of the plug-in's functions.
enum class MovingWay
{
    automatic,
    native,   // FSMoveRename: files, in one step of the volume's own, with names of 31 Mac Roman characters
    compat    // FSMoveRenameObjectUnicode: anything, in steps
};

// --native, --compat
void addMovingWays(Arguments &arguments, MovingWay &way);

// The typed name as the file manager has it. Throws UsageError if it cannot be a name.
HFSUniStr255 nameFromText(const std::string &text);

// What came of it, and how.
struct Moved
{
    OSErr result = noErr;
    const char *way = "";   // for people: "in one step", …
};

// Gives an object a place, and a new name if there is one. Automatically: natively where a new name is wanted besides a new place and is
// a plain one, and the volume can; in steps otherwise.
Moved moveObject(const Plugin &plugin, const FSRef &object, const FSRef &folder, const std::optional<HFSUniStr255> &name, MovingWay way);

}   // namespace host
