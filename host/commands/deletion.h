// Deleting whole folders, with a word on how far it is.
#pragma once

#include "host/command.h"
#include "host/progress.h"

#include "platform/file_records.h"

namespace host
{

enum class DeletionScope
{
    folderAndContents,
    contentsAlone
};

// Deletes with FSDeleteContainer or FSDeleteContainerContents. Where progress is to be seen the tree is looked through first and then
// deleted folder by folder, the innermost ones before those they lie in.
// Result: noErr, or the code of the first failure, with which everything ends.
OSErr deleteTree(const Plugin &plugin, const FSRef &folder, DeletionScope scope, ProgressStyle style);

struct TreeCount
{
    UInt64 folders = 0, files = 0;
};

// How many objects are inside a folder, as far as they can be seen.
TreeCount countTree(const Plugin &plugin, const FSRef &folder);

}   // namespace host
