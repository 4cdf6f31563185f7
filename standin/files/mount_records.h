// The record from which a volume is mounted again ↔ its fields, without any disk.
//
//   bytes  0-1   length of the whole record      12-13  what kind of volume
//          2-5   'zVol'                          14-15  flags
//          6-7   version, 1                      16-    four texts, each with its length before it in two bytes:
//          8-11  check sum of all the rest              name, kind of disk, source, place
// All numbers have their high byte first, so that a record can be kept in a file and used on another machine. It begins with its length because whoever
// hands it back hands over no length. It never ends with a zero, so that zeros behind one that was cut short do not complete it.
#pragma once

#include "standin/files/volumes.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace standin
{

struct MountRecord
{
    VolumeKind kind = VolumeKind::directory;   // the startup volume has no record
    std::string place;                         // its root's on Linux

    std::string name;   // of a directory volume
    VolumeOptions options;

    std::string diskKind, source;   // of a mounted disk: as in mount_list.h
    std::uint16_t mountFlags = 0;
};

constexpr std::size_t shortestMountRecord = 24, longestMountRecord = 0x7FFF;

// Result: noErr; errFSNameTooLong if it would be longer than a record may be; paramErr for what readMountRecord would refuse.
OSErr writeMountRecord(const MountRecord &record, std::vector<std::uint8_t> &bytes);

// What a record says of its length, from its first two bytes; 0 if no record has that length.
std::size_t lengthOfMountRecord(std::span<const std::uint8_t, 2> bytes);

// Result: noErr; paramErr, with `record` untouched, for bytes that are no record.
OSErr readMountRecord(std::span<const std::uint8_t> bytes, MountRecord &record);

}   // namespace standin
