// Paths: how Linux and its users name objects.
#pragma once

#include "platform/platform.h"
#include "standin/files/references.h"

#include <string>

namespace standin
{

// Finds the object at a path, following every link on the way; nothing leads out of a startup volume that is a directory.
// Result: noErr; fnfErr if the last component is missing; dirNFErr if one before it is; errFSNotAFolder if one before it is no folder;
// bdNamErr for more than 40 links; afpAccessDenied and the like.
OSErr findPath(const std::string &path, Object &object);

// The path of an object, with no '/' at its end but for the root's own.
OSErr pathOfObject(const Object &object, std::string &path);

}   // namespace standin
