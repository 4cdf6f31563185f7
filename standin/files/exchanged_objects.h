// Files that this process exchanged: a reference stays with its place, although another inode is there now.
#pragma once

#include "standin/files/reference_format.h"

namespace standin
{

// Two files have changed places: what references named as the one is now the other.
void noteExchanged(const Identity &first, const Identity &second);

// How often a file was exchanged so far, for a reference that is being made; modulo 65,536. It goes on when another
// object takes over the inode number: so references to folders have it too.
UInt16 exchangesOf(const Identity &identity);

// Has the fields name the file that stands now where the one that they name stood. False if nothing changes.
bool followExchanges(ReferenceFields &fields);

}   // namespace standin
