// File IDs: numbers by which a file is found again, also by another process and after it was renamed or moved.
#pragma once

#include "standin/files/references.h"

#include <string>

namespace standin
{

// This process gave an object another place: `object` is as it was before. Costs next to nothing where this user has no file IDs. Never fails: what cannot be
// written now, because another process is writing, is written with what comes next. Not to be called while a PlaceChange is held.
void noteMoveForFileIDs(const Object &object, UInt32 newParentID, const std::string &newName);

// Two files have changed places: IDs stay with the places.
void noteExchangeForFileIDs(const VolumeHandle &volume, const Identity &first, const Identity &second);

}   // namespace standin
