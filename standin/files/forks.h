// Open forks: one table for data and resource forks.
#pragma once

#include "platform/platform.h"
#include "standin/files/references.h"

namespace standin
{

// The node flags that say which forks of an object this process has open.
UInt16 openForkFlags(const Object &object);

bool hasOpenForksOn(FSVolumeRefNum volume);

}   // namespace standin
