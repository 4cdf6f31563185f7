// What becomes of files whose exchange was cut off.
#pragma once

#include "standin/files/metadata_attributes.h"

namespace standin
{

// With its folder's lock held: gives a file that has arrived the metadata of its place, and forgets an exchange that never began.
OSErr finishExchangeOf(const Object &object);

// Without any lock: the same for a file that only another process's end can have left so. False if there was nothing to finish, or it could not be.
bool finishExchangeIfCutOff(const Object &object);

// Without any lock: a file that stands under a temporary name goes back to its old place, or, if the other file is there, on to its new one. Where the way
// is not known, or both names are taken, it stays.
void unpark(const Object &object);

}   // namespace standin
