// The 80 bytes of an FSRef ↔ the fields that it holds, without any disk.
//
//   bytes  0-7   inode                         20-21  volume
//          8-15  birth or moment of listing    22-23  device, as a small number
//         16-19  parent folder's ID            24-27  keyed check sum of all the rest
//         28     length of the name; 0 if a hash stands in its place
//         29     1 if the time is a birth      32-79  the name, or eight bytes of its hash
//         30-31  exchanges
// A reference is valid in the process that made it and in no other: the key is drawn at its start.
#pragma once

#include "platform/platform.h"
#include "standin/files/nodes.h"

#include <string>
#include <string_view>

namespace standin
{

constexpr std::size_t longestNameInReference = 48;

struct ReferenceFields
{
    FSVolumeRefNum volume = 0;
    UInt32 parentID = 0;
    std::uint64_t device = 0, inode = 0;
    Birth time = 0;             // 0: the disk has no births
    bool timeIsBirth = false;   // else it is the moment at which a listing showed the object
    UInt16 exchanges = 0;       // how often the file had been exchanged with another one
    bool nameIsHashed = false;
    std::string name;   // unless it is hashed
    std::uint64_t nameHash = 0;
};

bool isLongName(std::string_view diskName);
std::uint64_t longNameHash(std::string_view diskName);

// Packs the fields; `name` is stored or hashed as its length asks, `fields.name…` are not looked at.
FSRef writeReference(const ReferenceFields &fields, std::string_view name);

// What all references have in common that are made in a walk of one folder.
struct ListedFolder
{
    FSVolumeRefNum volume = 0;
    UInt16 device = 0;   // as a small number
    UInt32 id = 0;
    Birth moment = 0;   // of the listing; 0: the disk has no births
};
// The object lies on the folder's device. `birth` is 0 for one whose status was not asked for.
void writeListedReference(const ListedFolder &folder, std::uint64_t inode, Birth birth, UInt16 exchanges, std::string_view name,
                          FSRef &reference);

// False, with `fields` untouched, for bytes that this process did not make.
bool readReference(const FSRef &reference, ReferenceFields &fields);

}   // namespace standin
