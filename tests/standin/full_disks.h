// Disks without a free block.
#pragma once

#include <string>

namespace support
{

// Fills the disk that a folder lies on, with a file `ballast` in it: big pieces first, then smaller ones, until not a byte more fits.
void fillDisk(const std::string &folder);

// Takes that file away. Some disks give blocks back, or count a user's share, only with their next writing: it is made to happen here.
void makeRoom(const std::string &folder);

}   // namespace support
