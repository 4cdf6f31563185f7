// Objects by the short names that an FSSpec or a parameter block can hold.
#pragma once

#include "standin/files/references.h"

namespace standin
{

// The short name of an object for an FSSpec: plain where that leads back to it, else with a hash.
void makeShortName(const Object &object, Str63 name);

// Looks a short name up in a folder: as it stands, and then, where nothing has it, among the short forms of the folder's longer names.
// Result: noErr; fnfErr; bdNamErr for a name that cannot be, and for a form that two names share in every digit; dirNFErr.
OSErr findShortNamed(const VolumeHandle &volume, UInt32 parentID, ConstStr255Param name, Object &object);

}   // namespace standin
