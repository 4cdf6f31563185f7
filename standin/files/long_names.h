// Names that do not fit into a reference: for a few folders, which object has which.
//
// A folder's names are read once, when one of them is looked for, and kept up with every reference that is made. What is found here is only a hint: the
// object's own status decides.
#pragma once

#include "standin/files/nodes.h"

#include <string>
#include <string_view>
#include <vector>

namespace standin
{

// The long names that are known of an object of a folder. None if nothing is known of the folder, or not of this object.
std::vector<std::string> knownLongNames(const Volume &volume, UInt32 folderID, std::uint64_t inode);

// Reads a folder's long names anew.
void readLongNames(const Volume &volume, UInt32 folderID, int folder);

// An object has a long name. Noted if the folder's names are known at all.
void noteLongName(const Volume &volume, UInt32 folderID, std::uint64_t inode, std::string_view name);

}   // namespace standin
