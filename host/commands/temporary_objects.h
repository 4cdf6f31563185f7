// What is made under a temporary name first, so that nothing half done ever has the name that is wanted.
#pragma once

#include "host/command.h"

#include "platform/file_records.h"

#include <functional>

namespace host
{

// The object of this name in a folder.
OSErr findInFolder(const FSRef &folder, const HFSUniStr255 &name, FSRef &ref);

// An object in a folder, which is deleted again unless it gets its name.
class TemporaryObject
{
public:
    TemporaryObject() = default;
    TemporaryObject(const TemporaryObject &) = delete;
    TemporaryObject &operator=(const TemporaryObject &) = delete;
    ~TemporaryObject();

    // `make` makes something of this name, a short one in ASCII; after dupFNErr it is asked for another one. Result: that of `make`.
    OSErr make(const FSRef &folder, const std::function<OSErr(const HFSUniStr255 &name)> &make);

    // An empty file that only its owner may read.
    OSErr makeFile(const FSRef &folder);

    const FSRef &ref() const { return ref_; }

    // Gives it its name, to stay. A lock does not prevent that, and stays. Result: FSRenameUnicode's, dupFNErr for one that is taken, or FSSetCatalogInfo's.
    OSErr giveName(const HFSUniStr255 &name);

private:
    FSRef ref_ = {};
    bool isThere_ = false;
};

}   // namespace host
