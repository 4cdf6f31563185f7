// What a volume offers beyond the calls that every volume answers. Its parameters report it, and the calls themselves ask the same question.
#pragma once

#include "standin/files/volumes.h"

namespace standin
{

bool offersCopyFile(const Volume &volume);     // also a locked one: there a copy fails as every other change does
bool offersMoveRename(const Volume &volume);   // likewise

// Both files are marked while they change places, so there must be attributes, and inode numbers that stay. Elsewhere the emulation by renames serves.
bool offersExchange(const Volume &volume);

}   // namespace standin
