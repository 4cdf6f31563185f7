// The file whose FSSpec a thread asked for last: what is done with that FSSpec next need not look the file up once more.
//
// Nothing is kept open, and nothing that is kept is believed: whoever recalls a file opens it and compares it with the status that it had.
#pragma once

#include "platform/platform.h"
#include "standin/files/references.h"

namespace standin
{

// An object was just found, and this is its FSSpec.
void noteSpecified(const Object &object, const FSSpec &spec);

// The file that this thread was given exactly these three for within the last second, with its folder open and the status that it had then. False if there
// is none.
bool recallSpecified(FSVolumeRefNum volume, SInt32 directoryID, ConstStr255Param name, Object &object);

}   // namespace standin
